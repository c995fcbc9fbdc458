#include "inventory/text_helpers.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr size_t kExpansionLimit = 1024;
// The system knows no longer paths.
constexpr size_t kLongestPath = 32767;

bool is_space(char c) noexcept {
  return c == ' ' || (c >= '\t' && c <= '\r');
}
bool is_digit(char c) noexcept {
  return c >= '0' && c <= '9';
}

const char* skip_space(const char* text) noexcept {
  while (is_space(*text))
    ++text;
  return text;
}

/// What is left of the path part behind the program, then the arguments that stood behind the
/// quotes.
String arguments_behind(const char* rest, const String& quoted_args) {
  String args(skip_space(rest));
  if (args.empty()) return quoted_args;
  if (!quoted_args.empty()) args.appendf(" %#s", quoted_args);
  return args;
}

const char* version_start(const char* text) noexcept {
  const char* slash = std::strchr(text, '/');
  const char* dot = std::strchr(text, '.');
  if (slash == nullptr || dot == nullptr || slash > dot) return text;
  const char* behind = slash;
  while (*behind != '\0' && !is_space(*behind))
    ++behind;
  behind = skip_space(behind);
  return *behind != '\0' ? behind : text;
}

const char* skip_digits(const char* text) noexcept {
  while (is_digit(*text))
    ++text;
  return text;
}

const char* part_end(const char* text) noexcept {
  return text + std::strcspn(text, ".");
}

int sign(int order) noexcept {
  return (order > 0) - (order < 0);
}

int compare_pieces(const char* a, const char* a_end, const char* b, const char* b_end) noexcept {
  const auto a_length = static_cast<size_t>(a_end - a);
  const auto b_length = static_cast<size_t>(b_end - b);
  const size_t common = a_length < b_length ? a_length : b_length;
  const int order = common != 0 ? std::memcmp(a, b, common) : 0;
  if (order != 0) return sign(order);
  return a_length == b_length ? 0 : (a_length < b_length ? -1 : 1);
}

}  // namespace

int32_t leading_number(const char* text) noexcept {
  text = skip_space(text);
  const bool negative = *text == '-';
  if (*text == '-' || *text == '+') ++text;
  uint32_t number = 0;
  for (; is_digit(*text); ++text)
    number = number * 10 + static_cast<uint32_t>(*text - '0');
  return static_cast<int32_t>(negative ? 0U - number : number);
}

IconSpec SplitIconSpec(const String& text, Files& files) {
  IconSpec spec;
  const char* begin = text.c_str();
  if (is_space(*begin)) ++begin;
  if (*begin != '"') {
    spec.path = begin;
  } else {
    ++begin;
    const char* end = begin + std::strcspn(begin, "\"");
    spec.path.assign(begin, static_cast<size_t>(end - begin));
    if (*end == '"') ++end;
    spec.args = skip_space(end);
  }
  if (auto expanded = files.expand_environment(spec.path.c_str(), kExpansionLimit)) {
    spec.path = *expanded;
  }
  return spec;
}

CommandLine ResolveCommandLine(const String& text, Files& files) {
  const IconSpec spec = SplitIconSpec(text, files);
  CommandLine command{spec.path, spec.args, String()};
  if (spec.path.empty()) return command;
  if (files.is_file(spec.path.c_str())) {
    command.command = spec.path;
    return command;
  }
  const char* const begin = spec.path.c_str();
  const char* const end = begin + spec.path.length();
  const char* const last = begin + std::min(spec.path.length(), kLongestPath);
  for (const char* stop = begin + 1; stop <= last; ++stop) {
    if (stop != end && !is_space(*stop)) continue;
    const String prefix(begin, stop);
    const auto found = files.search_path(prefix.c_str(), ".exe");
    if (!found || !files.is_file(found->c_str())) continue;
    return {*found, arguments_behind(stop, spec.args), prefix};
  }
  return command;
}

String MergeDateText(const String& text, DateTime date, const ORLO::Clock& clock) {
  if (!text.empty()) {
    DateTime parsed;
    parsed.parse(text.c_str(), clock);
    const ORLO::SystemTime& a = parsed.time;
    const ORLO::SystemTime& b = date.time;
    const bool day_only = a.wHour == 0 && a.wMinute == 0 && a.wSecond == 0;
    const bool same_day = a.wYear == b.wYear && a.wMonth == b.wMonth && a.wDay == b.wDay;
    // A bare day says less than the file time of that day, which also has the time of day.
    const bool loses_time = !date.empty() && day_only && same_day;
    if (!parsed.empty() && !loses_time) date = parsed;
  }
  return date.empty() ? text : date.display(clock);
}

int compareVersions(const String& a, const String& b) noexcept {
  const char* rest_a = version_start(a.c_str());
  const char* rest_b = version_start(b.c_str());
  while (*rest_a != '\0' && *rest_b != '\0') {
    const int32_t number_a = leading_number(rest_a);
    const int32_t number_b = leading_number(rest_b);
    if (number_a != number_b) return number_a < number_b ? -1 : 1;
    const char* end_a = part_end(rest_a);
    const char* end_b = part_end(rest_b);
    const int order = compare_pieces(skip_digits(rest_a), end_a, skip_digits(rest_b), end_b);
    if (order != 0) return order;
    rest_a = *end_a == '.' ? end_a + 1 : end_a;
    rest_b = *end_b == '.' ? end_b + 1 : end_b;
  }
  return sign(std::strcmp(rest_a, rest_b));
}
