#include "export/json_lines.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>

#include "export/json_text.h"

namespace {

/// The file's own buffer takes what comes in pieces of this size at less cost than each value.
constexpr size_t kHeldBack = 32768;
constexpr size_t kLongestNumber = 11;

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

char* JsonLines::Buffer::room(size_t count) {
  if (bytes_.size() - length_ < count) bytes_.resize(2 * (length_ + count));
  return bytes_.data() + length_;
}

void JsonLines::Buffer::append(std::string_view text) {
  char* const end = room(text.size());
  std::memcpy(end, text.data(), text.size());
  advance(end + text.size());
}

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
      before_(kPackageColumns) {
  for (const auto& [name, column] : packageSchema().columns) {
    std::string& before = before_.at(static_cast<size_t>(column.index));
    before.append(",").append(quoted({name.c_str(), name.length()})).append(":");
  }
  before_.front().insert(0, beginning(stamp));
}

void JsonLines::write(const UninstallEntry& entry) {
  for (size_t i = 0; i < std::size(kColumns); ++i) {
    buffer_.append(before_[i]);
    append_value(kColumns[i], entry);
  }
  buffer_.append("}\n");
  if (buffer_.content().size() >= kHeldBack) hand_over();
}

void JsonLines::append_value(const Column& column, const UninstallEntry& entry) {
  const bool known = column.known == nullptr || !(entry.*column.known).empty();
  if (column.text != nullptr) {
    append_text(entry.*column.text);
  } else if (column.date != nullptr) {
    append_date(short_date_, entry.*column.date);
  } else if (column.dotted_date != nullptr) {
    append_date(with_dots_, entry.*column.dotted_date);
  } else if (column.number != nullptr && known) {
    char* const start = buffer_.room(kLongestNumber);
    buffer_.advance(std::to_chars(start, start + kLongestNumber, entry.*column.number).ptr);
  } else if (column.flag != nullptr) {
    buffer_.append(entry.*column.flag ? "1" : "0");
  } else {
    buffer_.append("null");
  }
}

void JsonLines::append_date(const DatePattern& pattern, const String& text) {
  if (text.empty()) {
    buffer_.append("null");
  } else if (const auto iso = pattern.iso_text({text.c_str(), text.length()})) {
    buffer_.append("\"");
    buffer_.append(*iso);
    buffer_.append("\"");
  } else {
    append_text(text);
  }
}

void JsonLines::append_text(const String& text) {
  constexpr size_t kQuotesAndWord = 10;
  char* out = buffer_.room(kLongestJsonUnit * text.length() + kQuotesAndWord);
  *out++ = '"';
  out = put_json_text(out, {text.c_str(), text.length()}, locale_);
  *out++ = '"';
  buffer_.advance(out);
}

void JsonLines::hand_over() {
  const std::string_view content = buffer_.content();
  file_.write(content.data(), content.size());
  buffer_.clear();
}

bool JsonLines::finish() {
  hand_over();
  return file_.flush();
}
