#include "export/yexcel/shared_string_table.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <utility>

#include "export/yexcel/record.h"

namespace YExcel {
namespace {

// Characters of 16 bits are written as they lie in memory.
static_assert(std::endian::native == std::endian::little);

constexpr size_t kLongestText = 65535;
constexpr uint32_t kTotals = 8;
constexpr uint32_t kTextHeader = 3;
// A string isn't begun where a record has room for fewer bytes.
constexpr uint32_t kLeastRoom = 12;
constexpr uint32_t kOptionByte = 1;
// What a CONTINUE record holds of a string after the option byte. Whole characters: one byte less
// where they are wide.
constexpr uint32_t kNarrowPiece = kLongestBody - kOptionByte;
constexpr uint32_t kWidePiece = kNarrowPiece - 1;

constexpr uint32_t kEmpty = UINT32_MAX;
constexpr size_t kFirstSlots = 1024;
// Characters lie all over the memory, so they are fetched a few texts before they are copied.
constexpr size_t kTextsAhead = 8;

template <class View>
uint32_t hash_of(View text) {
  return static_cast<uint32_t>(std::hash<View>{}(text));
}

constexpr int8_t kNone = -1;  // no option byte

/// Copies a body to its place in a stream, which has been laid out for it: around the headers of
/// CONTINUE records and the option bytes after these.
class Placer {
 public:
  Placer(char* place, uint32_t size, const std::vector<uint32_t>& begins,
         const std::vector<int8_t>& options)
      : place_(place), size_(size), begins_(begins), options_(options) {
    run_ = end_of_piece();
  }

  /// What is beyond the size is left out.
  void put(std::string_view bytes) {
    while (bytes.size() > run_ && next_ < begins_.size()) {
      const size_t count = run_;
      copy(bytes.substr(0, count));
      bytes.remove_prefix(count);
      begin_piece();
    }
    copy(bytes.substr(0, run_));
  }

 private:
  uint32_t end_of_piece() const { return next_ < begins_.size() ? begins_[next_] : size_; }

  void copy(std::string_view bytes) {
    place_ = std::ranges::copy(bytes, place_).out;
    run_ -= static_cast<uint32_t>(bytes.size());
  }

  void begin_piece() {
    const uint32_t begin = begins_[next_];
    const uint32_t option = options_[next_] == kNone ? 0 : kOptionByte;
    ++next_;
    place_ += kRecordHeader + option;
    run_ = end_of_piece() - begin - option;
  }

  char* place_;
  uint32_t size_;
  uint32_t run_ = 0;  ///< bytes up to the piece's end
  size_t next_ = 0;
  const std::vector<uint32_t>& begins_;
  const std::vector<int8_t>& options_;
};

}  // namespace

bool SharedStringTable::Text::operator==(const Text& other) const noexcept {
  return wide == other.wide && memory() == other.memory();
}

std::string_view SharedStringTable::Text::memory() const noexcept {
  return {static_cast<const char*>(characters), bytes()};
}

uint32_t SharedStringTable::add(std::string_view text) {
  text = text.substr(0, kLongestText);
  return add({text.data(), static_cast<uint16_t>(text.size()), false}, hash_of(text));
}

uint32_t SharedStringTable::add(std::u16string_view text) {
  text = text.substr(0, kLongestText);
  return add({text.data(), static_cast<uint16_t>(text.size()), true}, hash_of(text));
}

uint32_t SharedStringTable::add(const Text& text, uint32_t hash) {
  ++stringsTotal_;
  if (strings_.size() >= slots_.size() / 4 * 3) grow();
  Slot& slot = slot_of(text, hash);
  if (slot.index == kEmpty) {
    slot = {hash, uniqueStringsTotal()};
    strings_.push_back(text);
  }
  return slot.index;
}

/// The slot of the text, or the empty one that it would take.
SharedStringTable::Slot& SharedStringTable::slot_of(const Text& text, uint32_t hash) {
  const size_t mask = slots_.size() - 1;
  size_t at = hash & mask;
  while (slots_[at].index != kEmpty &&
         (slots_[at].hash != hash || strings_[slots_[at].index] != text))
    at = (at + 1) & mask;
  return slots_[at];
}

void SharedStringTable::grow() {
  const size_t size = std::max(slots_.size() * 2, kFirstSlots);
  const std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(size, {0, kEmpty}));
  for (const Slot& slot : old) {
    if (slot.index == kEmpty) continue;
    size_t at = slot.hash & (size - 1);
    while (slots_[at].index != kEmpty)
      at = (at + 1) & (size - 1);
    slots_[at] = slot;
  }
}

