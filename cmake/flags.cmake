# Compiler and linker settings that hold for all code of the project.
add_library(zolvane_flags INTERFACE)
target_include_directories(zolvane_flags INTERFACE
  ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR} ${ZOLVANE_SETTINGS_FOLDER})
target_compile_options(zolvane_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast -Wcast-qual
  -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2 -Wnull-dereference -Wundef -Werror)

if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  # In KB. Collecting its garbage is a tenth of the compiler's time.
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:--param=ggc-min-heapsize=1048576>)
endif()

if(ZOLVANE_SANITIZE)
  # -g1: lines are all that a report names.
  add_compile_options(-fsanitize=${ZOLVANE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all
    -g1)
  add_link_options(-fsanitize=${ZOLVANE_SANITIZE})
endif()

if(ZOLVANE_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all)
  add_link_options(-fsanitize=address,undefined)
endif()

if(WIN32)
  # 0x0601: the oldest system the program is built for. ANSI API on purpose: all text is 8-bit.
  target_compile_definitions(zolvane_flags INTERFACE
    WINVER=0x0601 _WIN32_WINNT=0x0601 _WIN32_IE=0x0800 NOMINMAX WIN32_LEAN_AND_MEAN STRICT)
  # What leaves the build machine doesn't name its folders. The last option that fits counts.
  add_compile_options(-ffunction-sections -fdata-sections
    -ffile-prefix-map=${CMAKE_SOURCE_DIR}/= -ffile-prefix-map=${CMAKE_BINARY_DIR}/=)
  add_link_options(-static -static-libgcc -static-libstdc++ -Wl,--gc-sections)
else()
  find_package(Threads REQUIRED)
  target_link_libraries(zolvane_flags INTERFACE Threads::Threads)
endif()
