# POSIX regular expressions for the target, whose C library has none: gnulib's, as the distribution
# ships it. Its sources are made in the build folder; only what they ask of a configuration is ours.
set(ZOLVANE_GNULIB_SOURCE /usr/share/gnulib CACHE PATH "gnulib's modules")
find_program(ZOLVANE_GNULIB_TOOL gnulib-tool HINTS ${ZOLVANE_GNULIB_SOURCE} REQUIRED)

set(gnulib_folder ${CMAKE_BINARY_DIR}/gnulib)
set(gnulib_own ${CMAKE_SOURCE_DIR}/cmake/gnulib_regex)
# What these would bring is there in the target's runtime already, or in our own headers.
set(gnulib_avoided attribute btowc builtin-expect c99 extensions langinfo lock mbrtowc mbsinit memcmp
  memmove nl_langinfo ssize_t stdbool stdint vararrays wchar wcrtomb wctype wctype-h)
list(TRANSFORM gnulib_avoided PREPEND --avoid=)
set(gnulib_sources regex.c malloc/dynarray_at_failure.c malloc/dynarray_emplace_enlarge.c
  malloc/dynarray_finalize.c malloc/dynarray_resize.c malloc/dynarray_resize_clear.c)
list(TRANSFORM gnulib_sources PREPEND ${gnulib_folder}/lib/)
# The rest of gnulib's headers are none for our sources.
set(gnulib_header ${gnulib_folder}/include/regex.h)

# The tool wants a project to import into. An import anew into an empty folder gives the same on
# each run, after an update of gnulib, too.
add_custom_command(
  OUTPUT ${gnulib_header} ${gnulib_sources}
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${gnulib_folder}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${gnulib_folder}
  COMMAND ${CMAKE_COMMAND} -E copy ${gnulib_own}/configure.ac ${gnulib_folder}
  COMMAND ${CMAKE_COMMAND} -E chdir ${gnulib_folder} ${ZOLVANE_GNULIB_TOOL} --import --lgpl=2
    --no-changelog --no-vc-files ${gnulib_avoided} regex > ${CMAKE_BINARY_DIR}/gnulib.log
  COMMAND ${CMAKE_COMMAND} -E make_directory ${gnulib_folder}/include
  COMMAND ${CMAKE_COMMAND} -E copy ${gnulib_folder}/lib/regex.h ${gnulib_header}
  DEPENDS ${gnulib_own}/configure.ac ${ZOLVANE_GNULIB_SOURCE}/modules/regex
    ${ZOLVANE_GNULIB_SOURCE}/lib/regcomp.c
  COMMENT "Importing gnulib's regular expressions"
  VERBATIM)

add_library(zolvane_gnulib_regex STATIC ${gnulib_sources} ${gnulib_header})
target_include_directories(zolvane_gnulib_regex
  PRIVATE ${gnulib_own} ${gnulib_folder}/lib
  SYSTEM INTERFACE ${gnulib_folder}/include)
# Warnings about foreign code are for those who can mend it.
target_compile_options(zolvane_gnulib_regex PRIVATE -w)
