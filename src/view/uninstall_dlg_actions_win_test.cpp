// The main window's actions, and what becomes of them during a refresh and at the end.
#include <gtest/gtest.h>

#include <string>

#include "view/uninstall_dlg_test_support.h"

namespace {

/// A second package that can be modified, and actions during a refresh.
class ActingUninstallDlgTest : public ChoosingUninstallDlgTest {
 protected:
  ActingUninstallDlgTest() {
    set("Alder", "ModifyPath", u"C:\\alder.exe");
    files.add_file("C:\\alder.exe");
    files.add_file("C:\\new.exe");
    refresh_by_change();
    shell.end_at_once();
  }
  /// Runs a refresh; `act` while the reader is held in its pass.
  void refresh_and(const std::function<void()>& act) {
    reading.shut();
    const LaterScript script([&] {
      EXPECT_TRUE(pump_until([this] { return reading.reached(); }));
      act();
      reading.open();
    });
    refresh_by_change();
  }
  std::string started(size_t index) const { return shell.starts().at(index).file; }
};

TEST_F(ActingUninstallDlgTest, AnActionDuringARefreshIsStartedOnceAfterIt) {
  refresh_and([this] {
    choose(0);
    command(IDC_MODIFY);
    EXPECT_TRUE(shell.starts().empty());
  });
  EXPECT_TRUE(shell.starts().empty()) << "whoever asked for the refresh goes on first";
  pump_posted();
  refresh_by_change();
  pump_posted();
  ASSERT_EQ(shell.starts().size(), 1u);
  EXPECT_EQ(started(0), "C:\\mod.exe");
}

TEST_F(ActingUninstallDlgTest, ItActsOnThePackageAsItWasThoughItHasChanged) {
  refresh_and([this] {
    choose(0);
    command(IDC_MODIFY);
    set("Birch", "ModifyPath", u"C:\\new.exe");
  });
  pump_posted();
  ASSERT_EQ(shell.starts().size(), 1u);
  EXPECT_EQ(started(0), "C:\\mod.exe");
  command(IDC_MODIFY);
  EXPECT_EQ(started(1), "C:\\new.exe") << "the change had been read";
}

TEST_F(ActingUninstallDlgTest, ItActsOnThePackageAsItWasThoughItHasGone) {
  refresh_and([this] {
    choose(0);
    command(IDC_MODIFY);
    registry.remove(kUninstall + "Birch");
  });
  EXPECT_TRUE(count_is("1 / 1 packages"));
  pump_posted();
  ASSERT_EQ(shell.starts().size(), 1u);
  EXPECT_EQ(started(0), "C:\\mod.exe");
}

TEST_F(ActingUninstallDlgTest, TheLastActionThatIsChosenCounts) {
  refresh_and([this] {
    choose(0);
    command(IDC_MODIFY);
    choose(1);
    command(IDC_MODIFY);
    choose(0);
  });
  pump_posted();
  ASSERT_EQ(shell.starts().size(), 1u);
  EXPECT_EQ(started(0), "C:\\alder.exe");
}

TEST_F(ActingUninstallDlgTest, ARefreshFromScratchLosesNoActionThatWaits) {
  refresh_and([this] {
    choose(0);
    command(IDC_MODIFY);
    command(IDC_REFRESH);
    // Nothing is chosen any more.
    command(IDC_MODIFY);
  });
  pump_posted();
  ASSERT_EQ(shell.starts().size(), 1u);
  EXPECT_EQ(started(0), "C:\\mod.exe");
}

TEST_F(ActingUninstallDlgTest, NoActionIsStartedWhenTheWindowIsClosedMeanwhile) {
  refresh_and([this] {
    choose(0);
    command(IDC_MODIFY);
    SendMessageA(window, WM_CLOSE, 0, 0);
  });
  pump_posted();
  EXPECT_TRUE(shell.starts().empty());
}

TEST_F(ActingUninstallDlgTest, AFolderIsOpenedDuringARefreshAtOnce) {
  refresh_and([this] {
    choose(0);
    command(ID_OPEN_FOLDER);
    EXPECT_EQ(shell.starts().size(), 1u);
  });
  pump_posted();
  ASSERT_EQ(shell.starts().size(), 1u);
  EXPECT_EQ(started(0), "C:\\birch");
}

TEST_F(ActingUninstallDlgTest, AToolIsStartedDuringARefreshAtOnce) {
  refresh_and([this] {
    command(ID_SOFTWARE_CONTROL_PANEL);
    EXPECT_EQ(shell.starts().size(), 1u);
  });
  pump_posted();
  EXPECT_EQ(shell.starts().size(), 1u);
}

TEST_F(ActingUninstallDlgTest, ACommandAfterTheEndWasAskedForStartsNothing) {
  choose(0);
  refresh_and([this] {
    SendMessageA(window, WM_CLOSE, 0, 0);
    ASSERT_TRUE(IsWindow(window));
    // Each would open something, or wait for it.
    for (const unsigned id :
         {unsigned{IDC_MODIFY}, unsigned{IDC_UNINSTALL}, unsigned{ID_OPEN_FOLDER},
          unsigned{ID_SOFTWARE_CONTROL_PANEL}, unsigned{ID_MSINFO}, unsigned{ID_ABOUT},
          unsigned{ID_COLOR_LEGEND}, unsigned{ID_EXPORT}, unsigned{IDC_REFRESH}})
      command(id);
    SendMessageA(window, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(ListView_GetHeader(list)), 0);
  });
  EXPECT_FALSE(IsWindow(window));
  EXPECT_TRUE(shell.starts().empty());
}

TEST_F(ActingUninstallDlgTest, ACommandWhileTheThreadsAreStoppedStartsNothing) {
  choose(0);
  hold_icon_thread();
  bool commanded = false;
  const LaterScript script([&] {
    for (const unsigned id :
         {unsigned{IDC_MODIFY}, unsigned{ID_OPEN_FOLDER}, unsigned{ID_MSINFO}, unsigned{ID_ABOUT}})
      command(id);
    commanded = IsWindow(window) != FALSE;
    icons.gate.open();
  });
  command(IDCANCEL);
  EXPECT_TRUE(commanded);
  EXPECT_TRUE(shell.starts().empty());
}

TEST_F(ActingUninstallDlgTest, ADoubleClickGivesTheMarkedPackagesCommand) {
  mark(1);
  NMITEMACTIVATE click = {};
  notify(click, click.hdr, list, NM_DBLCLK);
  ASSERT_EQ(shell.starts().size(), 1u);
  EXPECT_EQ(started(0), "C:\\alder.exe");
}

TEST_F(ActingUninstallDlgTest, ADoubleClickWithNoPackageChosenDoesNothing) {
  choose(0);
  mark(-1);
  bool box = false;
  const LaterScript script([&] {
    const HWND opened = GetLastActivePopup(window);
    box = opened != window;
    // It would wait for an answer.
    if (box) SendMessageA(opened, WM_CLOSE, 0, 0);
  });
  NMITEMACTIVATE click = {};
  click.iItem = -1;
  notify(click, click.hdr, list, NM_DBLCLK);
  ORLO::sleep_with_messages(50);
  EXPECT_FALSE(box);
  EXPECT_TRUE(shell.starts().empty());
}

}  // namespace
