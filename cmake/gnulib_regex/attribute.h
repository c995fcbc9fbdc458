/* The one attribute that gnulib's regular expressions use. */
#pragma once

#define FALLTHROUGH __attribute__((fallthrough))
