#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

#include "orlo/real_text.h"

namespace ORLO {
namespace {

bool is_digit(char c) noexcept {
  return c >= '0' && c <= '9';
}

/// Whether the exponent of a number that has digits is positive: such a number is too large where
/// one with another exponent is too small.
bool grows(const char* begin, const char* end) noexcept {
  const char* const mark = std::find_if(begin, end, [](char c) { return c == 'e' || c == 'E'; });
  return mark == end || mark[1] != '-';
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
  if (error == std::errc::result_out_of_range) value = grows(text, end) ? HUGE_VAL : 0;
  return negative ? -value : value;
}

}  // namespace ORLO
