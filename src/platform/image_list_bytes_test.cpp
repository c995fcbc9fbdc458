#include "platform/image_list_bytes.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "platform/icon_file_test_support.h"

namespace {

/// A bitmap with its two headers.
struct BitmapFields {
  uint32_t width = 64;
  uint32_t height = 32;
  unsigned depth = 32;
  unsigned magic = 0x4D42;
  uint32_t header_size = 40;
  unsigned planes = 1;
  uint32_t compression = 0;
  uint32_t colors = 0;
  size_t bits_size = size_t{64} * 32 * 4;
};

BitmapFields mask_fields() {
  BitmapFields fields;
  fields.depth = 1;
  fields.bits_size = 2 * 4 + 64 * 32 / 8;
  return fields;
}

struct ListFields {
  unsigned magic = 0x4C49;
  unsigned version = 0x101;
  unsigned count = 5;
  unsigned room = 6;
  unsigned grow = 4;
  unsigned width = 16;
  unsigned height = 16;
  unsigned flags = 33;
  BitmapFields images{};
  BitmapFields mask = mask_fields();
};

void put(ByteWriter& out, const BitmapFields& fields) {
  out.put16(fields.magic).put32(0).put32(0).put32(0);
  out.put32(fields.header_size).put32(fields.width).put32(fields.height).put16(fields.planes);
  out.put16(fields.depth).put32(fields.compression).put32(0).put32(0).put32(0);
  out.put32(fields.colors).put32(0);
  out.pad_to(out.bytes.size() + fields.bits_size);
}

std::string bytes_of(const ListFields& fields) {
  ByteWriter out;
  out.put16(fields.magic).put16(fields.version).put16(fields.count).put16(fields.room);
  out.put16(fields.grow).put16(fields.width).put16(fields.height).put32(0xFFFFFFFF);
  out.put16(fields.flags).put32(0xFFFFFFFF).put32(0xFFFFFFFF);
  put(out, fields.images);
  put(out, fields.mask);
  return out.bytes;
}

bool sound(const ListFields& fields) {
  std::string bytes = bytes_of(fields);
  return check_image_list_bytes(bytes);
}

TEST(ImageListBytes, AreSoundIfAllThatTheySayIsThere) {
  EXPECT_TRUE(sound({}));
  ListFields most;
  most.count = 8;
  EXPECT_TRUE(sound(most)) << "as many as the bitmaps have room for";
  std::string longer = bytes_of({}) + "more";
  EXPECT_TRUE(check_image_list_bytes(longer));
}

TEST(ImageListBytes, GetSoundNumbersForTheListsGrowth) {
  ListFields fields;
  fields.room = 65535;
  fields.grow = 65535;
  fields.flags = 0xFF21;
  std::string bytes = bytes_of(fields);
  ASSERT_TRUE(check_image_list_bytes(bytes));
  fields.room = fields.count;
  fields.grow = 4;
  fields.flags = 33;
  EXPECT_EQ(bytes, bytes_of(fields));
}

TEST(ImageListBytes, MustNotEndTooSoon) {
  const std::string whole = bytes_of({});
  for (size_t length = 0; length < whole.size(); ++length) {
    std::string bytes = whole.substr(0, length);
    ASSERT_FALSE(check_image_list_bytes(bytes)) << length;
  }
}

TEST(ImageListBytes, OfAnotherVersionAreLeftToThePlatform) {
  ListFields fields;
  fields.version = 0x620;
  fields.count = 0;
  const std::string whole = bytes_of(fields);
  std::string bytes = whole;
  EXPECT_TRUE(check_image_list_bytes(bytes));
  EXPECT_EQ(bytes, whole);
}

TEST(ImageListBytes, MustSayWhatTheyAre) {
  const struct {
    const char* trace;
    void (*change)(ListFields& fields);
  } rows[] = {
      {"magic", [](ListFields& f) { f.magic = 0x4C4A; }},
      {"no images", [](ListFields& f) { f.count = 0; }},
      {"no mask", [](ListFields& f) { f.flags = 32; }},
      {"other depth", [](ListFields& f) { f.flags = 25; }},
      {"no width", [](ListFields& f) { f.width = 0; }},
      {"no height", [](ListFields& f) { f.height = 0; }},
      {"more images than room", [](ListFields& f) { f.count = 9; }},
      {"larger images", [](ListFields& f) { f.width = 65; }},
      {"higher images", [](ListFields& f) { f.height = 33; }},
      {"no bitmap", [](ListFields& f) { f.images.magic = 0; }},
      {"no mask bitmap", [](ListFields& f) { f.mask.magic = 0; }},
      {"other header", [](ListFields& f) { f.images.header_size = 124; }},
      {"planes", [](ListFields& f) { f.images.planes = 2; }},
      {"depth", [](ListFields& f) { f.images.depth = 31; }},
      {"no depth", [](ListFields& f) { f.images.depth = 0; }},
      {"compressed", [](ListFields& f) { f.images.compression = 1; }},
      {"colours", [](ListFields& f) { f.mask.colors = 257; }},
      {"narrow", [](ListFields& f) { f.images.width = 15; }},
      {"flat", [](ListFields& f) { f.images.height = 15; }},
      {"no lines", [](ListFields& f) { f.images.height = 0; }},
      {"upside down", [](ListFields& f) { f.images.height = 0xFFFFFFE0; }},
      {"endless lines", [](ListFields& f) { f.images.width = 0x80000040; }},
      {"wrapping size",
       [](ListFields& f) {
         f.mask.width = 0x20000;
         f.mask.height = 0x8000;
       }},
      {"mask without room", [](ListFields& f) { f.mask.height = 16; }},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.trace);
    ListFields fields;
    row.change(fields);
    EXPECT_FALSE(sound(fields));
  }
}

TEST(ImageListBytes, CountAPaletteForFewColours) {
  ListFields fields;
  fields.images.depth = 8;
  fields.images.bits_size = 256 * 4 + 64 * 32;
  EXPECT_TRUE(sound(fields));
  fields.images.bits_size -= 4;
  EXPECT_FALSE(sound(fields));
}

}  // namespace
