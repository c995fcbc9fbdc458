#include "view/dialog_frame.h"

#include <gtest/gtest.h>

#include "inventory/reader_test_support.h"
#include "orlo/dialog_test_support.h"
#include "platform/memory_registry.h"
#include "view/later_script_test_support.h"

namespace {

constexpr char kTitle[] = "Box of a frame";

struct NoView : InventoryView {
  void clear_marks() override {}
  void begin_batch() override {}
  void applyEntry(const UninstallEntry&) override {}
  void removeEntry(const RowKey&) override {}
  void end_batch() noexcept override {}
};

struct NoRefreshFrame : RefreshFrame {
  void forget_entries() override {}
  void begin_wait() override {}
  void end_wait() noexcept override {}
  void show_counts() override {}
  void show_failure(const String&) override {}
  void writeHistory() override {}
  void refreshed() override {}
};

class DialogFrameTest : public testing::Test {
 protected:
  /// Null if no box is open.
  static HWND box() { return FindWindowA("#32770", kTitle); }
  /// Ends a box that nobody else has ended, so that no test hangs.
  static void end_leftover_box() {
    const HWND left = box();
    EXPECT_EQ(left, nullptr);
    if (left == nullptr) return;
    for (const int answer : {IDYES, IDOK, IDCANCEL})
      PostMessageA(left, WM_COMMAND, static_cast<WPARAM>(answer), 0);
  }
  /// What the script does while a box is open.
  void close_all() {
    EXPECT_NE(box(), nullptr);
    closed_ = frame_.close_boxes();
    LaterScript::set(&DialogFrameTest::end_leftover_box, 300);
  }

