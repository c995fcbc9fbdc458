#include "export/json_lines.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>
#include <string_view>

#include "export/json_text.h"

namespace {

/// The file's own buffer takes what comes in pieces of this size at less cost than each value.
constexpr size_t kHeldBack = 32768;
constexpr size_t kLongestNumber = 11;
/// A column's key and value, without the characters of a text but with the word that copying one
/// may write beyond it.
constexpr size_t kLongestColumn = 24 + 2 + 19 + 8;
constexpr std::string_view kLineEnd = "}\n";

char* put(char* out, std::string_view text) noexcept {
  std::memcpy(out, text.data(), text.size());
  return out + text.size();
}

}  // namespace

/// The value of a key; at most one of the members that lead to it is set, and without any the value
/// is null.
struct JsonLines::Column {
  String Entry::*text = nullptr;
  String Entry::*date = nullptr;         ///< as the locale writes it
  String Entry::*dotted_date = nullptr;  ///< as "dd.mm.yyyy"
  int32_t Entry::*number = nullptr;
  /// An empty text tells that the number isn't known.
  String Entry::*known = nullptr;
  bool Entry::*flag = nullptr;
};

// In the order of PackageColumn.
const JsonLines::Column JsonLines::kColumns[kPackageColumns] = {
    {.text = &Entry::name},
    {.text = &Entry::source},
    {.text = &Entry::displayName},
    {.text = &Entry::displayVersion},
    {.text = &Entry::parent},
    {.text = &Entry::parentName},
    {.text = &Entry::displayIcon},
    {.text = &Entry::installLocation},
    {.date = &Entry::installDate},
    {.dotted_date = &Entry::uninstallDate},
    {.text = &Entry::uninstallCmd},
    {.text = &Entry::modifyCmd},
    {.number = &Entry::noRemove},
    {.number = &Entry::noModify},
    {.number = &Entry::systemComponent},
    {.text = &Entry::comments},
    // Its text is empty for -1 alone.
    {.number = &Entry::size, .known = &Entry::sizeText},
    {.dotted_date = &Entry::lastUseDate},
    {.number = &Entry::features},
    {.number = &Entry::patches},
    {.number = &Entry::frequency, .known = &Entry::frequencyText},
    {.text = &Entry::installerPath},
    {.text = &Entry::packagePath},
    {.flag = &Entry::MSI},
    {.number = &Entry::OK},
    {.number = &Entry::is64Bit},
    {.text = &Entry::user},
    {.text = &Entry::publisher},
    {.text = &Entry::contact},
    {.text = &Entry::helpURL},
    {.text = &Entry::helpPhone},
    {.text = &Entry::aboutURL},
    {.text = &Entry::updateURL},
    {.text = &Entry::keyName},
    {.number = &Entry::HKEY_ROOT},
    // Nothing was compared with.
    {},
};

namespace {

std::string quoted(std::string_view utf8) {
  std::string text(kLongestJsonUnit * utf8.size() + 10, '"');
  const char* const end = put_json_utf8(text.data() + 1, utf8);
  text.resize(static_cast<size_t>(end - text.data()));
  text += '"';
  return text;
}

std::string iso_utc(const ORLO::SystemTime& time) {
  return String::formatted("%04d-%02d-%02dT%02d:%02d:%02dZ", time.wYear, time.wMonth, time.wDay,
                           time.wHour, time.wMinute, time.wSecond)
      .c_str();
}

std::string beginning(const PassStamp& stamp) {
  std::string text = "{\"hostName\":";
  text.append(quoted(stamp.hostName)).append(",\"passTime\":");
  text.append(quoted(iso_utc(stamp.passTime))).append(",\"programVersion\":");
  return text.append(quoted(stamp.programVersion));
}

}  // namespace

JsonLines::JsonLines(const PassStamp& stamp, const ORLO::Locale& locale, ORLO::OutFile& file)
    : locale_(locale),
      file_(file),
      short_date_(DatePattern::of_locale(locale)),
      with_dots_(DatePattern::with_dots()),
      beginning_(beginning(stamp)),
      before_(kPackageColumns) {
  for (const auto& [name, column] : packageSchema().columns) {
    const String text = String::formatted(",\"%s\":", name);
    Before& before = before_.at(static_cast<size_t>(column.index));
    before.length = std::min(text.length(), sizeof before.bytes);
    std::memcpy(before.bytes, text.c_str(), before.length);
  }
}

/// For the longest line that the entry can make.
void JsonLines::make_room(const Entry& entry) {
  size_t texts = 0;
  for (const Column& column : kColumns) {
    for (String Entry::*const text : {column.text, column.date, column.dotted_date})
      if (text != nullptr) texts += (entry.*text).length();
  }
  const size_t needed = length_ + beginning_.size() + kPackageColumns * kLongestColumn +
                        kLongestJsonUnit * texts + kLineEnd.size();
  if (buffer_.size() < needed) buffer_.resize(2 * needed);
}

void JsonLines::write(const UninstallEntry& entry) {
  make_room(entry);
  char* out = put(buffer_.data() + length_, beginning_);
  for (size_t i = 0; i < std::size(kColumns); ++i) {
    std::memcpy(out, before_[i].bytes, sizeof before_[i].bytes);
    out = put_value(out + before_[i].length, kColumns[i], entry);
  }
  out = put(out, kLineEnd);
  length_ = static_cast<size_t>(out - buffer_.data());
  if (length_ >= kHeldBack) hand_over();
}

char* JsonLines::put_value(char* out, const Column& column, const Entry& entry) const {
  if (column.text != nullptr) return put_text(out, entry.*column.text);
  if (column.date != nullptr) return put_date(out, short_date_, entry.*column.date);
  if (column.dotted_date != nullptr) return put_date(out, with_dots_, entry.*column.dotted_date);
  if (column.flag != nullptr) return put(out, entry.*column.flag ? "1" : "0");
  const bool known = column.known == nullptr || !(entry.*column.known).empty();
  if (column.number == nullptr || !known) return put(out, "null");
  return std::to_chars(out, out + kLongestNumber, entry.*column.number).ptr;
}

char* JsonLines::put_date(char* out, const DatePattern& pattern, const String& text) const {
  if (text.empty()) return put(out, "null");
  const auto iso = pattern.iso_text({text.c_str(), text.length()});
  if (!iso) return put_text(out, text);
  *out++ = '"';
  out = put(out, iso->text());
  *out++ = '"';
  return out;
}

char* JsonLines::put_text(char* out, const String& text) const {
  *out++ = '"';
  if (!text.empty()) out = put_json_text(out, {text.c_str(), text.length()}, locale_);
  *out++ = '"';
  return out;
}

void JsonLines::hand_over() {
  file_.write(buffer_.data(), length_);
  length_ = 0;
}

bool JsonLines::finish() {
  hand_over();
  return file_.flush();
}
