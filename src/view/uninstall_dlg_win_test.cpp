// The main window over a registry in memory: what can't be told from outside the process.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "orlo/system_text.h"
#include "view/later_script_test_support.h"
#include "view/uninstall_dlg_test_support.h"

namespace {

TEST_F(UninstallDlgTest, GivesACellsTextInBothForms) {
  ASSERT_EQ(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0), 2);
  char narrow[40] = {};
  NMLVDISPINFOA request = {};
  request.item = {LVIF_TEXT, 0, kNameColumn, 0,       0,       narrow, sizeof narrow, 0, id_at(0),
                  0,         0, 0,           nullptr, nullptr, 0};
  notify(request, request.hdr, list, LVN_GETDISPINFOA);
  EXPECT_STREQ(narrow, "Birch \x80 Editor");
  wchar_t wide[40] = {};
  NMLVDISPINFOW wide_request = {};
  wide_request.item = {LVIF_TEXT, 0, kNameColumn, 0, 0,       wide,    40, 0,
                       id_at(0),  0, 0,           0, nullptr, nullptr, 0};
  notify(wide_request, wide_request.hdr, list, LVN_GETDISPINFOW);
  EXPECT_STREQ(wide, L"Birch \x20ac Editor");
}

TEST_F(UninstallDlgTest, CutsACellsTextToTheRoomForIt) {
  wchar_t wide[] = L"############";
  NMLVDISPINFOW request = {};
  request.item.mask = LVIF_TEXT;
  request.item.iSubItem = kNameColumn;
  request.item.pszText = wide;
  request.item.cchTextMax = 4;
  request.item.lParam = id_at(0);
  notify(request, request.hdr, list, LVN_GETDISPINFOW);
  EXPECT_STREQ(wide, L"Bir");
  EXPECT_EQ(wide[4], L'#');
}

TEST_F(UninstallDlgTest, ARequestWithoutRoomOrForAnotherThingIsLeftAlone) {
  char narrow[] = "#";
  NMLVDISPINFOA request = {};
  request.item.pszText = narrow;
  request.item.cchTextMax = 1;
  request.item.lParam = id_at(0);
  notify(request, request.hdr, list, LVN_GETDISPINFOA);
  EXPECT_STREQ(narrow, "#");
  request.item.mask = LVIF_TEXT;
  request.item.cchTextMax = 0;
  notify(request, request.hdr, list, LVN_GETDISPINFOA);
  EXPECT_STREQ(narrow, "#");
  request.item.cchTextMax = 1;
  request.item.iSubItem = kListColumns;
  notify(request, request.hdr, list, LVN_GETDISPINFOA);
  EXPECT_STREQ(narrow, "#");
}

TEST_F(UninstallDlgTest, ACellOfAPackageThatHasGoneIsEmpty) {
  char narrow[] = "#";
  NMLVDISPINFOA request = {};
  request.item.mask = LVIF_TEXT;
  request.item.pszText = narrow;
  request.item.cchTextMax = sizeof narrow;
  request.item.lParam = 4711;
  notify(request, request.hdr, list, LVN_GETDISPINFOA);
  EXPECT_STREQ(narrow, "");
}

TEST_F(UninstallDlgTest, TakesAHeadersClickInBothForms) {
  click_header(HDN_ITEMCLICKA, kNameColumn);
  EXPECT_EQ(header_format(kNameColumn), HDF_SORTDOWN);
  EXPECT_EQ(id_at(0), 1);
  click_header(HDN_ITEMCLICKW, kNameColumn);
  EXPECT_EQ(header_format(kNameColumn), HDF_SORTUP);
  EXPECT_EQ(id_at(0), 2);
}

TEST_F(UninstallDlgTest, AClickOnAnotherHeaderIsNone) {
  NMHEADERA notice = {};
  notice.iItem = kNameColumn;
  notify(notice, notice.hdr, window, HDN_ITEMCLICKA);
  EXPECT_EQ(header_format(kNameColumn), 0);
}

