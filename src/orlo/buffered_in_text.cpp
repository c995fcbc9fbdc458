// Words and numbers.
#include <cctype>

#include "orlo/buffered_in.h"

namespace ORLO {
namespace {

constexpr size_t kFirstWordRoom = 1024;

bool is_digit(int character) noexcept {
  return character >= '0' && character <= '9';
}
bool is_digit(int character, int base) noexcept {
  return base == 16 ? character != -1 && std::isxdigit(character) != 0 : is_digit(character);
}
bool is_sign(int character) noexcept {
  return character == '+' || character == '-';
}
bool is_space(int character) noexcept {
  return character != -1 && std::isspace(character) != 0;
}

struct NumberText {
  size_t length = 0;
  int base = 0;
};

NumberText int_text_ahead(InFile& file) {
  constexpr size_t kLimit = kIntTextRoom - 1;
  const auto ahead = [&file](size_t distance) {
    return file.peek_at(static_cast<ptrdiff_t>(distance));
  };
  NumberText text;
  if (is_sign(ahead(0))) ++text.length;
  const int first = ahead(text.length);
  if (!is_digit(first)) return {};
  ++text.length;
  text.base = 10;
  if (first == '0') {
    const int second = ahead(text.length);
    // An x without a digit behind it isn't part of the number.
    if ((second == 'x' || second == 'X') && is_digit(ahead(text.length + 1), 16)) {
      text.base = 16;
      ++text.length;
    } else {
      text.base = is_digit(second) ? 8 : 0;
    }
  }
  while (text.length < kLimit && is_digit(ahead(text.length), text.base))
    ++text.length;
  return text;
}

size_t float_text_ahead(InFile& file) {
  constexpr size_t kLimit = kFloatTextRoom - 1;
  const auto ahead = [&file](size_t distance) {
    return file.peek_at(static_cast<ptrdiff_t>(distance));
  };
  size_t length = is_sign(ahead(0)) ? 1 : 0;
  bool has_digit = false;
  bool has_point = false;
  for (; length < kLimit; ++length) {
    const int character = ahead(length);
    if (is_digit(character)) {
      has_digit = true;
    } else if (character == '.' && !has_point) {
      has_point = true;
    } else {
      break;
    }
  }
  if (!has_digit) return 0;
  // An e counts only with a digit of its own.
  if (const int mark = ahead(length); mark != 'e' && mark != 'E') return length;
  size_t end = length + (is_sign(ahead(length + 1)) ? 2 : 1);
  if (end >= kLimit || !is_digit(ahead(end))) return length;
  while (end < kLimit && is_digit(ahead(end)))
    ++end;
  return end;
}

}  // namespace

size_t BufferedInFile::read_word(String& word) {
  word.resize(kFirstWordRoom);
  char* text = word.writable();
  size_t count = 0;
  for (int character = peek(); character != -1 && !is_space(character); character = peek()) {
    if (count == word.length()) {
      word.resize(2 * count);
      text = word.writable();
    }
    text[count++] = static_cast<char>(character);
    skip();
  }
  word.resize(count);
  word.compact();
  return count;
}

size_t BufferedInFile::read_word(char* buffer, size_t capacity) {
  if (capacity == 0) return 0;
  size_t count = 0;
  while (count < capacity - 1) {
    const int character = peek();
    if (character == -1 || is_space(character)) break;
    buffer[count++] = static_cast<char>(character);
    skip();
  }
  buffer[count] = '\0';
  return count;
}

size_t BufferedInFile::take_text(char* buffer, size_t length, size_t limit) {
  for (size_t i = 0; i < length; ++i)
    buffer[i] = static_cast<char>(get());
  buffer[length] = '\0';
  // A text that ends with the file has met the end.
  if (length < limit) peek();
  return length;
}

int BufferedInFile::read_int_text(char (&buffer)[kIntTextRoom]) {
  const NumberText text = int_text_ahead(*this);
  take_text(buffer, text.length, kIntTextRoom - 1);
  return text.base;
}

size_t BufferedInFile::read_float_text(char (&buffer)[kFloatTextRoom]) {
  return take_text(buffer, float_text_ahead(*this), kFloatTextRoom - 1);
}

}  // namespace ORLO
