#include "orlo/global_dialog.h"

#include <gtest/gtest.h>

#include "orlo/about_dlg.h"
#include "orlo/core_resources.h"
#include "orlo/dialog_mixins.h"
#include "orlo/dialog_test_support.h"
#include "orlo/message_wait.h"

namespace ORLO {
namespace {

using NamedDlg = GlblDlgTemplate<DlgController>;

HWND open_named(const char* name) {
  // The template must live until the dialog does.
  static TestTemplate plan(60, 40, WS_POPUP | WS_CAPTION | WS_VISIBLE | WS_MINIMIZEBOX);
  return Dialog::DoModeless(GetModuleHandleA(nullptr), plan.get(), nullptr, [name](HWND window) {
    return std::make_unique<NamedDlg>(window, name);
  });
}

TEST(GlblDlgTemplate, SecondOpeningClosesItselfAndBringsTheFirstToTheFront) {
  const HWND first = open_named("one");
  const HWND other = open_named("another");
  ASSERT_NE(first, nullptr);
  ASSERT_NE(other, nullptr);
  SetForegroundWindow(other);
  ASSERT_EQ(GetForegroundWindow(), other);
  EXPECT_EQ(open_named("one"), nullptr);
  EXPECT_EQ(GetForegroundWindow(), first);
  DestroyWindow(first);
  DestroyWindow(other);
}

TEST(GlblDlgTemplate, FirstIsRestoredIfItIsMinimised) {
  const HWND first = open_named("one");
  ShowWindow(first, SW_MINIMIZE);
  EXPECT_EQ(open_named("one"), nullptr);
  EXPECT_FALSE(IsIconic(first));
  DestroyWindow(first);
}

TEST(GlblDlgTemplate, CanBeOpenedAgainOnceTheFirstHasClosed) {
  DestroyWindow(open_named("one"));
  const HWND again = open_named("one");
  EXPECT_NE(again, nullptr);
  // A second opening doesn't give the first one's name away.
  EXPECT_EQ(open_named("one"), nullptr);
  EXPECT_EQ(open_named("one"), nullptr);
  DestroyWindow(again);
}

TEST(GlblDlgTemplate, ModalSecondOpeningEndsWithCancel) {
  const HWND first = open_named("one");
  TestTemplate plan(60, 40);
  EXPECT_EQ(Dialog::DoModal(GetModuleHandleA(nullptr), plan.get(), nullptr,
                            [](HWND window) { return std::make_unique<NamedDlg>(window, "one"); }),
            IDCANCEL);
  DestroyWindow(first);
}

constexpr WORD kLink = 100;

TEST(AboutDlgController, MakesItsLinksAndAnOwnerDrawnButton) {
  TestTemplate plan(120, 60);
  plan.add(kLink, TestTemplate::kStatic, "link", {5, 5, 60, 17});
  plan.add(IDOK, TestTemplate::kButton, "OK", {5, 25, 60, 40}, BS_OWNERDRAW);
  const HWND dialog =
      Dialog::DoModeless(GetModuleHandleA(nullptr), plan.get(), nullptr, [](HWND window) {
        return std::make_unique<AboutDlgController>(window, "about",
                                                    std::initializer_list<int>{100});
      });
  EXPECT_EQ(SendMessageA(GetDlgItem(dialog, kLink), kMsgIdentity, 0, 0), kSubclassIdentity);
  EXPECT_EQ(SendMessageA(GetDlgItem(dialog, IDOK), kMsgIdentity, 0, 0), kSubclassIdentity);
  DestroyWindow(dialog);
}

TEST(AboutDlgController, LeavesAPlainButtonAsItIs) {
  TestTemplate plan(120, 60);
  plan.add(IDOK, TestTemplate::kButton, "OK", {5, 25, 60, 40}, BS_DEFPUSHBUTTON);
  const HWND dialog = Dialog::DoModeless(
      GetModuleHandleA(nullptr), plan.get(), nullptr,
      [](HWND window) { return std::make_unique<AboutDlgController>(window, "about"); });
  EXPECT_EQ(SendMessageA(GetDlgItem(dialog, IDOK), kMsgIdentity, 0, 0), 0);
  DestroyWindow(dialog);
}

TEST(AboutDlgController, OpensOverTheMiddleOfItsOwner) {
  TestTemplate owner_plan(300, 200, WS_POPUP | WS_VISIBLE);
  const BareDialog owner(owner_plan);
  SetWindowPos(owner.window(), HWND_TOP, 200, 150, 0, 0, SWP_NOSIZE);
  TestTemplate plan(120, 60);
  const HWND dialog = Dialog::DoModeless(
      GetModuleHandleA(nullptr), plan.get(), owner.window(),
      [](HWND window) { return std::make_unique<AboutDlgController>(window, "about"); });
  RECT around = {};
  GetWindowRect(owner.window(), &around);
  RECT rect = {};
  GetWindowRect(dialog, &rect);
  EXPECT_EQ(rect.left, around.left + (width(around) - width(rect)) / 2);
  EXPECT_EQ(rect.top, around.top + (height(around) - height(rect)) / 2);
  DestroyWindow(dialog);
}

TEST(LibraryAbout, WithoutItsModuleNothingOpens) {
  set_core_module_loader([]() -> std::unique_ptr<CoreModule> { return nullptr; });
  TestTemplate plan(60, 40);
  const HWND dialog =
      Dialog::DoModeless(GetModuleHandleA(nullptr), plan.get(), nullptr,
                         [](HWND window) { return std::make_unique<DlgController>(window); });
  // A dialog that opened would keep this from returning.
  SendMessageA(dialog, WM_COMMAND, 0x8000, 0);
  EXPECT_TRUE(IsWindow(dialog));
  EXPECT_FALSE(CoreResources());
  EXPECT_FALSE(CoreResources().icon(1));
  EXPECT_EQ(CoreResources().dialog(1), nullptr);
  DestroyWindow(dialog);
  set_core_module_loader({});
}

}  // namespace
}  // namespace ORLO