void SharedStringTable::clear() {
  strings_.clear();
  slots_.clear();
  continueIndices_.clear();
  stringsTotal_ = 0;
}

uint32_t SharedStringTable::DataSize() {
  continueIndices_.clear();
  uint32_t size = kTotals;
  uint32_t limit = kLongestBody;
  for (const Text& text : strings_) {
    const uint32_t whole = text.bytes() + kTextHeader;
    size = size + whole <= limit ? size + whole : split(size, limit, text);
  }
  return size;
}

/// Size of the body with a string that doesn't fit below the limit.
uint32_t SharedStringTable::split(uint32_t size, uint32_t& limit, const Text& text) {
  const uint32_t whole = text.bytes() + kTextHeader;
  // A long wide string may end after the limit: each of its pieces after the first moves the limit
  // by a byte less than the size.
  const uint32_t room = limit > size ? limit - size : 0;
  if (room < kLeastRoom) {
    continueIndices_.push_back(size);
    limit = size + kLongestBody;
    if (size + whole < limit) return size + whole;
    if (text.wide) --limit;
  } else if (text.wide && room % 2 == 0) {
    --limit;
  }
  continueIndices_.push_back(limit);
  uint32_t rest = whole + size - limit;
  size = std::exchange(limit, limit + kLongestBody);
  const uint32_t piece = text.wide ? kWidePiece : kNarrowPiece;
  for (uint32_t pieces = rest / piece; pieces > 0; --pieces) {
    if (text.wide) --limit;
    continueIndices_.push_back(limit);
    limit += piece + kOptionByte;
    size += piece + kOptionByte;
    rest -= piece;
  }
  return size + rest + kOptionByte;
}

uint32_t SharedStringTable::RecordSize() {
  return long_record_size(DataSize());
}

/// For each CONTINUE record its option byte. A string gives one at most: of a string over several
/// beginnings of records the later ones are left to the strings that follow.
std::vector<int8_t> SharedStringTable::option_bytes() const {
  std::vector<int8_t> options(continueIndices_.size(), kNone);
  uint32_t position = kTotals;
  size_t next = 0;
  for (const Text& text : strings_) {
    position += text.bytes() + kTextHeader;
    if (next < options.size() && continueIndices_[next] < position) {
      options[next++] = text.wide ? 1 : 0;
      ++position;
    }
    // The next string begins in a record of its own; so it may also be after one that was split.
    if (next < options.size() && continueIndices_[next] == position) ++next;
  }
  return options;
}

/// Appends the headers of all records with the option bytes; the rest is zero.
void SharedStringTable::lay_out(std::string& buffer, uint32_t size,
                                const std::vector<int8_t>& options) const {
  buffer.reserve(buffer.size() + size + kRecordHeader * (options.size() + 1));
  uint32_t begin = 0;
  for (size_t piece = 0; piece <= options.size(); ++piece) {
    const uint32_t end = piece < options.size() ? continueIndices_[piece] : size;
    put16(buffer, piece == 0 ? kCode : kContinueCode);
    put16(buffer, static_cast<uint16_t>(end - begin));
    const size_t body = buffer.size();
    if (piece > 0 && options[piece - 1] != kNone)
      put8(buffer, static_cast<uint8_t>(options[piece - 1]));
    buffer.resize(body + (end - begin));
    begin = end;
  }
}

uint32_t SharedStringTable::Write(std::string& buffer) {
  const size_t before = buffer.size();
  const uint32_t size = DataSize();
  const std::vector<int8_t> options = option_bytes();
  lay_out(buffer, size, options);
  Placer placer(buffer.data() + before + kRecordHeader, size, continueIndices_, options);
  std::string header;
  put32(header, stringsTotal_);
  put32(header, uniqueStringsTotal());
  placer.put(header);
  for (size_t i = 0; i < strings_.size(); ++i) {
    const Text& text = strings_[i];
    __builtin_prefetch(strings_[std::min(i + kTextsAhead, strings_.size() - 1)].characters);
    const char start[] = {static_cast<char>(text.count & 0xFF), static_cast<char>(text.count >> 8),
                          text.wide ? '\1' : '\0'};
    placer.put({start, sizeof start});
    placer.put(text.memory());
  }
  return static_cast<uint32_t>(buffer.size() - before);
}

}  // namespace YExcel
