// Compound files of tests, as bytes: packages that are sound until a test writes into them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

struct TestStream {
  std::u16string name;
  std::string bytes;
  /// So many zeros follow that aren't in the file's bytes; only for the last stream.
  uint64_t zeros = 0;

  uint64_t size() const { return bytes.size() + zeros; }
};
using TestStreams = std::vector<TestStream>;

/// A number as it stands in such files, its lowest byte first.
inline std::string low_first(uint64_t number, size_t size) {
  std::string bytes;
  for (size_t i = 0; i < size; ++i)
    bytes += static_cast<char>(number >> (8 * i));
  return bytes;
}

/// What the builder has made, with where a test finds what it wants to break.
struct TestCompoundFile {
  static constexpr uint32_t kEndOfChain = 0xFFFFFFFE;
  static constexpr uint32_t kNone = 0xFFFFFFFF;

  std::string bytes{};
  uint64_t size = 0;
  size_t sector_size = 0;
  size_t table = 0;
  size_t small_table = 0;
  size_t directory = 0;
  size_t directory_size = 0;
  std::map<std::u16string, size_t> entries{};

  size_t sector(size_t place) const { return (place + 1) * sector_size; }
  size_t entry(size_t index) const { return directory + index * 128; }
  size_t entry(const std::u16string& name) const { return entry(entries.at(name)); }
  size_t successor(size_t place) const { return table + place * 4; }
  size_t small_successor(size_t place) const { return small_table + place * 4; }
  size_t place_of(size_t offset) const { return offset / sector_size - 1; }
  uint32_t number(size_t offset) const {
    uint32_t value = 0;
    for (size_t i = 4; i-- > 0;)
      value = value << 8 | static_cast<unsigned char>(bytes.at(offset + i));
    return value;
  }
  uint32_t start_of(const std::u16string& name) const { return number(entry(name) + 116); }
  TestCompoundFile& put(size_t offset, uint64_t value, size_t width = 4) {
    bytes.replace(offset, width, low_first(value, width));
    return *this;
  }
};

/// Lays out: the table of successors, the sectors that list it beyond the header, the directory,
/// the small table, the small streams, the long ones in their order.
class CompoundFileBuilder {
 public:
  CompoundFileBuilder(TestStreams streams, unsigned shift)
      : streams_(std::move(streams)), sector_size_(size_t{1} << shift), shift_(shift) {}

  TestCompoundFile build() {
    std::vector<uint32_t> starts;
    for (const TestStream& stream : streams_)
      starts.push_back(stream.size() == 0 || stream.size() >= 4096 ? kEnd : add_small(stream));
    count_sectors();
    std::string content;
    file_.directory = file_.sector(next_);
    const auto directory_start = chain(file_.directory_size);
    file_.small_table = file_.sector(next_);
    const auto small_start = chain(small_table_.size());
    const auto small_data = chain(small_.size());
    for (size_t i = 0; i < streams_.size(); ++i)
      if (streams_[i].size() >= 4096) starts[i] = chain(streams_[i].size());
    content += padded(directory(starts, small_data)) + padded(small_table_) + padded(small_);
    for (const TestStream& stream : streams_)
      if (stream.size() >= 4096) content += stream.zeros != 0 ? stream.bytes : padded(stream.bytes);
    file_.table = file_.sector(0);
    file_.size = file_.sector(next_);
    file_.bytes = header(directory_start, small_start) + table() + listing() + content;
    return file_;
  }

 private:
  static constexpr uint32_t kEnd = TestCompoundFile::kEndOfChain;
  static constexpr uint32_t kNone = TestCompoundFile::kNone;
  static constexpr size_t kInHeader = 109;

  std::string padded(std::string bytes, char filler = '\0') const {
    bytes.resize(sectors(bytes.size()) * sector_size_, filler);
    return bytes;
  }
  size_t sectors(uint64_t size) const {
    return static_cast<size_t>((size + sector_size_ - 1) / sector_size_);
  }

