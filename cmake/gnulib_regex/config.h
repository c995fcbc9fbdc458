/* What gnulib's regular expressions ask of a configuration, answered for mingw. */
#pragma once

/* Makes regex.h declare the names that its own sources use. */
#define _GNU_SOURCE 1
/* Each compiled expression is locked by a mutex of winpthread, as the threads of C++ are. */
#define GNULIB_PTHREAD 1
#define HAVE_ISBLANK 1
#define HAVE_DECL_ISBLANK 1

#include <stdbool.h>
#include <sys/types.h>