TEST_F(UninstallDlgTest, AnswersTheListsDrawingAndNobodyElses) {
  NMLVCUSTOMDRAW drawing = {};
  drawing.nmcd.dwDrawStage = CDDS_PREPAINT;
  EXPECT_EQ(notify(drawing, drawing.nmcd.hdr, list, NM_CUSTOMDRAW), CDRF_NOTIFYITEMDRAW);
  EXPECT_EQ(notify(drawing, drawing.nmcd.hdr, ListView_GetHeader(list), NM_CUSTOMDRAW), 0);
}

TEST_F(UninstallDlgTest, ColourCommandSwitchesTheDrawingAndHasTheListDrawnAnew) {
  NMLVCUSTOMDRAW drawing = {};
  drawing.nmcd.dwDrawStage = CDDS_PREPAINT;
  for (const LRESULT wanted : {CDRF_DODEFAULT, CDRF_NOTIFYITEMDRAW}) {
    ValidateRect(list, nullptr);
    SendMessageA(window, WM_COMMAND, ID_COLOR_BACKGROUND, 0);
    EXPECT_EQ(notify(drawing, drawing.nmcd.hdr, list, NM_CUSTOMDRAW), wanted);
    RECT client = {};
    RECT invalid = {};
    GetClientRect(list, &client);
    EXPECT_TRUE(GetUpdateRect(list, &invalid, FALSE));
    EXPECT_TRUE(EqualRect(&invalid, &client));
  }
}

/// Counts what a window is told to draw while this lives. One at a time.
class DrawingWatch {
 public:
  explicit DrawingWatch(HWND window) : window_(window) {
    erasures = paints = 0;
    previous = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&DrawingWatch::look)));
  }
  ~DrawingWatch() {
    SetWindowLongPtrA(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(previous));
  }
  DrawingWatch(const DrawingWatch&) = delete;
  DrawingWatch& operator=(const DrawingWatch&) = delete;

  static inline int erasures = 0;
  static inline int paints = 0;

 private:
  static LRESULT CALLBACK look(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_ERASEBKGND) ++erasures;
    if (message == WM_PAINT) ++paints;
    return CallWindowProcA(previous, window, message, wparam, lparam);
  }

  static inline WNDPROC previous = nullptr;
  const HWND window_;
};

TEST_F(UninstallDlgTest, ColourCommandHasTheListsGroundErasedToo) {
  UpdateWindow(list);
  const DrawingWatch watch(list);
  UpdateWindow(list);
  ASSERT_EQ(DrawingWatch::paints, 0);
  SendMessageA(window, WM_COMMAND, ID_COLOR_BACKGROUND, 0);
  UpdateWindow(list);
  EXPECT_EQ(DrawingWatch::paints, 1);
  EXPECT_EQ(DrawingWatch::erasures, 1);
}

TEST_F(UninstallDlgTest, GivesTheInstallerItsWindowAsOwner) {
  EXPECT_EQ(system.installer.ui_owner(), window);
}

TEST_F(UninstallDlgTest, APackageThatComesIsYellowUntilTheNextPass) {
  add("Cedar", u"Cedar", u"20260109");
  SendMessageA(window, WM_APP, 0, 0);
  ASSERT_EQ(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0), 3);
  const auto ground_of_first_line = [&] {
    NMLVCUSTOMDRAW drawing = {};
    drawing.nmcd.dwDrawStage = CDDS_ITEMPREPAINT;
    drawing.nmcd.lItemlParam = id_at(0);
    drawing.clrTextBk = CLR_NONE;
    notify(drawing, drawing.nmcd.hdr, list, NM_CUSTOMDRAW);
    return drawing.clrTextBk;
  };
  EXPECT_EQ(ground_of_first_line(), kChangeYellow);
  UpdateWindow(list);
  const DrawingWatch watch(list);
  SendMessageA(window, WM_APP, 0, 0);
  EXPECT_EQ(ground_of_first_line(), CLR_NONE);
  EXPECT_GE(DrawingWatch::paints, 1);
}