  uint32_t add_small(const TestStream& stream) {
    const auto start = static_cast<uint32_t>(small_table_.size() / 4);
    const size_t places = (stream.bytes.size() + 63) / 64;
    for (size_t i = 1; i <= places; ++i)
      small_table_ += low_first(i < places ? start + i : kEnd, 4);
    small_ += stream.bytes;
    small_.resize((start + places) * 64);
    return start;
  }

  /// How long the table is depends on how many sectors there are, those of the table among them.
  void count_sectors() {
    file_.sector_size = sector_size_;
    small_size_ = small_.size();
    file_.directory_size = sectors((streams_.size() + 1) * 128) * sector_size_;
    small_table_ = padded(small_table_, '\xFF');
    size_t content = sectors(file_.directory_size) + sectors(small_table_.size());
    content += sectors(small_.size());
    for (const TestStream& stream : streams_)
      if (stream.size() >= 4096) content += sectors(stream.size());
    const size_t in_one = sector_size_ / 4;
    do {
      ++tables_;
      listings_ = tables_ > kInHeader ? (tables_ - kInHeader + in_one - 2) / (in_one - 1) : 0;
    } while (tables_ * in_one < content + tables_ + listings_);
    successors_.assign(tables_, 0xFFFFFFFD);
    successors_.insert(successors_.end(), listings_, 0xFFFFFFFC);
    next_ = tables_ + listings_;
  }

  uint32_t chain(uint64_t size) {
    const size_t count = sectors(size);
    if (count == 0) return kEnd;
    const size_t start = next_;
    for (size_t i = 1; i <= count; ++i)
      successors_.push_back(i < count ? static_cast<uint32_t>(start + i) : kEnd);
    next_ += count;
    return static_cast<uint32_t>(start);
  }

  std::string header(uint32_t directory_start, uint32_t small_start) const {
    std::string bytes = low_first(0xE11AB1A1E011CFD0, 8) + std::string(16, '\0');
    bytes += low_first(0x3E, 2) + low_first(shift_ == 9 ? 3 : 4, 2) + low_first(0xFFFE, 2);
    bytes += low_first(shift_, 2) + low_first(6, 2) + std::string(6, '\0');
    bytes += low_first(shift_ == 9 ? 0 : sectors(file_.directory_size), 4) + low_first(tables_, 4);
    bytes += low_first(directory_start, 4) + low_first(0, 4) + low_first(4096, 4);
    bytes += low_first(small_start, 4) + low_first(sectors(small_table_.size()), 4);
    bytes += low_first(listings_ != 0 ? tables_ : kEnd, 4) + low_first(listings_, 4);
    for (size_t i = 0; i < kInHeader; ++i)
      bytes += low_first(i < tables_ ? i : kNone, 4);
    return padded(bytes);
  }

  std::string table() const {
    std::string bytes;
    bytes.reserve(tables_ * sector_size_);
    for (const uint32_t next : successors_)
      bytes += low_first(next, 4);
    bytes.resize(tables_ * sector_size_, '\xFF');
    return bytes;
  }

  std::string listing() const {
    std::string bytes;
    size_t place = kInHeader;
    for (size_t i = 0; i < listings_; ++i) {
      for (size_t k = 0; k + 1 < sector_size_ / 4; ++k, ++place)
        bytes += low_first(place < tables_ ? place : kNone, 4);
      bytes += low_first(i + 1 < listings_ ? tables_ + i + 1 : kEnd, 4);
    }
    return bytes;
  }

  std::string directory(const std::vector<uint32_t>& starts, uint32_t small_data) {
    std::vector<size_t> order;
    for (size_t i = 0; i < streams_.size(); ++i) {
      order.push_back(i);
      file_.entries[streams_[i].name] = i + 1;
    }
    std::sort(order.begin(), order.end(), [this](size_t left, size_t right) {
      const std::u16string& one = streams_[left].name;
      const std::u16string& other = streams_[right].name;
      return one.size() != other.size() ? one.size() < other.size() : one < other;
    });
    left_.assign(streams_.size(), kNone);
    right_ = left_;
    const uint32_t top = tree(order, 0, order.size());
    const std::string kind = low_first(0xC1084, 8) + low_first(0x46000000000000C0, 8);
    std::string bytes = entry(u"Root Entry", 5, kNone, kNone, top, kind, small_data, small_size_);
    for (size_t i = 0; i < streams_.size(); ++i)
      bytes += entry(streams_[i].name, 2, left_[i], right_[i], kNone, std::string(16, '\0'),
                     starts[i], streams_[i].size());
    return bytes;
  }

