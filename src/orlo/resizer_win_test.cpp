#include "orlo/resizer.h"

#include <gtest/gtest.h>

#include "orlo/dialog_test_support.h"

namespace ORLO {
namespace {

constexpr WORD kControl = 100;
constexpr WORD kOther = 101;
constexpr int kMissing = 999;
constexpr int kGrowX = 30;
constexpr int kGrowY = 20;

class ResizerTest : public testing::Test {
 protected:
  ResizerTest() {
    resizer.add(nullptr, 0);
    before = dialog.place_of(kControl);
    client = dialog.client();
  }

  static TestTemplate plan() {
    TestTemplate made(200, 100);
    made.add(kControl, TestTemplate::kStatic, "", {10, 10, 50, 30});
    made.add(kOther, TestTemplate::kStatic, "", {60, 10, 90, 30});
    return made;
  }

  void grow_by(int dx, int dy) { resizer.resize(client.cx + dx, client.cy + dy); }

  TestTemplate made = plan();
  const BareDialog dialog{made};
  Resizer resizer;
  RECT before = {};
  SIZE client = {};
};

TEST_F(ResizerTest, EachFlagMovesItsEdge) {
  // Every combination: the edges of the right and lower side follow their flags alone.
  for (unsigned flags = 0; flags < 16; ++flags) {
    SCOPED_TRACE(flags);
    Resizer one;
    const ResizeRule rule = {kControl, flags};
    one.add(&rule, 1);
    one.init(dialog.window());
    const RECT old = dialog.place_of(kControl);
    one.resize(client.cx + kGrowX, client.cy + kGrowY);
    const RECT expected = {
        old.left + ((flags & 1) != 0 ? kGrowX : 0), old.top + ((flags & 4) != 0 ? kGrowY : 0),
        old.right + ((flags & 2) != 0 ? kGrowX : 0), old.bottom + ((flags & 8) != 0 ? kGrowY : 0)};
    // A left or upper edge that passes the other one leaves nothing to see; the rest is exact.
    EXPECT_TRUE(dialog.place_of(kControl) == expected);
    one.resize(client.cx, client.cy);
    EXPECT_TRUE(dialog.place_of(kControl) == old);
  }
}

TEST_F(ResizerTest, FlagsOfZeroNeverMove) {
  const ResizeRule rule = {kControl, 0};
  resizer.add(&rule, 1);
  resizer.init(dialog.window());
  grow_by(kGrowX, kGrowY);
  grow_by(-kGrowX, 0);
  EXPECT_TRUE(dialog.place_of(kControl) == before);
}

TEST_F(ResizerTest, UnchangedSizeDoesNothing) {
  const ResizeRule rule = {kControl, 15};
  resizer.add(&rule, 1);
  resizer.init(dialog.window());
  // A control that something else has moved stays there.
  SetWindowPos(GetDlgItem(dialog.window(), kControl), nullptr, 3, 4, 0, 0,
               SWP_NOSIZE | SWP_NOZORDER);
  const RECT moved = dialog.place_of(kControl);
  grow_by(0, 0);
  EXPECT_TRUE(dialog.place_of(kControl) == moved);
}

TEST_F(ResizerTest, MissingControlIsSkippedAndTheOthersMove) {
  const ResizeRule rules[] = {{kMissing, 15}, {kControl, 3}, {kMissing, 2}, {kOther, 12}};
  resizer.add(rules, 4);
  resizer.init(dialog.window());
  const RECT other = dialog.place_of(kOther);
  grow_by(kGrowX, kGrowY);
  EXPECT_EQ(dialog.place_of(kControl).left, before.left + kGrowX);
  EXPECT_EQ(dialog.place_of(kControl).top, before.top);
  EXPECT_EQ(dialog.place_of(kOther).top, other.top + kGrowY);
  EXPECT_EQ(dialog.place_of(kOther).left, other.left);
}

TEST_F(ResizerTest, MovedControlIsDrawnAnewAndAStandingOneIsNot) {
  ShowWindow(dialog.window(), SW_SHOW);
  const ResizeRule rules[] = {{kControl, 3}, {kOther, 12}};
  resizer.add(rules, 2);
  resizer.init(dialog.window());
  const auto is_due = [this](int id) {
    return GetUpdateRect(GetDlgItem(dialog.window(), id), nullptr, FALSE) != FALSE;
  };
  for (const int id : {kControl, kOther})
    ValidateRect(GetDlgItem(dialog.window(), id), nullptr);
  grow_by(kGrowX, 0);
  EXPECT_TRUE(is_due(kControl));
  EXPECT_FALSE(is_due(kOther));
}

TEST_F(ResizerTest, GrowthAddsUpOverSeveralSteps) {
  const ResizeRule rule = {kControl, 15};
  resizer.add(&rule, 1);
  resizer.init(dialog.window());
  for (int step = 1; step <= 5; ++step)
    grow_by(step * 3, step * 2);
  EXPECT_EQ(dialog.place_of(kControl).left, before.left + 15);
  EXPECT_EQ(dialog.place_of(kControl).top, before.top + 10);
}

TEST_F(ResizerTest, SetSizeAddsToTheSmallestSizeAndLaysOut) {
  const ResizeRule rule = {kControl, 15};
  resizer.add(&rule, 1);
  resizer.init(dialog.window());
  RECT frame = {};
  GetWindowRect(dialog.window(), &frame);
  resizer.set_size(kGrowX, kGrowY);
  RECT grown = {};
  GetWindowRect(dialog.window(), &grown);
  EXPECT_EQ(width(grown), width(frame) + kGrowX);
  EXPECT_EQ(height(grown), height(frame) + kGrowY);
  EXPECT_EQ(dialog.place_of(kControl).left, before.left + kGrowX);
  EXPECT_EQ(dialog.place_of(kControl).bottom, before.bottom + kGrowY);
}

TEST_F(ResizerTest, SmallestSizeIsThatOfTheFrameAtTheStart) {
  resizer.init(dialog.window());
  RECT frame = {};
  GetWindowRect(dialog.window(), &frame);
  MINMAXINFO info = {};
  resizer.limit(info);
  EXPECT_EQ(info.ptMinTrackSize.x, width(frame));
  EXPECT_EQ(info.ptMinTrackSize.y, height(frame));
}

TEST(Resizer, WithoutAWindowDoesNothing) {
  Resizer resizer;
  resizer.resize(10, 10);
  MINMAXINFO info = {};
  resizer.limit(info);
  EXPECT_EQ(info.ptMinTrackSize.x, 0);
}

TEST(ClientSpace, OfAMinimisedWindowIsThatOfItsNormalSize) {
  TestTemplate plan(200, 100, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
  const BareDialog dialog(plan);
  RECT normal = {};
  GetClientRect(dialog.window(), &normal);
  ShowWindow(dialog.window(), SW_MINIMIZE);
  ASSERT_TRUE(IsIconic(dialog.window()));
  const RECT minimised = client_space(dialog.window());
  EXPECT_GT(width(minimised), 0);
  // The frame's metrics are those of a classic window with a menu bar: near, not exact.
  EXPECT_NEAR(width(minimised), width(normal), 16);
  EXPECT_NEAR(height(minimised), height(normal), 40);
}

}  // namespace
}  // namespace ORLO
