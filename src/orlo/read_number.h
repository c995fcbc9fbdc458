// Numbers in a text file.
#pragma once

#include <cstdint>

#include "orlo/in_file.h"

namespace ORLO {

void skip_white(InFile& file);

/// Reads an integer behind white space: decimal, octal with a leading 0, hexadecimal with 0x. One
/// that is too large becomes the largest or smallest. False, and 0, if there is none; only white
/// space is passed then.
bool read_number(InFile& file, int32_t& result);

}  // namespace ORLO
