#include "persist/window_pos.h"

#include <gtest/gtest.h>

namespace {

TEST(WindowPos, SurvivesTheRoundTrip) {
  const WindowPos pos{-10, 20, 1200, 800, 3};
  EXPECT_STREQ(window_pos_text(pos).c_str(), "-10/20/1200/800 - 3");
  EXPECT_EQ(parse_window_pos(window_pos_text(pos)), pos);
}

TEST(WindowPos, FewerThanFiveNumbersAreNone) {
  for (const char* text : {"", "1/2/3", "1/2/3/4", "1/2/3/4 - ", "a/2/3/4 - 1", "1 2 3 4 5"}) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(parse_window_pos(text).has_value());
  }
}

TEST(WindowPos, BlanksAndWhatStandsBehindDoNotMatter) {
  EXPECT_EQ(parse_window_pos(" 1/2/ 3/4-5 and more"), (WindowPos{1, 2, 3, 4, 5}));
}

TEST(WindowPos, MinimisedWindowLeavesTheFormerPlace) {
  String kept = "1/2/3/4 - 1";
  keep_window_pos({5, 6, 7, 8, WindowPos::kMinimized}, kept);
  EXPECT_STREQ(kept.c_str(), "1/2/3/4 - 1");
  keep_window_pos({5, 6, 7, 8, 3}, kept);
  EXPECT_STREQ(kept.c_str(), "5/6/7/8 - 3");
}

TEST(WindowPos, SamePlaceKeepsTheTextAsItIs) {
  String kept = "1/2/3/4 - 1";
  const String before = kept;
  keep_window_pos({1, 2, 3, 4, 1}, kept);
  EXPECT_TRUE(kept.shares_block_with(before));
}

// A screen with a bar at its lower edge, and a smaller one at its left.
const std::vector<ScreenArea> kScreens = {{0, 0, 1280, 984}, {-800, 100, 0, 700}};

TEST(WindowWithinReach, StaysWhereItsTitleBarCanBeGrasped) {
  const WindowPos places[] = {{0, 0, 900, 700, 1},        {-8, -8, 1288, 1032, 3},
                              {-852, 200, 48, 900, 1},    {1232, 972, 2000, 1600, 1},
                              {-800, 600, -100, 1500, 1}, {-100, 50, 100, 60, 1},
                              {-5, -12, 1300, 700, 1}};
  for (const WindowPos& pos : places)
    EXPECT_EQ(within_reach(pos, kScreens), pos) << window_pos_text(pos).c_str();
}

TEST(WindowWithinReach, ComesToTheFirstScreenFromOneThatIsGone) {
  const struct {
    WindowPos saved;
    WindowPos shown;
  } rows[] = {
      {{3000, 100, 3900, 800, 1}, {380, 100, 1280, 800, 1}},
      {{-2000, -500, -1100, 200, 3}, {0, 0, 900, 700, 3}},
      {{100, 980, 1000, 1680, 1}, {100, 284, 1000, 984, 1}},
      {{100, -13, 1000, 687, 1}, {100, 0, 1000, 700, 1}},
      {{1240, 0, 2140, 700, 1}, {380, 0, 1280, 700, 1}},
      // Larger than the screen, or without a size.
      {{5000, 0, 8000, 5000, 1}, {0, 0, 1280, 984, 1}},
      {{500, 300, 100, 200, 1}, {500, 300, 500, 300, 1}},
      {{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN, 1}, {1280, 984, 1280, 984, 1}},
  };
  for (const auto& row : rows)
    EXPECT_EQ(within_reach(row.saved, kScreens), row.shown) << window_pos_text(row.saved).c_str();
}

TEST(WindowWithinReach, AsksForALargerGripAtAHigherResolution) {
  const WindowPos narrow{1232, 100, 2000, 800, 1};
  const WindowPos wide{1184, 100, 2000, 800, 1};
  const WindowPos low{0, 972, 900, 1600, 1};
  const WindowPos high{0, 960, 900, 1600, 1};
  EXPECT_EQ(within_reach(narrow, kScreens, 96), narrow);
  EXPECT_EQ(within_reach(narrow, kScreens, 192), (WindowPos{512, 100, 1280, 800, 1}));
  EXPECT_EQ(within_reach(wide, kScreens, 192), wide);
  EXPECT_EQ(within_reach(low, kScreens, 96), low);
  EXPECT_EQ(within_reach(low, kScreens, 192), (WindowPos{0, 356, 900, 984, 1}));
  EXPECT_EQ(within_reach(high, kScreens, 192), high);
}

