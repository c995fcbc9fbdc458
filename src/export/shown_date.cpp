#include "export/shown_date.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>

namespace {

// Day, month and year can be told apart in however it is written.
constexpr ORLO::SystemTime kExample = {2034, 11, 6, 25};

bool is_digit(char c) noexcept {
  return c >= '0' && c <= '9';
}

/// Reads a number of `fewest` to `most` digits off the front.
bool take_number(std::string_view& text, size_t fewest, size_t most, uint16_t& number) {
  size_t length = 0;
  while (length < std::min(most, text.size()) && is_digit(text[length]))
    ++length;
  if (length < fewest) return false;
  std::from_chars(text.data(), text.data() + length, number);
  text.remove_prefix(length);
  return true;
}

bool take_character(std::string_view& text, char character) {
  if (text.empty() || text.front() != character) return false;
  text.remove_prefix(1);
  return true;
}

bool take_time_of_day(std::string_view& text, ORLO::SystemTime& time) {
  if (!take_character(text, ' ') || !take_number(text, 2, 2, time.wHour) ||
      !take_character(text, ':') || !take_number(text, 2, 2, time.wMinute)) {
    return false;
  }
  return text.empty() || (take_character(text, ':') && take_number(text, 2, 2, time.wSecond));
}

void append_number(IsoText& iso, char separator, unsigned number, size_t digits) {
  if (separator != '\0') iso.bytes[iso.length++] = separator;
  iso.length += digits;
  for (size_t i = 1; i <= digits; ++i, number /= 10)
    iso.bytes[iso.length - i] = static_cast<char>('0' + number % 10);
}

IsoText iso_date(const ORLO::SystemTime& time) {
  IsoText iso;
  append_number(iso, '\0', time.wYear, 4);
  append_number(iso, '-', time.wMonth, 2);
  append_number(iso, '-', time.wDay, 2);
  return iso;
}

void append_time_of_day(IsoText& iso, const ORLO::SystemTime& time) {
  append_number(iso, 'T', time.wHour, 2);
  append_number(iso, ':', time.wMinute, 2);
  append_number(iso, ':', time.wSecond, 2);
}

bool in_calendar(const ORLO::SystemTime& time) {
  ORLO::FileTime moment = 0;
  return time.wYear <= 9999 && ORLO::to_file_time(time, moment);
}

/// As dates are read everywhere in the program.
uint16_t whole_year(uint16_t short_year) {
  return static_cast<uint16_t>(short_year + (short_year < 80 ? 2000 : 1900));
}

}  // namespace

DatePattern DatePattern::of_locale(const ORLO::Locale& locale) {
  return of_example(locale.date_text(kExample, nullptr).value_or(""));
}

DatePattern DatePattern::with_dots() {
  return of_example("25.11.2034");
}

DatePattern DatePattern::of_example(std::string_view example) {
  DatePattern pattern;
  std::string kinds;  // which numbers have been met
  while (!example.empty()) {
    if (!is_digit(example.front())) {
      pattern.parts_.push_back({Kind::literal, example.front()});
      example.remove_prefix(1);
      continue;
    }
    const bool whole_year_comes = example.starts_with("2034");
    uint16_t number = 0;
    take_number(example, 1, whole_year_comes ? 4 : 2, number);
    const Kind kind = number == kExample.wDay     ? Kind::day
                      : number == kExample.wMonth ? Kind::month
                      : number == kExample.wYear  ? Kind::year
                      : number == 34              ? Kind::short_year
                                                  : Kind::literal;
    pattern.parts_.push_back({kind, '\0'});
    kinds += kind == Kind::day       ? 'd'
             : kind == Kind::month   ? 'm'
             : kind == Kind::literal ? '?'
                                     : 'y';
  }
  std::sort(kinds.begin(), kinds.end());
  if (kinds != "dmy") pattern.parts_.clear();
  return pattern;
}

std::optional<IsoText> DatePattern::iso_text(std::string_view text) const {
  if (parts_.empty()) return std::nullopt;
  ORLO::SystemTime time;
  for (const Part& part : parts_) {
    const bool fits = part.kind == Kind::literal      ? take_character(text, part.literal)
                      : part.kind == Kind::day        ? take_number(text, 1, 2, time.wDay)
                      : part.kind == Kind::month      ? take_number(text, 1, 2, time.wMonth)
                      : part.kind == Kind::short_year ? take_number(text, 2, 2, time.wYear)
                                                      : take_number(text, 4, 4, time.wYear);
    if (!fits) return std::nullopt;
    if (part.kind == Kind::short_year) time.wYear = whole_year(time.wYear);
  }
  const bool has_time_of_day = !text.empty();
  if (has_time_of_day && !(take_time_of_day(text, time) && text.empty())) return std::nullopt;
  if (!in_calendar(time)) return std::nullopt;
  IsoText iso = iso_date(time);
  if (has_time_of_day) append_time_of_day(iso, time);
  return iso;
}
