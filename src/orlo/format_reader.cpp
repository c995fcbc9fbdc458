#include "orlo/format_reader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace ORLO {
namespace {

enum Class : uint8_t { literal, percent, flag, zero, digit, dot, size, type, kClasses };
enum State : uint8_t {
  normal,
  in_percent,
  in_flags,
  in_width,
  in_dot,
  in_precision,
  in_size,
  in_type,
  kStates
};

// Widths and precisions end here: a slip in a text must not ask for gigabytes.
constexpr int kLargestField = 1'000'000;

constexpr char kFirstClassified = ' ';
constexpr char kLastClassified = 'x';
constexpr auto kClassTable = [] {
  std::array<Class, kLastClassified - kFirstClassified + 1> table{};
  const auto fill = [&table](std::string_view characters, Class kind) {
    for (const char c : characters)
      table[static_cast<size_t>(c - kFirstClassified)] = kind;
  };
  fill("%", percent);
  fill("-+ #", flag);
  fill("0", zero);
  fill("123456789*", digit);
  fill(".", dot);
  fill("hlwI", size);
  fill("cCdDeEfgGinopsStTuxX", type);
  return table;
}();

constexpr State kNextState[kStates][kClasses] = {
    // literal, percent,    flag,     zero,         digit,        dot,    size,    type
    {normal, in_percent, normal, normal, normal, normal, normal, normal},            // normal
    {normal, normal, in_flags, in_flags, in_width, in_dot, in_size, in_type},        // in_percent
    {normal, normal, in_flags, in_flags, in_width, in_dot, in_size, in_type},        // in_flags
    {normal, normal, normal, in_width, in_width, in_dot, in_size, in_type},          // in_width
    {normal, normal, normal, in_precision, in_precision, normal, in_size, in_type},  // in_dot
    {normal, normal, normal, in_precision, in_precision, normal, in_size, in_type},  // in_precision
    {normal, normal, normal, normal, normal, normal, in_size, in_type},              // in_size
    {normal, in_percent, normal, normal, normal, normal, normal, normal},            // in_type
};

// `at` leads to the character to be classified: I is a size only in front of 64.
Class class_of(const char* at, FormatReader::Dialect dialect) noexcept {
  const char c = *at;
  if (c < kFirstClassified || c > kLastClassified) return literal;
  if (c == 'I' && std::strncmp(at + 1, "64", 2) != 0) return literal;
  if (dialect == FormatReader::Dialect::measure && (c == 'F' || c == 'L' || c == 'N')) return size;
  return kClassTable[static_cast<size_t>(c - kFirstClassified)];
}

}  // namespace

FormatArg FormatArgs::take() noexcept {
  if (left_ == 0) return FormatArg();
  --left_;
  return *next_++;
}

FormatReader::Token FormatReader::next() noexcept {
  State state = normal;
  while (*at_ != '\0') {
    const State before = state;
    state = kNextState[state][class_of(at_, dialect_)];
    character_ = *at_++;
    switch (state) {
      case normal:
        return before == normal || (before == in_percent && character_ == '%') ? Token::literal
                                                                               : Token::stray;
      case in_percent:
        conversion_ = Conversion();
        break;
      case in_flags:
        add_flag();
        break;
      case in_width:
        add_width();
        break;
      case in_dot:
        conversion_.precision = 0;
        break;
      case in_precision:
        add_precision();
        break;
      case in_size:
        add_size();
        break;
      default:
        conversion_.type = character_;
        return Token::conversion;
    }
  }
  character_ = '\0';
  return state == normal ? Token::end : Token::stray;
}

void FormatReader::skip_byte() noexcept {
  if (*at_ != '\0') ++at_;
}

std::string FormatReader::take_picture() {
  const char* const first = at_;
  at_ += std::strcspn(at_, "#");
  std::string picture(first, at_);
  skip_byte();
  return picture;
}

void FormatReader::add_flag() noexcept {
  conversion_.left |= character_ == '-';
  conversion_.sign |= character_ == '+';
  conversion_.blank |= character_ == ' ';
  conversion_.zero |= character_ == '0';
  conversion_.alternate |= character_ == '#';
}

void FormatReader::add_to(int& number) noexcept {
  number = std::min(std::max(number, 0) * 10 + (character_ - '0'), kLargestField);
}

void FormatReader::add_width() noexcept {
  if (character_ != '*') {
    add_to(conversion_.width);
    return;
  }
  const int64_t width = static_cast<int32_t>(args_.take().integer());
  conversion_.left |= width < 0;
  conversion_.width =
      static_cast<int>(std::min<int64_t>(width < 0 ? -width : width, kLargestField));
}

void FormatReader::add_precision() noexcept {
  if (character_ != '*') {
    add_to(conversion_.precision);
    return;
  }
  const auto precision = static_cast<int32_t>(args_.take().integer());
  conversion_.precision = precision < 0 ? -1 : std::min(precision, kLargestField);
}

void FormatReader::add_size() noexcept {
  conversion_.is_short |= character_ == 'h';
  conversion_.is_long |= character_ == 'l';
  conversion_.is_wide |= character_ == 'w';
  if (character_ == 'I') {
    conversion_.is_64bit = true;
    at_ += 2;
  }
}

}  // namespace ORLO
