#include "orlo/message_loop.h"

#include "orlo/dlg_controller.h"
#include "orlo/exception.h"
#include "orlo/thread_record.h"

namespace ORLO {
namespace {

bool is_key(const MSG& message) {
  return message.message == WM_KEYDOWN || message.message == WM_KEYUP ||
         message.message == WM_SYSKEYDOWN || message.message == WM_SYSKEYUP;
}

/// The parent proper; unlike GetParent this never leads from a dialog to its owner.
HWND parent_of(HWND window) {
  const HWND parent = GetAncestor(window, GA_PARENT);
  return parent != GetDesktopWindow() ? parent : nullptr;
}

bool claimed_by_hook(MSG& message) {
  MessageHook* hook = current_thread_record().message_hooks;
  while (hook != nullptr) {
    // A hook may take itself out while it runs.
    MessageHook* const next = hook->next;
    if (hook->function(hook->context, message)) return true;
    hook = next;
  }
  return false;
}

bool claimed_by_dialog(MSG& message) {
  for (HWND window = message.hwnd; window != nullptr; window = parent_of(window)) {
    if (dialog_controller(window) != nullptr) return IsDialogMessageA(window, &message) != FALSE;
  }
  return false;
}

/// Marks the message in hand for its scope.
class Dispatched {
 public:
  explicit Dispatched(const MSG& message) : outer_(current_thread_record().dispatched) {
    current_thread_record().dispatched = &message;
  }
  ~Dispatched() { current_thread_record().dispatched = outer_; }
  Dispatched(const Dispatched&) = delete;
  Dispatched& operator=(const Dispatched&) = delete;

 private:
  const MSG* const outer_;
};

/// The system calls this for each message of a dialog, once it is off the queue. That's why the
/// filter is used and not a keyboard hook: a command may run a long wait of its own in here.
LRESULT CALLBACK key_filter_proc(int code, WPARAM wparam, LPARAM lparam) {
  if (code == MSGF_DIALOGBOX) {
    MSG& message = *reinterpret_cast<MSG*>(lparam);
    // dispatch() has already offered its message.
    const MSG* const dispatched = current_thread_record().dispatched;
    const bool offered = dispatched != nullptr && dispatched->time == message.time &&
                         dispatched->hwnd == message.hwnd &&
                         dispatched->message == message.message &&
                         dispatched->wParam == message.wParam;
    if (is_key(message) && !offered && translate(message)) return 1;
  }
  return CallNextHookEx(nullptr, code, wparam, lparam);
}

}  // namespace

void dispatch(MSG& message) {
  if (claimed_by_hook(message)) return;
  if (is_key(message) && translate(message)) return;
  const Dispatched mark(message);
  if (claimed_by_dialog(message)) return;
  if (is_key(message)) TranslateMessage(&message);
  DispatchMessageA(&message);
}

bool translate(MSG& message) {
  for (HWND window = message.hwnd; window != nullptr; window = parent_of(window)) {
    if (SendMessageA(window, kMsgTranslate, 0, reinterpret_cast<LPARAM>(&message)) != 0) {
      return true;
    }
    const DlgController* const dialog = dialog_controller(window);
    if (dialog != nullptr && dialog->is_modal()) return false;
  }
  return false;
}

void filter_dialog_keys() {
  ThreadRecord& record = current_thread_record();
  if (record.key_filter) return;
  record.key_filter.reset(
      SetWindowsHookExA(WH_MSGFILTER, &key_filter_proc, nullptr, GetCurrentThreadId()));
  if (!record.key_filter) throw LWE();
}

int run_message_loop() {
  MSG message = {};
  while (GetMessageA(&message, nullptr, 0, 0) > 0)
    dispatch(message);
  ++current_thread_record().loop_level;
  return static_cast<int>(message.wParam);
}

}  // namespace ORLO
