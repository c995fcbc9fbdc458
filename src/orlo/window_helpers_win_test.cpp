#include "orlo/window_helpers.h"

#include <gtest/gtest.h>

#include "orlo/dialog_test_support.h"

namespace ORLO {
namespace {

RECT place_of(HWND window) {
  RECT rect = {};
  GetWindowRect(window, &rect);
  return rect;
}

class WindowHelpersTest : public testing::Test {
 protected:
  void move(int left, int top) const {
    SetWindowPos(dialog.window(), nullptr, left, top, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  }
  static void expect_centred(HWND window, const RECT& around) {
    const RECT rect = place_of(window);
    EXPECT_EQ(rect.left, around.left + (width(around) - width(rect)) / 2);
    EXPECT_EQ(rect.top, around.top + (height(around) - height(rect)) / 2);
  }

  const int screen_width = GetSystemMetrics(SM_CXSCREEN);
  const int screen_height = GetSystemMetrics(SM_CYSCREEN);
  TestTemplate plan{120, 80};
  const BareDialog dialog{plan};
};

TEST_F(WindowHelpersTest, MoveToScreenBringsEachEdgeIn) {
  const RECT rect = place_of(dialog.window());
  const LONG right = screen_width - width(rect);
  const LONG bottom = screen_height - height(rect);
  const struct {
    const char* what;
    POINT start;
    POINT end;
  } rows[] = {
      {"inside", {20, 30}, {20, 30}},
      {"left", {-20, 30}, {0, 30}},
      {"top", {20, -30}, {20, 0}},
      {"right", {right + 40, 30}, {right, 30}},
      {"bottom", {20, bottom + 40}, {20, bottom}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    move(row.start.x, row.start.y);
    move_to_screen(dialog.window());
    EXPECT_EQ(place_of(dialog.window()).left, row.end.x);
    EXPECT_EQ(place_of(dialog.window()).top, row.end.y);
  }
}

TEST_F(WindowHelpersTest, MoveToScreenKeepsTheCornerOfALargerWindowInView) {
  SetWindowPos(dialog.window(), nullptr, 50, 60, screen_width + 200, screen_height + 200,
               SWP_NOZORDER | SWP_NOACTIVATE);
  move_to_screen(dialog.window());
  EXPECT_EQ(place_of(dialog.window()).left, 0);
  EXPECT_EQ(place_of(dialog.window()).top, 0);
}

TEST_F(WindowHelpersTest, ShrinksAWindowThatIsLargerThanTheWorkArea) {
  RECT area = {};
  SystemParametersInfoA(SPI_GETWORKAREA, 0, &area, 0);
  const int room_x = width(area);
  const int room_y = height(area);
  const struct {
    const char* what;
    SIZE before;
    SIZE after;
  } rows[] = {
      {"small", {300, 200}, {300, 200}},
      {"as large", {room_x, room_y}, {room_x, room_y}},
      {"wide", {room_x + 1, 200}, {room_x, 200}},
      {"high", {300, room_y + 1}, {300, room_y}},
      {"large", {room_x + 200, room_y + 100}, {room_x, room_y}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    SetWindowPos(dialog.window(), nullptr, 7, 8, row.before.cx, row.before.cy,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    shrink_to_work_area(dialog.window());
    const RECT shrunk = place_of(dialog.window());
    EXPECT_EQ(width(shrunk), row.after.cx);
    EXPECT_EQ(height(shrunk), row.after.cy);
    EXPECT_EQ(shrunk.left, 7);
    EXPECT_EQ(shrunk.top, 8);
  }
}

TEST_F(WindowHelpersTest, CenterWindowUsesTheWorkAreaWithoutASibling) {
  RECT area = {};
  SystemParametersInfoA(SPI_GETWORKAREA, 0, &area, 0);
  move(0, 0);
  center_window(dialog.window());
  expect_centred(dialog.window(), area);
}

TEST_F(WindowHelpersTest, CenterWindowUsesTheVisibleWindowBelow) {
  TestTemplate base_plan(300, 200, WS_POPUP | WS_VISIBLE);
  const BareDialog base(base_plan);
  SetWindowPos(base.window(), HWND_TOP, 200, 150, 0, 0, SWP_NOSIZE);
  TestTemplate top_plan(100, 50, WS_POPUP | WS_VISIBLE);
  const BareDialog top(top_plan);
  SetWindowPos(top.window(), HWND_TOP, 0, 0, 0, 0, SWP_NOSIZE);
  center_window(top.window());
  expect_centred(top.window(), place_of(base.window()));
}

TEST_F(WindowHelpersTest, CenterWindowUsesTheOwnerWhateverLiesBetween) {
  TestTemplate owner_plan(300, 200, WS_POPUP | WS_VISIBLE);
  const BareDialog owner(owner_plan);
  SetWindowPos(owner.window(), HWND_TOP, 200, 150, 0, 0, SWP_NOSIZE);
  TestTemplate between_plan(120, 90, WS_POPUP | WS_VISIBLE);
  const BareDialog between(between_plan, owner.window());
  SetWindowPos(between.window(), HWND_TOP, 0, 0, 0, 0, SWP_NOSIZE);
  TestTemplate top_plan(100, 50, WS_POPUP);
  const BareDialog top(top_plan, owner.window());
  center_window(top.window());
  expect_centred(top.window(), place_of(owner.window()));
  // One that can't be seen is no place for it.
  ShowWindow(owner.window(), SW_HIDE);
  center_window(top.window());
  expect_centred(top.window(), place_of(between.window()));
}

TEST_F(WindowHelpersTest, ReplacedMenuIsDestroyed) {
  const HMENU first = CreateMenu();
  replace_menu(dialog.window(), OwnedMenu(first));
  EXPECT_EQ(GetMenu(dialog.window()), first);
  const HMENU second = CreateMenu();
  replace_menu(dialog.window(), OwnedMenu(second));
  EXPECT_EQ(GetMenu(dialog.window()), second);
  EXPECT_FALSE(IsMenu(first));
  EXPECT_EQ(OwnedMenu::live(), 0);
}

}  // namespace
}  // namespace ORLO
