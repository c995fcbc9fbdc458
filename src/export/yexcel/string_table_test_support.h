// A reader of string tables as the format's publication tells, and texts to fill them with.
#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "export/yexcel/shared_string_table.h"

namespace YExcel {

/// A string as it is kept in a file.
struct KeptString {
  std::u16string text;
  bool wide = false;

  bool operator==(const KeptString&) const = default;
};

/// Reads the record and its CONTINUE records, up to the first string that can't be understood.
class StringTableReader {
 public:
  explicit StringTableReader(std::string_view stream) {
    while (stream.size() >= 4) {
      const size_t length = number(stream, 2, 2);
      codes.push_back(static_cast<uint16_t>(number(stream, 0, 2)));
      pieces.push_back(stream.substr(4, length));
      stream.remove_prefix(std::min(stream.size(), 4 + length));
    }
    read();
  }

  std::vector<uint16_t> codes;
  std::vector<std::string_view> pieces;  ///< the bodies of the records
  uint32_t total = 0;
  uint32_t unique = 0;
  std::vector<KeptString> strings;
  bool whole = false;  ///< each byte was understood

 private:
  static uint32_t number(std::string_view bytes, size_t from, size_t count) {
    uint32_t value = 0;
    for (size_t at = from + count; at > from; --at)
      value = value << 8 | static_cast<unsigned char>(bytes.at(at - 1));
    return value;
  }

  void read() {
    if (pieces.empty() || pieces[0].size() < 8) return;
    total = number(pieces[0], 0, 4);
    unique = number(pieces[0], 4, 4);
    rest_ = pieces[0].substr(8);
    while (strings.size() < unique) {
      auto string = read_string();
      if (!string) return;
      strings.push_back(std::move(*string));
    }
    whole = rest_.empty() && piece_ + 1 == pieces.size();
  }

  bool next_piece() {
    if (!rest_.empty() || piece_ + 1 == pieces.size()) return false;
    rest_ = pieces[++piece_];
    return true;
  }

  /// A string doesn't begin in two records, and only has the options for 8 or 16 bits here.
  std::optional<KeptString> read_string() {
    if (rest_.empty() && !next_piece()) return {};
    if (rest_.size() < 3) return {};
    const uint32_t count = number(rest_, 0, 2);
    rest_.remove_prefix(2);
    KeptString string;
    if (!read_option(string.wide)) return {};
    for (bool wide = string.wide; string.text.size() < count;) {
      if (rest_.empty() && !(next_piece() && read_option(wide))) return {};
      if (!take(count - string.text.size(), wide ? 2 : 1, string.text)) return {};
    }
    return string;
  }

  bool read_option(bool& wide) {
    if (rest_.empty() || number(rest_, 0, 1) > 1) return false;
    wide = rest_[0] == 1;
    rest_.remove_prefix(1);
    return true;
  }

  /// What the piece has of so many units. False if it ends within one.
  bool take(size_t most, size_t width, std::u16string& to) {
    const size_t count = std::min(most, rest_.size() / width);
    const std::string_view units = rest_.substr(0, count * width);
    const size_t before = to.size();
    to.resize(before + count);
    for (size_t at = 0; at < count; ++at) {
      const auto low = static_cast<unsigned char>(units[at * width]);
      const auto high = static_cast<unsigned char>(width == 2 ? units[2 * at + 1] : '\0');
      to[before + at] = static_cast<char16_t>(high << 8 | low);
    }
    rest_.remove_prefix(units.size());
    return count == most || rest_.empty();
  }

  std::string_view rest_;  ///< of the piece that is read
  size_t piece_ = 0;
};

/// Strings of given lengths, and the table that they are added to. A short one that is there
/// already only counts as a further use.
class Texts {
 public:
  void add(bool is_wide, size_t count) {
    KeptString& text = texts_.emplace_back();
    text.wide = is_wide;
    text.text = text_of(is_wide, texts_.size(), count);
    bytes_.push_back(narrowed(text.text));
    if (is_wide)
      table_.add(std::u16string_view(text.text));
    else
      table_.add(std::string_view(bytes_.back()));
    if (table_.uniqueStringsTotal() < texts_.size()) {
      texts_.pop_back();
      bytes_.pop_back();
    }
  }
  void narrow(size_t count) { add(false, count); }
  void wide(size_t count) { add(true, count); }

  SharedStringTable& table() { return table_; }
  const std::deque<KeptString>& kept() const { return texts_; }

 private:
  static std::string narrowed(std::u16string_view text) {
    std::string bytes(text.size(), '\0');
    std::ranges::transform(text, bytes.begin(),
                           [](char16_t unit) { return static_cast<char>(unit); });
    return bytes;
  }

  /// No byte is zero or an option byte; the first characters tell which string it is.
  static std::u16string text_of(bool is_wide, size_t which, size_t count) {
    static const std::u16string patterns[] = {pattern(0), pattern(0x4100)};
    std::u16string text = patterns[is_wide ? 1 : 0].substr(which % 32, count);
    for (size_t at = 0; at < std::min<size_t>(2, count); ++at)
      text[at] = static_cast<char16_t>((is_wide ? 0x4130 : 0x30) + (which >> (6 * at)) % 64);
    return text;
  }

  static std::u16string pattern(size_t base) {
    std::u16string text(65535 + 32, u'\0');
    for (size_t at = 0; at < text.size(); ++at)
      text[at] = static_cast<char16_t>(base + 'a' + ((at >> 3) ^ at) % 26);
    return text;
  }

  std::deque<KeptString> texts_;
  std::deque<std::string> bytes_;
  SharedStringTable table_;
};

/// How many strings at the beginning are written so that readers understand them all. They don't
/// where a string goes over two beginnings of records, and after one that fills a record to its
/// last byte.
inline size_t readable(const std::deque<KeptString>& strings, const std::vector<uint32_t>& begins) {
  const auto begin_at = [&](size_t which) {
    return which < begins.size() ? begins[which] : SIZE_MAX;
  };
  size_t position = 8;
  size_t begun = 0;  // CONTINUE records so far
  for (size_t done = 0; done < strings.size(); ++done) {
    const bool is_first = begun > 0 && begins[begun - 1] == position;
    const size_t bytes = strings[done].text.size() * (strings[done].wide ? 2 : 1) + 3;
    position += bytes;
    if (is_first && bytes == 8224) return done + 1;
    if (begin_at(begun) == position) ++begun;
    if (begin_at(begun) >= position) continue;
    ++position;
    const size_t full = begins[begun] + (strings[done].wide ? 8223 : 8224);
    if (begin_at(++begun) < position) return done;
    if (position == full) return done + 1;
    if (begin_at(begun) == position) ++begun;
  }
  return strings.size();
}

}  // namespace YExcel