  ORLO::TestTemplate plan_{100, 100};
  const ORLO::BareDialog dialog_{plan_};
  MemoryRegistry registry_;
  MemorySystem system_;
  UninstallReader reader_{system_.over(registry_, false), [] {}};
  Table table_{packageSchema()};
  HistoryMerge history_;
  ORLO::CriticalSection lock_;
  NoView view_;
  NoRefreshFrame refresh_frame_;
  RefreshCycle cycle_{
      {reader_, table_, history_, lock_, view_, refresh_frame_, ORLO::system_clock()}};
  bool closing_ = false;
  bool closed_ = false;
  int requests_ = 0;
  DialogFrame frame_{
      {dialog_.window(), cycle_, [this] { return closing_; }, [this] { ++requests_; }}};
};

TEST_F(DialogFrameTest, NoBoxOpensWhenTheWindowIsClosing) {
  closing_ = true;
  const LaterScript script(&DialogFrameTest::end_leftover_box);
  bool shown = false;
  EXPECT_FALSE(frame_.confirm("?", kTitle));
  EXPECT_FALSE(frame_.ask("?", kTitle));
  frame_.warn("!", kTitle);
  frame_.tell("!", kTitle);
  frame_.show([&] { shown = true; });
  EXPECT_FALSE(shown);
}

TEST_F(DialogFrameTest, ABoxThatIsOpenIsClosed) {
  const LaterScript script([this] { close_all(); }, 50);
  EXPECT_FALSE(frame_.confirm("?", kTitle));
  EXPECT_TRUE(closed_);
}

TEST_F(DialogFrameTest, AMessageThatIsOpenIsClosed) {
  const LaterScript script([this] { close_all(); }, 50);
  frame_.warn("!", kTitle);
  EXPECT_TRUE(closed_);
}

TEST_F(DialogFrameTest, AYesNoQuestionThatIsOpenAnswersNo) {
  MSG answer = {};
  const LaterScript script(
      [&] {
        close_all();
        // What closes other boxes does nothing to this one on all systems.
        PeekMessageA(&answer, box(), WM_COMMAND, WM_COMMAND, PM_NOREMOVE);
      },
      50);
  EXPECT_FALSE(frame_.ask("?", kTitle));
  EXPECT_TRUE(closed_);
  EXPECT_EQ(answer.wParam, WPARAM{IDNO});
}

TEST_F(DialogFrameTest, AnswersAreTheUsers) {
  const auto answer = [](int button) {
    return [button] { PostMessageA(box(), WM_COMMAND, static_cast<WPARAM>(button), 0); };
  };
  const LaterScript script(answer(IDOK), 50);
  EXPECT_TRUE(frame_.confirm("?", kTitle));
  LaterScript::set(answer(IDCANCEL), 50);
  EXPECT_FALSE(frame_.confirm("?", kTitle));
  LaterScript::set(answer(IDYES), 50);
  EXPECT_TRUE(frame_.ask("?", kTitle));
  LaterScript::set(answer(IDNO), 50);
  EXPECT_FALSE(frame_.ask("?", kTitle));
}

TEST_F(DialogFrameTest, BoxesOnTopOfBoxesAreAllClosed) {
  bool inner = true;
  const LaterScript script(
      [&] {
        LaterScript::set([this] { close_all(); }, 50);
        inner = frame_.ask("inner?", kTitle);
        // Then the outer one alone is left.
        LaterScript::set([this] { frame_.close_boxes(); });
      },
      50);
  EXPECT_FALSE(frame_.ask("outer?", kTitle));
  EXPECT_FALSE(inner);
  EXPECT_EQ(box(), nullptr);
}

TEST_F(DialogFrameTest, ASaveDialogThatIsOpenIsClosedAndGivesNoName) {
  ORLO::SaveFileDialog dialog;
  dialog.title = kTitle;
  dialog.file_name = "Software.xls";
  const LaterScript script([this] { close_all(); }, 50);
  EXPECT_TRUE(frame_.ask_file_name(dialog).empty());
  EXPECT_TRUE(closed_);
}

TEST_F(DialogFrameTest, NoFileNameIsAskedForWhenTheWindowIsClosing) {
  closing_ = true;
  ORLO::SaveFileDialog dialog;
  dialog.title = kTitle;
  const LaterScript script(&DialogFrameTest::end_leftover_box);
  EXPECT_TRUE(frame_.ask_file_name(dialog).empty());
}

TEST_F(DialogFrameTest, WithNoBoxOpenThereIsNoneToClose) {
  EXPECT_FALSE(frame_.close_boxes());
  frame_.show([] {});
  EXPECT_FALSE(frame_.close_boxes());
  bool during = false;
  frame_.show([&] { during = frame_.close_boxes(); });
  EXPECT_TRUE(during) << "as one is about to open";
}

TEST_F(DialogFrameTest, WaitCursorsThatAreNestedComeBackInTheirOrder) {
  const HCURSOR arrow = LoadCursorA(nullptr, IDC_ARROW);
  const HCURSOR wait = LoadCursorA(nullptr, IDC_WAIT);
  const HCURSOR outermost = LoadCursorA(nullptr, IDC_CROSS);
  SetCursor(arrow);
  {
    const ORLO::WaitCursor cross(IDC_CROSS);
    frame_.begin_wait_cursor();
    EXPECT_EQ(GetCursor(), wait);
    frame_.begin_wait_cursor();
    EXPECT_EQ(GetCursor(), wait);
    frame_.end_wait_cursor();
    EXPECT_EQ(GetCursor(), wait);
    frame_.end_wait_cursor();
    EXPECT_EQ(GetCursor(), outermost);
  }
  EXPECT_EQ(GetCursor(), arrow);
}

TEST_F(DialogFrameTest, TellsOfTheWindowAndItsRefreshes) {
  EXPECT_EQ(frame_.owner(), dialog_.window());
  EXPECT_FALSE(frame_.closing());
  closing_ = true;
  EXPECT_TRUE(frame_.closing());
  cycle_.note_request();
  EXPECT_EQ(frame_.refreshCount(), 1u);
  frame_.requestRefresh();
  EXPECT_EQ(requests_, 1);
}

}  // namespace