TEST(WindowPos, HasASizeThatAWindowCanHave) {
  const WindowPos rows[] = {
      {10, 20, 110, 70, 1}, {110, 70, 10, 20, 1}, {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX, 1}};
  const int sizes[][2] = {{100, 50}, {0, 0}, {32767, 32767}};
  for (size_t i = 0; i < std::size(rows); ++i) {
    EXPECT_EQ(rows[i].width(), sizes[i][0]);
    EXPECT_EQ(rows[i].height(), sizes[i][1]);
  }
}

constexpr SizeLimits kLimits = {600, 400, 1292, 1036};

TEST(WindowAsPlaced, HasASizeWithinTheLimits) {
  const struct {
    WindowPos saved;
    WindowPos placed;
  } rows[] = {
      {{10, 20, 710, 520, 1}, {10, 20, 710, 520, 1}},
      {{10, 20, 610, 420, 3}, {10, 20, 610, 420, 3}},
      {{10, 20, 609, 419, 1}, {10, 20, 610, 420, 1}},
      {{10, 20, 1302, 1056, 1}, {10, 20, 1302, 1056, 1}},
      {{10, 20, 1303, 1057, 1}, {10, 20, 1302, 1056, 1}},
      {{710, 520, 10, 20, 1}, {710, 520, 1310, 920, 1}},
  };
  for (const auto& row : rows)
    EXPECT_EQ(as_placed(row.saved, kLimits), row.placed) << window_pos_text(row.saved).c_str();
}

TEST(WindowAsPlaced, LiesNoFurtherOutThanAWindowCan) {
  const struct {
    WindowPos saved;
    WindowPos placed;
  } rows[] = {
      {{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX, 1}, {-32768, -32768, -31476, -31732, 1}},
      {{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN, 1}, {32767, 32767, 33367, 33167, 1}},
      {{INT32_MIN, INT32_MAX, INT32_MIN, INT32_MAX, 1}, {-32768, 32767, -32168, 33167, 1}},
      {{-32768, 32767, -32068, 33267, 1}, {-32768, 32767, -32068, 33267, 1}},
      {{-32769, 32768, -32069, 33268, 1}, {-32768, 32767, -32068, 33267, 1}},
  };
  for (const auto& row : rows)
    EXPECT_EQ(as_placed(row.saved, kLimits), row.placed) << window_pos_text(row.saved).c_str();
}

TEST(WindowAsPlaced, TakesTheLeastWhereTheMostIsLess) {
  EXPECT_EQ(as_placed({0, 0, 700, 500, 1}, {600, 400, 320, 200}), (WindowPos{0, 0, 600, 400, 1}));
}

TEST(WindowAsPlaced, StandsLimitsThatAreNone) {
  EXPECT_EQ(as_placed({0, 0, 700, 500, 1}, {INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN}),
            (WindowPos{0, 0, 32767, 32767, 1}));
  EXPECT_EQ(as_placed({5, 6, 700, 500, 1}, {INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN}),
            (WindowPos{5, 6, 5, 6, 1}));
}

TEST(WindowWithinReach, IsFoundFromWhateverHasBeenSaved) {
  const int edges[] = {INT32_MIN, INT32_MIN + 1, -32769, -32768, -801,  -800,          -1,
                       0,         1279,          1280,   32767,  32768, INT32_MAX - 1, INT32_MAX};
  for (const int left : edges)
    for (const int top : edges)
      for (const int right : edges)
        for (const int bottom : edges) {
          const WindowPos saved{left, top, right, bottom, 1};
          const WindowPos shown = within_reach(as_placed(saved, kLimits), kScreens);
          const bool on_first = shown.right >= 48 && shown.left <= 1280 - 48 && shown.top >= -12 &&
                                shown.top <= 984 - 12;
          const bool on_second = shown.right >= -800 + 48 && shown.left <= -48 &&
                                 shown.top >= 100 - 12 && shown.top <= 700 - 12;
          ASSERT_TRUE(on_first || on_second) << window_pos_text(saved).c_str();
          ASSERT_LE(shown.width(), kLimits.max_width) << window_pos_text(saved).c_str();
          ASSERT_LE(shown.height(), kLimits.max_height) << window_pos_text(saved).c_str();
        }
}

TEST(WindowWithinReach, StaysWithoutAScreen) {
  const WindowPos pos{3000, 100, 3900, 800, 1};
  EXPECT_EQ(within_reach(pos, {}), pos);
}

}  // namespace
