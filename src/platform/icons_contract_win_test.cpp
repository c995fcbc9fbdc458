// The contract of icons_contract_test.cpp on the system's own, and what only that has.
#include <random>

#include "orlo/file_test_support.h"
#include "orlo/orlowin.h"
#include "platform/icons_test_support.h"
#include "platform/surface_win_test_support.h"
#include "platform/system_icon.h"
#include "platform/system_image_list.h"

namespace {

// Of the program's resources.
constexpr unsigned kPackages = 119;
constexpr unsigned kPackagesMask = 120;

HIMAGELIST handle_of(const ImageList& list) {
  return dynamic_cast<const SystemImageList&>(list).handle();
}

class SystemIconsBed final : public IconsBed {
 public:
  IconExtractor& icons() override { return *icons_; }
  ImageLists& lists() override { return lists_; }
  std::string folder() const override { return folder_.path("."); }
  void add_file(const std::string& name, const std::string& content) override {
    folder_.make(name.c_str(), content);
  }
  void add_icon_file(const std::string& name, const IconPicture& picture) override {
    add_file(name, icon_file(picture));
  }
  void add_library(const std::string& name, const std::vector<ResourceIcon>& icons) override {
    add_file(name, icon_library(icons));
  }
  int live() const override { return ORLO::live_handles(); }
  uint32_t color(const Icon& icon) const override {
    const Surface surface(RGB(1, 2, 3));
    EXPECT_TRUE(DrawIconEx(surface.dc(), 0, 0, ::handle(icon), 0, 0, 0, nullptr, DI_NORMAL));
    return surface.pixel(7, 7);
  }
  uint32_t color(const ImageList& list, int index) const override {
    const Surface surface(RGB(1, 2, 3));
    EXPECT_TRUE(ImageList_Draw(handle_of(list), index, surface.dc(), 0, 0, ILD_NORMAL));
    return surface.pixel(7, 7);
  }
  std::string bytes_of_other_size() const override {
    OwnedImageList list(ImageList_Create(24, 24, ILC_COLOR32 | ILC_MASK, 0, 1));
    const ORLO::OwnedBitmap image(CreateBitmap(24, 24, 1, 32, nullptr));
    EXPECT_EQ(ImageList_Add(list.get(), image.get(), nullptr), 0);
    std::string bytes;
    EXPECT_EQ(SystemImageList(std::move(list)).write(bytes), ImageList::Written::yes);
    return bytes;
  }

