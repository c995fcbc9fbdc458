#include "platform/image_list_bytes.h"

#include <cstdint>
#include <limits>

namespace {

constexpr uint32_t kMagic = 'I' | 'L' << 8;
constexpr uint32_t kVersion = 0x101;
constexpr uint32_t kBitmapMagic = 'B' | 'M' << 8;
// Colours of 32 bits, and a mask.
constexpr uint32_t kFlags = 33;
constexpr uint32_t kGrow = 4;

// Offsets in the list's header, all of 16 bits.
constexpr size_t kVersionAt = 2;
constexpr size_t kCountAt = 4;
constexpr size_t kRoomAt = 6;
constexpr size_t kGrowAt = 8;
constexpr size_t kWidthAt = 10;
constexpr size_t kHeightAt = 12;
constexpr size_t kFlagsAt = 18;
constexpr size_t kHeaderSize = 28;

constexpr size_t kFileHeaderSize = 14;
constexpr uint32_t kInfoHeaderSize = 40;
constexpr uint32_t kMostColors = 256;

/// Little-endian numbers at offsets of `bytes`; 0 beyond its end.
class Numbers {
 public:
  explicit Numbers(const std::string& bytes) noexcept : bytes_(bytes) {}
  uint32_t at16(size_t offset) const noexcept { return at(offset, 2); }
  uint32_t at32(size_t offset) const noexcept { return at(offset, 4); }

 private:
  uint32_t at(size_t offset, size_t size) const noexcept {
    uint32_t number = 0;
    for (size_t i = 0; i < size && offset + i < bytes_.size(); ++i)
      number |= uint32_t{static_cast<unsigned char>(bytes_[offset + i])} << (8 * i);
    return number;
  }
  const std::string& bytes_;
};

void set16(std::string& bytes, size_t offset, uint32_t number) {
  bytes[offset] = static_cast<char>(number & 0xFF);
  bytes[offset + 1] = static_cast<char>(number >> 8 & 0xFF);
}

bool is_depth(uint32_t bits) noexcept {
  return bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
}

/// A bitmap that stands whole in the bytes.
struct Bitmap {
  uint32_t width = 0;
  uint32_t height = 0;
  size_t end = 0;  ///< offset of what follows it; 0 if it isn't sound
};

Bitmap bitmap_at(const std::string& bytes, size_t offset) {
  const Numbers number(bytes);
  const size_t info = offset + kFileHeaderSize;
  const uint32_t width = number.at32(info + 4);
  const uint32_t height = number.at32(info + 8);
  const uint32_t depth = number.at16(info + 14);
  const uint32_t compression = number.at32(info + 16);
  const uint32_t colors = number.at32(info + 32);
  if (number.at16(offset) != kBitmapMagic || number.at32(info) != kInfoHeaderSize) return {};
  if (number.at16(info + 12) != 1 || !is_depth(depth) || compression != 0) return {};
  constexpr uint32_t kMost = std::numeric_limits<uint16_t>::max();
  if (width == 0 || height == 0 || width > kMost * 4 || height > kMost * kMost / 4) return {};
  if (colors > kMostColors) return {};
  const uint64_t palette = depth <= 8 ? uint64_t{4} << depth : 0;
  const uint64_t line = (uint64_t{width} * depth + 31) / 32 * 4;
  const uint64_t end = info + kInfoHeaderSize + palette + line * height;
  return end <= bytes.size() ? Bitmap{width, height, static_cast<size_t>(end)} : Bitmap();
}

bool holds_images(const Bitmap& bitmap, uint32_t width, uint32_t height, uint32_t count) {
  if (bitmap.end == 0 || width == 0 || height == 0) return false;
  return uint64_t{bitmap.width / width} * (bitmap.height / height) >= count;
}

}  // namespace

bool check_image_list_bytes(std::string& bytes) {
  const Numbers number(bytes);
  if (bytes.size() < kHeaderSize || number.at16(0) != kMagic) return false;
  if (number.at16(kVersionAt) != kVersion) return true;
  const uint32_t count = number.at16(kCountAt);
  const uint32_t width = number.at16(kWidthAt);
  const uint32_t height = number.at16(kHeightAt);
  if (count == 0 || (number.at16(kFlagsAt) & 0xFF) != kFlags) return false;
  const Bitmap images = bitmap_at(bytes, kHeaderSize);
  if (!holds_images(images, width, height, count)) return false;
  if (!holds_images(bitmap_at(bytes, images.end), width, height, count)) return false;
  set16(bytes, kRoomAt, count);
  set16(bytes, kGrowAt, kGrow);
  set16(bytes, kFlagsAt, kFlags);
  return true;
}
