#include "orlo/dpi.h"

#include <gtest/gtest.h>

#include <limits>

namespace ORLO {
namespace {

constexpr int kLargest = std::numeric_limits<int>::max();
constexpr int kSmallest = std::numeric_limits<int>::min();

TEST(Dpi, LeavesLengthsAsTheyAreOnAnOrdinaryScreen) {
  for (const int length : {kSmallest, -300, -1, 0, 1, 7, 20, 252, 300, kLargest}) {
    EXPECT_EQ(scale_up(length, 96), length);
    EXPECT_EQ(scale_down(length, 96), length);
  }
}

TEST(Dpi, ScalesByTheResolutionAndRoundsHalvesAwayFromZero) {
  constexpr struct {
    int length, dpi, pixels;
  } kRows[] = {
      {20, 144, 30},  {220, 144, 330}, {114, 144, 171},  {252, 144, 378}, {300, 192, 600},
      {90, 120, 113}, {50, 120, 63},   {70, 120, 88},    {1, 144, 2},     {3, 144, 5},
      {1, 120, 1},    {-1, 144, -2},   {-90, 120, -113}, {0, 192, 0},     {100, 72, 75},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.length);
    EXPECT_EQ(scale_up(row.length, row.dpi), row.pixels);
  }
}

TEST(Dpi, GivesALengthBackThatHasBeenScaledUp) {
  for (const int dpi : {96, 97, 120, 125, 144, 192, 288, 480}) {
    for (int length = -400; length <= 400; ++length)
      ASSERT_EQ(scale_down(scale_up(length, dpi), dpi), length) << dpi;
  }
}

TEST(Dpi, ScalesDownToZeroFromZeroAlone) {
  for (const int dpi : {96, 120, 144, 192, 480}) {
    EXPECT_EQ(scale_down(0, dpi), 0);
    EXPECT_EQ(scale_down(1, dpi), 1);
    EXPECT_EQ(scale_down(-1, dpi), -1);
  }
  EXPECT_EQ(scale_down(30, 144), 20);
  EXPECT_EQ(scale_down(31, 144), 21);
}

TEST(Dpi, StaysInTheRangeOfNumbers) {
  EXPECT_EQ(scale_up(kLargest, 192), kLargest);
  EXPECT_EQ(scale_up(kSmallest, 192), kSmallest);
  EXPECT_EQ(scale_up(kLargest, kLargest), kLargest);
  EXPECT_EQ(scale_down(kLargest, 1), kLargest);
  EXPECT_EQ(scale_down(kSmallest, 1), kSmallest);
}

TEST(Dpi, TakesAScreenThatTellsNothingForAnOrdinaryOne) {
  for (const int dpi : {0, -1, kSmallest}) {
    EXPECT_EQ(scale_up(90, dpi), 90);
    EXPECT_EQ(scale_down(90, dpi), 90);
  }
}

}  // namespace
}  // namespace ORLO
