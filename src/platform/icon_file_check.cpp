#include "platform/icon_file_check.h"

#include <algorithm>
#include <memory>
#include <set>
#include <vector>

namespace {

constexpr uint32_t kProgram = 'M' | 'Z' << 8;
constexpr uint32_t kOldProgram = 'N' | 'E' << 8;
constexpr uint32_t kNewProgram = 'P' | 'E' << 8;
constexpr uint32_t kIconResource = 3;
constexpr uint32_t kGroupResource = 14;
constexpr uint32_t kGroupHeaderSize = 6;
constexpr uint32_t kGroupEntrySize = 14;
constexpr uint32_t kInfoHeaderSize = 40;
constexpr uint32_t kPng = 0x474E5089;
constexpr uint32_t kMostPixels = 4096;
constexpr uint32_t kMostColors = 256;

/// Little-endian numbers of a file. One that isn't there is 0, and spoils the whole.
class Numbers {
  /// A small file is read at once.
  static constexpr size_t kBlockSize = 16384;
  static constexpr size_t kMostBlocks = 8;
  struct Block {
    uint64_t start = 0;
    size_t count = 0;
    char bytes[kBlockSize];
  };

 public:
  explicit Numbers(ORLO::RawFile& file) noexcept : file_(file) {}

  uint32_t at16(uint64_t offset) { return at(offset, 2); }
  uint32_t at32(uint64_t offset) { return at(offset, 4); }
  /// Demands that so many bytes are there.
  void demand(uint64_t offset, uint64_t size) {
    if (size != 0) at(offset + size - 1, 1);
  }
  void spoil() noexcept { sound_ = false; }
  bool sound() const noexcept { return sound_; }

 private:
  uint32_t at(uint64_t offset, size_t size) {
    uint32_t number = 0;
    for (size_t i = 0; i < size; ++i)
      number |= uint32_t{byte(offset + i)} << (8 * i);
    return number;
  }
  unsigned char byte(uint64_t offset) {
    const Block& block = block_at(offset - offset % kBlockSize);
    if (offset - block.start < block.count)
      return static_cast<unsigned char>(block.bytes[offset - block.start]);
    spoil();
    return 0;
  }
  const Block& block_at(uint64_t start) {
    for (const auto& block : blocks_) {
      if (block->start == start) return *block;
    }
    if (blocks_.size() < kMostBlocks) blocks_.push_back(std::make_unique<Block>());
    Block& block = *blocks_[next_++ % blocks_.size()];
    const ORLO::Transfer done = file_.read(start, block.bytes, kBlockSize);
    block.start = start;
    block.count = done.error == 0 ? done.count : 0;
    return block;
  }

  ORLO::RawFile& file_;
  /// The tree of resources has three levels, each in a place of its own: none may push out another.
  std::vector<std::unique_ptr<Block>> blocks_;
  size_t next_ = 0;
  bool sound_ = true;
};

struct Piece {
  uint64_t offset = 0;
  uint64_t size = 0;
};

/// The directory of one icon's sizes, in a resource. Gives the ids of its pictures.
std::set<uint32_t> check_group(Numbers& numbers, const Piece& group) {
  std::set<uint32_t> pictures;
  const uint64_t count = group.size < kGroupHeaderSize ? 0 : numbers.at16(group.offset + 4);
  if (kGroupHeaderSize + count * kGroupEntrySize > group.size) numbers.spoil();
  for (uint64_t i = 0; i < count && numbers.sound(); ++i)
    pictures.insert(numbers.at16(group.offset + kGroupHeaderSize + i * kGroupEntrySize + 12));
  return pictures;
}

/// One icon's picture. Where its headers are sound the platform sees itself whether all is there.
void check_picture(Numbers& numbers, const Piece& picture) {
  if (picture.size < kInfoHeaderSize) return numbers.spoil();
  const uint64_t at = picture.offset;
  if (numbers.at32(at) == kPng) return;
  const uint32_t width = numbers.at32(at + 4);
  const uint32_t height = numbers.at32(at + 8);
  const uint32_t depth = numbers.at16(at + 14);
  if (numbers.at32(at) != kInfoHeaderSize || numbers.at32(at + 16) != 0) numbers.spoil();
  if (width == 0 || width > kMostPixels || height < 2 || height > 2 * kMostPixels) numbers.spoil();
  if (numbers.at16(at + 12) > 1 || depth == 0 || depth > 32) numbers.spoil();
  if (numbers.at32(at + 32) > kMostColors) numbers.spoil();
}

void check_icon_directory(Numbers& numbers) {
  const uint32_t count = numbers.at16(4);
  for (uint32_t i = 0; i < count && numbers.sound(); ++i) {
    const uint64_t entry = 6 + uint64_t{i} * 16;
    const Piece picture{numbers.at32(entry + 12), numbers.at32(entry + 8)};
    numbers.demand(picture.offset, picture.size);
    check_picture(numbers, picture);
  }
}

/// Of a 16-bit program: a table of types, each followed by its resources.
void check_old_resources(Numbers& numbers, uint64_t header) {
  uint64_t at = header + numbers.at16(header + 0x24);
  const uint32_t shift = numbers.at16(at);
  if (shift > 16) return numbers.spoil();
  at += 2;
  while (numbers.sound()) {
    const uint32_t type = numbers.at16(at);
    if (type == 0) return;
    const uint32_t count = numbers.at16(at + 2);
    at += 8;
    for (uint32_t i = 0; i < count && numbers.sound(); ++i, at += 12) {
      const Piece data{uint64_t{numbers.at16(at)} << shift,
                       uint64_t{numbers.at16(at + 2)} << shift};
      numbers.demand(data.offset, data.size);
      if (type == (0x8000 | kGroupResource)) check_group(numbers, data);
      if (type == (0x8000 | kIconResource)) check_picture(numbers, data);
    }
  }
}

struct Section {
  uint32_t address = 0;
  Piece raw{};
};

/// The resources of a 32-bit or 64-bit program: a tree of type, id and language.
class Resources {
 public:
  Resources(Numbers& numbers, uint64_t header) : numbers_(numbers) {
    const uint64_t optional = header + 24;
    const bool wide = numbers_.at16(optional) == 0x20B;
    const uint32_t address = numbers_.at32(optional + (wide ? 112 : 96) + 16U);
    const uint64_t table = optional + numbers_.at16(header + 20);
    const uint32_t count = numbers_.at16(header + 6);
    for (uint32_t i = 0; i < count && numbers_.sound(); ++i)
      add_section(table + uint64_t{i} * 40);
    // A tree in the headers would be looked for where it isn't.
    if (numbers_.at16(header + 20) < (wide ? 112 : 96) + 3 * 8) numbers_.spoil();
    if (numbers_.at32(optional + 60) > address) numbers_.spoil();
    root_ = at_address(address, 1);
    uint64_t end = 0;
    for (const Section& section : sections_)
      end = std::max(end, section.raw.offset + section.raw.size);
    numbers_.demand(0, end);
  }

