// Any bytes as a line of the update service's log, and as the title in such a line.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "inventory/update_log.h"
#include "orlo/fixed_clock.h"

namespace {

constexpr char kShort[] = "2011-01-08\t22:54:25:015\tInstallation Successful: ";
constexpr char kLong[] =
    "2011-01-08\t22:54:25:015\tInstallation Successful: Windows successfully installed the "
    "following update: ";
constexpr std::string_view kPhrase = "Installation Successful:";
constexpr std::string_view kPrefix = "Windows successfully installed the following update: ";
constexpr size_t kMostConverted = 1023;
constexpr size_t kLongestWord = 100;

void demand(bool holds) {
  if (!holds) std::abort();
}

std::string_view view(const String& text) {
  return {text.c_str(), text.length()};
}

/// Takes the first word off `text`.
std::string_view take_word(std::string_view& text) {
  constexpr std::string_view kSpace = " \t\n\v\f\r";
  text.remove_prefix(std::min(text.find_first_not_of(kSpace), text.size()));
  const std::string_view word = text.substr(0, text.find_first_of(kSpace));
  text.remove_prefix(word.size());
  return word;
}

DateTime date_in_front(std::string_view line, const ORLO::Clock& clock) {
  const std::string date(take_word(line).substr(0, kLongestWord));
  const std::string time(take_word(line).substr(0, kLongestWord));
  DateTime result;
  result.parse((date + " " + time).c_str(), clock);
  return result;
}

/// The end of the line that is its title.
std::string_view raw_title(std::string_view line) {
  line.remove_prefix(line.find(kPhrase) + kPhrase.size());
  line.remove_prefix(std::min<size_t>(1, line.size()));
  if (line.starts_with(kPrefix)) line.remove_prefix(kPrefix.size());
  return line;
}

/// "KB" and all digits at the first "KB", or else the title.
std::string_view expected_name(std::string_view title) {
  const size_t start = title.find("KB");
  if (start == title.npos) return title;
  const size_t end = title.find_first_not_of("0123456789", start + 2);
  return title.substr(start, end == title.npos ? end : end - start);
}

/// Begins after the name and a blank, without what may stand in front, and ends before a bracket or
/// with the title.
void check_version(std::string_view title, std::string_view name, std::string_view version) {
  const size_t start = title.find("KB");
  std::string_view rest = start == title.npos ? "" : title.substr(start + name.size());
  if (start == title.npos || name.size() == 2 || !rest.starts_with(" ")) {
    demand(version.empty());
    return;
  }
  rest.remove_prefix(1);
  for (const std::string_view skipped : {"(", "Definition "}) {
    if (rest.starts_with(skipped)) rest.remove_prefix(skipped.size());
  }
  demand(rest.starts_with(version));
  demand(rest.size() == version.size() || rest[version.size()] == ')');
  demand(version.find(')') == version.npos);
}

bool is_ascii(std::string_view text) {
  for (const char c : text) {
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  }
  return true;
}

/// `line` is an exact copy on the heap, so that a read beyond the end is seen.
void check(const std::string& line, bool counts) {
  static const ORLO::FixedClock clock({2026, 11, 5, 20, 12});
  const auto update = parse_update_line(line, clock);
  const std::string_view told = std::string_view(line).substr(0, line.find('\0'));
  demand(update.has_value() == (told.find(kPhrase) != told.npos));
  demand(update.has_value() || !counts);
  if (!update) return;
  const std::string_view title = view(update->title);
  const std::string_view name = view(update->name);
  // What is no ASCII may have gone through the conversion.
  const std::string_view raw = raw_title(told);
  demand(title == raw || (!is_ascii(raw) && title.size() <= kMostConverted));
  demand(name == expected_name(title));
  check_version(title, name, view(update->version));
  const DateTime date = date_in_front(told, clock);
  demand(update->installed.time == date.time);
  demand(update->installed.zone == date.zone);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  check(bytes, false);
  check(kShort + bytes, true);
  check(kLong + bytes, true);
  return 0;
}
