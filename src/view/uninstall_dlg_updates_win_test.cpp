// What the main window does about newer versions of the program, and what becomes of that at the
// end.
#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "orlo/report_test_support.h"
#include "view/uninstall_dlg_test_support.h"

namespace {

constexpr char kDescription[] = "http://updates.example/pad.xml";
constexpr char kSetup[] = "http://updates.example/zolvane-update-test.exe";
constexpr const char* kCheckTitle = "Program Update Check";
constexpr const char* kDownloadTitle = "Update Download";

std::string description(const std::string& version) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?><XML_DIZ_INFO><Program_Info>"
         "<Program_Name>Zolvane</Program_Name><Program_Version>" +
         version +
         "</Program_Version></Program_Info><Web_Info><Download_URLs><Primary_Download_URL>" +
         kSetup + "</Primary_Download_URL></Download_URLs></Web_Info></XML_DIZ_INFO>";
}

class UpdatingUninstallDlgTest : public ChoosingUninstallDlgTest {
 protected:
  UpdatingUninstallDlgTest() : ChoosingUninstallDlgTest(Unopened()) {
    update_settings.appName = "zolvane-update-test";
    update_settings.registryPath = "Software\\Quillmere\\ZolvaneTest";
    update_settings.descriptionUrl = kDescription;
    update_settings.currentVersion = "5.3";
    update_settings.agent = "zolvane 5.3";
    update_settings.systemId = "WIN6.1.7601";
    offer("5.4");
    background_internet.on_fetch = [this] {
      ++fetches;
      in_language = language_applied;
      fetching.pass();
    };
  }
  ~UpdatingUninstallDlgTest() override { remove_files(); }

  void offer(const std::string& version) {
    for (MemoryInternet* internet : {&background_internet, &manual_internet}) {
      internet->answers[kDescription] = {description(version), std::nullopt};
      internet->answers[kSetup] = {std::string(5000, 'x'), 5000};
    }
  }
  void open_window(bool checks = true) {
    checks_for_updates = checks;
    UninstallPara para;
    para.noPersist = true;
    open(para);
  }
  void remove_files() const {
    for (const char* name : {"zolvane-update-test.exe", "zolvane-update-test.tmp"})
      DeleteFileA((system_temporary_folder() + name).c_str());
  }
  static HWND box(const char* title) { return FindWindowA("#32770", title); }
  static bool shown(const char* title) { return IsWindowVisible(box(title)) != FALSE; }
  static std::string box_text(const char* title) {
    return ORLO::window_text(GetDlgItem(box(title), 0xffff)).c_str();
  }
  static void press(const char* title, int button) {
    PostMessageA(box(title), WM_COMMAND, static_cast<WPARAM>(button), 0);
  }
  /// Does something once the box of this title is shown.
  static std::function<void()> when_shown(const char* title, const std::function<void()>& act) {
    return [title, act] {
      if (!shown(title)) return LaterScript::set(when_shown(title, act));
      act();
    };
  }
  void close() const { SendMessageA(window, WM_CLOSE, 0, 0); }

  std::atomic<int> fetches{0};
  /// Whether the thread of the last fetch has set its language.
  std::atomic<bool> in_language{false};
  /// Holds the thread that checks in its first fetch.
  TestGate fetching;
};

TEST_F(UpdatingUninstallDlgTest, ChecksOnceInTheBackgroundAfterItHasOpened) {
  offer("5.3");
  open_window();
  EXPECT_TRUE(pump_until([this] { return fetches == 1; }));
  EXPECT_TRUE(in_language);
  ORLO::sleep_with_messages(100);
  EXPECT_EQ(fetches, 1);
  EXPECT_FALSE(shown(kCheckTitle));
}

TEST_F(UpdatingUninstallDlgTest, ChecksNothingInTheBackgroundWhereThatIsSwitchedOff) {
  open_window(false);
  ORLO::sleep_with_messages(100);
  EXPECT_EQ(fetches, 0);
  EXPECT_TRUE(own_key.calls.empty());
}

