#include "inventory/update_log.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>

#include "orlo/file_modes.h"
#include "orlo/locale.h"
#include "orlo/read_line.h"
#include "orlo/sync_file.h"
#include "platform/utf16.h"
#include "trellis/xml_chars.h"
#include "trellis/xml_text.h"

namespace {

using Field = PackageColumn;

constexpr std::string_view kSuccess = "Installation Successful:";
constexpr std::string_view kLongSuccess = "Windows successfully installed the following update: ";
constexpr std::string_view kNumberPrefix = "KB";
constexpr std::string_view kVersionPrefix = "Definition ";
constexpr size_t kTitleOffset = kSuccess.size() + 1;  // whatever the character between is
constexpr size_t kLongestWord = 100;
constexpr size_t kMostUnits = 1023;
constexpr size_t kMostBytesOfUnit = 3;
constexpr size_t kFirstLine = 1024;
// No line is as long, and its title and texts made of it are held several times.
constexpr size_t kLongestLine = 1'000'000;

/// Where the phrase stands first. Looks at few of the line's characters: a search for the phrase's
/// first one would look at each.
size_t find_success(std::string_view line) {
  static const std::boyer_moore_horspool_searcher search(kSuccess.begin(), kSuccess.end());
  const auto* const found = std::search(line.begin(), line.end(), search);
  return found == line.end() ? line.npos : static_cast<size_t>(found - line.begin());
}

/// Nothing where the text is shorter.
std::string_view after(std::string_view text, size_t length) {
  return text.substr(std::min(length, text.size()));
}

void skip_prefix(std::string_view& text, std::string_view prefix) {
  if (text.starts_with(prefix)) text.remove_prefix(prefix.size());
}

/// Takes one word off the front of `text`, and what stands before it.
std::string_view take_word(std::string_view& text) {
  const auto* const begin = std::find_if_not(text.begin(), text.end(), &Trellis::is_space);
  const auto* const end = std::find_if(begin, text.end(), &Trellis::is_space);
  const std::string_view word(begin, static_cast<size_t>(end - begin));
  text = {end, static_cast<size_t>(text.end() - end)};
  return word;
}

/// What the log writes in UTF-8. A title beyond the bounds of the conversion, or in another
/// encoding, stays as it is.
String in_code_page(std::string_view title) {
  const String raw(title.data(), title.data() + title.size());
  if (Trellis::is_ascii(title) || title.size() > kMostUnits * kMostBytesOfUnit) return raw;
  const std::u16string wide = utf16_from_utf8(title);
  // What was no valid UTF-8 doesn't come back.
  if (wide.size() > kMostUnits || utf8_from_utf16(wide) != title) return raw;
  const std::string narrow = ORLO::system_locale().narrow(wide.data(), wide.size());
  // Longer than the text only in a code page of two bytes to a character.
  return narrow.size() > kMostUnits ? raw : String(narrow);
}

/// "KB123 (Definition 1.2)": number and version of an update, as far as the title has them.
void split_title(LoggedUpdate& update) {
  update.name = update.title;
  const std::string_view title(update.title.c_str(), update.title.length());
  const size_t start = title.find(kNumberPrefix);
  if (start == title.npos) return;
  const std::string_view number = title.substr(start + kNumberPrefix.size());
  const auto* const end = std::find_if_not(number.begin(), number.end(), &Trellis::is_digit);
  update.name = String(title.data() + start, end);
  std::string_view version(end, static_cast<size_t>(number.end() - end));
  if (end == number.begin() || !version.starts_with(' ')) return;
  version.remove_prefix(1);
  skip_prefix(version, "(");
  skip_prefix(version, kVersionPrefix);
  version = version.substr(0, version.find(')'));
  update.version = String(version.data(), version.data() + version.size());
}

}  // namespace

std::optional<LoggedUpdate> parse_update_line(std::string_view line, const ORLO::Clock& clock) {
  const size_t found = find_success(line);
  if (found == line.npos) return std::nullopt;
  line = line.substr(0, line.find('\0'));
  if (found + kSuccess.size() > line.size()) return std::nullopt;
  std::string_view rest = line;
  const std::string date(take_word(rest).substr(0, kLongestWord));
  const std::string time(take_word(rest).substr(0, kLongestWord));
  std::string_view title = after(line, found + kTitleOffset);
  skip_prefix(title, kLongSuccess);
  LoggedUpdate update;
  update.title = in_code_page(title);
  split_title(update);
  update.installed.parse(String::formatted("%s %s", date, time).c_str(), clock);
  return update;
}

void ReadUpdateLog(const String& path, const ORLO::Clock& clock, std::set<RowKey>& unseenKeys,
                   const RowSink& deliver) {
  ORLO::SyncInFile file(path.c_str(), ORLO::kOpenExisting, ORLO::kShareReadWrite,
                        ORLO::kSequentialScan);
  ORLO::LineBuffer line(kFirstLine);
  Row row = make_source_row("Windows Update");
  for (ptrdiff_t length = 0; (length = ORLO::read_line(file, line, kLongestLine)) != -1;) {
    const auto update = parse_update_line({line.data(), static_cast<size_t>(length)}, clock);
    if (!update) continue;
    cell(row, Field::name).text = update->name;
    cell(row, Field::displayName).text = update->title;
    cell(row, Field::displayVersion).text = update->version;
    cell(row, Field::installDate).text = update->installed.display(clock);
    deliver_row(row, deliver, unseenKeys);
  }
}
