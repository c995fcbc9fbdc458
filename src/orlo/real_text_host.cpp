#include "orlo/real_text.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace ORLO {
namespace {

// The target's runtime knows this many digits of a number; what follows is zeros.
constexpr size_t kSignificantDigits = 17;

/// 0.DIGITS times ten to the power of `point`. Infinity and its like are digits as well: 1#INF.
struct Decimal {
  std::string digits;
  int point = 0;
};

/// Keeps `count` digits. A character at or above '5' rounds up, whatever it stands for.
void round_digits(Decimal& number, int count) {
  if (count < 0) {
    number.digits.clear();
    return;
  }
  const auto kept = static_cast<size_t>(count);
  const bool up = kept < number.digits.size() && number.digits[kept] >= '5';
  number.digits.resize(kept, '0');
  if (!up) return;
  size_t at = kept;
  while (at > 0 && number.digits[at - 1] == '9')
    number.digits[--at] = '0';
  if (at > 0) {
    ++number.digits[at - 1];
  } else {
    number.digits.insert(0, 1, '1');
    ++number.point;
  }
}

std::string special_digits(double value) {
  if (std::isinf(value)) return "1#INF";
  constexpr uint64_t kQuiet = uint64_t{1} << 51;
  const auto bits = std::bit_cast<uint64_t>(value);
  const uint64_t payload = bits & ((uint64_t{1} << 52) - 1);
  if ((payload & kQuiet) == 0) return "1#SNAN";
  return std::signbit(value) && payload == kQuiet ? "1#IND" : "1#QNAN";
}

Decimal decimal(double magnitude) {
  if (!std::isfinite(magnitude)) return {special_digits(magnitude), 1};
  if (magnitude == 0.0) return {"0", 0};
  // More digits than any double has, so that a tie is a tie.
  char exact[800];
  std::snprintf(exact, sizeof exact, "%.770e", magnitude);
  std::string text(exact);
  const size_t mark = text.find('e');
  Decimal number{text.substr(0, 1) + text.substr(2, mark - 2),
                 std::atoi(text.c_str() + mark + 1) + 1};
  round_digits(number, kSignificantDigits);
  number.digits.resize(kSignificantDigits);
  return number;
}

std::string fixed_text(Decimal number, int precision) {
  round_digits(number, number.point + precision);
  const auto places = static_cast<size_t>(precision);
  // What stands before the point, and at least one digit of it.
  std::string text = number.digits;
  const size_t wanted = places + 1;
  if (number.point <= 0) text.insert(0, static_cast<size_t>(-number.point) + 1, '0');
  text.resize(std::max(wanted, places + static_cast<size_t>(std::max(number.point, 1))), '0');
  if (places != 0) text.insert(text.size() - places, 1, '.');
  return text;
}

std::string exponent_text(Decimal number, int precision, char letter) {
  const bool zero = number.digits == "0";
  round_digits(number, precision + 1);
  number.digits.resize(static_cast<size_t>(precision) + 1);
  const int exponent = zero ? 0 : number.point - 1;
  std::string text = number.digits;
  if (precision != 0) text.insert(1, 1, '.');
  char tail[16];
  std::snprintf(tail, sizeof tail, "%c%c%03d", letter, exponent < 0 ? '-' : '+',
                std::abs(exponent));
  return text + tail;
}

void crop_zeros(std::string& text, char letter) {
  const size_t point = text.find('.');
  if (point == std::string::npos) return;
  const size_t end = std::min(text.find(letter), text.size());
  size_t last = end;
  while (text[last - 1] == '0')
    --last;
  if (text[last - 1] == '.') --last;
  text.erase(last, end - last);
}

std::string shortest_text(const Decimal& number, int precision, char letter) {
  const int digits = std::max(precision, 1);
  Decimal rounded = number;
  round_digits(rounded, digits);
  const int exponent = number.digits == "0" ? 0 : rounded.point - 1;
  std::string text = exponent < -4 || exponent >= digits
                         ? exponent_text(number, digits - 1, letter)
                         : fixed_text(number, digits - 1 - exponent);
  crop_zeros(text, letter);
  return text;
}

}  // namespace

std::string real_text(char conversion, int precision, double value) {
  const char letter = conversion == 'E' || conversion == 'G' ? 'E' : 'e';
  Decimal number = decimal(std::fabs(value));
  if (std::isnan(value)) number.digits = special_digits(value);
  std::string text;
  switch (conversion) {
    case 'f':
      text = fixed_text(number, precision);
      break;
    case 'g':
    case 'G':
      text = shortest_text(number, precision, letter);
      break;
    default:
      text = exponent_text(number, precision, letter);
  }
  return std::signbit(value) ? "-" + text : text;
}

}  // namespace ORLO
