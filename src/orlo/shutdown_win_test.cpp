#include "orlo/shutdown.h"

#include <gtest/gtest.h>

#include "orlo/com_objects.h"
#include "orlo/message_loop.h"
#include "orlo/report.h"
#include "orlo/thread_record.h"
#include "orlo/window.h"

namespace ORLO {
namespace {

/// A loop on the main thread begins the shut-down, which must not outlast its test, whichever it
/// is.
class TakesShutdownBack : public testing::EmptyTestEventListener {
  void OnTestEnd(const testing::TestInfo&) override {
    while (in_shutdown())
      take_back_shutdown();
  }
};
[[maybe_unused]] const bool listens = [] {
  testing::UnitTest::GetInstance()->listeners().Append(new TakesShutdownBack);
  return true;
}();

class MainWindow : public testing::Test {
 protected:
  MainWindow() {
    Window::Setup setup;
    setup.style = WS_POPUP | WS_VISIBLE;
    setup.place = {0, 0, 40, 40};
    window = Window::create(setup, [](HWND made) { return std::make_unique<Controller>(made); });
    current_thread_record()._hmainwnd = window;
  }
  ~MainWindow() override {
    DestroyWindow(window);
    MSG message = {};
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
    }
    current_thread_record()._hmainwnd = nullptr;
  }
  void close() const { SendMessageA(window, WM_CLOSE, 0, 0); }

  HWND window;
};

/// An object in use for its scope.
struct UsedObject {
  UsedObject() { com_objects().object_made(); }
  ~UsedObject() { com_objects().object_gone(); }
};

TEST_F(MainWindow, HidesInsteadOfClosingWhileAnObjectIsInUse) {
  {
    const UsedObject used;
    close();
    EXPECT_TRUE(IsWindow(window));
    EXPECT_FALSE(IsWindowVisible(window));
  }
  close();
  EXPECT_FALSE(IsWindow(window));
}

TEST_F(MainWindow, ClosesDuringShutDownWhateverIsInUse) {
  const UsedObject used;
  begin_shutdown();
  close();
  EXPECT_FALSE(IsWindow(window));
}

TEST_F(MainWindow, OtherWindowsCloseWhileAnObjectIsInUse) {
  const UsedObject used;
  current_thread_record()._hmainwnd = nullptr;
  close();
  EXPECT_FALSE(IsWindow(window));
}

TEST_F(MainWindow, ItsEndEndsTheLoopAndBeginsTheShutDown) {
  PostMessageA(window, WM_CLOSE, 0, 0);
  EXPECT_EQ(run_message_loop(), 0);
  EXPECT_EQ(current_thread_record()._hmainwnd, nullptr);
  EXPECT_TRUE(in_shutdown());
}

TEST(MessageLoop, GoesOnWhileAnObjectIsAlive) {
  com_objects().object_made();
  const int level = current_thread_record().loop_level;
  struct LetsGo : Controller {
    using Controller::Controller;
    LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override {
      if (message != WM_TIMER) return Controller::WndProc(message, wparam, lparam);
      KillTimer(_hwnd, 1);
      EXPECT_FALSE(in_shutdown());
      com_objects().object_gone();
      PostQuitMessage(7);
      return 0;
    }
  };
  const HWND window = Window::create({}, [](HWND made) { return std::make_unique<LetsGo>(made); });
  SetTimer(window, 1, 10, nullptr);
  // Only a loop that has started again gets to the timer: this comes first.
  PostQuitMessage(3);
  EXPECT_EQ(run_message_loop(), 7);
  EXPECT_EQ(current_thread_record().loop_level, level + 2);
  EXPECT_TRUE(in_shutdown());
  DestroyWindow(window);
}

TEST(MessageLoop, OfAnotherThreadBeginsNoShutDown) {
  Thread thread([] {
    PostQuitMessage(4);
    return run_message_loop();
  });
  thread.resume();
  ASSERT_TRUE(wait_for(thread, 20000));
  EXPECT_FALSE(in_shutdown());
}

}  // namespace
}  // namespace ORLO
