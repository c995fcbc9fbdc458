#include "platform/package_file_check.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

// A compound file: a header, then sectors; chains of them, by a table of successors, are the
// directory and the streams. Short streams stand in small sectors within one long stream.
constexpr uint64_t kMagic = 0xE11AB1A1E011CFD0;
constexpr size_t kHeaderSize = 512;
constexpr uint32_t kLastSector = 0xFFFFFFFA;
constexpr uint32_t kEndOfChain = 0xFFFFFFFE;
constexpr uint32_t kSmallShift = 6;
constexpr uint64_t kSmallSector = uint64_t{1} << kSmallShift;
constexpr uint32_t kLongStream = 4096;
// An entry of the directory, and where it has the entries that it leads to.
constexpr uint32_t kNoEntry = 0xFFFFFFFF;
constexpr size_t kEntrySize = 128;
constexpr size_t kNameUnits = 32;
constexpr uint8_t kStreamEntry = 2;
constexpr size_t kLeft = 68;
constexpr size_t kRight = 72;
constexpr size_t kChild = 76;
/// Set with the code page where references to strings have three bytes.
constexpr uint32_t kManyStrings = 0x80000000;
/// More bytes than any package has in its directory, its columns or its table of successors.
constexpr uint64_t kMostBytes = 16 << 20;
/// What is read at once: a package without a cabinet, or most of it. The heap keeps such a block,
/// while fresh pages for a larger one cost more than reading does.
constexpr size_t kBeginning = 256 << 10;

static_assert(std::endian::native == std::endian::little, "numbers are read as they stand");

using Chain = std::vector<uint32_t>;

/// What isn't in the file, or leads to where it mustn't.
struct Damaged {};

void demand(bool condition) {
  if (!condition) throw Damaged();
}

template <typename Number>
Number number(std::string_view bytes, size_t offset) {
  demand(offset + sizeof(Number) <= bytes.size());
  Number value = 0;
  std::memcpy(&value, bytes.data() + offset, sizeof value);
  return value;
}

uint32_t number32(std::string_view bytes, size_t offset) {
  return number<uint32_t>(bytes, offset);
}

