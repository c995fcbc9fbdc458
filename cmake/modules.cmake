# The standard headers are most of what a source has to compile. The first module compiles this list
# once, and the others take it from there. Sources still name what they need: the linter reads
# them without it, and fails where nothing else brings a header along.
set(ZOLVANE_STANDARD_HEADERS
  <algorithm> <atomic> <cstdint> <cstring> <functional> <iterator> <map> <memory> <optional> <set>
  <stdexcept> <string> <string_view> <utility> <vector>)

function(zolvane_precompile target)
  get_property(first GLOBAL PROPERTY zolvane_precompiled)
  if(first)
    target_precompile_headers(${target} REUSE_FROM ${first})
  else()
    target_precompile_headers(${target} PRIVATE ${ZOLVANE_STANDARD_HEADERS})
    set_property(GLOBAL PROPERTY zolvane_precompiled ${target})
  endif()
endfunction()

# zolvane_module(NAME [DEPENDENCY...]): the static library of one folder below src, its rooms
# included.
# File names choose: foo.cpp always, foo_win.cpp for the target, foo_host.cpp elsewhere.
# Tests (*_test.cpp) belong to zolvane_tests, main_win.cpp to the program.
function(zolvane_module name)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${name}/*.cpp)
  list(FILTER sources EXCLUDE REGEX "(_test|/main_win)\\.cpp$")
  if(WIN32)
    list(FILTER sources EXCLUDE REGEX "_host\\.cpp$")
  else()
    list(FILTER sources EXCLUDE REGEX "_win\\.cpp$")
  endif()
  if(sources)
    add_library(zolvane_${name} STATIC ${sources})
    target_link_libraries(zolvane_${name} PUBLIC zolvane_flags)
    zolvane_precompile(zolvane_${name})
    foreach(dependency IN LISTS ARGN)
      target_link_libraries(zolvane_${name} PUBLIC zolvane_${dependency})
    endforeach()
  else()
    add_library(zolvane_${name} INTERFACE)
    foreach(dependency IN LISTS ARGN)
      target_link_libraries(zolvane_${name} INTERFACE zolvane_${dependency})
    endforeach()
  endif()
endfunction()
