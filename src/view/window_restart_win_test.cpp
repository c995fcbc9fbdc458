#include "view/window_restart.h"

#include <gtest/gtest.h>

#include <string>

#include "orlo/window_handles.h"

namespace {

/// A plain top-level window.
struct TestWindow {
  TestWindow()
      : handle(CreateWindowA("Static", "restart", WS_OVERLAPPEDWINDOW, 50, 60, 300, 200, nullptr,
                             nullptr, GetModuleHandleA(nullptr), nullptr)) {}
  ~TestWindow() { DestroyWindow(handle); }
  const HWND handle;
};

TEST(WindowRestart, KeepsTheNormalPlaceAndTheShowCommand) {
  const TestWindow window;
  WindowRestart restart(window.handle);
  String place;
  ShowWindow(window.handle, SW_SHOWNORMAL);
  restart.keep_place(place);
  EXPECT_STREQ(place.c_str(), "50/60/350/260 - 1");
  ShowWindow(window.handle, SW_SHOWMAXIMIZED);
  restart.keep_place(place);
  EXPECT_STREQ(place.c_str(), "50/60/350/260 - 3");
}

TEST(WindowRestart, KeepsTheFormerPlaceOfAMinimisedWindow) {
  const TestWindow window;
  String place = "1/2/3/4 - 1";
  ShowWindow(window.handle, SW_SHOWMINIMIZED);
  WindowRestart(window.handle).keep_place(place);
  EXPECT_STREQ(place.c_str(), "1/2/3/4 - 1");
}

TEST(WindowRestart, HidesAndShowsTheWindow) {
  const TestWindow window;
  WindowRestart restart(window.handle);
  restart.show_window(true);
  EXPECT_TRUE(IsWindowVisible(window.handle));
  restart.show_window(false);
  EXPECT_FALSE(IsWindowVisible(window.handle));
}

TEST(WindowRestart, KnowsTheProgramsPath) {
  const String path = WindowRestart(nullptr).program_path();
  EXPECT_NE(GetFileAttributesA(path.c_str()), INVALID_FILE_ATTRIBUTES);
  const std::string text = path.c_str();
  EXPECT_EQ(text.substr(text.size() - 4), ".exe");
}

TEST(WindowRestart, StartsNothingThatIsNotThere) {
  EXPECT_LT(WindowRestart(nullptr).start("C:\\nowhere\\zolvane.exe -ger"), 32u);
}

TEST(WindowRestart, LetsTheMessageLoopEndWithZero) {
  WindowRestart(nullptr).quit();
  MSG message = {};
  ASSERT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  EXPECT_EQ(message.wParam, 0u);
}

}  // namespace
