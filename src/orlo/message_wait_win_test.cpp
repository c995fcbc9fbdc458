#include "orlo/message_wait.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <thread>

#include "orlo/controller.h"
#include "orlo/message_loop.h"
#include "orlo/thread_record.h"
#include "orlo/window.h"

namespace ORLO {
namespace {

constexpr UINT kAct = WM_APP + 1;
constexpr uint32_t kLong = 20000;

/// Runs its script for each message kAct.
class ScriptedWindow : public Controller {
 public:
  ScriptedWindow(HWND window, std::function<void()> script)
      : Controller(window), script_(std::move(script)) {}
  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override {
    if (message != kAct) return Controller::WndProc(message, wparam, lparam);
    script_();
    return 0;
  }

 private:
  const std::function<void()> script_;
};

/// A hidden window whose script runs when it is posted to.
class Posted {
 public:
  explicit Posted(std::function<void()> script)
      : window_(Window::create({}, [&](HWND made) {
          return std::make_unique<ScriptedWindow>(made, std::move(script));
        })) {}
  ~Posted() { DestroyWindow(window_); }
  Posted(const Posted&) = delete;
  Posted& operator=(const Posted&) = delete;
  void post() const { PostMessageA(window_, kAct, 0, 0); }

 private:
  const HWND window_;
};

/// Takes a WM_QUIT off the queue; true if there was one.
bool quit_was_posted() {
  MSG message = {};
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) return true;
  }
  return false;
}

TEST(WaitWithMessages, DispatchesWhileItWaits) {
  Event done;
  const Posted window([&] { done.set(); });
  window.post();
  Waitable* const items[] = {&done};
  EXPECT_EQ(wait_with_messages(items, 1, kLong), 0);
}

TEST(WaitWithMessages, DispatchesWhatWasInTheQueueAlreadySeen) {
  Event done;
  const Posted window([&] { done.set(); });
  window.post();
  // Once looked at, a message no longer counts as new input.
  MSG message = {};
  PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE);
  GetQueueStatus(QS_ALLINPUT);
  Waitable* const items[] = {&done};
  EXPECT_EQ(wait_with_messages(items, 1, kLong), 0);
}

TEST(WaitWithMessages, NoticesASignalWhileTheQueueNeverRunsEmpty) {
  Event done;
  std::unique_ptr<Posted> window;
  int handled = 0;
  window = std::make_unique<Posted>([&] {
    if (++handled == 10) done.set();
    window->post();
  });
  window->post();
  Waitable* const items[] = {&done};
  EXPECT_EQ(wait_with_messages(items, 1, kLong), 0);
}

TEST(WaitWithMessages, TimesOutWhileTheQueueNeverRunsEmpty) {
  Event never;
  std::unique_ptr<Posted> window;
  bool stopped = false;
  const ULONGLONG start = GetTickCount64();
  window = std::make_unique<Posted>([&] {
    stopped = GetTickCount64() - start > kLong;
    if (!stopped) window->post();
  });
  window->post();
  Waitable* const items[] = {&never};
  EXPECT_EQ(wait_with_messages(items, 1, 200), kWaitTimedOut);
  EXPECT_FALSE(stopped);
}

TEST(WaitWithMessages, QuitEndsItAndIsPutBackForTheEnclosingLoop) {
  Event never;
  Waitable* const items[] = {&never};
  const int level = current_thread_record().loop_level;
  PostQuitMessage(5);
  EXPECT_EQ(wait_with_messages(items, 1, kLong), kWaitQuit);
  EXPECT_EQ(current_thread_record().loop_level, level + 1);
  EXPECT_EQ(run_message_loop(), 5);
}

TEST(WaitWithMessages, QuitEndsAllWaitsOnTheStackAndIsPutBackOnce) {
  Event never;
  Waitable* const items[] = {&never};
  int inner = 0;
  bool posted_between = true;
  const Posted window([&] {
    PostQuitMessage(0);
    inner = wait_with_messages(items, 1, kLong);
    posted_between = quit_was_posted();
  });
  window.post();
  EXPECT_EQ(wait_with_messages(items, 1, kLong), kWaitQuit);
  EXPECT_EQ(inner, kWaitQuit);
  EXPECT_FALSE(posted_between);
  EXPECT_TRUE(quit_was_posted());
  EXPECT_FALSE(quit_was_posted());
}

TEST(SleepWithMessages, SleepsItsTimeAndDispatches) {
  bool dispatched = false;
  const Posted window([&] { dispatched = true; });
  window.post();
  const ULONGLONG start = GetTickCount64();
  EXPECT_TRUE(sleep_with_messages(60));
  EXPECT_GE(GetTickCount64() - start, 45u);
  EXPECT_TRUE(dispatched);
}

TEST(TryEnterWithMessages, DispatchesUntilTheOwnerLeaves) {
  CriticalSection section;
  Event held;
  Event let_go;
  std::thread owner([&] {
    const Lock lock(section);
    held.set();
    wait_for(let_go, kLong);
  });
  ASSERT_TRUE(wait_for(held, kLong));
  // Only a dispatched message makes the other thread leave.
  const Posted window([&] { let_go.set(); });
  window.post();
  EXPECT_TRUE(try_enter_with_messages(section));
  section.leave();
  owner.join();
}

TEST(TryEnterWithMessages, QuitLeavesTheSectionUnentered) {
  CriticalSection section;
  Event held;
  Event let_go;
  std::thread owner([&] {
    const Lock lock(section);
    held.set();
    wait_for(let_go, kLong);
  });
  ASSERT_TRUE(wait_for(held, kLong));
  PostQuitMessage(0);
  EXPECT_FALSE(try_enter_with_messages(section));
  EXPECT_TRUE(quit_was_posted());
  let_go.set();
  owner.join();
}

}  // namespace
}  // namespace ORLO
