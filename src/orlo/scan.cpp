#include "orlo/scan.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

namespace ORLO {
namespace {

bool is_space(char c) noexcept {
  return c == ' ' || (c >= '\t' && c <= '\r');
}
bool is_digit(char c) noexcept {
  return c >= '0' && c <= '9';
}

void skip_space(const char*& at) noexcept {
  while (is_space(*at))
    ++at;
}

/// The width in front of a conversion; without one there is no limit.
size_t take_width(const char*& pattern) noexcept {
  size_t width = 0;
  while (is_digit(*pattern))
    width = width * 10 + static_cast<size_t>(*pattern++ - '0');
  return width == 0 ? std::numeric_limits<size_t>::max() : width;
}

bool scan_number(const char*& text, size_t width, int& number) noexcept {
  skip_space(text);
  const bool negative = *text == '-';
  if (negative || *text == '+') {
    ++text;
    --width;
  }
  uint32_t value = 0;
  const char* const first = text;
  for (; width > 0 && is_digit(*text); --width) {
    value = value * 10 + static_cast<uint32_t>(*text++ - '0');
  }
  if (text == first) return false;
  number = static_cast<int>(negative ? 0 - value : value);
  return true;
}

bool scan_word(const char*& text, size_t width, char* word, size_t room) noexcept {
  skip_space(text);
  width = std::min(width, room - 1);
  const char* const first = text;
  for (; width > 0 && *text != '\0' && !is_space(*text); --width)
    ++text;
  if (text == first) return false;
  const auto length = static_cast<size_t>(text - first);
  std::memcpy(word, first, length);
  word[length] = '\0';
  return true;
}

/// One conversion, from behind its %.
bool scan_field(const char*& text, const char*& pattern, const ScanField& field) noexcept {
  const size_t width = take_width(pattern);
  const char type = *pattern++;
  if (type == 'd' && field.number != nullptr) return scan_number(text, width, *field.number);
  return field.text != nullptr && scan_word(text, width, field.text, field.room);
}

}  // namespace

int scan(const char* text, const char* pattern, std::initializer_list<ScanField> fields) noexcept {
  int filled = 0;
  const ScanField* field = fields.begin();
  while (*pattern != '\0') {
    if (is_space(*pattern)) {
      skip_space(pattern);
      skip_space(text);
      continue;
    }
    if (*pattern != '%') {
      if (*text != *pattern) break;
      ++text;
      ++pattern;
      continue;
    }
    if (field == fields.end() || !scan_field(text, ++pattern, *field)) break;
    ++field;
    ++filled;
  }
  return filled == 0 && *text == '\0' ? -1 : filled;
}

}  // namespace ORLO
