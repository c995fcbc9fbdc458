// The case of ASCII letters, whatever the locale: no letter beyond ASCII has one.
#pragma once

#include <algorithm>
#include <string_view>

#include "orlo/rstring.h"

namespace ORLO {

constexpr char ascii_lower(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool equal_nocase(std::string_view a, std::string_view b) noexcept {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return ascii_lower(x) == ascii_lower(y); });
}

inline bool equal_nocase(const String& a, const String& b) noexcept {
  return equal_nocase(std::string_view(a.c_str(), a.length()),
                      std::string_view(b.c_str(), b.length()));
}

inline String ascii_lower(String text) {
  char* const first = text.writable();
  std::transform(first, first + text.length(), first, [](char c) { return ascii_lower(c); });
  return text;
}

}  // namespace ORLO
