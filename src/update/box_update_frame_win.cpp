#include <utility>

#include "orlo/window_helpers.h"
#include "update/box_update_frame.h"
#include "update/download_dlg.h"

BoxUpdateFrame::BoxUpdateFrame(HWND window, const Resources& resources,
                               std::function<void()> end_process)
    : window_(window), resources_(resources), end_process_(std::move(end_process)) {}

int BoxUpdateFrame::box(const String& text, const String& title, unsigned flags) {
  thread_ = GetCurrentThreadId();
  return closing_ ? IDNO : MessageBoxA(window_, text.c_str(), title.c_str(), flags);
}

void BoxUpdateFrame::tell(const String& text, const String& title) {
  box(text, title, MB_OK);
}

bool BoxUpdateFrame::ask(const String& text, const String& title) {
  return box(text, title, MB_YESNO) == IDYES && !closing_;
}

void BoxUpdateFrame::hide() {
  ShowWindow(window_, SW_HIDE);
}

std::unique_ptr<ShownDownload> BoxUpdateFrame::show_download(const String& url) {
  return std::make_unique<DownloadDlg>(window_, resources_, url);
}

void BoxUpdateFrame::close_boxes() noexcept {
  closing_ = true;
  // Whatever the thread shows: the main window, from which it was opened, may be gone already.
  if (const uint32_t thread = thread_) ORLO::end_windows_above(nullptr, thread);
}
