#include "orlo/message_loop.h"

#include "orlo/com_objects.h"
#include "orlo/controller_call.h"
#include "orlo/dlg_controller.h"
#include "orlo/exception.h"
#include "orlo/shutdown.h"
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

bool stands(const MessageHook* wanted) {
  const MessageHook* hook = current_thread_record().message_hooks;
  while (hook != nullptr && hook != wanted)
    hook = hook->next;
  return hook != nullptr;
}

/// While a hook runs, itself and others may be taken out.
bool claimed_by_hook(MSG& message) {
  MessageHook* hook = current_thread_record().message_hooks;
  while (hook != nullptr) {
    MessageHook* const next = hook->next;
    if (hook->function(hook->context, message)) return true;
    if (stands(hook)) {
      hook = hook->next;
    } else {
      hook = stands(next) ? next : nullptr;
    }
  }
  return false;
}

/// Dialogs of the system, as message boxes, among them: a wait below one must not take its keys.
bool is_dialog(HWND window) {
  static const ULONG_PTR dialog_class = reinterpret_cast<ULONG_PTR>(WC_DIALOG);
  return GetClassLongPtrA(window, GCW_ATOM) == dialog_class;
}

bool claimed_by_dialog(MSG& message) {
  for (HWND window = message.hwnd; window != nullptr; window = parent_of(window)) {
    if (is_dialog(window)) return IsDialogMessageA(window, &message) != FALSE;
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

void hand_on(MSG& message) {
  if (claimed_by_hook(message)) return;
  if (is_key(message) && translate(message)) return;
  const Dispatched mark(message);
  if (claimed_by_dialog(message)) return;
  if (is_key(message)) TranslateMessage(&message);
  DispatchMessageA(&message);
}

/// Static objects are made on the main thread.
const DWORD main_thread_id = GetCurrentThreadId();

}  // namespace

void dispatch(MSG& message) {
  guarded_call(
      [&]() -> LRESULT {
        hand_on(message);
        return 0;
      },
      [&](const auto& failure) { report_in_message(failure, message); });
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
  if (record.key_filter != nullptr) return;
  record.key_filter =
      SetWindowsHookExA(WH_MSGFILTER, &key_filter_proc, nullptr, GetCurrentThreadId());
  if (record.key_filter == nullptr) throw LWE();
}

bool prepare_shutdown() {
  return prepare_shutdown(com_objects(), current_thread_record()._hmainwnd);
}

int run_message_loop() {
  MSG message = {};
  do {
    while (GetMessageA(&message, nullptr, 0, 0) > 0)
      dispatch(message);
    ++current_thread_record().loop_level;
  } while (GetCurrentThreadId() == main_thread_id && !prepare_shutdown());
  return static_cast<int>(message.wParam);
}

}  // namespace ORLO