 private:
  const TempFolder folder_;
  const std::unique_ptr<IconExtractor> icons_ = make_system_icon_extractor();
  SystemImageLists lists_{GetModuleHandleA(nullptr), kPackages, kPackagesMask};
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(System, IconsContract,
                         ::testing::Values(IconsBedMaker{
                             "Own", [] { return std::make_unique<SystemIconsBed>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(SystemIcons, TakesIconsOfTheSystemsOwnLibraries) {
  const auto icons = make_system_icon_extractor();
  for (const int32_t index : {0, 1, 2, 15}) {
    SCOPED_TRACE(index);
    EXPECT_TRUE(icons->extract("shell32.dll", index, false));
    EXPECT_TRUE(icons->extract("shell32.dll", index, true));
  }
}

TEST(SystemIcons, SurvivesFilesWithAccidents) {
  const TempFolder folder;
  const auto icons = make_system_icon_extractor();
  std::mt19937 random(11);
  int taken = 0;
  for (int round = 0; round < 300; ++round) {
    std::string bytes = round % 2 == 0 ? icon_file({1, 2}) : icon_library({{5, {1, 2}}});
    for (unsigned accidents = 1 + random() % 3; accidents > 0; --accidents) {
      const char values[] = {static_cast<char>(random()), '\xFF', '\0', '\1', '\x20'};
      const size_t range = std::min<size_t>(bytes.size(), round % 2 == 0 ? 128 : 0x300);
      bytes[random() % range] = values[random() % std::size(values)];
    }
    const std::string path = folder.make("damaged.dll", bytes);
    for (const int32_t index : {0, 1, -5})
      taken += icons->extract(path.c_str(), index, round % 4 < 2) ? 1 : 0;
  }
  EXPECT_GT(taken, 30);
}

namespace {

using namespace std::string_literals;

class SystemImageListTest : public testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(ORLO::live_handles(), handles_); }

  /// What a list with so many icons writes.
  std::string written(int count) {
    const auto list = lists_.fresh();
    const SystemIcon icon(ORLO::OwnedIcon(CopyIcon(LoadIconA(nullptr, IDI_APPLICATION))));
    for (int i = 0; i < count; ++i)
      EXPECT_EQ(list->append(icon), i + 1);
    std::string bytes;
    EXPECT_EQ(list->write(bytes), ImageList::Written::yes);
    return bytes;
  }

  /// Reads the bytes, and if they make a list does with it what the program does.
  bool survives(const std::string& bytes) {
    bool other_size = false;
    const auto list = lists_.read(bytes, other_size);
    if (!list) return false;
    const Surface surface(RGB(255, 255, 255));
    const SystemIcon icon(ORLO::OwnedIcon(CopyIcon(LoadIconA(nullptr, IDI_APPLICATION))));
    for (int i = 0; i < 10; ++i)
      EXPECT_GT(list->append(icon), 0);
    for (int i = 0; i < list->count(); ++i)
      EXPECT_TRUE(ImageList_Draw(handle_of(*list), i, surface.dc(), 0, 0, ILD_NORMAL));
    std::string again;
    EXPECT_EQ(list->write(again), ImageList::Written::yes);
    return true;
  }

  const int handles_ = ORLO::live_handles();
  SystemImageLists lists_{GetModuleHandleA(nullptr), kPackages, kPackagesMask};
};

TEST_F(SystemImageListTest, SurvivesBytesWithAccidents) {
  const std::string whole = written(5);
  ASSERT_TRUE(survives(whole));
  std::mt19937 random(42);
  const auto pick = [&](size_t below) {
    return std::uniform_int_distribution<size_t>(0, below - 1)(random);
  };
  int lists = 0;
  for (int round = 0; round < 400; ++round) {
    std::string bytes = whole;
    for (size_t accidents = 1 + pick(4); accidents > 0; --accidents) {
      // Most hit what the two headers say.
      const size_t header = pick(2) == 0 ? 0 : bytes.size() - std::min<size_t>(bytes.size(), 318);
      const size_t at = pick(4) == 0 ? pick(bytes.size()) : header + pick(90);
      if (at >= bytes.size()) continue;
      const char values[] = {static_cast<char>(random()), '\xFF', '\x7F', '\0', '\1'};
      bytes[at] = values[pick(std::size(values))];
    }
    if (pick(8) == 0) bytes.resize(1 + pick(bytes.size()));
    lists += survives(bytes) ? 1 : 0;
  }
  EXPECT_GT(lists, 40);
  EXPECT_LT(lists, 360);
}

TEST_F(SystemImageListTest, SurvivesHugeNumbersInTheHeader) {
  const std::string whole = written(5);
  for (size_t at = 4; at < 90; at += 2) {
    for (const char value : {'\0', '\x7F', '\x80', '\xFF'}) {
      std::string bytes = whole;
      bytes[at] = bytes[at + 1] = value;
      survives(bytes);
    }
  }
}

TEST_F(SystemImageListTest, SurvivesNoiseOfAnyLength) {
  std::mt19937 random(7);
  for (const size_t size : {1U, 27U, 28U, 29U, 100U, 10000U, 100U << 20}) {
    SCOPED_TRACE(size);
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; i += 1 + i / 64)
      bytes[i] = static_cast<char>(random());
    EXPECT_FALSE(survives(bytes));
    const std::string head = written(0).substr(0, 28);
    bytes.replace(0, std::min(head.size(), size), head, 0, std::min(head.size(), size));
    EXPECT_FALSE(survives(bytes));
  }
}

TEST_F(SystemImageListTest, ReadsNoBackgroundColour) {
  std::string bytes = written(0);
  bytes.replace(14, 4, std::string("\xFF\0\0\0", 4));
  bool other_size = false;
  const auto list = lists_.read(bytes, other_size);
  ASSERT_TRUE(list);
  EXPECT_EQ(ImageList_GetBkColor(handle_of(*list)), CLR_NONE);
}

TEST_F(SystemImageListTest, HasImagesOfTheSystemsSmallSizeAndNoBackground) {
  const auto list = lists_.fresh();
  int width = 0;
  int height = 0;
  ASSERT_TRUE(ImageList_GetIconSize(handle_of(*list), &width, &height));
  EXPECT_EQ(width, GetSystemMetrics(SM_CXSMICON));
  EXPECT_EQ(height, GetSystemMetrics(SM_CYSMICON));
  EXPECT_EQ(ImageList_GetBkColor(handle_of(*list)), CLR_NONE);
}

TEST_F(SystemImageListTest, ShowsTheParcelWithHardEdgesOnAnyBackground) {
  const auto list = lists_.fresh();
  if (GetSystemMetrics(SM_CXSMICON) != 16) GTEST_SKIP() << "the pixels are those of 16 by 16";
  constexpr uint32_t kOutline = 0x6E461C;
  constexpr uint32_t kTape = 0xFBF0D8;
  const struct {
    int x;
    int y;
    uint32_t color;  ///< 0 for the background's
  } pixels[] = {{0, 0, 0},         {15, 15, 0},   {3, 0, 0},         {3, 1, kOutline},
                {12, 1, kOutline}, {13, 1, 0},    {1, 14, kOutline}, {14, 14, kOutline},
                {15, 14, 0},       {7, 2, kTape}, {2, 7, 0xDDA75E},  {4, 3, 0xF0C98C},
                {7, 13, 0xC68B42}};
  for (const COLORREF background : {RGB(255, 255, 255), RGB(255, 255, 0), RGB(1, 2, 3)}) {
    const Surface surface(background);
    ASSERT_TRUE(ImageList_Draw(handle_of(*list), 0, surface.dc(), 0, 0, ILD_NORMAL));
    for (const auto& pixel : pixels) {
      SCOPED_TRACE(testing::Message() << background << " at " << pixel.x << ',' << pixel.y);
      const uint32_t behind = surface.pixel(Surface::kSize - 1, Surface::kSize - 1);
      EXPECT_EQ(surface.pixel(pixel.x, pixel.y), pixel.color != 0 ? pixel.color : behind);
    }
  }
}

TEST_F(SystemImageListTest, WritesNothingOfTheMagentaUnderTheMask) {
  EXPECT_EQ(written(0).find("\xFF\0\xFF"s), std::string::npos);
}

TEST_F(SystemImageListTest, WithoutItsPictureIsEmptyAndRefusesAll) {
  SystemImageLists lists(GetModuleHandleA(nullptr), 9999, 9998);
  const auto list = lists.fresh();
  std::string bytes = "untouched";
  const SystemIcon icon(ORLO::OwnedIcon(CopyIcon(LoadIconA(nullptr, IDI_APPLICATION))));
  EXPECT_EQ(list->append(icon), -1);
  EXPECT_EQ(list->count(), 0);
  EXPECT_EQ(list->write(bytes), ImageList::Written::no);
}

TEST_F(SystemImageListTest, KeepsAWhitePixelThatIsInsideAnIcon) {
  const TempFolder folder;
  const auto icons = make_system_icon_extractor();
  const auto icon =
      icons->extract(folder.make("white.ico", icon_file({0xFFFFFF, 0xFFFFFF})).c_str(), 0, false);
  ASSERT_TRUE(icon);
  const auto list = lists_.fresh();
  ASSERT_EQ(list->append(*icon), 1);
  const Surface surface(RGB(255, 255, 0));
  ASSERT_TRUE(ImageList_Draw(handle_of(*list), 1, surface.dc(), 0, 0, ILD_NORMAL));
  EXPECT_EQ(surface.pixel(8, 8), 0xFFFFFFU);
}

}  // namespace