TEST_F(UpdatingUninstallDlgTest, AsksOnTheThreadThatChecksWhileTheWindowGoesOn) {
  open_window();
  ASSERT_TRUE(pump_until([] { return shown(kCheckTitle); }));
  EXPECT_NE(GetWindowThreadProcessId(box(kCheckTitle), nullptr), GetCurrentThreadId());
  EXPECT_EQ(GetWindow(box(kCheckTitle), GW_OWNER), window);
  EXPECT_FALSE(IsWindowEnabled(window));
  add("Cedar", u"Cedar", u"20260109");
  refresh_by_change();
  EXPECT_TRUE(count_is("3 / 3 packages"));
  press(kCheckTitle, IDNO);
  EXPECT_TRUE(pump_until([] { return !shown(kCheckTitle); }));
  EXPECT_TRUE(pump_until([this] { return IsWindowEnabled(window) != FALSE; }));
  EXPECT_TRUE(IsWindowVisible(window));
  EXPECT_EQ(fetches, 1);
}

TEST_F(UpdatingUninstallDlgTest, HidesForTheDownloadAndHandsOverToTheSetup) {
  std::atomic<bool> ended{false};
  end_process = [&ended] { ended = true; };
  open_window();
  ASSERT_TRUE(pump_until([] { return shown(kCheckTitle); }));
  fetching.shut();
  press(kCheckTitle, IDYES);
  ASSERT_TRUE(pump_until([this] { return fetching.reached(); }));
  EXPECT_FALSE(IsWindowVisible(window));
  EXPECT_TRUE(shown(kDownloadTitle));
  fetching.open();
  ASSERT_TRUE(pump_until([&ended] { return ended.load(); }));
  ASSERT_EQ(shell.starts().size(), 1u);
  EXPECT_EQ(shell.starts().front().file, system_temporary_folder() + "zolvane-update-test.exe");
  EXPECT_EQ(shell.starts().front().owner, window);
  EXPECT_EQ(box(kDownloadTitle), nullptr);
}

TEST_F(UpdatingUninstallDlgTest, StaysHiddenAfterADownloadThatFailed) {
  background_internet.answers[kSetup].length = 6000;
  open_window();
  ASSERT_TRUE(pump_until([] { return shown(kCheckTitle); }));
  press(kCheckTitle, IDYES);
  ASSERT_TRUE(pump_until([this] { return fetches == 2 && box(kDownloadTitle) == nullptr; }));
  ORLO::sleep_with_messages(50);
  EXPECT_FALSE(IsWindowVisible(window));
  EXPECT_TRUE(shell.starts().empty());
}

TEST_F(UpdatingUninstallDlgTest, ClosesAQuestionOfTheCheckWithItself) {
  open_window();
  ASSERT_TRUE(pump_until([] { return shown(kCheckTitle); }));
  close();
  EXPECT_FALSE(IsWindow(window));
  EXPECT_EQ(box(kCheckTitle), nullptr);
  EXPECT_EQ(fetches, 1);
}

TEST_F(UpdatingUninstallDlgTest, ClosesAMessageOfThePublisherWithItselfAndShowsNoQuestionAfterIt) {
  std::string with_message = description("5.4");
  with_message.insert(with_message.find("</XML_DIZ_INFO>"),
                      "<qm:messages><qm:msg>Hello</qm:msg></qm:messages>");
  background_internet.answers[kDescription] = {with_message, std::nullopt};
  open_window();
  ASSERT_TRUE(pump_until([] { return shown("Message"); }));
  close();
  EXPECT_FALSE(IsWindow(window));
  EXPECT_EQ(box(kCheckTitle), nullptr);
}

