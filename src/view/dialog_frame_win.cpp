#include "view/dialog_frame.h"

#include <utility>

#include "orlo/modal_scope.h"
#include "orlo/window_helpers.h"

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

/// A WM_QUIT ends a box as if OK had been pressed, and stays for the loops around it.
bool quitting() {
  MSG message;
  return PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_NOREMOVE) != FALSE;
}

}  // namespace

DialogFrame::DialogFrame(Parts parts) : parts_(std::move(parts)) {}

void DialogFrame::show(const std::function<void()>& open) {
  if (parts_.closing()) return;
  const Counted counted(open_boxes_);
  open();
}

int DialogFrame::box(const String& text, const String& title, unsigned flags) {
  int answer = 0;
  show([&] {
    const ORLO::ModalScope modal;
    answer = MessageBoxA(parts_.window, text.c_str(), title.c_str(), flags);
    if (quitting()) answer = IDCANCEL;
  });
  return answer;
}

String DialogFrame::ask_file_name(const ORLO::SaveFileDialog& dialog) {
  String name;
  show([&] {
    const ORLO::ModalScope modal;
    name = dialog.ask(parts_.window);
  });
  return parts_.closing() || quitting() ? String() : name;
}

void DialogFrame::begin_wait_cursor() {
  wait_cursors_.push_back(std::make_unique<ORLO::WaitCursor>());
}

void DialogFrame::tell(const String& text, const String& title) {
  box(text, title, MB_OK);
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

bool DialogFrame::close_boxes() const {
  if (open_boxes_ == 0) return false;
  ORLO::end_windows_above(parts_.window, GetCurrentThreadId());
  return true;
}
