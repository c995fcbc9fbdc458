// Texts as they stand between the quotes of JSON.
#pragma once

#include <cstddef>
#include <string_view>

#include "orlo/locale.h"

/// No byte, and no 16-bit unit, takes more than this.
inline constexpr size_t kLongestJsonUnit = 6;

/// Writes a text of the code page in UTF-8, with what JSON wants escaped, and returns its end.
/// `out` has room for kLongestJsonUnit bytes for each byte of the text, and 8 bytes more.
char* put_json_text(char* out, std::string_view text, const ORLO::Locale& locale);
/// Likewise a text that is UTF-8 already.
char* put_json_utf8(char* out, std::string_view text);
