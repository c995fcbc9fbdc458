// What IconExtractor, ImageList and ImageLists promise, tested on those in memory here and on the
// system's own in icons_contract_win_test.cpp.
#include <limits>

#include "platform/icons_test_support.h"
#include "platform/memory_icons.h"
#include "platform/memory_image_list.h"

namespace {

class MemoryIconsBed final : public IconsBed {
 public:
  IconExtractor& icons() override { return icons_; }
  ImageLists& lists() override { return lists_; }
  std::string folder() const override { return "C:\\Temp\\zolvane"; }
  void add_file(const std::string&, const std::string&) override {}
  void add_icon_file(const std::string& name, const IconPicture& picture) override {
    add(name, 0, picture);
  }
  void add_library(const std::string& name, const std::vector<ResourceIcon>& icons) override {
    int32_t index = 0;
    for (const ResourceIcon& icon : icons) {
      add(name, index++, icon.picture);
      add(name, -icon.id, icon.picture);
    }
  }
  int live() const override { return MemoryIcon::live(); }
  uint32_t color(const Icon& icon) const override {
    return dynamic_cast<const MemoryIcon&>(icon).color();
  }
  uint32_t color(const ImageList& list, int index) const override {
    return dynamic_cast<const MemoryImageList&>(list).colors().at(static_cast<size_t>(index));
  }
  std::string bytes_of_other_size() const override {
    std::string bytes;
    EXPECT_EQ(MemoryImageLists(32).fresh()->write(bytes), ImageList::Written::yes);
    return bytes;
  }

 private:
  void add(const std::string& name, int32_t index, const IconPicture& picture) {
    icons_.add_icon(folder() + '\\' + name, index, false, picture.small);
    icons_.add_icon(folder() + '\\' + name, index, true, picture.large);
  }

  MemoryIcons icons_;
  MemoryImageLists lists_;
};

/// Of no system.
class ForeignIcon final : public Icon {};

}  // namespace

int64_t IconsContract::extracted(const std::string& name, int32_t index, bool large) {
  const auto icon = extract(name, index, large);
  return icon ? int64_t{bed().color(*icon)} : kNone;
}

std::unique_ptr<ImageList> IconsContract::list_of(const std::vector<uint32_t>& colors) {
  auto list = bed().lists().fresh();
  for (const uint32_t color : colors) {
    bed().add_icon_file("image.ico", {color, color});
    const auto icon = extract("image.ico");
    EXPECT_TRUE(icon && list->append(*icon) > 0);
  }
  return list;
}

