// UTF-16 as the platform keeps names and texts: made from UTF-8 and from bytes, and its case.
#pragma once

#include <string>
#include <string_view>

/// What is no valid UTF-8 becomes U+FFFD, one for each byte that can't be understood.
std::u16string utf16_from_utf8(std::string_view text);
/// A lone surrogate becomes U+FFFD.
std::string utf8_from_utf16(std::u16string_view text);

/// Little-endian bytes to units; a single byte at the end is dropped.
std::u16string utf16_from_bytes(std::string_view bytes);
/// Little-endian bytes, without a terminator of their own.
std::string bytes_from_utf16(std::u16string_view text);

/// Upper case unit by unit, as names of keys, values and files are compared. Knows Latin, Greek,
/// Cyrillic, Armenian and full-width letters.
char16_t upcase(char16_t unit) noexcept;
std::u16string upcase(std::u16string_view text);