  /// The middle one leads to those before and after it.
  uint32_t tree(const std::vector<size_t>& order, size_t begin, size_t end) {
    if (begin == end) return kNone;
    const size_t middle = begin + (end - begin) / 2;
    left_[order[middle]] = tree(order, begin, middle);
    right_[order[middle]] = tree(order, middle + 1, end);
    return static_cast<uint32_t>(order[middle] + 1);
  }

  static std::string entry(const std::u16string& name, unsigned type, uint32_t left, uint32_t right,
                           uint32_t child, const std::string& kind, uint32_t start, uint64_t size) {
    std::string bytes;
    for (const char16_t unit : name)
      bytes += low_first(unit, 2);
    bytes.resize(64);
    bytes += low_first(2 * name.size() + 2, 2) + low_first(type, 1) + low_first(1, 1);
    bytes += low_first(left, 4) + low_first(right, 4) + low_first(child, 4) + kind;
    bytes.resize(116);
    return bytes + low_first(start, 4) + low_first(size, 8);
  }

  const TestStreams streams_;
  const size_t sector_size_;
  const unsigned shift_;
  TestCompoundFile file_;
  std::vector<uint32_t> successors_;
  std::string small_table_;
  std::string small_;
  uint64_t small_size_ = 0;
  size_t tables_ = 0;
  size_t listings_ = 0;
  size_t next_ = 0;
  std::vector<uint32_t> left_;
  std::vector<uint32_t> right_;
};

inline TestCompoundFile compound_file(TestStreams streams, unsigned shift = 9) {
  return CompoundFileBuilder(std::move(streams), shift).build();
}

/// How the streams of tables are called: 64 letters and digits, two of them in one character.
inline std::u16string table_stream(const std::string& table) {
  const auto digit = [](char letter) {
    return static_cast<unsigned>(
        std::string("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz._")
            .find(letter));
  };
  std::u16string name(1, u'\x4840');
  for (size_t i = 0; i < table.size(); i += 2) {
    const bool pair = i + 1 < table.size();
    const unsigned code =
        pair ? 0x3800 + digit(table[i]) + 64 * digit(table[i + 1]) : 0x4800 + digit(table[i]);
    name += static_cast<char16_t>(code);
  }
  return name;
}

struct TestColumn {
  uint32_t table;
  uint32_t number;
};

/// The columns of tables, by the numbers of their names; all are called as the string 2 says and
/// are short numbers, the first one of a table its key.
inline std::string column_bytes(const std::vector<TestColumn>& columns, size_t reference = 2) {
  std::string tables;
  std::string numbers;
  std::string names;
  std::string types;
  for (const TestColumn& column : columns) {
    tables += low_first(column.table, reference);
    numbers += low_first(column.number ^ 0x8000, 2);
    names += low_first(2, reference);
    types += low_first(column.number == 1 ? 0xA502 : 0x8502, 2);
  }
  return tables + numbers + names + types;
}

/// The streams of a database with the table "T", whose one column "Key" has the one value 1.
inline TestStreams package_streams(uint32_t code_page = 1252) {
  std::string pool = low_first(code_page, 4);
  pool += low_first(1, 2) + low_first(2, 2) + low_first(3, 2) + low_first(1, 2);
  return {{table_stream("_StringPool"), pool},
          {table_stream("_StringData"), "TKey"},
          {table_stream("_Tables"), low_first(1, 2)},
          {table_stream("_Columns"), column_bytes({{1, 1}})},
          {table_stream("T"), low_first(0x8001, 2)}};
}
