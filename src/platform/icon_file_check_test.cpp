#include "platform/icon_file_check.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "orlo/file_test_support.h"
#include "platform/icon_file_test_support.h"

namespace {

bool sound(const std::string& bytes, int32_t index = 0) {
  MemoryFile file{bytes};
  RawMemoryFile raw(file);
  return check_icon_file(raw, index);
}

std::string library() {
  return icon_library({{5, {1, 2}}, {7, {3, 4}}});
}

std::string with(std::string bytes, size_t at, uint32_t number) {
  return bytes.replace(at, 4, ByteWriter().put32(number).bytes);
}

std::string with(std::string bytes, size_t at, uint32_t number, uint32_t second, uint32_t third) {
  return with(with(with(std::move(bytes), at, number), at + 4, second), at + 8, third);
}

/// A 16-bit library with an icon's directory and its picture.
std::string old_library() {
  const std::string picture = ByteWriter{icon_bitmap(16, 1)}.pad_to(size_t{71} * 16).bytes;
  ByteWriter out;
  out.put8('M').put8('Z').pad_to(0x3C).put32(0x40);
  out.put8('N').put8('E').pad_to(0x40 + 0x24).put16(0x40).pad_to(0x80);
  out.put16(4);
  out.put16(0x800E).put16(1).put32(0);
  out.put16(0x20).put16(0x2).put16(0).put16(0x8001).put32(0);
  out.put16(0x8003).put16(1).put32(0);
  out.put16(0x22).put16(static_cast<unsigned>(picture.size() / 16)).put16(0).put16(0x8001).put32(0);
  out.put16(0).pad_to(0x200);
  out.put16(0).put16(1).put16(1);
  put_icon_entry(out, 16, picture.size());
  return out.put16(1).pad_to(0x220).bytes + picture;
}

// Places in the library's headers and in its tree of resources.
constexpr size_t kSignature = 0x40;
constexpr size_t kOptional = kSignature + 24;
constexpr size_t kSection = kOptional + 224;
constexpr size_t kTree = 0x200;

TEST(IconFileCheck, LetsFilesWithIconsPass) {
  EXPECT_TRUE(sound(icon_file({1, 2})));
  EXPECT_TRUE(sound(library()));
  EXPECT_TRUE(sound(icon_library({})));
  EXPECT_TRUE(sound(old_library()));
}

TEST(IconFileCheck, LeavesWhatItDoesNotKnowToThePlatform) {
  EXPECT_TRUE(sound("a text"));
  EXPECT_TRUE(sound(with(library(), kSignature, 'L' | 'E' << 8)));
}

TEST(IconFileCheck, RefusesFilesThatEndTooSoon) {
  for (const std::string& whole : {icon_file({1, 2}), library(), old_library()}) {
    size_t refused = 0;
    for (size_t length = 0; length < whole.size(); length += 1 + length / 64)
      refused += sound(whole.substr(0, length)) ? 0U : 1U;
    EXPECT_FALSE(sound(whole.substr(0, whole.size() - 1)));
    EXPECT_FALSE(sound(whole.substr(0, whole.size() / 2)));
    EXPECT_FALSE(sound(whole.substr(0, 0x42)));
    EXPECT_GT(refused, 100U);
  }
  EXPECT_FALSE(sound(""));
  EXPECT_FALSE(sound("MZ"));
}

TEST(IconFileCheck, RefusesTablesThatLeadAstray) {
  constexpr uint32_t kFar = 0x7FFFFFFF;
  const struct {
    const char* trace;
    std::string bytes;
  } rows[] = {
      {"header", with(library(), 0x3C, kFar)},
      {"no room for the directory", with(library(), kSignature + 20, 0x21020002)},
      {"headers over the tree", with(library(), kOptional + 60, 0x30200)},
      {"no tree", with(library(), kOptional + 96 + 16, 0)},
      {"tree elsewhere", with(library(), kOptional + 96 + 16, kFar)},
      {"section too long", with(library(), kSection + 16, kFar)},
      {"section elsewhere", with(library(), kSection + 20, kFar)},
      {"too many types", with(library(), kTree + 12, 0xFFFFFFFF)},
      {"icons elsewhere", with(library(), kTree + 16 + 4, 0xFFFFFFFF)},
      {"too many icons", with(library(), kTree + 32 + 12, 0xFFFFFFFF)},
      {"language elsewhere", with(library(), kTree + 32 + 16 + 4, 0x80FFFFFF)},
      {"file with too many icons", with(icon_file({1, 2}), 4, 0xFFFF)},
      {"picture elsewhere", with(icon_file({1, 2}), 6 + 12, kFar)},
      {"picture too long", with(icon_file({1, 2}), 6 + 8, kFar)},
      {"picture too short", with(icon_file({1, 2}), 6 + 8, 39)},
      {"picture too wide", with(icon_file({1, 2}), 38 + 4, 0x10000010)},
      {"picture too high", with(icon_file({1, 2}), 38 + 8, 0x10000010)},
      {"picture without lines", with(icon_file({1, 2}), 38 + 8, 0)},
      {"picture of no depth", with(icon_file({1, 2}), 38 + 12, 1)},
      {"picture of many planes", with(icon_file({1, 2}), 38 + 12, 0x200002)},
      {"picture of another header", with(icon_file({1, 2}), 38, 64)},
      {"picture that is packed", with(icon_file({1, 2}), 38 + 16, 1)},
      {"picture of many colours", with(icon_file({1, 2}), 38 + 32, 257)},
      {"old tables elsewhere", with(old_library(), 0x40 + 0x24, 0xFFFF)},
      {"old resource elsewhere", with(old_library(), 0x80 + 10, 0x2FFFF)},
      {"old picture too long", with(old_library(), 0x80 + 30, 0xFFFF0022)},
      {"old picture too wide", with(old_library(), 0x220 + 4, 0x10000010)},
      {"old shift", with(old_library(), 0x80, 0x800E0044)},
      {"old icon of too many sizes", with(old_library(), 0x204, 0x10100003)},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.trace);
    EXPECT_FALSE(sound(row.bytes));
  }
}

