// Classes of bytes in XML text, whatever the process's locale is.
#pragma once

#include <string_view>

#include "orlo/ascii.h"

namespace Trellis {

inline bool is_space(char c) noexcept {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

inline bool is_digit(char c) noexcept {
  return c >= '0' && c <= '9';
}

/// Whether `text` begins with `start`, which is in lower case, without regard to case.
inline bool starts_with_nocase(std::string_view text, std::string_view start) noexcept {
  if (text.size() < start.size()) return false;
  for (size_t i = 0; i < start.size(); ++i) {
    if (ORLO::ascii_lower(text[i]) != start[i]) return false;
  }
  return true;
}

/// `word` is in lower case.
inline bool equals_nocase(std::string_view text, std::string_view word) noexcept {
  return text.size() == word.size() && starts_with_nocase(text, word);
}

/// The text without the white space at its end.
inline std::string_view without_tail(std::string_view text) noexcept {
  size_t length = text.size();
  while (length > 0 && is_space(text[length - 1]))
    --length;
  return text.substr(0, length);
}

}  // namespace Trellis