Chain numbers_of(std::string_view bytes) {
  Chain numbers(bytes.size() / sizeof(uint32_t));
  if (!numbers.empty())
    std::memcpy(numbers.data(), bytes.data(), numbers.size() * sizeof(uint32_t));
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

/// The file's beginning in one read, the rest as it is asked for: to read a little is as dear as to
/// read much.
class FileBytes {
 public:
  explicit FileBytes(ORLO::RawFile& file)
      : file_(file), beginning_(std::make_unique_for_overwrite<char[]>(kBeginning)) {
    size_ = fill(0, beginning_.get(), kBeginning);
  }

  void read(uint64_t offset, char* bytes, size_t size) const {
    const size_t known =
        offset < size_ ? std::min(size, size_ - static_cast<size_t>(offset)) : size_t{0};
    if (known != 0) std::memcpy(bytes, beginning_.get() + offset, known);
    if (known < size) demand(fill(offset + known, bytes + known, size - known) == size - known);
  }

  /// The file has `size` bytes at least.
  void demand_size(uint64_t size) const {
    char last = '\0';
    if (size > size_) read(size - 1, &last, 1);
  }

 private:
  size_t fill(uint64_t offset, char* bytes, size_t size) const {
    size_t done = 0;
    for (size_t count = 1; done < size && count != 0; done += count)
      count = file_.read(offset + done, bytes + done, size - done).count;
    return done;
  }

  ORLO::RawFile& file_;
  const std::unique_ptr<char[]> beginning_;
  size_t size_ = 0;
};

/// Bytes of the file side by side.
struct Run {
  uint64_t offset;
  uint64_t size;
};
using Runs = std::vector<Run>;

/// The first `size` bytes of what `offset_of` finds in places of `place_size` bytes.
template <typename OffsetOf>
Runs runs_of(const Chain& chain, uint64_t place_size, uint64_t size, const OffsetOf& offset_of) {
  demand(size <= chain.size() * place_size);
  Runs runs;
  for (size_t i = 0; size != 0; ++i) {
    const uint64_t offset = offset_of(chain[i]);
    const uint64_t part = std::min(size, place_size);
    if (runs.empty() || runs.back().offset + runs.back().size != offset)
      runs.push_back({offset, part});
    else
      runs.back().size += part;
    size -= part;
  }
  return runs;
}

/// The stream's name for a table's: two characters of it in one, after a mark.
std::u16string stream_name(std::string_view table) {
  constexpr std::string_view kDigits =
      "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz._";
  std::u16string name = u"\u4840";
  for (size_t i = 0; i < table.size(); i += 2) {
    const size_t first = kDigits.find(table[i]);
    const size_t unit =
        i + 1 < table.size() ? 0x3800 + first + (kDigits.find(table[i + 1]) << 6) : 0x4800 + first;
    name.push_back(static_cast<char16_t>(unit));
  }
  return name;
}

class CompoundFile {
 public:
  explicit CompoundFile(ORLO::RawFile& file) : file_(file) {
    char bytes[kHeaderSize];
    file_.read(0, bytes, sizeof bytes);
    const std::string_view header(bytes, sizeof bytes);
    check_header(header);
    successors_ = numbers_of(read(sector_runs(successor_sectors(header))));
    if (number32(header, 64) != 0) small_successors_ = numbers_of(read_chain(number32(header, 60)));
    directory_ = read_chain(number32(header, 48));
    small_sectors_ = follow(successors_, number32(directory_, 116));
    small_size_ = size_of(0);
    demand(small_size_ <= small_sectors_.size() * sector_size_);
    check_directory();
  }

  /// Where a stream's bytes are in the file; no value if there is no such stream.
  std::optional<Runs> stream(const std::u16string& name) const {
    const auto entry = find(name);
    if (!entry) return std::nullopt;
    demand(field<uint16_t>(*entry, 64) == 2 * name.size() + 2);
    demand(field<uint8_t>(*entry, 66) == kStreamEntry);
    const auto start = field<uint32_t>(*entry, 116);
    const uint64_t size = size_of(*entry);
    if (size == 0) return Runs();
    return size < kLongStream ? small_runs(follow(small_successors_, start), size)
                              : sector_runs(follow(successors_, start), size);
  }

  std::string read(const Runs& runs, uint64_t most = kMostBytes) const {
    uint64_t size = 0;
    for (const Run& run : runs)
      size += run.size;
    demand(size <= kMostBytes);
    std::string bytes(static_cast<size_t>(std::min(size, most)), '\0');
    size_t done = 0;
    for (const Run& run : runs) {
      const auto part = static_cast<size_t>(std::min<uint64_t>(run.size, bytes.size() - done));
      if (part != 0) file_.read(run.offset, bytes.data() + done, part);
      done += part;
    }
    return bytes;
  }

  /// None of the bytes is beyond the file's end.
  void demand_bytes(const Runs& runs) const {
    uint64_t end = 0;
    for (const Run& run : runs)
      end = std::max(end, run.offset + run.size);
    file_.demand_size(end);
  }

 private:
  void check_header(std::string_view header) {
    demand(number<uint64_t>(header, 0) == kMagic);
    const uint32_t shift = number<uint16_t>(header, 30);
    demand(shift == 9 || shift == 12);
    sector_size_ = uint64_t{1} << shift;
    demand(number<uint16_t>(header, 32) == kSmallShift && number32(header, 56) == kLongStream);
    // The platform makes room for the sectors that list those of the table of successors.
    demand(number32(header, 72) * sector_size_ <= kMostBytes);
  }

  /// The sectors of the table of successors: the first ones in the header, then in sectors whose
  /// last number is the next such sector.
  Chain successor_sectors(std::string_view header) const {
    const uint64_t count = number32(header, 44);
    demand(count * sector_size_ <= kMostBytes);
    Chain places = numbers_of(header.substr(76));
    uint32_t more = number32(header, 68);
    while (places.size() < count) {
      demand(more < kLastSector);
      const Chain further = numbers_of(read(sector_runs({more})));
      places.insert(places.end(), further.begin(), further.end() - 1);
      more = further.back();
    }
    places.resize(static_cast<size_t>(count));
    return places;
  }

  Runs sector_runs(const Chain& chain, uint64_t size) const {
    return runs_of(chain, sector_size_, size,
                   [this](uint32_t place) { return (uint64_t{place} + 1) * sector_size_; });
  }

  Runs sector_runs(const Chain& chain) const {
    return sector_runs(chain, chain.size() * sector_size_);
  }

  Runs small_runs(const Chain& chain, uint64_t size) const {
    return runs_of(chain, kSmallSector, size, [this](uint32_t place) {
      const uint64_t offset = place * kSmallSector;
      demand(offset < small_size_);
      const uint64_t sector = small_sectors_[static_cast<size_t>(offset / sector_size_)];
      return (sector + 1) * sector_size_ + offset % sector_size_;
    });
  }

  std::string read_chain(uint32_t start) const {
    return read(sector_runs(follow(successors_, start)));
  }

  template <typename Number>
  Number field(size_t entry, size_t at) const {
    return number<Number>(directory_, entry * kEntrySize + at);
  }

  uint64_t size_of(size_t entry) const { return field<uint64_t>(entry, 120); }

  /// Entries lead to their neighbours to both sides, and storages to one of theirs: each to others.
  void check_directory() const {
    const size_t count = directory_.size() / kEntrySize;
    std::vector<bool> seen(count);
    std::vector<bool> used(successors_.size());
    Chain waiting = {0};
    while (!waiting.empty()) {
      const uint32_t entry = waiting.back();
      waiting.pop_back();
      if (entry == kNoEntry) continue;
      demand(entry < count && !seen[entry]);
      seen[entry] = true;
      use_sectors(entry, used);
      for (const size_t place : {kLeft, kRight, kChild})
        waiting.push_back(field<uint32_t>(entry, place));
    }
  }

  /// No sector is in two streams, or twice in one. A chain that breaks off may be the platform's.
  void use_sectors(uint32_t entry, std::vector<bool>& used) const {
    if (field<uint8_t>(entry, 66) != kStreamEntry || size_of(entry) < kLongStream) return;
    for (auto place = field<uint32_t>(entry, 116); place < used.size();
         place = successors_[place]) {
      demand(!used[place]);
      used[place] = true;
    }
  }

  /// As the platform looks for it: short names stand before long ones. What a name's letters do
  /// in another case doesn't matter, as the names of tables have none.
  std::optional<uint32_t> find(std::u16string_view name) const {
    uint32_t entry = field<uint32_t>(0, kChild);
    while (entry != kNoEntry) {
      std::array<char16_t, kNameUnits> units;
      std::memcpy(units.data(), directory_.data() + entry * kEntrySize, sizeof units);
      const auto end = std::find(units.begin(), units.end(), u'\0');
      const std::u16string_view other(units.data(), static_cast<size_t>(end - units.begin()));
      if (other == name) return entry;
      const bool before = name.size() != other.size() ? name.size() < other.size() : name < other;
      entry = field<uint32_t>(entry, before ? kLeft : kRight);
    }
    return std::nullopt;
  }

  const FileBytes file_;
  uint64_t sector_size_ = 0;
  Chain successors_;
  Chain small_successors_;
  Chain small_sectors_;
  uint64_t small_size_ = 0;
  std::string directory_;
};

/// Columns stand one after the other: all tables, all numbers, all names, all types. Each table has
/// its numbers from 1 without a gap.
void check_columns(std::string_view columns, size_t reference_size) {
  const size_t rows = columns.size() / (2 * reference_size + 4);
  std::vector<uint64_t> places(rows);
  for (size_t row = 0; row < rows; ++row) {
    uint64_t table = 0;
    std::memcpy(&table, columns.data() + row * reference_size, reference_size);
    const uint32_t place = number<uint16_t>(columns, rows * reference_size + row * 2) ^ 0x8000U;
    places[row] = (table << 16) + place;
  }
  std::sort(places.begin(), places.end());
  uint64_t last = UINT64_MAX;
  for (const uint64_t place : places) {
    const bool same_table = place >> 16 == last >> 16;
    demand((place & 0xFFFF) == (same_table ? (last & 0xFFFF) + 1 : 1));
    last = place;
  }
}

uint32_t check(const CompoundFile& file) {
  const auto pool = file.stream(stream_name("_StringPool"));
  const auto strings = file.stream(stream_name("_StringData"));
  demand(pool && strings);
  file.demand_bytes(*pool);
  file.demand_bytes(*strings);
  const auto columns = file.stream(stream_name("_Columns"));
  const std::string start = file.read(*pool, sizeof(uint32_t));
  const uint32_t head = start.empty() ? 0 : number32(start, 0);
  const bool many = (head & kManyStrings) != 0;
  check_columns(columns ? file.read(*columns) : "", many ? 3 : 2);
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
