#include "orlo/exception.h"
#include "orlo/window_helpers.h"
#include "platform/resource_ids.h"
#include "update/download_dlg.h"
// This needs what orlowin.h brings.
#include <commctrl.h>

namespace {

// The older message has 16 bits for each end of the range.
constexpr int kLargestShortRange = 65535;

INT_PTR CALLBACK handle_nothing(HWND, UINT, WPARAM, LPARAM) {
  return FALSE;
}

void draw_now(HWND window) {
  RedrawWindow(window, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
}

}  // namespace

DownloadDlg::DownloadDlg(HWND owner, const Resources& resources, const String& url)
    : window_(CreateDialogIndirectParamA(resources.module(), resources.dialog(IDD_DOWNLOAD), owner,
                                         &handle_nothing, 0)) {
  if (window_ == nullptr) throw ORLO::LWE();
  SetDlgItemTextA(window_, IDC_DOWNLOAD_ADDRESS, url.c_str());
  ORLO::center_window(window_);
  ShowWindow(window_, SW_SHOW);
  // The focus has chosen the whole text, and moved to its end.
  SendDlgItemMessageA(window_, IDC_DOWNLOAD_ADDRESS, EM_SETSEL, 0, 0);
  SendDlgItemMessageA(window_, IDC_DOWNLOAD_ADDRESS, EM_SCROLLCARET, 0, 0);
  draw_now(window_);
}

HWND DownloadDlg::bar() const noexcept {
  return GetDlgItem(window_, IDC_DOWNLOAD_PROGRESS);
}

void DownloadDlg::set_range(int kilobytes) {
  has_range_ = true;
  if (kilobytes <= kLargestShortRange) {
    SendMessageA(bar(), PBM_SETRANGE, 0, MAKELPARAM(0, kilobytes));
  } else {
    SendMessageA(bar(), PBM_SETRANGE32, 0, kilobytes);
  }
}

void DownloadDlg::set_position(int kilobytes) {
  // In the range that a bar has by itself it would be full after 100 kilobytes of any download.
  if (!has_range_) return;
  SendMessageA(bar(), PBM_SETPOS, static_cast<WPARAM>(kilobytes), 0);
  draw_now(window_);
}

void DownloadDlg::close() noexcept {
  if (window_ == nullptr) return;
  EndDialog(window_, 0);
  // To end a dialog that has no loop of its own only hides it.
  DestroyWindow(window_);
  window_ = nullptr;
}
