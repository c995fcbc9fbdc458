#include "update/download_dlg.h"

#include <gtest/gtest.h>

#include <string>

#include "orlo/exception.h"
#include "orlo/thread_record.h"
#include "orlo/window_helpers.h"
#include "platform/resource_ids.h"
#include "update/box_update_frame.h"
// This needs what orlowin.h brings.
#include <commctrl.h>

namespace {

constexpr char kAddress[] =
    "http://updates.example/downloads/of/a/length/that/no/field/shows/a.exe";
constexpr uint16_t kEnglish = 2057;
constexpr uint16_t kGerman = 1031;

class DownloadDlgTest : public testing::Test {
 protected:
  DownloadDlgTest() {
    INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&classes);
  }
  static Resources resources(uint16_t language = kEnglish) {
    return {GetModuleHandleA(nullptr), language};
  }
  static LRESULT ask_bar(const DownloadDlg& dialog, UINT message, WPARAM wparam = 0) {
    return SendDlgItemMessageA(dialog.window(), IDC_DOWNLOAD_PROGRESS, message, wparam, 0);
  }
};

TEST_F(DownloadDlgTest, ShowsTheAddressFromItsBeginning) {
  const DownloadDlg dialog(nullptr, resources(), kAddress);
  const HWND field = GetDlgItem(dialog.window(), IDC_DOWNLOAD_ADDRESS);
  EXPECT_TRUE(IsWindowVisible(dialog.window()));
  EXPECT_STREQ(ORLO::window_text(field).c_str(), kAddress);
  EXPECT_EQ(SendMessageA(field, EM_GETSEL, 0, 0), 0);
  EXPECT_NE(GetWindowLongA(field, GWL_STYLE) & ES_READONLY, 0);
  // The first character lies where nothing has been scrolled away in front of it.
  EXPECT_LT(LOWORD(SendMessageA(field, EM_POSFROMCHAR, 0, 0)), 10);
}

TEST_F(DownloadDlgTest, HasItsTitleInBothLanguages) {
  const DownloadDlg english(nullptr, resources(), "");
  EXPECT_STREQ(ORLO::window_text(english.window()).c_str(), "Update Download");
  const DownloadDlg german(nullptr, resources(kGerman), "");
  EXPECT_STREQ(ORLO::window_text(german.window()).c_str(), "Update-Download");
}

TEST_F(DownloadDlgTest, TakesRangesOf16BitsAndMore) {
  DownloadDlg dialog(nullptr, resources(), kAddress);
  for (const int range : {0, 1, 65535, 65536, 512 * 1024}) {
    dialog.set_range(range);
    EXPECT_EQ(ask_bar(dialog, PBM_GETRANGE, FALSE), range);
    dialog.set_position(range);
    EXPECT_EQ(ask_bar(dialog, PBM_GETPOS), range);
  }
}

TEST_F(DownloadDlgTest, GoesOnceWithItsWindow) {
  DownloadDlg dialog(nullptr, resources(), kAddress);
  const HWND window = dialog.window();
  dialog.close();
  EXPECT_FALSE(IsWindow(window));
  dialog.close();
}

TEST_F(DownloadDlgTest, ShowsTheWaitCursorAsLongAsItLives) {
  const HCURSOR before = ORLO::current_thread_record().cursor;
  {
    DownloadDlg dialog(nullptr, resources(), kAddress);
    const HCURSOR meanwhile = ORLO::current_thread_record().cursor;
    EXPECT_EQ(meanwhile, LoadCursorA(nullptr, IDC_WAIT));
    dialog.close();
    EXPECT_EQ(ORLO::current_thread_record().cursor, meanwhile);
  }
  EXPECT_EQ(ORLO::current_thread_record().cursor, before);
}

TEST_F(DownloadDlgTest, ThrowsWhereThereIsNoDialog) {
  EXPECT_THROW(DownloadDlg(nullptr, Resources(GetModuleHandleA("kernel32"), kEnglish), ""),
               ORLO::LWE);
}

TEST(BoxUpdateFrame, ShowsNothingAndAnswersNoOnceItsBoxesAreClosed) {
  int ends = 0;
  BoxUpdateFrame frame(nullptr, Resources(GetModuleHandleA(nullptr), kEnglish), [&] { ++ends; });
  frame.close_boxes();
  frame.tell("text", "title");
  EXPECT_FALSE(frame.ask("text", "title"));
  frame.end_process();
  EXPECT_EQ(ends, 1);
}

}  // namespace
