# GoogleTest and Google Benchmark from the sources that the distribution ships, built with the
# compiler and the sanitizers of the preset.
set(ZOLVANE_GTEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest's sources")
set(INSTALL_GTEST OFF)
add_subdirectory(${ZOLVANE_GTEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)

# The tests themselves need no optimiser; what they test has had its own.
set(ZOLVANE_TEST_OPTIONS -O0)

# GoogleTest is half of what a test has to compile, and its programs are built for every preset.
set(test_header_source ${CMAKE_BINARY_DIR}/test_header.cpp)
if(NOT EXISTS ${test_header_source})
  file(WRITE ${test_header_source} "")
endif()
add_library(zolvane_test_header OBJECT ${test_header_source})
target_link_libraries(zolvane_test_header PRIVATE zolvane_flags GTest::gmock_main)
target_compile_options(zolvane_test_header PRIVATE ${ZOLVANE_TEST_OPTIONS})
target_precompile_headers(zolvane_test_header PRIVATE <gmock/gmock.h> <gtest/gtest.h>)

# zolvane_tests(NAME): one test program for the *_test.cpp of one folder below src.
# foo_win_test.cpp is for the target only, foo_host_test.cpp for the others.
function(zolvane_tests name)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${name}/*_test.cpp)
  if(WIN32)
    list(FILTER sources EXCLUDE REGEX "_host_test\\.cpp$")
  else()
    list(FILTER sources EXCLUDE REGEX "_win_test\\.cpp$")
  endif()
  if(NOT sources)
    return()
  endif()
  set(sanitized 0)
  if(ZOLVANE_SANITIZE)
    set(sanitized 1)
  endif()
  add_executable(${name}_tests ${sources})
  target_link_libraries(${name}_tests PRIVATE zolvane_${name} GTest::gmock_main)
  target_compile_options(${name}_tests PRIVATE ${ZOLVANE_TEST_OPTIONS})
  target_precompile_headers(${name}_tests REUSE_FROM zolvane_test_header)
  target_compile_definitions(${name}_tests PRIVATE
    ZOLVANE_SOURCE_ROOT="${CMAKE_SOURCE_DIR}" ZOLVANE_SANITIZED=${sanitized})
  # Relative: a test program of the target takes no other path without a drive for a full one.
  add_test(NAME ${name} COMMAND ${name}_tests --gtest_output=xml:results/${name}.xml
    WORKING_DIRECTORY ${CMAKE_BINARY_DIR})
  set_tests_properties(${name} PROPERTIES TIMEOUT 600)
endfunction()
