// Windows-1252, the 8-bit code page of build machines.
#pragma once

#include <cstddef>
#include <string>

namespace ORLO {

/// A character that the code page lacks becomes a similar one where the platform has one for it
/// (only letters of Latin Extended-A, full-width forms and a few signs are kept here), else "?".
std::string stand_in_narrow(const char16_t* wide, size_t length);
std::u16string stand_in_widen(const char* text, size_t length);

}  // namespace ORLO
