#include "orlo/flat_button.h"

#include <gtest/gtest.h>

#include <set>

#include "orlo/dialog_mixins.h"
#include "orlo/dialog_test_support.h"

namespace ORLO {
namespace {

constexpr WORD kButton = 100;
constexpr COLORREF kRest = 0x800000;
constexpr COLORREF kActive = 0xff0000;

/// A button in a visible dialog that hands owner drawing back.
class FlatButtonTest : public testing::Test {
 protected:
  FlatButtonTest() {
    plan.add(kButton, TestTemplate::kButton, "&Refresh", {10, 10, 70, 26},
             BS_OWNERDRAW | WS_TABSTOP);
    dialog = Dialog::DoModeless(GetModuleHandleA(nullptr), plan.get(), nullptr, [&](HWND window) {
      return std::make_unique<OwnerDrawController<DlgController>>(window);
    });
    button = std::make_unique<FlatButtonController>(GetDlgItem(dialog, kButton), kRest, kActive);
    SetForegroundWindow(dialog);
  }
  ~FlatButtonTest() override { DestroyWindow(dialog); }

  /// The colours that a drawing of the button in this state holds.
  std::set<COLORREF> colors_drawn(UINT state) {
    RECT client = {};
    GetClientRect(button->window(), &client);
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, client.right, client.bottom);
    const HGDIOBJ old = SelectObject(memory, bitmap);
    DRAWITEMSTRUCT item = {};
    item.CtlType = ODT_BUTTON;
    item.CtlID = kButton;
    item.itemState = state;
    item.hwndItem = button->window();
    item.hDC = memory;
    item.rcItem = client;
    EXPECT_EQ(SendMessageA(dialog, WM_DRAWITEM, kButton, reinterpret_cast<LPARAM>(&item)), 1);
    std::set<COLORREF> colors;
    for (int y = 0; y < client.bottom; ++y) {
      for (int x = 0; x < client.right; ++x)
        colors.insert(GetPixel(memory, x, y));
    }
    SelectObject(memory, old);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return colors;
  }

  void move_mouse(short x, short y) {
    SendMessageA(button->window(), WM_MOUSEMOVE, 0, MAKELPARAM(x, y));
  }

  TestTemplate plan{100, 60, WS_POPUP | WS_VISIBLE};
  HWND dialog = nullptr;
  std::unique_ptr<FlatButtonController> button;
};

TEST_F(FlatButtonTest, DrawsItsTextInTheColourOfRest) {
  EXPECT_TRUE(colors_drawn(0).contains(kRest));
  EXPECT_TRUE(colors_drawn(0).contains(GetSysColor(COLOR_BTNFACE)));
}

TEST_F(FlatButtonTest, DisabledTextIsGrayWithAShadow) {
  const auto colors = colors_drawn(ODS_DISABLED);
  EXPECT_TRUE(colors.contains(GetSysColor(COLOR_GRAYTEXT)));
  EXPECT_TRUE(colors.contains(GetSysColor(COLOR_BTNHIGHLIGHT)));
  EXPECT_FALSE(colors.contains(kRest));
}

TEST_F(FlatButtonTest, BecomesActiveUnderTheMouseAndShowsIt) {
  ASSERT_EQ(GetForegroundWindow(), dialog) << "the test's window must be in the foreground";
  move_mouse(3, 3);
  EXPECT_TRUE(button->is_active());
  EXPECT_TRUE(colors_drawn(0).contains(kActive));
  SendMessageA(button->window(), WM_MOUSELEAVE, 0, 0);
  EXPECT_FALSE(button->is_active());
}

TEST_F(FlatButtonTest, StaysAtRestForAMouseOutside) {
  move_mouse(-1, 3);
  EXPECT_FALSE(button->is_active());
}

TEST_F(FlatButtonTest, StaysAtRestWhileDisabled) {
  EnableWindow(button->window(), FALSE);
  move_mouse(3, 3);
  EXPECT_FALSE(button->is_active());
}

TEST_F(FlatButtonTest, CancelModeAndReleaseOutsideEndTheActiveState) {
  ASSERT_EQ(GetForegroundWindow(), dialog) << "the test's window must be in the foreground";
  move_mouse(3, 3);
  SendMessageA(button->window(), WM_CANCELMODE, 0, 0);
  EXPECT_FALSE(button->is_active());
  move_mouse(3, 3);
  SendMessageA(button->window(), WM_LBUTTONUP, 0, MAKELPARAM(-5, -5));
  EXPECT_FALSE(button->is_active());
}

TEST_F(FlatButtonTest, CanBeTheDefaultButtonAndStaysOwnerDrawn) {
  const HWND window = button->window();
  EXPECT_TRUE(SendMessageA(window, WM_GETDLGCODE, 0, 0) & DLGC_UNDEFPUSHBUTTON);
  SendMessageA(window, BM_SETSTYLE, BS_DEFPUSHBUTTON, TRUE);
  EXPECT_TRUE(button->is_default());
  EXPECT_TRUE(SendMessageA(window, WM_GETDLGCODE, 0, 0) & DLGC_DEFPUSHBUTTON);
  EXPECT_EQ(GetWindowLongPtrA(window, GWL_STYLE) & BS_TYPEMASK, BS_OWNERDRAW);
  SendMessageA(window, BM_SETSTYLE, BS_PUSHBUTTON, TRUE);
  EXPECT_FALSE(button->is_default());
}

}  // namespace
}  // namespace ORLO
