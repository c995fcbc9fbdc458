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

}  // namespace
