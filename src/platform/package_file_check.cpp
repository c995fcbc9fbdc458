#include "platform/package_file_check.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

// A compound file: a header, then sectors; chains of them, by a table of successors, are the
// directory and the streams. Short streams stand in small sectors within one long stream.
constexpr uint64_t kMagic = 0xE11AB1A1E011CFD0;
constexpr size_t kHeaderSize = 512;
constexpr uint32_t kLastSector = 0xFFFFFFFA;
/// Set with the code page where references to strings have three bytes.
constexpr uint32_t kManyStrings = 0x80000000;
constexpr uint32_t kEndOfChain = 0xFFFFFFFE;
constexpr uint32_t kNoEntry = 0xFFFFFFFF;
constexpr size_t kEntrySize = 128;
constexpr size_t kNameSize = 64;
constexpr uint32_t kStreamEntry = 2;
// Where an entry has the entries that it leads to.
constexpr uint64_t kLeft = 68;
constexpr uint64_t kRight = 72;
constexpr uint64_t kChild = 76;
constexpr uint64_t kSmallSector = 64;
constexpr uint64_t kLongStream = 4096;
/// More bytes than any database has in its lists of columns and sectors.
constexpr uint64_t kMostBytes = 64 << 20;

using Chain = std::vector<uint32_t>;

/// What isn't in the file, or leads to where it mustn't.
struct Damaged {};

void demand(bool condition) {
  if (!condition) throw Damaged();
}

uint32_t number(const std::string& bytes, uint64_t offset, size_t size) {
  demand(offset + size <= bytes.size());
  uint32_t value = 0;
  for (size_t i = 0; i < size; ++i)
    value |= uint32_t{static_cast<unsigned char>(bytes[static_cast<size_t>(offset) + i])}
             << (8 * i);
  return value;
}

uint32_t number32(const std::string& bytes, uint64_t offset) {
  return number(bytes, offset, 4);
}

Chain numbers_of(const std::string& bytes) {
  Chain numbers;
  numbers.reserve(bytes.size() / 4);
  for (uint64_t offset = 0; offset + 4 <= bytes.size(); offset += 4)
    numbers.push_back(number32(bytes, offset));
  return numbers;
}

/// The places of a chain in the order of the table of successors.
Chain follow(const Chain& successors, uint32_t start) {
  Chain chain;
  for (uint32_t place = start; place != kEndOfChain; place = successors[place]) {
    demand(place < successors.size() && chain.size() < successors.size());
    chain.push_back(place);
  }
  return chain;
}

/// The stream's name for a table's: two characters of it in one, after a mark.
std::u16string stream_name(const std::string& table) {
  const std::string digits = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz._";
  std::u16string name = u"\u4840";
  for (size_t i = 0; i < table.size(); i += 2) {
    const size_t first = digits.find(table[i]);
    const size_t unit =
        i + 1 < table.size() ? 0x3800 + first + (digits.find(table[i + 1]) << 6) : 0x4800 + first;
    name.push_back(static_cast<char16_t>(unit));
  }
  return name;
}

class CompoundFile {
 public:
  explicit CompoundFile(ORLO::RawFile& file) : file_(file) {
    const std::string header = bytes_at(0, kHeaderSize);
    demand(number32(header, 0) == (kMagic & 0xFFFFFFFF) && number32(header, 4) == kMagic >> 32);
    const uint32_t shift = number(header, 30, 2);
    demand(shift == 9 || shift == 12);
    sector_size_ = uint64_t{1} << shift;
    successors_ = numbers_of(sectors(successor_sectors(header)));
    if (number32(header, 64) != 0)
      small_successors_ = numbers_of(sectors(follow(successors_, number32(header, 60))));
    directory_ = sectors(follow(successors_, number32(header, 48)));
    small_sectors_ = follow(successors_, number32(directory_, 116));
    small_size_ = number32(directory_, 120);
    demand(small_size_ <= small_sectors_.size() * sector_size_);
    check_directory();
  }

  /// All bytes of a stream; no value if there is none.
  std::optional<std::string> stream(const std::u16string& name) const {
    const auto entry = find(name);
    if (!entry) return std::nullopt;
    const uint64_t at = *entry * uint64_t{kEntrySize};
    demand(number(directory_, at + 64, 2) == 2 * name.size() + 2);
    demand(number(directory_, at + 66, 1) == kStreamEntry);
    const uint32_t size = number32(directory_, at + 120);
    demand(size <= kMostBytes && (sector_size_ == 512 || number32(directory_, at + 124) == 0));
    if (size == 0) return "";
    const uint32_t start = number32(directory_, at + 116);
    std::string bytes =
        size < kLongStream ? small_stream(start) : sectors(follow(successors_, start), size);
    demand(bytes.size() >= size);
    bytes.resize(size);
    return bytes;
  }

 private:
  std::string bytes_at(uint64_t offset, uint64_t size) const {
    std::string bytes(static_cast<size_t>(size), '\0');
    bytes.resize(file_.read(offset, bytes.data(), bytes.size()).count);
    return bytes;
  }

