# What a publisher sets: the version and where the program sends its user. They reach the code as
# headers of #defines, which the resource compiler reads too. One each: a build of another version
# compiles hardly anything anew.
set(ZOLVANE_VERSION ${PROJECT_VERSION} CACHE STRING "The version, of one to four numbers")
set(ZOLVANE_HOME_PAGE "https://example.org/zolvane" CACHE STRING "The home page")
set(ZOLVANE_MAIL "zolvane@example.org" CACHE STRING "The mail address for questions")
set(ZOLVANE_ISSUE_TRACKER "https://example.org/zolvane/issues" CACHE STRING
  "Where errors are reported")
set(ZOLVANE_UPDATE_URL "https://example.org/zolvane/zolvane-pad.xml" CACHE STRING
  "An XML file in the PAD format that tells of the newest version")
set(ZOLVANE_CLEANUP_TOOL_PAGE "https://example.org/zolvane/msi-cleanup" CACHE STRING
  "Where the system's cleanup tool for Windows Installer can be downloaded")

# The version's four numbers, as a version resource has them, go into ZOLVANE_VERSION_NUMBERS, with
# dots between them.
function(zolvane_read_version)
  if(NOT ZOLVANE_VERSION MATCHES "^(0|[1-9][0-9]*)(\\.(0|[1-9][0-9]*))*$")
    message(FATAL_ERROR "ZOLVANE_VERSION is \"${ZOLVANE_VERSION}\", but must be one to four numbers "
      "with dots between them, such as 5.3 or 5.3.0.1")
  endif()
  string(REPLACE "." ";" numbers "${ZOLVANE_VERSION}")
  list(LENGTH numbers count)
  if(count GREATER 4)
    message(FATAL_ERROR "ZOLVANE_VERSION is \"${ZOLVANE_VERSION}\", but must not be more than four "
      "numbers")
  endif()
  foreach(number IN LISTS numbers)
    string(LENGTH "${number}" digits)
    if(digits GREATER 5 OR number GREATER 65535)
      message(FATAL_ERROR "ZOLVANE_VERSION is \"${ZOLVANE_VERSION}\", but none of its numbers must "
        "be above 65535")
    endif()
  endforeach()
  list(APPEND numbers 0 0 0)
  list(SUBLIST numbers 0 4 numbers)
  list(JOIN numbers "." numbers)
  set(ZOLVANE_VERSION_NUMBERS ${numbers} PARENT_SCOPE)
endfunction()

# The addresses stand in C++ and in resources as they are.
function(zolvane_check_addresses)
  foreach(name IN ITEMS HOME_PAGE MAIL ISSUE_TRACKER UPDATE_URL CLEANUP_TOOL_PAGE)
    set(address "${ZOLVANE_${name}}")
    if(address STREQUAL "" OR address MATCHES "[^!-~]|[\"\\\\]")
      message(FATAL_ERROR "ZOLVANE_${name} is \"${address}\", but must be an address in ASCII "
        "without blanks, quotes and backslashes")
    endif()
  endforeach()
endfunction()

# The header of the version goes into ZOLVANE_SETTINGS_FOLDER. Both are written only if they would
# change, so nothing is built anew without a reason.
macro(zolvane_write_version)
  zolvane_read_version()
  string(REPLACE "." ", " ZOLVANE_VERSION_LIST ${ZOLVANE_VERSION_NUMBERS})
  configure_file(${CMAKE_SOURCE_DIR}/cmake/settings/version_settings.h.in
    ${ZOLVANE_SETTINGS_FOLDER}/version_settings.h @ONLY)
endmacro()

zolvane_check_addresses()
set(ZOLVANE_SETTINGS_FOLDER ${CMAKE_BINARY_DIR}/settings)
set(ZOLVANE_ADDRESSES_FOLDER ${ZOLVANE_SETTINGS_FOLDER})
zolvane_write_version()
configure_file(${CMAKE_SOURCE_DIR}/cmake/settings/address_settings.h.in
  ${ZOLVANE_ADDRESSES_FOLDER}/address_settings.h @ONLY)