TEST_F(UpdatingUninstallDlgTest, ClosesAQuestionOfTheCheckBeforeAPassThatHoldsItUpHasEnded) {
  open_window();
  ASSERT_TRUE(pump_until([] { return shown(kCheckTitle); }));
  reading.shut();
  bool gone = false;
  bool stood = false;
  LaterScript later([&] {
    close();
    stood = IsWindow(window) != FALSE;
    gone = pump_until([] { return !shown(kCheckTitle); });
    reading.open();
  });
  refresh_by_change();
  EXPECT_TRUE(stood);
  EXPECT_TRUE(gone);
  EXPECT_TRUE(pump_until([this] { return !IsWindow(window); }));
}

TEST_F(UpdatingUninstallDlgTest, EndsByEscapeAsByClose) {
  open_window();
  ASSERT_TRUE(pump_until([] { return shown(kCheckTitle); }));
  command(IDCANCEL);
  EXPECT_FALSE(IsWindow(window));
  EXPECT_EQ(box(kCheckTitle), nullptr);
}

TEST_F(UpdatingUninstallDlgTest, RefreshesWhileAFetchIsUnderWay) {
  fetching.shut();
  open_window();
  ASSERT_TRUE(pump_until([this] { return fetching.reached(); }));
  add("Cedar", u"Cedar", u"20260109");
  refresh_by_change();
  EXPECT_TRUE(count_is("3 / 3 packages"));
  command(IDC_REFRESH);
  EXPECT_TRUE(count_is("3 / 3 packages"));
  fetching.open();
  ASSERT_TRUE(pump_until([] { return shown(kCheckTitle); }));
}

TEST_F(UpdatingUninstallDlgTest, CloseEndsAFetchInTheBackground) {
  fetching.shut();
  open_window();
  ASSERT_TRUE(pump_until([this] { return fetching.reached(); }));
  // Servers answer when they like, and the close comes first.
  LaterScript later([this] { fetching.open(); });
  close();
  EXPECT_FALSE(IsWindow(window));
  EXPECT_TRUE(background_internet.cancelled());
  EXPECT_EQ(box(kCheckTitle), nullptr);
}

TEST_F(UpdatingUninstallDlgTest, CloseEndsTheProcessAroundAFetchThatNothingEnds) {
  int ends = 0;
  end_process = [&] {
    ++ends;
    fetching.open();
  };
  fetching.shut();
  open_window();
  ASSERT_TRUE(pump_until([this] { return fetching.reached(); }));
  const DWORD start = GetTickCount();
  close();
  EXPECT_EQ(ends, 1);
  EXPECT_LT(GetTickCount() - start, 4000u);
}

TEST_F(UpdatingUninstallDlgTest, CloseIsNotHeldUpByADownloadsDialogThatNobodyServes) {
  int ends = 0;
  end_process = [&] {
    ++ends;
    fetching.open();
  };
  open_window();
  ASSERT_TRUE(pump_until([] { return shown(kCheckTitle); }));
  fetching.shut();
  press(kCheckTitle, IDYES);
  ASSERT_TRUE(pump_until([this] { return fetching.reached(); }));
  close();
  EXPECT_EQ(ends, 1);
  EXPECT_TRUE(shell.starts().empty());
}

TEST_F(UpdatingUninstallDlgTest, TheWindowsDestructionEndsAQuestionOfTheCheck) {
  open_window();
  ASSERT_TRUE(pump_until([] { return shown(kCheckTitle); }));
  DestroyWindow(window);
  EXPECT_FALSE(IsWindow(window));
  EXPECT_EQ(box(kCheckTitle), nullptr);
}

TEST_F(UpdatingUninstallDlgTest, TheWindowsDestructionIsNotHeldUpByADownloadsDialog) {
  int ends = 0;
  end_process = [&] {
    ++ends;
    fetching.open();
  };
  open_window();
  ASSERT_TRUE(pump_until([] { return shown(kCheckTitle); }));
  fetching.shut();
  press(kCheckTitle, IDYES);
  ASSERT_TRUE(pump_until([this] { return fetching.reached(); }));
  DestroyWindow(window);
  EXPECT_EQ(ends, 1);
}

