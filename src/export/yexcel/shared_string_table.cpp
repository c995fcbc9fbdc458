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

template <class View>
uint32_t hash_of(View text) {
  return static_cast<uint32_t>(std::hash<View>{}(text));
}

/// A body that grows, with single bytes put in where it reaches their offsets.
template <class Inserts>
class Merger {
 public:
  Merger(std::string& body, const Inserts& inserts)
      : body_(body), next_(inserts.begin()), end_(inserts.end()) {}

  void append(std::string_view bytes) {
    while (next_ != end_ && next_->offset - body_.size() < bytes.size()) {
      const size_t before = next_->offset - body_.size();
      body_.append(bytes.substr(0, before));
      body_.push_back(next_->value);
      bytes.remove_prefix(before);
      ++next_;
    }
    body_.append(bytes);
  }

 private:
  std::string& body_;
  typename Inserts::const_iterator next_;
  typename Inserts::const_iterator end_;
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
  if (strings_.size() >= slots_.size() / 2) grow();
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

/// One look at the records' beginnings for each string: of a string over several of them the later
/// ones are left to the strings that follow.
std::vector<SharedStringTable::OptionByte> SharedStringTable::option_bytes() const {
  std::vector<OptionByte> bytes;
  bytes.reserve(continueIndices_.size());
  uint32_t position = kTotals;
  auto index = continueIndices_.begin();
  for (const Text& text : strings_) {
    position += text.bytes() + kTextHeader;
    if (index == continueIndices_.end()) break;
    if (*index > position) continue;
    if (*index < position) {
      bytes.push_back({*index, text.wide ? '\1' : '\0'});
      ++position;
    }
    ++index;
  }
  return bytes;
}

std::string SharedStringTable::body() {
  const uint32_t size = DataSize();
  const std::vector<OptionByte> inserts = option_bytes();
  std::string body;
  body.reserve(size + inserts.size());
  put32(body, stringsTotal_);
  put32(body, uniqueStringsTotal());
  Merger merger(body, inserts);
  for (const Text& text : strings_) {
    const char header[] = {static_cast<char>(text.count & 0xFF), static_cast<char>(text.count >> 8),
                           text.wide ? '\1' : '\0'};
    merger.append({header, sizeof header});
    merger.append(text.memory());
  }
  // The size is what was told, even if a string has fewer or more option bytes.
  body.resize(size);
  return body;
}

uint32_t SharedStringTable::Write(std::string& buffer) {
  const std::string data = body();
  return write_record(buffer, kCode, data, continueIndices_);
}

}  // namespace YExcel
