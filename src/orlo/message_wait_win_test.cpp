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

TEST(WaitWithMessages, OneThatBeginsAfterAnotherHasMetAQuitIsGivenUp) {
  Event never;
  Waitable* const items[] = {&never};
  int first = 0;
  int second = 0;
  const Posted window([&] {
    PostQuitMessage(0);
    first = wait_with_messages(items, 1, kLong);
    second = wait_with_messages(items, 1, kLong);
  });
  window.post();
  EXPECT_EQ(wait_with_messages(items, 1, kLong), kWaitQuit);
  EXPECT_EQ(first, kWaitQuit);
  EXPECT_EQ(second, kWaitQuit);
  // With the outermost one's end the quit is the loop's, and a new wait meets it there.
  EXPECT_TRUE(quit_was_posted());
  EXPECT_EQ(wait_with_messages(items, 1, 10), kWaitTimedOut);
}

TEST(WaitWithMessages, EndOfALoopInsideItOvertakesIt) {
  Event never;
  Waitable* const items[] = {&never};
  const Posted window([&] {
    PostQuitMessage(0);
    run_message_loop();
  });
  window.post();
  EXPECT_EQ(wait_with_messages(items, 1, kLong), kWaitOvertaken);
  EXPECT_FALSE(quit_was_posted());
}

TEST(WaitWithMessages, LeavesTheKeysOfAMessageBoxToTheBox) {
  constexpr char kTitle[] = "Keys under a wait";
  const Posted window([&] {
    const HWND box = FindWindowA("#32770", kTitle);
    ASSERT_NE(box, nullptr);
    PostMessageA(GetDlgItem(box, IDCANCEL), WM_KEYDOWN, VK_ESCAPE, 0);
    const ULONGLONG start = GetTickCount64();
    while (IsWindowVisible(box) && GetTickCount64() - start < 5000)
      sleep_with_messages(10);
    // Ends the box where the key was lost.
    PostMessageA(box, WM_COMMAND, IDOK, 0);
  });
  window.post();
  EXPECT_EQ(MessageBoxA(nullptr, "?", kTitle, MB_OKCANCEL), IDCANCEL);
}

TEST(WaitForAllWithMessages, DispatchesUntilTheLastIsSignalled) {
  Event first;
  Event second;
  const Posted window([&] { second.set(); });
  first.set();
  window.post();
  Waitable* const items[] = {&first, &second};
  EXPECT_EQ(wait_for_all_with_messages(items, 2, kLong), 0);
}

/// Runs its script once all messages have been handled, a WM_QUIT among them: timers come last.
class Timed {
 public:
  explicit Timed(std::function<void()> script) {
    script_ = std::move(script);
    SetTimer(nullptr, 0, 10, &Timed::expired);
  }
  ~Timed() { script_ = {}; }
  Timed(const Timed&) = delete;
  Timed& operator=(const Timed&) = delete;

 private:
  static void CALLBACK expired(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    if (script_) script_();
  }
  static inline std::function<void()> script_;
};

TEST(WaitThroughQuit, WaitsOnAndPutsTheQuitBackOnceAtItsEnd) {
  Event done;
  bool posted_before = true;
  const Timed timed([&] {
    posted_before = quit_was_posted();
    done.set();
  });
  PostQuitMessage(3);
  EXPECT_TRUE(wait_through_quit(done, kLong));
  EXPECT_FALSE(posted_before);
  EXPECT_EQ(run_message_loop(), 3);
  EXPECT_FALSE(quit_was_posted());
}

TEST(WaitThroughQuit, InsideAnotherWaitGivesThatOneUpAfterwards) {
  Event never;
  Event done;
  bool waited = false;
  const Timed timed([&] { done.set(); });
  const Posted window([&] {
    PostQuitMessage(0);
    waited = wait_through_quit(done, kLong);
  });
  window.post();
  Waitable* const items[] = {&never};
  EXPECT_EQ(wait_with_messages(items, 1, kLong), kWaitQuit);
  EXPECT_TRUE(waited);
  EXPECT_TRUE(quit_was_posted());
}

TEST(WaitThroughQuit, AWaitThatBeginsInsideItAfterAQuitIsGivenUp) {
  Event never;
  Event there;
  Event done;
  Waitable* const nothing[] = {&never};
  Waitable* const something[] = {&there};
  there.set();
  int waited = 0;
  int waited_for_all = 0;
  int waited_for_what_is_there = kWaitQuit;
  bool slept = true;
  const Timed timed([&] {
    // The quit has been taken off the queue by now.
    waited = wait_with_messages(nothing, 1, kLong);
    waited_for_all = wait_for_all_with_messages(nothing, 1, kLong);
    waited_for_what_is_there = wait_with_messages(something, 1, kLong);
    slept = sleep_with_messages(kLong);
    done.set();
  });
  PostQuitMessage(0);
  EXPECT_TRUE(wait_through_quit(done, 4 * kLong));
  EXPECT_EQ(waited, kWaitQuit);
  EXPECT_EQ(waited_for_all, kWaitQuit);
  EXPECT_EQ(waited_for_what_is_there, 0);
  EXPECT_FALSE(slept);
  EXPECT_TRUE(quit_was_posted());
  EXPECT_FALSE(quit_was_posted());
}

TEST(WaitThroughQuit, ASecondOneThatBeginsInsideItAfterAQuitWaitsOnToo) {
  Event done;
  Event inner_done;
  bool inner_waited = false;
  bool posted_between = true;
  const Posted window([&] { inner_done.set(); });
  const Timed timed([&] {
    window.post();
    inner_waited = wait_through_quit(inner_done, kLong);
    posted_between = quit_was_posted();
    done.set();
  });
  PostQuitMessage(0);
  EXPECT_TRUE(wait_through_quit(done, 2 * kLong));
  EXPECT_TRUE(inner_waited);
  EXPECT_FALSE(posted_between);
  EXPECT_TRUE(quit_was_posted());
}

TEST(WaitThroughQuit, TimesOutDespiteAQuit) {
  Event never;
  PostQuitMessage(0);
  EXPECT_FALSE(wait_through_quit(never, 30));
  EXPECT_TRUE(quit_was_posted());
}

TEST(SleepWithMessages, WithoutEndIsALoopOfItsOwn) {
  const Posted window([] { PostQuitMessage(0); });
  window.post();
  EXPECT_FALSE(sleep_with_messages(kInfinite));
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