TEST(IconFileCheck, KeepsResourcesInsideTheirSection) {
  // So that nothing leads out of the file.
  const std::string whole = library() + std::string(0x20000, '\0');
  const auto section_size = static_cast<uint32_t>(library().size() - kTree);
  ASSERT_TRUE(sound(whole));
  const size_t size_of_icon =
      whole.find(ByteWriter().put32(icon_bitmap(16, 0).size()).put32(0).put32(0).bytes);
  EXPECT_FALSE(sound(with(whole, size_of_icon, section_size)));
  EXPECT_FALSE(sound(with(whole, size_of_icon - 4, ResourceSection::kRva + section_size)));
  EXPECT_FALSE(sound(with(whole, kTree + 32 + 16 + 4, 0x80000000 + section_size + 0x100)));
  const size_t language = whole.find(ByteWriter().put32(0x409).bytes);
  EXPECT_TRUE(sound(whole, 2));
  EXPECT_FALSE(sound(with(whole, language + 4, section_size + 0x100), 2));
}

TEST(IconFileCheck, RefusesSectionsThatOverlap) {
  const auto section_size = static_cast<uint32_t>(library().size() - kTree);
  const std::string twice =
      with(library(), kSection + 40 + 12, ResourceSection::kRva, section_size, kTree);
  EXPECT_TRUE(sound(twice));
  EXPECT_FALSE(sound(with(twice, kSignature + 4, 0x2014C))) << "the second one counts";
}

TEST(IconFileCheck, TakesAPictureInAPackedFormAsItIs) {
  EXPECT_TRUE(sound(with(icon_file({1, 2}), 38, 0x474E5089)));
}

TEST(IconFileCheck, LooksAtThePicturesOfTheIconThatIsWantedAlone) {
  const std::string whole = library();
  // The second icon's large picture is the last but for the two directories.
  const std::string header = ByteWriter().put32(40).put32(32).put32(64).bytes;
  const std::string bytes = with(whole, whole.rfind(header) + 4, 0x10000010);
  EXPECT_TRUE(sound(bytes, 0));
  EXPECT_TRUE(sound(bytes, -5));
  EXPECT_TRUE(sound(bytes, 2));
  EXPECT_TRUE(sound(bytes, std::numeric_limits<int32_t>::min()));
  EXPECT_FALSE(sound(bytes, 1));
  EXPECT_FALSE(sound(bytes, -7));
}

TEST(IconFileCheck, RefusesAFileThatCannotBeRead) {
  MemoryFile file{library()};
  file.refuses_from = 0;
  file.error = 23;
  RawMemoryFile raw(file);
  EXPECT_FALSE(check_icon_file(raw, 0));
}

TEST(IconFileCheck, ReadsLittleOfALargeFile) {
  MemoryFile file{library()};
  file.content.resize(file.content.size() + (10U << 20));
  RawMemoryFile raw(file);
  EXPECT_TRUE(check_icon_file(raw, 0));
  EXPECT_LT(file.log.size(), 50U);
}

TEST(IconFileCheck, EndsWhateverTheBytesAre) {
  std::mt19937 random(3);
  for (const std::string& whole : {icon_file({1, 2}), library(), old_library()}) {
    for (int round = 0; round < 2000; ++round) {
      std::string bytes = whole;
      for (int accident = 0; accident < 4; ++accident)
        bytes[random() % std::min<size_t>(bytes.size(), 0x500)] = static_cast<char>(random() >> 9);
      sound(bytes);
    }
  }
}

}  // namespace
