// Bytes as tests write them down.
#pragma once

#include <string>
#include <string_view>

namespace YExcel::test {

/// The bytes in lower case, two digits each, without blanks.
inline std::string hex_of(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const char c : bytes) {
    text.push_back(kDigits[static_cast<unsigned char>(c) >> 4]);
    text.push_back(kDigits[static_cast<unsigned char>(c) & 15]);
  }
  return text;
}

/// Hexadecimal digits without the blanks that divide them for the eye.
inline std::string digits(std::string_view text) {
  std::string kept;
  for (const char c : text) {
    if (c != ' ') kept.push_back(c);
  }
  return kept;
}

}  // namespace YExcel::test