  /// Of all icons only the one at `index` is looked at itself: there may be thousands.
  void check(int32_t index) {
    std::set<uint32_t> pictures;
    visit(kGroupResource, [&](uint32_t at, uint32_t id, const Piece& group) {
      if (index >= 0 ? at == static_cast<uint32_t>(index) : id == 0U - static_cast<uint32_t>(index))
        pictures = check_group(numbers_, group);
    });
    visit(kIconResource, [&](uint32_t, uint32_t id, const Piece& picture) {
      if (pictures.contains(id)) check_picture(numbers_, picture);
    });
  }

 private:
  void add_section(uint64_t at) {
    const Piece raw{numbers_.at32(at + 20), numbers_.at32(at + 16)};
    sections_.push_back({numbers_.at32(at + 12), raw});
  }

  /// Offset in the file of what an offset in the tree leads to.
  uint64_t place(uint32_t offset, uint32_t size) {
    const uint32_t below = offset & 0x7FFFFFFF;
    if (uint64_t{below} + size > root_.size) numbers_.spoil();
    return root_.offset + below;
  }

  uint32_t entries(uint64_t directory) {
    const uint32_t count = numbers_.at16(directory + 12) + numbers_.at16(directory + 14);
    if (directory + 16 + uint64_t{count} * 8 > root_.offset + root_.size) numbers_.spoil();
    return numbers_.sound() ? count : 0;
  }

  /// Calls visitor(place among its type, id, data) for all resources of a type.
  template <typename Visitor>
  void visit(uint32_t type, const Visitor& visitor) {
    const uint64_t root = place(0, 16);
    const uint32_t types = entries(root);
    for (uint32_t i = 0; i < types && numbers_.sound(); ++i) {
      const uint64_t entry = root + 16 + uint64_t{i} * 8;
      if (numbers_.at32(entry) == type) visit_ids(place(numbers_.at32(entry + 4), 16), visitor);
    }
  }

  template <typename Visitor>
  void visit_ids(uint64_t directory, const Visitor& visitor) {
    const uint32_t ids = entries(directory);
    for (uint32_t i = 0; i < ids && numbers_.sound(); ++i) {
      const uint64_t entry = directory + 16 + uint64_t{i} * 8;
      // The first language counts, even if there should be none.
      const uint64_t languages = place(numbers_.at32(entry + 4), 16 + 8);
      const uint32_t count = entries(languages);
      for (uint32_t j = 0; (j == 0 || j < count) && numbers_.sound(); ++j) {
        const uint64_t data = place(numbers_.at32(languages + 16 + uint64_t{j} * 8 + 4), 16);
        visitor(i, numbers_.at32(entry), data_at(data));
      }
    }
  }

  Piece data_at(uint64_t entry) {
    const uint32_t size = numbers_.at32(entry + 4);
    return {at_address(numbers_.at32(entry), size).offset, size};
  }

  /// Where the bytes from an address to the end of its section are. There must be `size` of them,
  /// in one section.
  Piece at_address(uint32_t address, uint32_t size) {
    Piece found;
    for (const Section& section : sections_) {
      if (address < section.address || address - section.address >= section.raw.size) continue;
      if (found.size != 0) numbers_.spoil();
      const uint32_t below = address - section.address;
      found = {section.raw.offset + below, section.raw.size - below};
    }
    if (size > found.size) numbers_.spoil();
    return found;
  }

  Numbers& numbers_;
  std::vector<Section> sections_;
  Piece root_;
};

void check_program(Numbers& numbers, int32_t index) {
  const uint64_t header = numbers.at32(0x3C);
  const uint32_t kind = numbers.at16(header);
  if (kind == kOldProgram) check_old_resources(numbers, header);
  if (kind == kNewProgram) Resources(numbers, header).check(index);
}

}  // namespace

bool check_icon_file(ORLO::RawFile& file, int32_t index) {
  Numbers numbers(file);
  const uint32_t magic = numbers.at16(0);
  if (magic == kProgram) {
    check_program(numbers, index);
  } else if (numbers.at16(2) == 1 || numbers.at16(2) == 2) {
    check_icon_directory(numbers);
  }
  return numbers.sound();
}
