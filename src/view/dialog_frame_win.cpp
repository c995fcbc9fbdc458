#include "view/dialog_frame.h"

#include <utility>

namespace {

class Counted {
 public:
  explicit Counted(int& count) : count_(count) { ++count_; }
  ~Counted() { --count_; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

 private:
  int& count_;
};

/// A question with Yes and No alone takes no WM_CLOSE.
void end_box(HWND box) {
  const bool can_be_closed =
      GetDlgItem(box, IDNO) == nullptr || GetDlgItem(box, IDCANCEL) != nullptr;
  if (can_be_closed) {
    PostMessageA(box, WM_CLOSE, 0, 0);
  } else {
    PostMessageA(box, WM_COMMAND, IDNO, 0);
  }
}

BOOL CALLBACK end_if_above(HWND window, LPARAM main_window) {
  const auto base = reinterpret_cast<HWND>(main_window);
  if (window != base && IsWindowVisible(window) && GetAncestor(window, GA_ROOTOWNER) == base) {
    end_box(window);
  }
  return TRUE;
}

}  // namespace

DialogFrame::DialogFrame(Parts parts) : parts_(std::move(parts)) {}

int DialogFrame::box(const String& text, const String& title, unsigned flags) {
  const Counted open(parts_.open_boxes);
  return MessageBoxA(parts_.window, text.c_str(), title.c_str(), flags);
}

bool DialogFrame::confirm(const String& text, const String& title) {
  return box(text, title, MB_OKCANCEL) == IDOK;
}

bool DialogFrame::ask(const String& text, const String& title) {
  return box(text, title, MB_YESNO) == IDYES;
}

void DialogFrame::warn(const String& text, const String& title) {
  box(text, title, MB_ICONWARNING);
}

void close_boxes_above(HWND window) {
  EnumThreadWindows(GetCurrentThreadId(), &end_if_above, reinterpret_cast<LPARAM>(window));
}
