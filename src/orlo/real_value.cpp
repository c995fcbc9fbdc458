#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "orlo/real_text.h"

namespace ORLO {
namespace {

bool is_digit(char c) noexcept {
  return c >= '0' && c <= '9';
}

/// Whether a number that is out of range is too large; else it is too small. `begin` to `end` is
/// all of its text, without a sign, and not all of its digits are 0.
bool is_too_large(const char* begin, const char* end) noexcept {
  const char* const mark = std::find_if(begin, end, [](char c) { return c == 'e' || c == 'E'; });
  const char* const point = std::find(begin, mark, '.');
  const char* const first =
      std::find_if(begin, mark, [](char c) { return is_digit(c) && c != '0'; });
  int64_t exponent = 0;
  if (mark != end) {
    // A plus is all that from_chars doesn't take.
    const char* const digits = mark + (mark[1] == '+' ? 2 : 1);
    const auto [rest, error] = std::from_chars(digits, end, exponent);
    // No text is long enough to outweigh such an exponent.
    if (error == std::errc::result_out_of_range) return *digits != '-';
  }
  return exponent > first - point;
}

}  // namespace

double real_value(const char* text) noexcept {
  while (*text == ' ' || (*text >= '\t' && *text <= '\r'))
    ++text;
  const bool negative = *text == '-';
  if (negative || *text == '+') ++text;
  // Infinity and its like are no numbers here.
  if (!is_digit(*text) && !(*text == '.' && is_digit(text[1]))) return 0;
  double value = 0;
  const auto [end, error] = std::from_chars(text, text + std::strlen(text), value);
  if (error == std::errc::result_out_of_range) value = is_too_large(text, end) ? HUGE_VAL : 0;
  return negative ? -value : value;
}

}  // namespace ORLO
