#include "platform/drawn_images.h"

#include <gtest/gtest.h>

#include <set>

#include "platform/surface_win_test_support.h"
#include "platform/system_image_list.h"

namespace {

// Of the program's resources.
constexpr unsigned kPackages = 119;
constexpr unsigned kPackagesMask = 120;

class DrawnImagesTest : public testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(ORLO::live_handles(), handles_); }

  static HINSTANCE module() { return GetModuleHandleA(nullptr); }
  /// 0xRRGGBB.
  static uint32_t pixel(HBITMAP bitmap, int x, int y) {
    const OwnedDc dc(CreateCompatibleDC(nullptr));
    const HGDIOBJ former = SelectObject(dc.get(), bitmap);
    const COLORREF color = GetPixel(dc.get(), x, y);
    SelectObject(dc.get(), former);
    return rgb(color);
  }

  static constexpr uint32_t kMagenta = 0xFF00FF;
  static constexpr uint32_t kWhite = 0xFFFFFF;
  static constexpr SIZE kDrawn = {16, 16};

 private:
  const int handles_ = ORLO::live_handles();
};

TEST_F(DrawnImagesTest, AreThreePackages) {
  EXPECT_EQ(count_drawn_images(module(), kPackages), 3);
  EXPECT_EQ(count_drawn_images(module(), kPackagesMask), 3);
  EXPECT_EQ(count_drawn_images(module(), 9999), 0);
}

TEST_F(DrawnImagesTest, AreMagentaExactlyWhereTheirMaskIsWhite) {
  const ORLO::OwnedBitmap images = load_drawn_images(module(), kPackages, 3, kDrawn, false);
  const ORLO::OwnedBitmap mask = load_drawn_images(module(), kPackagesMask, 3, kDrawn, true);
  ASSERT_TRUE(images && mask);
  int clear = 0;
  for (int y = 0; y < 16; ++y) {
    for (int x = 0; x < 48; ++x) {
      const bool is_clear = pixel(mask.get(), x, y) == kWhite;
      EXPECT_EQ(pixel(images.get(), x, y) == kMagenta, is_clear) << x << ',' << y;
      clear += is_clear ? 1 : 0;
    }
  }
  EXPECT_GT(clear, 100);
  EXPECT_LT(clear, 300);
}

TEST_F(DrawnImagesTest, KeepTheirPixelsAtTwiceTheSize) {
  const ORLO::OwnedBitmap small = load_drawn_images(module(), kPackages, 3, kDrawn, false);
  const ORLO::OwnedBitmap large = load_drawn_images(module(), kPackages, 3, {32, 32}, false);
  ASSERT_TRUE(small && large);
  for (int y = 0; y < 32; ++y) {
    for (int x = 0; x < 96; ++x)
      ASSERT_EQ(pixel(large.get(), x, y), pixel(small.get(), x / 2, y / 2)) << x << ',' << y;
  }
}

TEST_F(DrawnImagesTest, HaveNoColourThatWasNotDrawnAtAnySize) {
  std::set<uint32_t> drawn;
  const ORLO::OwnedBitmap small = load_drawn_images(module(), kPackages, 3, kDrawn, false);
  for (int i = 0; i < 16 * 48; ++i)
    drawn.insert(pixel(small.get(), i % 48, i / 48));
  for (const int side : {10, 20, 24, 40}) {
    const ORLO::OwnedBitmap images = load_drawn_images(module(), kPackages, 3, {side, side}, false);
    ASSERT_TRUE(images);
    for (int i = 0; i < side * side * 3; ++i)
      ASSERT_TRUE(drawn.count(pixel(images.get(), i % (side * 3), i / (side * 3)))) << side;
  }
}

TEST_F(DrawnImagesTest, AreBlackenedWhereTheyAreSeenThroughAndNowhereElse) {
  for (const int side : {16, 24}) {
    const SIZE size = {side, side};
    const ORLO::OwnedBitmap before = load_drawn_images(module(), kPackages, 1, size, false);
    const ORLO::OwnedBitmap after = load_drawn_images(module(), kPackages, 1, size, false);
    const ORLO::OwnedBitmap mask = load_drawn_images(module(), kPackagesMask, 1, size, true);
    ASSERT_TRUE(blacken_see_through(after.get(), mask.get(), size));
    for (int i = 0; i < side * side; ++i) {
      const uint32_t color = pixel(before.get(), i % side, i / side);
      EXPECT_EQ(pixel(after.get(), i % side, i / side), color == kMagenta ? 0U : color) << i;
    }
  }
}

class MarksTest : public DrawnImagesTest {
 protected:
  /// Colour of a pixel of an image that is drawn on a surface.
  static uint32_t drawn_pixel(HIMAGELIST list, int image, COLORREF background, int x, int y) {
    const Surface surface(background);
    EXPECT_TRUE(ImageList_Draw(list, image, surface.dc(), 0, 0, ILD_NORMAL));
    return surface.pixel(x, y);
  }
};

TEST_F(MarksTest, AreThreeImagesOfTheSizeAskedForWithoutABackground) {
  for (const int side : {16, 20, 24, 32}) {
    const OwnedImageList marks = load_marks(module(), kPackages, side);
    ASSERT_TRUE(marks);
    EXPECT_EQ(ImageList_GetImageCount(marks.get()), 3);
    int width = 0;
    int height = 0;
    ASSERT_TRUE(ImageList_GetIconSize(marks.get(), &width, &height));
    EXPECT_EQ(width, side);
    EXPECT_EQ(height, side);
    EXPECT_EQ(ImageList_GetBkColor(marks.get()), CLR_NONE);
  }
}

TEST_F(MarksTest, LetTheBackgroundThroughWhereTheyAreMagenta) {
  for (const int side : {16, 24, 32}) {
    const OwnedImageList marks = load_marks(module(), kPackages, side);
    const ORLO::OwnedBitmap images = load_drawn_images(module(), kPackages, 3, {side, side}, false);
    ASSERT_TRUE(marks && images);
    for (const uint32_t background : {0xFFFFFFU, 0x123456U, 0x000000U}) {
      for (int image = 0; image < 3; ++image) {
        const Surface surface(RGB(background >> 16, background >> 8 & 0xFF, background & 0xFF));
        ASSERT_TRUE(ImageList_Draw(marks.get(), image, surface.dc(), 0, 0, ILD_NORMAL));
        for (int i = 0; i < side * side; ++i) {
          const uint32_t color = pixel(images.get(), image * side + i % side, i / side);
          ASSERT_EQ(surface.pixel(i % side, i / side), color == kMagenta ? background : color)
              << image << " at " << i % side << ',' << i / side << " of " << side;
        }
      }
    }
  }
}

TEST_F(MarksTest, ShowATickForInstalledAndACrossForMissing) {
  const OwnedImageList marks = load_marks(module(), kPackages, 16);
  constexpr COLORREF kAny = RGB(1, 2, 3);
  // In the middle of the badge's left half.
  EXPECT_EQ(drawn_pixel(marks.get(), 0, kAny, 8, 12), 0xDDA75EU);
  EXPECT_EQ(drawn_pixel(marks.get(), 1, kAny, 8, 10), 0x177E63U);
  EXPECT_EQ(drawn_pixel(marks.get(), 2, kAny, 8, 11), 0xC82C2CU);
}

TEST_F(MarksTest, AreNoneWithoutTheirBitmapOrASize) {
  EXPECT_FALSE(load_marks(module(), 9999, 16));
  EXPECT_FALSE(load_marks(module(), kPackages, 0));
  EXPECT_FALSE(load_marks(module(), kPackages, -16));
}

}  // namespace
