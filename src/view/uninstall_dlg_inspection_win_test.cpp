// What the main window shows of the inside of a package, and what becomes of that during a refresh
// and at the end.
#include <gtest/gtest.h>

#include <string>

#include "orlo/list_view.h"
#include "orlo/report_test_support.h"
#include "view/uninstall_dlg_test_support.h"

namespace {

constexpr char kCode[] = "{12345678-ABCD-EF01-2345-6789ABCDEF01}";
constexpr char kPackage[] = "C:\\meadow.msi";
constexpr const char* kContent = "Zolvane - MSI Content: C:\\meadow.msi";
constexpr const char* kFeatures = "Zolvane - Package Features: Meadow";
constexpr const char* kPatches = "Zolvane - Patches: Meadow";

/// With a Windows Installer product, which has a package, two features and a patch.
class InspectingUninstallDlgTest : public ChoosingUninstallDlgTest {
 protected:
  InspectingUninstallDlgTest() {
    registry.set_text(kUninstall + kCode, "DisplayName", u"Meadow");
    registry.set_number(kUninstall + kCode, "WindowsInstaller", 1);
    add_product(system.installer);
    add_product(inspected_installer);
    registry.set_text(
        "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Installer\\UserData\\"
        "S-1-5-18\\Products\\87654321DCBA10FE32547698BADCFE10\\Patches\\"
        "11111111111111111111111111111111",
        "DisplayName", u"First patch");
    databases.add(kPackage).tables.push_back({"File", {{"Name", "s72"}}, {{"one"}}});
    refresh_by_change();
  }

