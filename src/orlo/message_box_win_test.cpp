#include "orlo/message_box.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "orlo/core_module_test_support.h"
#include "orlo/core_module_win_test_support.h"
#include "orlo/dialog_test_support.h"
#include "orlo/report.h"

namespace ORLO {
namespace {

constexpr const char* kCaption = "Box of a test";

std::string text_of(HWND window) {
  char text[500] = {};
  GetWindowTextA(window, text, sizeof text);
  return text;
}

/// Acts on a box once it is open, from inside the box's own message loop.
class Visitor {
 public:
  explicit Visitor(std::function<void(HWND)> visit) : visit_(std::move(visit)) {
    current = this;
    timer_ = SetTimer(nullptr, 0, 10, &Visitor::look);
  }
  ~Visitor() {
    KillTimer(nullptr, timer_);
    current = nullptr;
  }
  Visitor(const Visitor&) = delete;
  Visitor& operator=(const Visitor&) = delete;

  bool has_been() const { return been_; }

 private:
  static void CALLBACK look(HWND, UINT, UINT_PTR, DWORD) {
    Visitor& self = *current;
    const HWND box = FindWindowA("#32770", kCaption);
    if (self.been_ || box == nullptr || !IsWindowVisible(box)) return;
    self.been_ = true;
    self.visit_(box);
  }
  inline static Visitor* current = nullptr;
  const std::function<void(HWND)> visit_;
  UINT_PTR timer_ = 0;
  bool been_ = false;
};

int ask(uint32_t flags, const std::function<void(HWND)>& visit, HWND owner = nullptr,
        const char* text = "A text") {
  const Visitor visitor(visit);
  const int answer = message_box(owner, text, kCaption, flags);
  EXPECT_TRUE(visitor.has_been());
  return answer;
}

/// A box without that button is closed, too: nobody else would.
void press(HWND box, WORD id) {
  const HWND button = GetDlgItem(box, id);
  EXPECT_NE(button, nullptr) << "button " << id;
  if (button != nullptr) {
    PostMessageA(button, BM_CLICK, 0, 0);
  } else {
    EndDialog(box, 0);
  }
}

bool is_our_own(HWND box) {
  // The module's captions differ from the system's.
  const HWND ok = GetDlgItem(box, IDOK);
  return ok != nullptr && text_of(ok) == "Fine";
}

std::vector<std::string> captions_of(HWND box) {
  std::vector<std::string> captions;
  for (HWND child = GetWindow(box, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    char name[20] = {};
    GetClassNameA(child, name, sizeof name);
    if (lstrcmpiA(name, "Button") == 0) captions.push_back(text_of(child));
  }
  return captions;
}

TEST(OwnMessageBox, IsADialogOfOurOwnWithTheModulesCaptions) {
  const RealCoreModule present;
  bool own = false;
  std::string text;
  const int answer = ask(kBoxTaskModal | kBoxExclamation, [&](HWND box) {
    own = is_our_own(box);
    for (HWND child = GetWindow(box, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
      if ((GetWindowLongA(child, GWL_STYLE) & SS_TYPEMASK) == SS_LEFTNOWORDWRAP)
        text = text_of(child);
    }
    press(box, IDOK);
  });
  EXPECT_EQ(answer, IDOK);
  EXPECT_TRUE(own);
  EXPECT_EQ(text, "A text");
}

TEST(OwnMessageBox, IsTheSystemsWithoutTheModule) {
  TestCoreModule module;
  module.present = false;
  bool own = true;
  const int answer = ask(0, [&](HWND box) {
    own = is_our_own(box);
    press(box, GetDlgItem(box, IDOK) != nullptr ? IDOK : IDCANCEL);
  });
  EXPECT_EQ(answer, IDOK);
  EXPECT_FALSE(own);
}

TEST(OwnMessageBox, IsTheSystemsWhereACaptionIsMissing) {
  TestCoreModule module;
  module.wide_strings[{1, uint16_t{0x809}}] = u"Fine";
  bool own = true;
  ask(kBoxOkCancel, [&](HWND box) {
    own = is_our_own(box);
    press(box, IDOK);
  });
  EXPECT_FALSE(own);
}

TEST(OwnMessageBox, IsTheSystemsForATextThatIsTooLong) {
  const RealCoreModule present;
  bool own = true;
  const std::string text(5000, '\n');
  ask(
      0,
      [&](HWND box) {
        own = is_our_own(box);
        PostMessageA(box, WM_COMMAND, IDOK, 0);
      },
      nullptr, text.c_str());
  EXPECT_FALSE(own);
}

TEST(OwnMessageBox, CaptionsOfTheLanguageAskedForGoBeforeEnglish) {
  TestCoreModule module;
  module.wide_strings[{1, uint16_t{0x400}}] = u"Gut";
  module.wide_strings[{1, uint16_t{0x809}}] = u"Fine";
  module.wide_strings[{2, uint16_t{0x809}}] = u"Leave";
  std::vector<std::string> captions;
  ask(kBoxOkCancel, [&](HWND box) {
    captions = captions_of(box);
    press(box, IDOK);
  });
  EXPECT_EQ(captions, (std::vector<std::string>{"Gut", "Leave"}));
}

TEST(OwnMessageBox, EachButtonAnswersWithItsId) {
  const RealCoreModule present;
  struct Row {
    uint32_t flags;
    WORD button;
    int answer;
  };
  for (const Row& row : {Row{0, 1, 1}, Row{1, 2, 2}, Row{2, 3, 3}, Row{2, 4, 4}, Row{2, 5, 5},
                         Row{3, 6, 6}, Row{3, 7, 7}, Row{4, 7, 7}, Row{5, 4, 4},
                         Row{kBoxExtra8, 8, 0x1000000}, Row{kBoxExtra9 | 1, 9, 0x2000000}}) {
    SCOPED_TRACE(row.answer);
    EXPECT_EQ(ask(row.flags, [&](HWND box) { press(box, row.button); }), row.answer);
  }
}

TEST(OwnMessageBox, FocusIsOnTheDefaultButton) {
  const RealCoreModule present;
  for (const WORD button : {WORD{6}, WORD{7}, WORD{2}}) {
    SCOPED_TRACE(button);
    const uint32_t place = button == 6 ? 0u : button == 7 ? 1u : 2u;
    int focus = 0;
    ask(3 | place << 8, [&](HWND box) {
      focus = GetDlgCtrlID(GetFocus());
      press(box, 6);
    });
    EXPECT_EQ(focus, button);
  }
}

bool close_is_grey(HWND box) {
  const UINT state = GetMenuState(GetSystemMenu(box, FALSE), SC_CLOSE, MF_BYCOMMAND);
  return (state & MF_GRAYED) != 0;
}

TEST(OwnMessageBox, CancelFromTheSystemIsObeyedUnlessThereIsOnlyOk) {
  const RealCoreModule present;
  struct Row {
    uint32_t flags;
    int answer;
    bool close_grey;
  };
  for (const Row& row : {Row{0, 1, true}, Row{1, 2, false}, Row{2, 2, true}, Row{3, 2, false},
                         Row{4, 2, true}, Row{5, 2, false}}) {
    SCOPED_TRACE(row.flags);
    bool grey = false;
    const int answer = ask(row.flags, [&](HWND box) {
      grey = close_is_grey(box);
      // As Escape sends it. Where it isn't obeyed the button ends the box.
      PostMessageA(box, WM_COMMAND, IDCANCEL, 0);
      if (row.flags == 0) press(box, IDOK);
    });
    EXPECT_EQ(answer, row.answer);
    EXPECT_EQ(grey, row.close_grey);
  }
}

TEST(OwnMessageBox, CommandOfNoControlIsIgnored) {
  const RealCoreModule present;
  EXPECT_EQ(ask(0,
                [](HWND box) {
                  PostMessageA(box, WM_COMMAND, 77, 0);
                  press(box, IDOK);
                }),
            IDOK);
}

TEST(OwnMessageBox, StandsInTheMiddleOfItsOwner) {
  const RealCoreModule present;
  TestTemplate plan(300, 200, WS_POPUP | WS_CAPTION | WS_VISIBLE);
  const BareDialog owner(plan);
  SetWindowPos(owner.window(), nullptr, 100, 60, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
  RECT outer = {};
  GetWindowRect(owner.window(), &outer);
  RECT inner = {};
  HWND owned_by = nullptr;
  ask(
      0,
      [&](HWND box) {
        GetWindowRect(box, &inner);
        owned_by = GetWindow(box, GW_OWNER);
        press(box, IDOK);
      },
      owner.window());
  EXPECT_EQ(owned_by, owner.window());
  EXPECT_NEAR(inner.left + inner.right, outer.left + outer.right, 2);
  EXPECT_NEAR(inner.top + inner.bottom, outer.top + outer.bottom, 2);
}

TEST(OwnMessageBox, StandsInTheMiddleOfTheScreenWithoutOwner) {
  const RealCoreModule present;
  RECT box_place = {};
  ask(0, [&](HWND box) {
    GetWindowRect(box, &box_place);
    press(box, IDOK);
  });
  EXPECT_NEAR(box_place.left + box_place.right, GetSystemMetrics(SM_CXSCREEN), 2);
  EXPECT_NEAR(box_place.top + box_place.bottom, GetSystemMetrics(SM_CYSCREEN), 2);
}

TEST(OwnMessageBox, ShowsEvenWhereItsOwnerHasGone) {
  const RealCoreModule present;
  HWND gone = nullptr;
  {
    TestTemplate plan(100, 50);
    const BareDialog owner(plan);
    gone = owner.window();
  }
  EXPECT_EQ(ask(
                0, [](HWND box) { press(box, IDOK); }, gone),
            IDOK);
}

TEST(OwnMessageBox, ShowsTheRoomThatItsTextNeeds) {
  const RealCoreModule present;
  RECT text_place = {};
  SIZE needed = {};
  const std::string text =
      "A line that is a good deal longer than three hundred and twenty pixels "
      "and isn't broken for all that";
  ask(
      kBoxExclamation,
      [&](HWND box) {
        for (HWND child = GetWindow(box, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
          if (text_of(child) != text) continue;
          GetClientRect(child, &text_place);
          const HDC screen = GetDC(child);
          const auto font = reinterpret_cast<HFONT>(SendMessageA(child, WM_GETFONT, 0, 0));
          const HGDIOBJ old = SelectObject(screen, font);
          GetTextExtentPoint32A(screen, text.c_str(), static_cast<int>(text.size()), &needed);
          SelectObject(screen, old);
          ReleaseDC(child, screen);
        }
        press(box, IDOK);
      },
      nullptr, text.c_str());
  EXPECT_GT(needed.cx, 320);
  EXPECT_GE(text_place.right, needed.cx);
  EXPECT_GE(text_place.bottom, needed.cy);
}

/// Our own boxes that a timer has found, and ended with their default button.
std::vector<std::string> found_reports;

void CALLBACK end_report(HWND, UINT, UINT_PTR, DWORD) {
  const HWND box = FindWindowA("#32770", "Exception");
  if (box == nullptr || !is_our_own(box) || !found_reports.empty()) return;
  found_reports = {text_of(GetDlgItem(box, 0xFFFF))};
  HWND child = GetWindow(box, GW_CHILD);
  for (; child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
    found_reports.push_back(text_of(child));
  press(box, IDOK);
}

/// The style of a report's box, and whether it has a picture.
DWORD found_style = 0;
bool found_icon = false;

void CALLBACK look_at_report(HWND, UINT, UINT_PTR, DWORD) {
  const HWND box = FindWindowA("#32770", "Exception");
  if (box == nullptr || !IsWindowVisible(box)) return;
  found_style = static_cast<DWORD>(GetWindowLongA(box, GWL_STYLE));
  for (HWND child = GetWindow(box, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    const auto style = static_cast<DWORD>(GetWindowLongA(child, GWL_STYLE));
    char name[20] = {};
    GetClassNameA(child, name, sizeof name);
    if (lstrcmpiA(name, "Static") == 0 && (style & SS_TYPEMASK) == SS_ICON) found_icon = true;
  }
  press(box, IDOK);
}

TEST(OwnMessageBox, OfEachReportComesToTheFrontWithAnIcon) {
  const RealCoreModule present;
  const std::function<void()> reports[] = {
      [] { report_exception(Exception(), nullptr); },
      [] { report_std_exception(std::exception(), nullptr); },
  };
  const UINT_PTR timer = SetTimer(nullptr, 0, 10, &look_at_report);
  for (const auto& report : reports) {
    found_style = 0;
    found_icon = false;
    report();
    EXPECT_EQ(found_style & (DS_SETFOREGROUND | DS_SYSMODAL), DWORD{DS_SETFOREGROUND});
    EXPECT_TRUE(found_icon);
  }
  KillTimer(nullptr, timer);
}

TEST(OwnMessageBox, IsWhatAReportAppearsIn) {
  const RealCoreModule present;
  found_reports.clear();
  const UINT_PTR timer = SetTimer(nullptr, 0, 10, &end_report);
  const ExceptionContext context("a test");
  report_exception(UserException("no room"), nullptr);
  KillTimer(nullptr, timer);
  EXPECT_THAT(found_reports, ::testing::Contains("core: failed during <a test>:\nno room"));
}

}  // namespace
}  // namespace ORLO
