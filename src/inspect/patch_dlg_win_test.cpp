#include "inspect/patch_dlg.h"

#include "inspect/dialog_bed_test_support.h"
#include "orlo/fixed_clock.h"
#include "platform/hooked_installer_test_support.h"

namespace {

class PatchDlgTest : public InspectionDlgTest {
 protected:
  void show() {
    open<PatchDlg>(IDD_PATCHES, PatchServices{installer, registry, clock,
                                              [this](unsigned id) { return resources.text(id); }});
  }
  void add(const std::string& key, const char16_t* name, const char16_t* installed,
           uint32_t state = 1, uint32_t removable = 0) {
    const std::string user =
        "HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Microsoft\\Windows\\CurrentVersion\\"
        "Installer\\UserData\\S-1-5-18\\";
    registry.set_text(user + "Patches\\" + key, "LocalPackage", u"C:\\p.msp");
    const std::string path = user + "Products\\87654321DCBA10FE32547698BADCFE10\\Patches\\" + key;
    registry.set_text(path, "DisplayName", name);
    registry.set_text(path, "Installed", installed);
    registry.set_number(path, "State", state);
    registry.set_number(path, "Uninstallable", removable);
  }

  const ORLO::FixedClock clock{{2026, 11, 5, 20, 12}};
};

TEST_P(PatchDlgTest, ProductWithoutPatchesShowsAnEmptyListWithItsSixColumns) {
  show();
  const auto px = [](int width) { return ORLO::scale_up(width, ORLO::screen_dpi()); };
  const bool german = is_german();
  EXPECT_EQ(headings(IDC_PATCH_LIST),
            (std::vector<Heading>{
                {german ? "Patch-ID" : "Patch ID", px(50), LVCFMT_LEFT},
                {german ? "Patch-Name" : "Patch name", px(200), LVCFMT_LEFT},
                {german ? "Pfad" : "Path", px(200), LVCFMT_LEFT},
                {german ? "Installationsdatum" : "Installation date", px(114), LVCFMT_LEFT},
                {german ? "Status" : "State", px(100), LVCFMT_LEFT},
                {german ? "entfernbar" : "removeable", px(50), LVCFMT_LEFT},
            }));
  EXPECT_TRUE(rows(IDC_PATCH_LIST).empty());
}

TEST_P(PatchDlgTest, IsNamedAfterItsPackage) {
  show();
  EXPECT_EQ(title(), "Zolvane - Patches: Meadow");
}

TEST_P(PatchDlgTest, ListsPatchesByDateWithAllTheirTexts) {
  add("11111111111111111111111111111111", u"March", u"20110301", 1, 1);
  add("22222222222222222222222222222222", u"January", u"20100101", 2, 0);
  add("33333333333333333333333333333333", u"May", u"20120505", 3, 0);
  show();
  const auto found = rows(IDC_PATCH_LIST);
  ASSERT_EQ(found.size(), 3u);
  const char* const applied = is_german() ? "installiert" : "applied";
  const char* const superseded = is_german() ? "\xfc"
                                               "berschrieben"
                                             : "superseded";
  EXPECT_EQ(found[0][0], "22222222222222222222222222222222");
  EXPECT_EQ(found[0][4], superseded);
  EXPECT_EQ(found[1][1], "March");
  EXPECT_EQ(found[1][2], "C:\\p.msp");
  EXPECT_EQ(found[1][3], "01/03/2011");
  EXPECT_EQ(found[1][4], applied);
  EXPECT_EQ(found[1][5], "yes");
  EXPECT_EQ(found[2][4], "3");
  EXPECT_EQ(found[2][5], "no");
}

TEST_P(PatchDlgTest, ShowsTheWaitCursorWhileItReads) {
  int calls = 0;
  HookedInstaller asked(installer, [&calls] {
    EXPECT_EQ(cursor(), wait_cursor());
    ++calls;
  });
  open<PatchDlg>(IDD_PATCHES, PatchServices{asked, registry, clock,
                                            [this](unsigned id) { return resources.text(id); }});
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(cursor(), nullptr);
}

TEST_P(PatchDlgTest, SelectsWholeRows) {
  show();
  EXPECT_EQ(send(IDC_PATCH_LIST, LVM_GETEXTENDEDLISTVIEWSTYLE), LRESULT{LVS_EX_FULLROWSELECT});
}

TEST_P(PatchDlgTest, IsLargerThanItsTemplateAndNeverSmaller) {
  show();
  EXPECT_EQ(growth(), scaled(400, 300));
  resize(10, 10);
  EXPECT_EQ(growth(), scaled(0, 0));
}

TEST_P(PatchDlgTest, ListTakesWhatTheWindowGains) {
  show();
  const RECT before = place_of(IDC_PATCH_LIST);
  const SIZE frame = frame_of(window);
  resize(frame.cx + 50, frame.cy + 30);
  const RECT after = place_of(IDC_PATCH_LIST);
  EXPECT_EQ(after.left, before.left);
  EXPECT_EQ(after.top, before.top);
  EXPECT_EQ(after.right, before.right + 50);
  EXPECT_EQ(after.bottom, before.bottom + 30);
}

INSTANTIATE_TEST_SUITE_P(Languages, PatchDlgTest, testing::Values(kEnglish, kGerman),
                         name_of_language);

}  // namespace