  /// The sectors of a chain, at least as far as `most` bytes; sectors side by side are read at
  /// once.
  std::string sectors(const Chain& chain, uint64_t most = kMostBytes) const {
    std::string bytes;
    for (size_t i = 0; i < chain.size() && bytes.size() < most;) {
      size_t next = i + 1;
      while (next < chain.size() && chain[next] == chain[next - 1] + 1)
        ++next;
      const uint64_t size = std::min<uint64_t>((next - i) * sector_size_, most - bytes.size());
      const std::string run = bytes_at((uint64_t{chain[i]} + 1) * sector_size_, size);
      demand(run.size() == size);
      bytes.append(run);
      i = next;
    }
    return bytes;
  }

  std::string small_stream(uint32_t start) const {
    std::string bytes;
    const uint64_t in_one = sector_size_ / kSmallSector;
    for (const uint32_t place : follow(small_successors_, start)) {
      demand(place * kSmallSector < small_size_);
      const uint64_t sector = small_sectors_[static_cast<size_t>(place / in_one)];
      bytes.append(
          bytes_at((sector + 1) * sector_size_ + place % in_one * kSmallSector, kSmallSector));
    }
    return bytes;
  }

  /// The sectors of the table of successors: the first ones in the header, then in sectors whose
  /// last number is the next such sector.
  Chain successor_sectors(const std::string& header) const {
    const uint64_t count = number32(header, 44);
    demand(count * sector_size_ <= kMostBytes);
    Chain places = numbers_of(header.substr(76));
    uint32_t more = number32(header, 68);
    while (places.size() < count) {
      demand(more < kLastSector);
      const Chain further = numbers_of(sectors({more}));
      places.insert(places.end(), further.begin(), further.end() - 1);
      more = further.back();
    }
    places.resize(static_cast<size_t>(count));
    return places;
  }

  uint32_t link(size_t entry, uint64_t at) const {
    return number32(directory_, entry * kEntrySize + at);
  }

  /// Entries lead to their neighbours to both sides, and storages to one of theirs: each to others.
  void check_directory() const {
    const size_t count = directory_.size() / kEntrySize;
    std::vector<bool> seen(count);
    Chain waiting = {0};
    while (!waiting.empty()) {
      const uint32_t entry = waiting.back();
      waiting.pop_back();
      if (entry == kNoEntry) continue;
      demand(entry < count && !seen[entry]);
      seen[entry] = true;
      for (const uint64_t place : {kLeft, kRight, kChild})
        waiting.push_back(link(entry, place));
    }
  }

  std::u16string name_of(size_t entry) const {
    std::u16string name;
    for (uint64_t offset = 0; offset < kNameSize; offset += 2) {
      const uint32_t unit = number(directory_, entry * kEntrySize + offset, 2);
      if (unit == 0) break;
      name.push_back(static_cast<char16_t>(unit));
    }
    return name;
  }

  /// As the platform looks for it: short names stand before long ones. What a name's letters do
  /// in another case doesn't matter, as the names of tables have none.
  std::optional<uint32_t> find(const std::u16string& name) const {
    uint32_t entry = link(0, kChild);
    while (entry != kNoEntry) {
      const std::u16string other = name_of(entry);
      if (other == name) return entry;
      const bool before = name.size() != other.size() ? name.size() < other.size() : name < other;
      entry = link(entry, before ? kLeft : kRight);
    }
    return std::nullopt;
  }

  ORLO::RawFile& file_;
  uint64_t sector_size_ = 0;
  Chain successors_;
  Chain small_successors_;
  Chain small_sectors_;
  uint64_t small_size_ = 0;
  std::string directory_;
};

/// Columns stand one after the other: all tables, all numbers, all names, all types. Each table has
/// its numbers from 1 without a gap.
void check_columns(const std::string& columns, size_t reference_size) {
  const size_t rows = columns.size() / (2 * reference_size + 4);
  std::map<uint32_t, std::set<uint32_t>> numbers;
  for (size_t row = 0; row < rows; ++row) {
    const uint32_t table = number(columns, row * reference_size, reference_size);
    const uint32_t place = number(columns, rows * reference_size + row * 2, 2) ^ 0x8000;
    demand(numbers[table].insert(place).second);
  }
  for (const auto& [table, places] : numbers)
    demand(*places.begin() == 1 && *places.rbegin() == places.size());
}

uint32_t check(const CompoundFile& file) {
  const auto pool = file.stream(stream_name("_StringPool"));
  demand(pool && file.stream(stream_name("_StringData")));
  const uint32_t head = pool->size() > 4 ? number32(*pool, 0) : 0;
  const bool many = (head & kManyStrings) != 0;
  check_columns(file.stream(stream_name("_Columns")).value_or(""), many ? 3 : 2);
  return head & ~kManyStrings;
}

}  // namespace

std::optional<uint32_t> check_package_file(ORLO::RawFile& file) {
  try {
    return check(CompoundFile(file));
  } catch (const Damaged&) {
    return std::nullopt;
  }
}
