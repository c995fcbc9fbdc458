#include "trellis/xml_path.h"

#include <algorithm>
#include <limits>
#include <string_view>

#include "trellis/xml_chars.h"

namespace Trellis {
namespace {

bool is_quote(char c) noexcept {
  return c == '"' || c == '\'';
}

void skip_space(std::string_view& text) {
  while (!text.empty() && is_space(text.front()))
    text.remove_prefix(1);
}

std::string_view unquoted(std::string_view text) {
  if (text.empty() || !is_quote(text.front())) return text;
  const char quote = text.front();
  text.remove_prefix(1);
  if (!text.empty() && text.back() == quote) text.remove_suffix(1);
  return text;
}

/// Counting starts at 1 in the text; a number too great for an index is one that no child has.
int index_of(std::string_view digits) {
  constexpr int kMost = std::numeric_limits<int>::max();
  int number = 0;
  for (; !digits.empty() && is_digit(digits.front()); digits.remove_prefix(1)) {
    const int digit = digits.front() - '0';
    number = number > (kMost - digit) / 10 ? kMost : number * 10 + digit;
  }
  return number - 1;
}

/// Takes one value off the front, from the character that opens it to the next of its kind. False
/// if there is no next one.
bool take_value(std::string_view& text, std::string_view& value) {
  const size_t end = text.empty() ? std::string_view::npos : text.find(text.front(), 1);
  value = end == std::string_view::npos ? text : text.substr(0, end + 1);
  text.remove_prefix(value.size());
  value = unquoted(value);
  return end != std::string_view::npos;
}

XMLAttributes filter_of(std::string_view text) {
  XMLAttributes filter;
  bool more = true;
  while (more && !text.empty() && text.front() == '@') {
    text.remove_prefix(1);
    const size_t assignment = text.find('=');
    if (assignment == std::string_view::npos) break;
    const std::string_view name = unquoted(text.substr(0, assignment));
    text.remove_prefix(assignment + 1);
    std::string_view value;
    more = take_value(text, value);
    attribute_of(filter, name) = value;
    skip_space(text);
    if (starts_with_nocase(text, "and ")) text.remove_prefix(4);
  }
  return filter;
}

XMLPathStep step_of(std::string_view text) {
  const size_t bracket = std::min(text.find('['), text.size());
  XMLPathStep step{TL_String(text.substr(0, bracket))};
  std::string_view condition = text.substr(bracket);
  if (condition.size() >= 2 && condition.back() == ']') {
    condition = condition.substr(1, condition.size() - 2);
  }
  skip_space(condition);
  if (condition.empty()) return step;
  if (is_digit(condition.front())) step.index = index_of(condition);
  if (condition.front() == '@') step.filter = filter_of(condition);
  return step;
}

}  // namespace

XMLPath::XMLPath(const char* text) : XMLPath(std::string(text)) {}

XMLPath::XMLPath(const std::string& text) {
  std::string_view rest = text;
  absolute = rest.starts_with('/');
  if (absolute) rest.remove_prefix(1);
  while (!rest.empty() && rest.front() != '/') {
    const size_t end = rest.find('/');
    steps.push_back(step_of(rest.substr(0, end)));
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
}

}  // namespace Trellis
