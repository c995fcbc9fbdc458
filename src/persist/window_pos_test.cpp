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

TEST(WindowPos, HasASizeThatAWindowCanHave) {
  const WindowPos rows[] = {
      {10, 20, 110, 70, 1}, {110, 70, 10, 20, 1}, {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX, 1}};
  const int sizes[][2] = {{100, 50}, {0, 0}, {32767, 32767}};
  for (size_t i = 0; i < std::size(rows); ++i) {
    EXPECT_EQ(rows[i].width(), sizes[i][0]);
    EXPECT_EQ(rows[i].height(), sizes[i][1]);
  }
}

TEST(WindowWithinReach, StaysWithoutAScreen) {
  const WindowPos pos{3000, 100, 3900, 800, 1};
  EXPECT_EQ(within_reach(pos, {}), pos);
}

}  // namespace