TEST_F(UninstallDlgTest, AChosenSortColumnHasASingleLineDrawnAnew) {
  registry.remove(kUninstall + "Alder");
  SendMessageA(window, WM_COMMAND, IDC_REFRESH, 0);
  ASSERT_EQ(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0), 1);
  UpdateWindow(list);
  ValidateRect(list, nullptr);
  click_header(HDN_ITEMCLICKA, kNameColumn);
  EXPECT_TRUE(GetUpdateRect(list, nullptr, FALSE));
}

TEST_F(UninstallDlgTest, TheChosenPackageMayGoAndComeBackAsAnother) {
  LVITEMA focused = {};
  focused.state = focused.stateMask = LVIS_FOCUSED | LVIS_SELECTED;
  SendMessageA(list, LVM_SETITEMSTATE, 0, reinterpret_cast<LPARAM>(&focused));
  EXPECT_STREQ(text_of(IDC_NAME).c_str(), "Birch \x80 Editor");
  SendMessageA(window, WM_COMMAND, IDC_REFRESH, 0);
  ASSERT_EQ(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0), 2);
  EXPECT_STREQ(text_of(IDC_NAME).c_str(), "Birch \x80 Editor");
  // Would open a box, and not return, if it still found a package.
  SendMessageA(window, WM_COMMAND, ID_REMOVE, 0);
  // The new records have new ids.
  EXPECT_GT(id_at(0), 2);
}

TEST_F(UninstallDlgTest, HasTheProgramsIconInBothSizes) {
  const HICON big = reinterpret_cast<HICON>(SendMessageA(window, WM_GETICON, ICON_BIG, 0));
  const HICON small = reinterpret_cast<HICON>(SendMessageA(window, WM_GETICON, ICON_SMALL, 0));
  EXPECT_NE(big, nullptr);
  EXPECT_NE(small, nullptr);
  EXPECT_NE(big, small);
}

struct Seen {
  HCURSOR cursor;
  std::string status;
};
std::vector<Seen> seen_while_painting;

LRESULT CALLBACK look_while_painting(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == WM_PAINT) {
    seen_while_painting.push_back(
        {GetCursor(), ORLO::window_text(GetDlgItem(window, IDC_STATUS)).c_str()});
  }
  return DefDlgProcA(window, message, wparam, lparam);
}

TEST_F(UninstallDlgTest, ARefreshGoesOnUnderTheWaitCursorAndTheOldStatusLine) {
  // Over the list's header the mouse would bring the header's own cursor at any time.
  SetCursorPos(0, 0);
  ORLO::sleep_with_messages(50);
  SetDlgItemTextA(window, IDC_STATUS, "old");
  const LONG_PTR own =
      SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&look_while_painting));
  seen_while_painting.clear();
  InvalidateRect(window, nullptr, FALSE);
  SendMessageA(window, WM_COMMAND, IDC_REFRESH, 0);
  SetWindowLongPtrA(window, GWLP_WNDPROC, own);
  ASSERT_FALSE(seen_while_painting.empty());
  EXPECT_EQ(seen_while_painting[0].cursor, LoadCursorA(nullptr, IDC_WAIT));
  EXPECT_EQ(seen_while_painting[0].status, "old");
  EXPECT_EQ(GetCursor(), LoadCursorA(nullptr, IDC_ARROW));
  EXPECT_STREQ(text_of(IDC_STATUS).c_str(), "2 / 2 packages");
}

/// Counts what is written into a control while this lives. One at a time.
class WriteWatch {
 public:
  explicit WriteWatch(HWND window) : window_(window) {
    writes = 0;
    previous = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&WriteWatch::look)));
  }
  ~WriteWatch() { SetWindowLongPtrA(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(previous)); }
  WriteWatch(const WriteWatch&) = delete;
  WriteWatch& operator=(const WriteWatch&) = delete;

  static inline int writes = 0;

 private:
  static LRESULT CALLBACK look(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_SETTEXT) ++writes;
    return CallWindowProcA(previous, window, message, wparam, lparam);
  }

  static inline WNDPROC previous = nullptr;
  const HWND window_;
};