  static void add_product(MemoryInstaller& installer) {
    auto& product = installer.add(kCode);
    product.properties["LocalPackage"] = kPackage;
    product.features = {{"Alpha", ""}, {"Beta", "Alpha"}};
  }
  void choose_named(const std::string& name) const {
    const ORLO::ListView view(list);
    for (int row = 0; row < view.count(); ++row) {
      if (name == view.text(row, kNameColumn).c_str()) return choose(row);
    }
    FAIL() << name << " isn't in the list";
  }
  static HWND dialog(const char* title) { return FindWindowA("#32770", title); }
  static void close(const char* title) { SendMessageA(dialog(title), WM_CLOSE, 0, 0); }
  /// Does something once the dialog of this title is shown, which may take its time.
  static std::function<void()> when_shown(const char* title, const std::function<void()>& act) {
    return [title, act] {
      if (IsWindowVisible(dialog(title)) == FALSE) return LaterScript::set(when_shown(title, act));
      act();
    };
  }
  /// Gives the command, and does something while the dialog of this title is open, which is closed
  /// then. False if none came.
  bool open_and(unsigned id, const char* title, const std::function<void()>& act = {}) {
    bool came = false;
    const LaterScript script(when_shown(title, [&] {
      came = true;
      if (act) act();
      close(title);
    }));
    command(id);
    return came;
  }
};

TEST_F(InspectingUninstallDlgTest, EachCommandOpensItsDialogAboutTheChosenPackage) {
  choose_named("Meadow");
  const std::pair<unsigned, const char*> dialogs[] = {
      {ID_MSI_CONTENT, kContent}, {ID_FEATURES, kFeatures}, {ID_PATCHES, kPatches}};
  for (const auto& [id, title] : dialogs) {
    SCOPED_TRACE(title);
    EXPECT_TRUE(open_and(id, title, [this] { EXPECT_FALSE(IsWindowEnabled(window)); }));
    EXPECT_TRUE(IsWindowEnabled(window));
    EXPECT_EQ(dialog(title), nullptr);
  }
}

TEST_F(InspectingUninstallDlgTest, NoneOpensForAPackageThatHasNothingInside) {
  choose_named("Alder");
  for (const unsigned id : {unsigned{ID_MSI_CONTENT}, unsigned{ID_FEATURES}, unsigned{ID_PATCHES}})
    EXPECT_FALSE(open_and(id, nullptr, [] { FAIL(); })) << id;
}

TEST_F(InspectingUninstallDlgTest, NoneOpensWithoutAChosenPackage) {
  for (const unsigned id : {unsigned{ID_MSI_CONTENT}, unsigned{ID_FEATURES}, unsigned{ID_PATCHES}})
    command(id);
  EXPECT_EQ(GetLastActivePopup(window), window);
}

TEST_F(InspectingUninstallDlgTest, FeaturesOpenForAnyProductThoughItHasNone) {
  registry.set_text(kUninstall + "Plain", "DisplayName", u"Plain");
  registry.set_number(kUninstall + "Plain", "WindowsInstaller", 1);
  refresh_by_change();
  choose_named("Plain");
  EXPECT_TRUE(open_and(ID_FEATURES, "Zolvane - Package Features: Plain"));
  EXPECT_FALSE(open_and(ID_PATCHES, "Zolvane - Patches: Plain"));
  EXPECT_FALSE(open_and(ID_MSI_CONTENT, "Zolvane - MSI Content: "));
}

TEST_F(InspectingUninstallDlgTest, ARefreshGoesOnBeneathTheDialog) {
  choose_named("Meadow");
  EXPECT_TRUE(open_and(ID_FEATURES, kFeatures, [this] {
    registry.remove(kUninstall + kCode);
    system.installer = MemoryInstaller();
    refresh_by_change();
    EXPECT_TRUE(count_is("2 / 2 packages"));
    EXPECT_TRUE(IsWindowVisible(dialog(kFeatures)));
  }));
}

TEST_F(InspectingUninstallDlgTest, ADialogChosenDuringARefreshComesAfterIt) {
  reading.shut();
  bool came_early = false;
  {
    const LaterScript script([&] {
      EXPECT_TRUE(pump_until([this] { return reading.reached(); }));
      choose_named("Meadow");
      command(ID_FEATURES);
      came_early = dialog(kFeatures) != nullptr;
      registry.remove(kUninstall + kCode);
      reading.open();
    });
    refresh_by_change();
  }
  EXPECT_FALSE(came_early);
  EXPECT_EQ(dialog(kFeatures), nullptr) << "whoever asked for the refresh goes on first";
  bool came = false;
  const LaterScript script(when_shown(kFeatures, [&] {
    came = true;
    close(kFeatures);
  }));
  pump_posted();
  pump_until([&] { return came; });
  EXPECT_TRUE(came) << "about the package as it was chosen";
}

TEST_F(InspectingUninstallDlgTest, ClosingTheWindowClosesTheDialogFirst) {
  choose_named("Meadow");
  bool came = false;
  const LaterScript script(when_shown(kContent, [&] {
    came = true;
    SendMessageA(window, WM_CLOSE, 0, 0);
  }));
  command(ID_MSI_CONTENT);
  pump_posted();
  EXPECT_TRUE(came);
  EXPECT_EQ(dialog(kContent), nullptr);
  EXPECT_FALSE(IsWindow(window));
}

TEST_F(InspectingUninstallDlgTest, ClosingTheWindowClosesADialogThatIsNotYetShown) {
  choose_named("Meadow");
  const LaterScript script(
      [] {
        EXPECT_FALSE(IsWindowVisible(dialog(kContent)));
        close(kContent);
      },
      500);
  PostMessageA(window, WM_CLOSE, 0, 0);
  command(ID_MSI_CONTENT);
  pump_posted();
  EXPECT_FALSE(IsWindow(window));
}

TEST_F(InspectingUninstallDlgTest, ClosingTheWindowDuringTheReportOpensNoDialogAnyMore) {
  choose_named("Meadow");
  databases.fail("open", kInstallerOpenFailed);
  ORLO::TestReports reports;
  reports.while_open = [this] { SendMessageA(window, WM_CLOSE, 0, 0); };
  const LaterScript script(
      [] {
        EXPECT_FALSE(IsWindowVisible(dialog(kContent)));
        close(kContent);
      },
      200);
  command(ID_MSI_CONTENT);
  pump_posted();
  EXPECT_EQ(reports.shown.size(), 1u);
  EXPECT_FALSE(IsWindow(window));
}

TEST_F(InspectingUninstallDlgTest, AQuitDuringTheReportEndsTheDialogToo) {
  choose_named("Meadow");
  databases.fail("open", kInstallerOpenFailed);
  ORLO::TestReports reports;
  reports.while_open = [] { PostQuitMessage(7); };
  bool stayed = false;
  const LaterScript script(
      [&] {
        stayed = dialog(kContent) != nullptr;
        close(kContent);
      },
      200);
  command(ID_MSI_CONTENT);
  EXPECT_FALSE(stayed);
  EXPECT_EQ(dialog(kContent), nullptr);
  MSG quit = {};
  EXPECT_TRUE(PeekMessageA(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  EXPECT_EQ(quit.wParam, WPARAM{7});
}

}  // namespace