TEST_F(UpdatingUninstallDlgTest, ChecksOnDemandOnItsOwnThreadAndTellsTheVersions) {
  offer("5.3");
  open_window(false);
  std::string told;
  LaterScript later(when_shown(kCheckTitle, [&told] {
    told = box_text(kCheckTitle);
    press(kCheckTitle, IDOK);
  }));
  command(ID_CHECK_VERSION);
  EXPECT_EQ(told.rfind("Active version: 5.3\n\nThe newest version of Zolvane is 5.3", 0), 0u)
      << told;
  EXPECT_EQ(fetches, 0);
  EXPECT_EQ(manual_internet.requests.size(), 1u);
}

TEST_F(UpdatingUninstallDlgTest, DownloadsOnDemandWithTheWindowShown) {
  int ends = 0;
  end_process = [&ends] { ++ends; };
  open_window(false);
  bool visible = false;
  bool served = false;
  LaterScript later(when_shown(kCheckTitle, [] { press(kCheckTitle, IDYES); }));
  manual_internet.on_fetch = [&] {
    visible = IsWindowVisible(window) != FALSE;
    served = shown(kDownloadTitle);
  };
  command(ID_CHECK_VERSION);
  EXPECT_TRUE(visible);
  EXPECT_TRUE(served);
  EXPECT_EQ(ends, 1);
  EXPECT_EQ(shell.starts().size(), 1u);
}

TEST_F(UpdatingUninstallDlgTest, ReportsAFetchOnDemandThatFails) {
  manual_internet.answers.clear();
  open_window(false);
  ORLO::TestReports reports;
  command(ID_CHECK_VERSION);
  EXPECT_EQ(reports.shown.size(), 1u);
}

TEST_F(UpdatingUninstallDlgTest, CloseEndsTheBoxOfACheckOnDemand) {
  open_window(false);
  LaterScript later(when_shown(kCheckTitle, [this] { close(); }));
  command(ID_CHECK_VERSION);
  EXPECT_TRUE(pump_until([this] { return !IsWindow(window); }));
  EXPECT_TRUE(shell.starts().empty());
}

TEST_F(UpdatingUninstallDlgTest, ClosesAfterTheFetchOnDemandInWhichItWasAskedTo) {
  open_window(false);
  ORLO::TestReports reports;
  bool stood = false;
  manual_internet.on_fetch = [&] {
    PostMessageA(window, WM_CLOSE, 0, 0);
    Sleep(50);
    stood = IsWindow(window) != FALSE;
  };
  command(ID_CHECK_VERSION);
  EXPECT_TRUE(stood);
  EXPECT_TRUE(pump_until([this] { return !IsWindow(window); }));
  EXPECT_EQ(box(kCheckTitle), nullptr);
  EXPECT_EQ(manual_internet.requests.size(), 1u);
  EXPECT_TRUE(shell.starts().empty());
  EXPECT_TRUE(reports.shown.empty());
}

TEST_F(UpdatingUninstallDlgTest, ReportsNothingOfWhatItsCloseEnds) {
  ORLO::TestReports reports;
  background_internet.answers[kSetup].endless = true;
  open_window();
  ASSERT_TRUE(pump_until([] { return shown(kCheckTitle); }));
  press(kCheckTitle, IDYES);
  ASSERT_TRUE(pump_until([this] { return fetches == 2; }));
  close();
  EXPECT_FALSE(IsWindow(window));
  EXPECT_EQ(box(kDownloadTitle), nullptr);
  EXPECT_TRUE(reports.shown.empty());
  EXPECT_TRUE(shell.starts().empty());
}

TEST_F(UpdatingUninstallDlgTest, OpensTheDescriptionsAddressWithTheShell) {
  open_window(false);
  command(ID_SHOW_PAD);
  ASSERT_EQ(shell.starts().size(), 1u);
  EXPECT_EQ(shell.starts().front().file, kDescription);
  EXPECT_EQ(shell.starts().front().verb, "open");
  EXPECT_EQ(shell.starts().front().owner, window);
}

}  // namespace
