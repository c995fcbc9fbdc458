#include "orlo/window.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orlo/assertion.h"
#include "orlo/exception.h"
#include "orlo/message_loop.h"
#include "orlo/report.h"
#include "orlo/subclass_controller.h"
#include "orlo/thread_record.h"
#include "orlo/wait_cursor.h"

namespace ORLO {
namespace {

/// Notes what it is called with.
class Noting : public Controller {
 public:
  Noting(HWND window, std::vector<std::string>& calls) : Controller(window), calls_(calls) {}
  ~Noting() override { calls_.emplace_back("gone"); }

  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override {
    if (message == WM_APP) calls_.emplace_back("message");
    return Controller::WndProc(message, wparam, lparam);
  }
  void Size(WPARAM type, int width, int height) override {
    calls_.push_back(String::formatted("size %d %d %d", type, width, height).c_str());
  }
  LRESULT Command(unsigned id, unsigned code, HWND) override {
    calls_.push_back(String::formatted("command %d %d", id, code).c_str());
    return 7;
  }
  LRESULT Notify(unsigned id, NMHDR* header) override {
    calls_.push_back(String::formatted("notify %d %d", id, header->code).c_str());
    return 8;
  }
  LRESULT Frame(unsigned id) override {
    calls_.push_back(String::formatted("frame %d", id).c_str());
    return 9;
  }

