#include "orlo/message_hook.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "orlo/controller.h"
#include "orlo/exception.h"
#include "orlo/message_loop.h"
#include "orlo/report.h"
#include "orlo/window.h"

namespace ORLO {
namespace {

struct Counting : Controller {
  Counting(HWND window, int& count) : Controller(window), count_(count) {}
  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override {
    if (message == WM_APP) ++count_;
    return Controller::WndProc(message, wparam, lparam);
  }
  int& count_;
};

class MessageHooks : public testing::Test {
 protected:
  ~MessageHooks() override { DestroyWindow(window); }
  void send_through_loop() {
    MSG message = {};
    message.hwnd = window;
    message.message = WM_APP;
    dispatch(message);
  }
  ScopedMessageHook::Function noting(const char* name, bool claims = false) {
    return [this, name, claims](MSG&) {
      calls.emplace_back(name);
      return claims;
    };
  }

  std::vector<std::string> calls;
  int arrived = 0;
  const HWND window =
      Window::create({}, [this](HWND made) { return std::make_unique<Counting>(made, arrived); });
};

TEST_F(MessageHooks, SeeEachMessageBeforeItsWindowTheLastOneFirst) {
  const ScopedMessageHook first(noting("first"));
  const ScopedMessageHook second(noting("second"));
  send_through_loop();
  EXPECT_EQ(calls, (std::vector<std::string>{"second", "first"}));
  EXPECT_EQ(arrived, 1);
}

TEST_F(MessageHooks, TrueResultEndsTheMatter) {
  const ScopedMessageHook first(noting("first"));
  {
    const ScopedMessageHook second(noting("second", true));
    send_through_loop();
    EXPECT_EQ(calls, (std::vector<std::string>{"second"}));
    EXPECT_EQ(arrived, 0);
  }
  send_through_loop();
  EXPECT_EQ(arrived, 1);
}

TEST_F(MessageHooks, MayTakeOutOthersWhileTheyRun) {
  auto last = std::make_unique<ScopedMessageHook>(noting("last"));
  auto next = std::make_unique<ScopedMessageHook>(noting("next"));
  const ScopedMessageHook taking([&](MSG&) {
    calls.emplace_back("taking");
    next.reset();
    return false;
  });
  send_through_loop();
  EXPECT_EQ(calls, (std::vector<std::string>{"taking", "last"}));
  last.reset();
  send_through_loop();
  EXPECT_EQ(calls.size(), 3u);
  EXPECT_EQ(arrived, 2);
}

TEST_F(MessageHooks, MayTakeThemselvesOutWhileTheyRun) {
  const ScopedMessageHook last(noting("last"));
  std::unique_ptr<ScopedMessageHook> itself;
  // Too long to be kept anywhere but on the heap.
  const std::string name(100, 'x');
  itself = std::make_unique<ScopedMessageHook>([this, &itself, name](MSG&) {
    itself.reset();
    const std::string overwriting(100, '!');
    calls.push_back(name);
    return false;
  });
  send_through_loop();
  send_through_loop();
  EXPECT_EQ(calls, (std::vector<std::string>{name, "last", "last"}));
  EXPECT_EQ(arrived, 2);
}

TEST_F(MessageHooks, FailureOfOneIsReportedAndTheLoopGoesOn) {
  std::vector<std::string> reports;
  set_report_sink([&](const String&, const String& text) { reports.push_back(text.c_str()); });
  {
    const ScopedMessageHook failing([](MSG&) -> bool { throw UserException("no such message"); });
    send_through_loop();
  }
  set_report_sink({});
  ASSERT_EQ(reports.size(), 1u);
  EXPECT_NE(reports[0].find("no such message"), std::string::npos);
  EXPECT_EQ(arrived, 0);
  send_through_loop();
  EXPECT_EQ(arrived, 1);
}

TEST_F(MessageHooks, TakingTheLastOneOutLeavesNone) {
  { const ScopedMessageHook hook(noting("once")); }
  EXPECT_EQ(current_thread_record().message_hooks, nullptr);
}

}  // namespace
}  // namespace ORLO