INSTANTIATE_TEST_SUITE_P(Memory, IconsContract,
                         ::testing::Values(IconsBedMaker{
                             "Own", [] { return std::make_unique<MemoryIconsBed>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(IconsContract, TakesTheIconOfTheSizeThatIsAskedFor) {
  bed().add_icon_file("a.ico", {kRed, kGreen});
  EXPECT_EQ(extracted("a.ico", 0, false), kRed);
  EXPECT_EQ(extracted("a.ico", 0, true), kGreen);
}

TEST_P(IconsContract, CountsIconsFromZeroAndKnowsThemByTheirIdsToo) {
  bed().add_library("a.dll", {{5, {kRed, kRed}}, {7, {kGreen, kGreen}}, {9, {kBlue, kWhite}}});
  EXPECT_EQ(extracted("a.dll", 0), kRed);
  EXPECT_EQ(extracted("a.dll", 1), kGreen);
  EXPECT_EQ(extracted("a.dll", 2), kBlue);
  EXPECT_EQ(extracted("a.dll", 2, true), kWhite);
  EXPECT_EQ(extracted("a.dll", -7), kGreen);
  EXPECT_EQ(extracted("a.dll", -5, true), kRed);
}

TEST_P(IconsContract, GivesNothingForAnIndexOrIdThatIsNotThere) {
  bed().add_library("a.dll", {{5, {kRed, kRed}}, {7, {kGreen, kGreen}}});
  constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();
  constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
  for (const int32_t index : {2, 100, -1, -2, -6, -65536 - 5, kMost, kLeast, kLeast + 1}) {
    SCOPED_TRACE(index);
    EXPECT_EQ(extracted("a.dll", index), kNone);
    EXPECT_EQ(extracted("a.dll", index, true), kNone);
  }
}

TEST_P(IconsContract, GivesNothingForWhatIsNoFileWithIcons) {
  bed().add_file("empty.exe", "");
  bed().add_file("text.exe", "no icons at all");
  bed().add_file("stub.exe", "MZ");
  bed().add_library("none.dll", {});
  for (const char* name : {"empty.exe", "text.exe", "stub.exe", "none.dll", "missing.exe", "",
                           "no folder\\missing.exe", "*", "?.exe", "a\"b", "a|b"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(extracted(name, 0), kNone);
    EXPECT_EQ(extracted(name, -1, true), kNone);
  }
  EXPECT_EQ(bed().icons().extract("", 0, false), nullptr);
  EXPECT_EQ(bed().icons().extract(bed().folder().c_str(), 0, false), nullptr);
}

TEST_P(IconsContract, GivesNothingForANameOfAnyLength) {
  for (const size_t length : {259U, 260U, 261U, 32767U, 32768U, 100000U}) {
    SCOPED_TRACE(length);
    EXPECT_EQ(bed().icons().extract(std::string(length, 'x').c_str(), 0, false), nullptr);
    EXPECT_EQ(extracted(std::string(length, 'x'), 0), kNone);
  }
}

TEST_P(IconsContract, OverlooksCaseInNames) {
  bed().add_icon_file("Some.ico", {kRed, kRed});
  EXPECT_EQ(extracted("sOME.ICO", 0), kRed);
}

TEST_P(IconsContract, AnIconGoesWithItsOwner) {
  bed().add_icon_file("a.ico", {kRed, kGreen});
  const int before = bed().live();
  {
    const auto small = extract("a.ico");
    const auto large = extract("a.ico", 0, true);
    EXPECT_EQ(bed().live(), before + 2);
    EXPECT_EQ(extract("a.ico", 1), nullptr);
    EXPECT_EQ(bed().live(), before + 2);
  }
  EXPECT_EQ(bed().live(), before);
}

TEST_P(IconsContract, AFreshListHasTheDefaultImageAlone) {
  EXPECT_EQ(bed().lists().fresh()->count(), 1);
}

TEST_P(IconsContract, AppendsEachIconAsTheLastImage) {
  bed().add_library("a.dll", {{5, {kRed, kRed}}, {7, {kGreen, kGreen}}});
  const auto list = bed().lists().fresh();
  EXPECT_EQ(list->append(*extract("a.dll", 1)), 1);
  EXPECT_EQ(list->append(*extract("a.dll", 0)), 2);
  EXPECT_EQ(list->append(*extract("a.dll", 1)), 3);
  EXPECT_EQ(list->count(), 4);
  EXPECT_EQ(bed().color(*list, 1), kGreen);
  EXPECT_EQ(bed().color(*list, 2), kRed);
  EXPECT_EQ(bed().color(*list, 3), kGreen);
}

TEST_P(IconsContract, RefusesAnIconOfAnotherSystem) {
  const auto list = bed().lists().fresh();
  EXPECT_EQ(list->append(ForeignIcon()), -1);
  EXPECT_EQ(list->count(), 1);
}

TEST_P(IconsContract, ReadsWhatItHasWritten) {
  for (const size_t count : {0U, 1U, 2U, 3U, 4U, 5U, 17U}) {
    SCOPED_TRACE(count);
    std::vector<uint32_t> colors;
    colors.reserve(count);
    for (size_t i = 0; i < count; ++i)
      colors.push_back(i % 2 == 0 ? kBlue : kWhite - static_cast<uint32_t>(i) * 8);
    std::string bytes;
    const auto written = list_of(colors);
    ASSERT_EQ(written->write(bytes), ImageList::Written::yes);
    bool other_size = true;
    const auto list = bed().lists().read(bytes, other_size);
    ASSERT_TRUE(list);
    EXPECT_FALSE(other_size);
    EXPECT_EQ(list->count(), static_cast<int>(count) + 1);
    EXPECT_EQ(bed().color(*list, 0), bed().color(*written, 0));
    for (size_t i = 0; i < count; ++i)
      EXPECT_EQ(bed().color(*list, static_cast<int>(i) + 1), colors[i]);
  }
}

TEST_P(IconsContract, AListThatWasReadGrowsOn) {
  std::string bytes;
  ASSERT_EQ(list_of({kRed})->write(bytes), ImageList::Written::yes);
  bool other_size = false;
  const auto list = bed().lists().read(bytes, other_size);
  ASSERT_TRUE(list);
  for (int index = 2; index < 40; ++index) {
    bed().add_icon_file("image.ico", {static_cast<uint32_t>(index), 0});
    ASSERT_EQ(list->append(*extract("image.ico")), index);
  }
  EXPECT_EQ(bed().color(*list, 1), kRed);
  for (int index = 2; index < 40; ++index)
    EXPECT_EQ(bed().color(*list, index), static_cast<uint32_t>(index));
}

TEST_P(IconsContract, WritesTheSameBytesEachTime) {
  const auto list = list_of({kRed, kBlue});
  std::string first;
  std::string second = "what was in it before";
  ASSERT_EQ(list->write(first), ImageList::Written::yes);
  ASSERT_EQ(list->write(second), ImageList::Written::yes);
  EXPECT_EQ(first, second);
}

TEST_P(IconsContract, TellsImagesOfAnotherSizeFromOtherBytes) {
  const std::string bytes = bed().bytes_of_other_size();
  bool other_size = false;
  EXPECT_EQ(bed().lists().read(bytes, other_size), nullptr);
  EXPECT_TRUE(other_size);
  EXPECT_EQ(bed().lists().read(bytes.substr(0, bytes.size() / 2), other_size), nullptr);
  EXPECT_FALSE(other_size);
}

TEST_P(IconsContract, ReadsNoOtherBytes) {
  std::string bytes;
  ASSERT_EQ(list_of({kRed, kGreen, kBlue})->write(bytes), ImageList::Written::yes);
  bool other_size = true;
  EXPECT_EQ(bed().lists().read("", other_size), nullptr);
  EXPECT_FALSE(other_size);
  for (size_t length = 0; length < bytes.size(); length += 1 + length / 16) {
    SCOPED_TRACE(length);
    EXPECT_EQ(bed().lists().read(bytes.substr(0, length), other_size), nullptr);
    EXPECT_FALSE(other_size);
  }
  EXPECT_EQ(bed().lists().read(std::string(bytes.size(), '\0'), other_size), nullptr);
  EXPECT_EQ(bed().lists().read(std::string(bytes.size(), '\xFF'), other_size), nullptr);
  EXPECT_EQ(bed().lists().read("some text\n", other_size), nullptr);
}

TEST_P(IconsContract, AListGoesWithItsOwner) {
  bed().add_icon_file("image.ico", {kRed, kRed});
  const int before = bed().live();
  {
    std::string bytes;
    bool other_size = false;
    const auto list = list_of({kRed, kGreen});
    ASSERT_EQ(list->write(bytes), ImageList::Written::yes);
    const auto read = bed().lists().read(bytes, other_size);
  }
  EXPECT_EQ(bed().live(), before);
}
