#include "words.h"

#include <charconv>

namespace driver {
namespace {

int64_t parse_number(std::string_view text, int base) {
  int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (error != std::errc() || end != text.data() + text.size() || text.empty()) {
    throw Refusal("not a number: " + std::string(text));
  }
  return value;
}

char take_byte_escape(std::string_view& rest) {
  if (rest.size() < 4 || rest.substr(0, 2) != "00") throw Refusal("an escape is no byte");
  const int64_t value = parse_number(rest.substr(2, 2), 16);
  rest.remove_prefix(4);
  return static_cast<char>(value);
}

char take_escape(std::string_view& rest) {
  static constexpr std::string_view kLetters = "\"\\/bfnrtu";
  static constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
  const size_t found = rest.empty() ? std::string_view::npos : kLetters.find(rest.front());
  if (found == std::string_view::npos) throw Refusal("an escape is not known");
  rest.remove_prefix(1);
  return found < kMeanings.size() ? kMeanings[found] : take_byte_escape(rest);
}

std::string take_quoted(std::string_view& rest) {
  std::string word;
  rest.remove_prefix(1);
  while (!rest.empty() && rest.front() != '"') {
    const char c = rest.front();
    rest.remove_prefix(1);
    word += c == '\\' ? take_escape(rest) : c;
  }
  if (rest.empty()) throw Refusal("a string has no end");
  rest.remove_prefix(1);
  return word;
}

std::string take_bare(std::string_view& rest) {
  const size_t length = std::min(rest.find(' '), rest.size());
  std::string word(rest.substr(0, length));
  rest.remove_prefix(length);
  return word;
}

}  // namespace

Words::Words(std::string_view line) {
  while (!line.empty()) {
    if (line.front() == ' ') {
      line.remove_prefix(1);
    } else {
      words_.push_back(line.front() == '"' ? take_quoted(line) : take_bare(line));
    }
  }
}

const std::string& Words::text(size_t index) const {
  if (index >= words_.size()) throw Refusal("word " + std::to_string(index) + " is missing");
  return words_[index];
}

int64_t Words::number(size_t index) const {
  std::string_view word = text(index);
  if (word.substr(0, 2) == "0x") return parse_number(word.substr(2), 16);
  return parse_number(word, 10);
}

int64_t Words::number_or(size_t index, int64_t missing) const {
  return index < words_.size() ? number(index) : missing;
}

}  // namespace driver
