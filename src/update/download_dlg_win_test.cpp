#include "update/download_dlg.h"

#include <gtest/gtest.h>
// This needs what orlowin.h brings.
#include <commctrl.h>

#include <memory>
#include <string>

#include "orlo/exception.h"
#include "orlo/thread_record.h"
#include "orlo/window_helpers.h"
#include "platform/resource_ids.h"

namespace {

constexpr uint16_t kEnglish = 2057;
constexpr uint16_t kGerman = 1031;
constexpr char kAddress[] = "http://download.example/files/setup.exe?%n&x";

class DownloadDlgTest : public testing::Test {
 protected:
  DownloadDlgTest() {
    INITCOMMONCONTROLSEX classes = {};
    classes.dwSize = sizeof classes;
    classes.dwICC = ICC_PROGRESS_CLASS;
    InitCommonControlsEx(&classes);
    owner_ = CreateWindowA("STATIC", "owner", WS_OVERLAPPEDWINDOW, 0, 0, 300, 200, nullptr, nullptr,
                           nullptr, nullptr);
  }
  ~DownloadDlgTest() override { DestroyWindow(owner_); }

  std::unique_ptr<DownloadDlg> open(uint16_t language = kEnglish) {
    const Resources resources(GetModuleHandleA(nullptr), language);
    return std::make_unique<DownloadDlg>(owner_, resources, kAddress);
  }
  static std::string text(const DownloadDlg& dialog) {
    return ORLO::window_text(dialog.window()).c_str();
  }
  static LRESULT ask_bar(const DownloadDlg& dialog, UINT message, WPARAM wparam = 0) {
    return SendDlgItemMessageA(dialog.window(), IDC_DOWNLOAD_PROGRESS, message, wparam, 0);
  }
  static LRESULT top(const DownloadDlg& dialog) { return ask_bar(dialog, PBM_GETRANGE, FALSE); }
  static LRESULT bottom(const DownloadDlg& dialog) { return ask_bar(dialog, PBM_GETRANGE, TRUE); }
  static LRESULT position(const DownloadDlg& dialog) { return ask_bar(dialog, PBM_GETPOS); }

  HWND owner_;
};

TEST_F(DownloadDlgTest, ShowsTheAddressAtOnceAboveItsOwner) {
  const auto dialog = open();
  EXPECT_TRUE(IsWindowVisible(dialog->window()));
  EXPECT_EQ(GetWindow(dialog->window(), GW_OWNER), owner_);
  EXPECT_TRUE(IsWindowEnabled(owner_));
  const HWND address = GetDlgItem(dialog->window(), IDC_DOWNLOAD_ADDRESS);
  EXPECT_STREQ(ORLO::window_text(address).c_str(), kAddress);
  EXPECT_NE(GetWindowLongA(address, GWL_STYLE) & ES_READONLY, 0);
}

TEST_F(DownloadDlgTest, ShowsTheAddressFromItsBeginning) {
  const Resources resources(GetModuleHandleA(nullptr), kEnglish);
  const std::string address = "http://download.example/" + std::string(300, 'x');
  const DownloadDlg dialog(owner_, resources, String(address));
  const HWND field = GetDlgItem(dialog.window(), IDC_DOWNLOAD_ADDRESS);
  EXPECT_EQ(SendMessageA(field, EM_GETSEL, 0, 0), 0);
  EXPECT_LT(LOWORD(SendMessageA(field, EM_POSFROMCHAR, 0, 0)), 10);
}

TEST_F(DownloadDlgTest, SpeaksBothLanguages) {
  EXPECT_EQ(text(*open()), "Update Download");
  EXPECT_EQ(text(*open(kGerman)), "Update-Download");
}

TEST_F(DownloadDlgTest, HasNoButtonsInItsFrame) {
  const auto dialog = open();
  constexpr LONG kButtons = WS_SYSMENU | WS_MINIMIZEBOX | WS_MAXIMIZEBOX;
  EXPECT_EQ(GetWindowLongA(dialog->window(), GWL_STYLE) & kButtons, 0);
}

TEST_F(DownloadDlgTest, MovesItsBarInTheRangeThatIsTold) {
  const auto dialog = open();
  dialog->set_range(2000);
  EXPECT_EQ(bottom(*dialog), 0);
  EXPECT_EQ(top(*dialog), 2000);
  dialog->set_position(17);
  EXPECT_EQ(position(*dialog), 17);
  dialog->set_position(2000);
  EXPECT_EQ(position(*dialog), 2000);
}

TEST_F(DownloadDlgTest, MovesItsBarInARangeBeyondSixteenBits) {
  for (const int range : {65535, 65536, 524288}) {
    const auto dialog = open();
    dialog->set_range(range);
    EXPECT_EQ(top(*dialog), range);
    dialog->set_position(range - 1);
    EXPECT_EQ(position(*dialog), range - 1);
  }
}

TEST_F(DownloadDlgTest, NeverMovesItsBarWithoutARange) {
  const auto dialog = open();
  for (const int kilobytes : {0, 1, 50, 100'000})
    dialog->set_position(kilobytes);
  EXPECT_EQ(position(*dialog), 0);
}

TEST_F(DownloadDlgTest, KeepsItsBarEmptyInARangeOfZero) {
  const auto dialog = open();
  dialog->set_range(0);
  dialog->set_position(0);
  EXPECT_EQ(position(*dialog), 0);
}

TEST_F(DownloadDlgTest, GoesOnceItIsClosed) {
  const auto dialog = open();
  const HWND window = dialog->window();
  dialog->close();
  EXPECT_FALSE(IsWindow(window));
  dialog->close();
  EXPECT_TRUE(IsWindow(owner_));
}

TEST_F(DownloadDlgTest, GoesWithItsObject) {
  auto dialog = open();
  const HWND window = dialog->window();
  dialog.reset();
  EXPECT_FALSE(IsWindow(window));
}

TEST_F(DownloadDlgTest, KeepsTheWaitCursorUntilItsObjectGoes) {
  const HCURSOR before = ORLO::current_thread_record().cursor;
  const HCURSOR wait = LoadCursorA(nullptr, IDC_WAIT);
  auto dialog = open();
  EXPECT_EQ(ORLO::current_thread_record().cursor, wait);
  dialog->close();
  EXPECT_EQ(ORLO::current_thread_record().cursor, wait);
  dialog.reset();
  EXPECT_EQ(ORLO::current_thread_record().cursor, before);
}

TEST_F(DownloadDlgTest, TellsWhyItCannotBeShown) {
  const Resources nothing(GetModuleHandleA("kernel32.dll"), kEnglish);
  EXPECT_THROW(DownloadDlg(owner_, nothing, kAddress), ORLO::LWE);
}

}  // namespace