TEST_F(ChoosingUninstallDlgTest, TheButtonsFollowTheChosenPackage) {
  EXPECT_FALSE(enabled(IDC_UNINSTALL));
  choose(0);
  EXPECT_TRUE(enabled(IDC_UNINSTALL));
  EXPECT_TRUE(enabled(IDC_MODIFY));
  EXPECT_FALSE(enabled(IDC_REPAIR));
  choose(1);
  EXPECT_FALSE(enabled(IDC_UNINSTALL));
  EXPECT_FALSE(enabled(IDC_MODIFY));
}

TEST_F(ChoosingUninstallDlgTest, TheButtonsFollowWhatBecomesOfTheChosenPackage) {
  choose(0);
  set("Birch", "NoRemove", u"");
  registry.set_number(kUninstall + "Birch", "NoRemove", 1);
  refresh_by_change();
  EXPECT_FALSE(enabled(IDC_UNINSTALL));
  EXPECT_TRUE(enabled(IDC_MODIFY));
  registry.remove(kUninstall + "Birch");
  refresh_by_change();
  EXPECT_FALSE(enabled(IDC_MODIFY));
}

TEST_F(ChoosingUninstallDlgTest, NoButtonWorksAfterARefreshFromScratch) {
  choose(0);
  SendMessageA(window, WM_COMMAND, IDC_REFRESH, 0);
  EXPECT_FALSE(enabled(IDC_UNINSTALL));
  EXPECT_FALSE(enabled(IDC_MODIFY));
}

TEST_F(ChoosingUninstallDlgTest, ASearchThatFindsNothingLeavesNoButton) {
  choose(0);
  SetDlgItemTextA(window, IDC_SEARCH, "nothing of that kind");
  EXPECT_FALSE(enabled(IDC_UNINSTALL));
  EXPECT_TRUE(text_of(IDC_NAME).empty());
}

TEST_F(ChoosingUninstallDlgTest, TheFocusLeavesAButtonThatCannotBePressedAnyMore) {
  choose(0);
  SetFocus(GetDlgItem(window, IDC_UNINSTALL));
  ASSERT_EQ(GetFocus(), GetDlgItem(window, IDC_UNINSTALL));
  registry.remove(kUninstall + "Birch");
  refresh_by_change();
  EXPECT_EQ(GetFocus(), list);
}

TEST_F(ChoosingUninstallDlgTest, AButtonActsOnItsClickAlone) {
  choose(0);
  const auto tell = [this](int control, int code) {
    SendMessageA(window, WM_COMMAND, MAKEWPARAM(control, code),
                 reinterpret_cast<LPARAM>(GetDlgItem(window, control)));
  };
  shell.end_at_once();
  SetDlgItemTextA(window, IDC_STATUS, "untouched");
  for (const int code : {BN_PAINT, BN_HILITE, BN_DBLCLK, BN_SETFOCUS, BN_KILLFOCUS}) {
    tell(IDC_REFRESH, code);
    tell(IDC_MODIFY, code);
    EXPECT_TRUE(count_is("untouched")) << code;
  }
  EXPECT_TRUE(shell.starts().empty());
  tell(IDC_MODIFY, BN_CLICKED);
  EXPECT_EQ(shell.starts().size(), 1u);
  EXPECT_TRUE(count_is("2 / 2 packages"));
  SetDlgItemTextA(window, IDC_STATUS, "untouched");
  tell(IDC_REFRESH, BN_CLICKED);
  EXPECT_TRUE(count_is("2 / 2 packages"));
  SetDlgItemTextA(window, IDC_STATUS, "untouched");
  // As the key F5 comes.
  SendMessageA(window, WM_COMMAND, MAKEWPARAM(IDC_REFRESH, 1), 0);
  EXPECT_TRUE(count_is("2 / 2 packages"));
}