 private:
  std::vector<std::string>& calls_;
};

class WindowTest : public testing::Test {
 protected:
  HWND make(Window::Kind kind = Window::Kind::top_level) {
    Window::Setup setup;
    setup.kind = kind;
    const HWND window =
        Window::create(setup, [&](HWND made) { return std::make_unique<Noting>(made, calls); });
    calls.clear();
    return window;
  }
  std::vector<std::string> calls;
};

TEST_F(WindowTest, UnpacksEachMessageIntoItsOperation) {
  const HWND window = make();
  NMHDR header = {};
  header.code = 33;
  EXPECT_EQ(SendMessageA(window, WM_SIZE, SIZE_RESTORED, MAKELPARAM(70, 80)), 0);
  EXPECT_EQ(SendMessageA(window, WM_COMMAND, MAKEWPARAM(5, 6), 0), 0);
  EXPECT_EQ(SendMessageA(window, kMsgCommand, 70000, 6), 7);
  EXPECT_EQ(SendMessageA(window, WM_NOTIFY, 4, reinterpret_cast<LPARAM>(&header)), 8);
  EXPECT_EQ(SendMessageA(window, kMsgFrame, MAKEWPARAM(3, 1), 0), 9);
  EXPECT_EQ(SendMessageA(window, WM_APP, 0, 0), 0);
  EXPECT_EQ(calls, (std::vector<std::string>{"size 0 70 80", "command 5 6", "command 70000 6",
                                             "notify 4 33", "frame 3", "message"}));
  DestroyWindow(window);
}

TEST_F(WindowTest, ControllerDiesWithTheWindow) {
  DestroyWindow(make());
  ASSERT_FALSE(calls.empty());
  EXPECT_EQ(calls.back(), "gone");
}

TEST_F(WindowTest, EachKindHasItsClassAndIdentity) {
  const struct {
    Window::Kind kind;
    const char* name;
    DWORD style;
  } rows[] = {{Window::Kind::control, "ORLOGenericControl", 0},
              {Window::Kind::double_click_control, "ORLODblClkControl", CS_DBLCLKS},
              {Window::Kind::top_level, "ORLOGenericWindow", 0}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const HWND window = make(row.kind);
    char name[64] = {};
    GetClassNameA(window, name, sizeof name);
    EXPECT_STREQ(name, row.name);
    EXPECT_EQ(GetClassLongPtrA(window, GCL_STYLE) & CS_DBLCLKS, row.style);
    EXPECT_EQ(SendMessageA(window, kMsgIdentity, 0, 0), 0x53C10000);
    DestroyWindow(window);
  }
}

TEST_F(WindowTest, EndOfTheMainWindowEndsTheMessageLoop) {
  const HWND window = make();
  current_thread_record()._hmainwnd = window;
  PostMessageA(window, WM_CLOSE, 0, 0);
  EXPECT_EQ(run_message_loop(), 0);
  EXPECT_EQ(current_thread_record()._hmainwnd, nullptr);
}

TEST(Window, FailureInTheFactoryIsReportedAndThereIsNoWindow) {
  std::vector<std::string> reports;
  set_report_sink([&](const String&, const String& text) { reports.push_back(text.c_str()); });
  const HWND window = Window::create(
      {}, [](HWND) -> std::unique_ptr<Controller> { throw UserException("no room"); });
  set_report_sink({});
  EXPECT_EQ(window, nullptr);
  ASSERT_EQ(reports.size(), 1u);
  EXPECT_NE(reports[0].find("no room"), std::string::npos);
}

TEST_F(WindowTest, EachClassHasTheRecordItWasPlannedWith) {
  for (const auto kind :
       {Window::Kind::control, Window::Kind::double_click_control, Window::Kind::top_level}) {
    SCOPED_TRACE(static_cast<int>(kind));
    const HWND window = make(kind);
    EXPECT_EQ(GetClassLongPtrA(window, GCLP_HBRBACKGROUND), 6u);
    EXPECT_EQ(GetClassLongPtrA(window, GCL_CBWNDEXTRA), 0u);
    EXPECT_EQ(GetClassLongPtrA(window, GCLP_HICON) != 0, kind == Window::Kind::top_level);
    DestroyWindow(window);
  }
}

TEST_F(WindowTest, OfItsClassesMadeWithoutAFactoryIsRefused) {
  DestroyWindow(make(Window::Kind::control));
  EXPECT_EQ(CreateWindowExA(0, "ORLOGenericControl", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr,
                            GetModuleHandleA(nullptr), nullptr),
            nullptr);
}

/// A window to be taken over, as the system makes one from a template.
HWND plain_edit() {
  return CreateWindowExA(0, "EDIT", "text", WS_POPUP, 0, 0, 50, 20, nullptr, nullptr,
                         GetModuleHandleA(nullptr), nullptr);
}

/// What fails an assertion in its scope; each can be reported again afterwards.
class FailedAssertions {
 public:
  FailedAssertions() {
    forget_failed_assertions();
    set_report_sink([this](const String&, const String& text) { texts.push_back(text.c_str()); });
  }
  ~FailedAssertions() {
    set_report_sink({});
    forget_failed_assertions();
  }
  FailedAssertions(const FailedAssertions&) = delete;
  FailedAssertions& operator=(const FailedAssertions&) = delete;
  std::vector<std::string> texts;
};

TEST(Controller, WindowThatHasOneAlreadyFailsAnAssertion) {
  const FailedAssertions failed;
  const HWND window = plain_edit();
  {
    Controller first(window);
    first.attach(GWLP_USERDATA);
    EXPECT_TRUE(failed.texts.empty());
    Controller second(window);
    second.attach(GWLP_USERDATA);
    EXPECT_EQ(attached_controller(window, GWLP_USERDATA), &second);
  }
  // The one that was pushed out leaves the window alone.
  EXPECT_EQ(attached_controller(window, GWLP_USERDATA), nullptr);
  DestroyWindow(window);
  ASSERT_EQ(failed.texts.size(), 1u);
  EXPECT_NE(failed.texts[0].find("!old_userdata"), std::string::npos);
}

TEST(Controller, PaintingWithoutADeviceContextFailsAnAssertion) {
  const FailedAssertions failed;
  const HWND window = plain_edit();
  Controller controller(window);
  DestroyWindow(window);
  controller.Paint();
  ASSERT_EQ(failed.texts.size(), 1u);
  EXPECT_NE(failed.texts[0].find("_hdc"), std::string::npos);
}

TEST_F(WindowTest, ThreadsCursorCoversInsideTitleAndBars) {
  const HWND window = make();
  const HWND edit = plain_edit();
  const SubclassController controller(edit);
  const auto covered = [](HWND asked, WORD hit) {
    SetCursor(nullptr);
    const LRESULT result =
        SendMessageA(asked, WM_SETCURSOR, reinterpret_cast<WPARAM>(asked), MAKELPARAM(hit, 0));
    return result == 1 && GetCursor() == LoadCursorA(nullptr, IDC_CROSS);
  };
  const WaitCursor cross(IDC_CROSS);
  for (WORD hit = 0; hit <= 21; ++hit) {
    SCOPED_TRACE(hit);
    const bool inside = (hit >= 1 && hit <= 9) || hit == 20;
    EXPECT_EQ(covered(window, hit), inside);
    EXPECT_EQ(covered(edit, hit), inside);
  }
  DestroyWindow(edit);
  DestroyWindow(window);
}

TEST_F(WindowTest, DefaultPaintValidatesTheWindow) {
  const HWND window = make();
  ShowWindow(window, SW_SHOW);
  InvalidateRect(window, nullptr, FALSE);
  EXPECT_EQ(SendMessageA(window, WM_PAINT, 0, 0), 0);
  EXPECT_FALSE(GetUpdateRect(window, nullptr, FALSE));
  DestroyWindow(window);
}

TEST(Window, FailingPaintIsReportedOnceAndNotRepeated) {
  struct BadPainter : Controller {
    using Controller::Controller;
    void Paint() override { throw UserException("no colours"); }
  };
  int reports = 0;
  set_report_sink([&](const String&, const String&) { ++reports; });
  Window::Setup setup;
  setup.style = WS_POPUP | WS_VISIBLE;
  setup.place = {0, 0, 50, 50};
  const HWND window =
      Window::create(setup, [](HWND made) { return std::make_unique<BadPainter>(made); });
  InvalidateRect(window, nullptr, FALSE);
  reports = 0;
  UpdateWindow(window);
  EXPECT_EQ(reports, 1);
  EXPECT_FALSE(GetUpdateRect(window, nullptr, FALSE));
  set_report_sink({});
  DestroyWindow(window);
}

TEST(SubclassController, ForwardsWhatItDoesNotHandle) {
  const HWND edit = plain_edit();
  const SubclassController controller(edit);
  char text[10] = {};
  GetWindowTextA(edit, text, sizeof text);
  EXPECT_STREQ(text, "text");
  EXPECT_EQ(SendMessageA(edit, kMsgIdentity, 0, 0), 0x53C10020);
  DestroyWindow(edit);
}

TEST_F(WindowTest, ControllerIsFoundByItsIdentity) {
  const HWND window = make();
  Controller* const controller = controller_of(window);
  ASSERT_NE(controller, nullptr);
  EXPECT_EQ(controller->window(), window);
  const HWND edit = plain_edit();
  EXPECT_EQ(controller_of(edit), nullptr);
  {
    const SubclassController taken(edit);
    EXPECT_EQ(controller_of(edit), nullptr);
  }
  EXPECT_EQ(controller_of(nullptr), nullptr);
  DestroyWindow(edit);
  DestroyWindow(window);
  EXPECT_EQ(controller_of(window), nullptr);
}

TEST(SubclassController, GivesTheControlBackWhenItDiesFirst) {
  const HWND edit = plain_edit();
  const LONG_PTR before = GetWindowLongPtrA(edit, GWLP_WNDPROC);
  {
    const SubclassController controller(edit);
    EXPECT_NE(GetWindowLongPtrA(edit, GWLP_WNDPROC), before);
  }
  EXPECT_EQ(GetWindowLongPtrA(edit, GWLP_WNDPROC), before);
  EXPECT_EQ(GetWindowLongPtrA(edit, GWLP_USERDATA), 0);
  DestroyWindow(edit);
}

TEST(SubclassController, OutlivesItsControl) {
  const HWND edit = plain_edit();
  const SubclassController controller(edit);
  DestroyWindow(edit);
  EXPECT_FALSE(IsWindow(edit));
}

TEST(SubclassController, WithoutAControlDoesNothing) {
  const SubclassController none(nullptr);
}

TEST(SubclassController, MayDieInsideItsOwnHandler) {
  static std::unique_ptr<SubclassController> controller;
  struct Suicidal : SubclassController {
    using SubclassController::SubclassController;
    LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override {
      if (message != WM_APP) return SubclassController::WndProc(message, wparam, lparam);
      controller.reset();
      return 11;
    }
  };
  const HWND edit = plain_edit();
  controller = std::make_unique<Suicidal>(edit);
  EXPECT_EQ(SendMessageA(edit, WM_APP, 0, 0), 11);
  EXPECT_EQ(controller, nullptr);
  EXPECT_EQ(SendMessageA(edit, kMsgIdentity, 0, 0), 0);
  DestroyWindow(edit);
}

}  // namespace
}  // namespace ORLO
