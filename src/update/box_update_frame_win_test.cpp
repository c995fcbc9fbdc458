#include "update/box_update_frame.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include "orlo/message_wait.h"
#include "orlo/window_helpers.h"

namespace {

constexpr char kTitle[] = "zolvane box of a check";

class BoxUpdateFrameTest : public testing::Test {
 protected:
  BoxUpdateFrameTest() { ShowWindow(window_, SW_SHOWNA); }
  ~BoxUpdateFrameTest() override {
    if (checker_.joinable()) checker_.join();
    DestroyWindow(window_);
  }

  /// Does something on a thread of its own, as the check in the background does.
  void start(const std::function<void()>& act) {
    checker_ = std::thread([this, act] {
      act();
      done_ = true;
    });
  }
  static HWND box() { return FindWindowA("#32770", kTitle); }
  bool wait_for_box() {
    return pump_until([] { return IsWindowVisible(box()) != FALSE; });
  }
  bool wait_for_end() {
    return pump_until([this] { return done_.load(); });
  }
  static bool pump_until(const std::function<bool()>& holds) {
    for (int i = 0; i < 3000 && !holds(); ++i)
      ORLO::sleep_with_messages(10);
    return holds();
  }
  static void press(int button) { PostMessageA(box(), WM_COMMAND, static_cast<WPARAM>(button), 0); }
  /// Tells a text, looks at its box and presses OK.
  void show_and_close(const std::function<void()>& look, const std::string& text) {
    done_ = false;
    start([&] { frame_.tell(text.c_str(), kTitle); });
    EXPECT_TRUE(wait_for_box());
    look();
    press(IDOK);
    EXPECT_TRUE(wait_for_end());
    checker_.join();
  }
  static std::string box_text() { return ORLO::window_text(GetDlgItem(box(), 0xffff)).c_str(); }

  const HWND window_ = CreateWindowA("STATIC", "owner", WS_OVERLAPPEDWINDOW, 0, 0, 300, 200,
                                     nullptr, nullptr, nullptr, nullptr);
  const Resources resources_{GetModuleHandleA(nullptr), 2057};
  BoxUpdateFrame frame_{window_, resources_, [] {}};
  std::atomic<bool> done_{false};
  std::thread checker_;
};

TEST_F(BoxUpdateFrameTest, TellsWithOkAloneInABoxOfTheWindow) {
  start([this] { frame_.tell("a text with %n", kTitle); });
  ASSERT_TRUE(wait_for_box());
  EXPECT_EQ(GetWindow(box(), GW_OWNER), window_);
  EXPECT_EQ(box_text(), "a text with %n");
  EXPECT_NE(GetDlgItem(box(), IDOK), nullptr);
  EXPECT_EQ(GetDlgItem(box(), IDCANCEL), nullptr);
  press(IDOK);
  EXPECT_TRUE(wait_for_end());
}

TEST_F(BoxUpdateFrameTest, AsksWithYesAndNo) {
  for (const int button : {IDYES, IDNO}) {
    done_ = false;
    bool answer = false;
    start([&] { answer = frame_.ask("text", kTitle); });
    ASSERT_TRUE(wait_for_box());
    press(button);
    EXPECT_TRUE(wait_for_end());
    checker_.join();
    EXPECT_EQ(answer, button == IDYES);
  }
}

TEST_F(BoxUpdateFrameTest, ShowsTextsOfAnyLength) {
  std::string messages;
  for (int i = 0; i < 3000; ++i)
    messages += "message\n\n";
  for (const std::string& text : {std::string(10'000, '9'), messages, std::string()}) {
    SCOPED_TRACE(text.size());
    show_and_close([&] { EXPECT_TRUE(box_text() == text); }, text);
  }
}

TEST_F(BoxUpdateFrameTest, BearsATextAsLongAsADescriptionCanBe) {
  // Nobody reads four megabytes in a box, and not every system shows them.
  show_and_close([] {}, std::string(size_t{4} << 20, 'x'));
}

TEST_F(BoxUpdateFrameTest, ClosesEitherBoxAndShowsNoneAfterIt) {
  bool answer = true;
  start([&] {
    frame_.tell("text", kTitle);
    answer = frame_.ask("text", kTitle);
  });
  ASSERT_TRUE(wait_for_box());
  frame_.close_boxes();
  EXPECT_TRUE(wait_for_end());
  EXPECT_FALSE(answer);
}

TEST_F(BoxUpdateFrameTest, TakesAYesForNoOnceItsBoxesAreClosed) {
  bool answer = true;
  start([&] { answer = frame_.ask("text", kTitle); });
  ASSERT_TRUE(wait_for_box());
  press(IDYES);
  frame_.close_boxes();
  EXPECT_TRUE(wait_for_end());
  EXPECT_FALSE(answer);
}

TEST_F(BoxUpdateFrameTest, LeavesBoxesOfOtherThreadsAlone) {
  frame_.close_boxes();  // before the thread has shown anything
  EXPECT_TRUE(IsWindowVisible(window_));
  start([this] { MessageBoxA(window_, "text", kTitle, MB_OK); });
  ASSERT_TRUE(wait_for_box());
  frame_.close_boxes();
  ORLO::sleep_with_messages(50);
  EXPECT_FALSE(done_);
  press(IDOK);
  EXPECT_TRUE(wait_for_end());
}

TEST_F(BoxUpdateFrameTest, HidesTheWindow) {
  frame_.hide();
  EXPECT_FALSE(IsWindowVisible(window_));
}

}  // namespace