TEST_F(ChoosingUninstallDlgTest, ThreeInstallersAreWaitedForOneInsideTheOtherAndACloseEndsAll) {
  choose(0);
  // Each is chosen while the one before is waited for. One that meets a refresh is chosen again.
  std::function<void()> next = [&] {
    if (shell.starts().size() < 3) {
      LaterScript::set(next);
      SendMessageA(window, WM_COMMAND, IDC_MODIFY, 0);
    } else {
      SendMessageA(window, WM_CLOSE, 0, 0);
    }
  };
  const LaterScript later(next);
  // Returns once the close has ended all three waits; no process ever ends.
  SendMessageA(window, WM_COMMAND, IDC_MODIFY, 0);
  EXPECT_GE(shell.starts().size(), 3u);
  EXPECT_EQ(shell.owned_processes(), 0u);
}

TEST_F(ChoosingUninstallDlgTest, WhatAnInstallerDoesOnTopOfARefreshShowsAfterIt) {
  choose(0);
  shell.end_at_once();
  PostMessageA(window, WM_COMMAND, IDC_MODIFY, 0);
  registry.remove(kUninstall + "Alder");
  // The command is handled while the refresh waits for its pass, or after it.
  refresh_by_change();
  for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);)
    DispatchMessageA(&message);
  EXPECT_TRUE(count_is("1 / 1 packages"));
  EXPECT_EQ(shell.starts().size(), 1u);
}

TEST_F(ChoosingUninstallDlgTest, TheLocationIsOpened) {
  choose(0);
  SendMessageA(window, WM_COMMAND, ID_OPEN_FOLDER, 0);
  ASSERT_EQ(shell.starts().size(), 1u);
  EXPECT_EQ(shell.starts()[0].file, "C:\\birch");
  EXPECT_EQ(shell.starts()[0].owner, window);
  EXPECT_FALSE(shell.starts()[0].waits);
}

TEST_F(ChoosingUninstallDlgTest, AFieldThatStaysTheSameIsNotWritten) {
  set("Birch", "DisplayVersion", u"1.5");
  set("Alder", "DisplayVersion", u"1.5");
  refresh_by_change();
  choose(0);
  ASSERT_STREQ(text_of(IDC_VERSION).c_str(), "1.5");
  const WriteWatch version(GetDlgItem(window, IDC_VERSION));
  choose(1);
  ASSERT_STREQ(text_of(IDC_NAME).c_str(), "Alder");
  EXPECT_EQ(WriteWatch::writes, 0);
  SetDlgItemTextA(window, IDC_VERSION, "other");
  EXPECT_EQ(WriteWatch::writes, 1);
}

TEST_F(ChoosingUninstallDlgTest, ACallThatNobodyWaitsForIsNone) {
  SendMessageA(window, ListIcons::kCall, 1, 1);
  EXPECT_TRUE(count_is("2 / 2 packages"));
}

TEST_F(ChoosingUninstallDlgTest, NothingIsCopiedBeforeACellWasClicked) {
  ASSERT_TRUE(ORLO::copy_to_clipboard("before", window));
  SendMessageA(window, WM_COMMAND, ID_COPY, 0);
  ASSERT_TRUE(OpenClipboard(window));
  const HANDLE data = GetClipboardData(CF_TEXT);
  EXPECT_STREQ(static_cast<const char*>(GlobalLock(data)), "before");
  GlobalUnlock(data);
  CloseClipboard();
}

struct PlacedUninstallDlgTest : UninstallDlgTest {
  PlacedUninstallDlgTest() : UninstallDlgTest("40/50/740/650 - 1") {}
};

TEST_F(PlacedUninstallDlgTest, OpensWhereItWasLast) {
  const RECT wanted = {40, 50, 740, 650};
  const RECT rect = place();
  EXPECT_TRUE(EqualRect(&rect, &wanted));
  EXPECT_EQ(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0), 2);
}

struct MisplacedUninstallDlgTest : UninstallDlgTest {
  MisplacedUninstallDlgTest() : UninstallDlgTest("40/50/740/650 -") {}
};

TEST_F(MisplacedUninstallDlgTest, OpensInTheMiddleAndReadsTheListAllTheSame) {
  RECT area = {};
  SystemParametersInfoA(SPI_GETWORKAREA, 0, &area, 0);
  const RECT rect = place();
  EXPECT_EQ(rect.left, area.left + (ORLO::width(area) - ORLO::width(rect)) / 2);
  EXPECT_EQ(rect.top, area.top + (ORLO::height(area) - ORLO::height(rect)) / 2);
  EXPECT_EQ(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0), 2);
}

/// Whether a window of the thread has been told that it lies beyond the screens.
bool was_beyond = false;

LRESULT CALLBACK look_for_places(int code, WPARAM wparam, LPARAM lparam) {
  const auto& sent = *reinterpret_cast<const CWPSTRUCT*>(lparam);
  if (code == HC_ACTION && sent.message == WM_WINDOWPOSCHANGED &&
      GetAncestor(sent.hwnd, GA_ROOT) == sent.hwnd) {
    RECT frame = {};
    GetWindowRect(sent.hwnd, &frame);
    was_beyond = was_beyond || MonitorFromRect(&frame, MONITOR_DEFAULTTONULL) == nullptr;
  }
  return CallNextHookEx(nullptr, code, wparam, lparam);
}

struct PlaceWatch {
  PlaceWatch() { was_beyond = false; }
  ~PlaceWatch() { UnhookWindowsHookEx(hook); }
  PlaceWatch(const PlaceWatch&) = delete;
  PlaceWatch& operator=(const PlaceWatch&) = delete;

  HHOOK hook = SetWindowsHookExA(WH_CALLWNDPROC, &look_for_places, nullptr, GetCurrentThreadId());
};

struct FarUninstallDlgTest : PlaceWatch, UninstallDlgTest {
  FarUninstallDlgTest() : UninstallDlgTest("-2147483648/-2147483648/2147483647/2147483647 - 1") {}
};

TEST_F(FarUninstallDlgTest, IsNotEvenOnItsWayOutOfReach) {
  EXPECT_FALSE(was_beyond);
  const RECT rect = place();
  EXPECT_NE(MonitorFromRect(&rect, MONITOR_DEFAULTTONULL), nullptr);
  // Such a place would have been seen.
  SetWindowPos(window, nullptr, 5000, 5000, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  EXPECT_TRUE(was_beyond);
}

TEST_F(UninstallDlgTest, CombosHearOnlyOfAChoice) {
  const HWND types = GetDlgItem(window, IDC_TYPE);
  SetDlgItemTextA(window, IDC_STATUS, "untouched");
  for (const int code : {CBN_DROPDOWN, CBN_CLOSEUP, CBN_SELENDOK, CBN_SETFOCUS}) {
    SendMessageA(window, WM_COMMAND, MAKEWPARAM(IDC_TYPE, code), reinterpret_cast<LPARAM>(types));
    EXPECT_STREQ(text_of(IDC_STATUS).c_str(), "untouched");
  }
  SendMessageA(window, WM_COMMAND, MAKEWPARAM(IDC_TYPE, CBN_SELCHANGE),
               reinterpret_cast<LPARAM>(types));
  EXPECT_STREQ(text_of(IDC_STATUS).c_str(), "2 / 2 packages");
}

TEST_F(UninstallDlgTest, CountsAreToldOnlyWhenTheListIsFilledAnew) {
  const HWND groups = GetDlgItem(window, IDC_GROUP);
  const auto group = [&](int index) {
    SetDlgItemTextA(window, IDC_STATUS, "untouched");
    SendMessageA(groups, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
    SendMessageA(window, WM_COMMAND, MAKEWPARAM(IDC_GROUP, CBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(groups));
    return text_of(IDC_STATUS);
  };
  EXPECT_STREQ(group(0).c_str(), "untouched");
  // To show sub packages, too.
  EXPECT_STREQ(group(1).c_str(), "2 / 2 packages");
  EXPECT_EQ(SendMessageA(GetDlgItem(window, IDC_TYPE), CB_GETCURSEL, 0, 0), 1);
  EXPECT_STREQ(group(2).c_str(), "untouched");
  click_header(HDN_ITEMCLICKA, kNameColumn);
  EXPECT_STREQ(text_of(IDC_STATUS).c_str(), "untouched");
}

}  // namespace
