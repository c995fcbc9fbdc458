#include "orlo/dlg_controller.h"

#include <utility>

#include "orlo/controller_call.h"
#include "orlo/core_resources.h"
#include "orlo/exception.h"
#include "orlo/message_loop.h"
#include "orlo/modal_scope.h"

namespace ORLO {
namespace {

/// Commands of a window's frame.
constexpr unsigned kFrameAbout = 0x8000;
constexpr unsigned kFrameClose = 0x8001;

constexpr INT_PTR kNeverCameUp = -1;

/// Messages whose result a dialog procedure returns by itself.
bool returns_its_result(UINT message) {
  return (message >= WM_CTLCOLORMSGBOX && message <= WM_CTLCOLORSTATIC) ||
         message == WM_COMPAREITEM || message == WM_VKEYTOITEM || message == WM_CHARTOITEM ||
         message == WM_QUERYDRAGICON || message == WM_INITDIALOG;
}

void abandon(HWND window, bool modal) noexcept {
  // Destroying a modal dialog's window while it starts would leave its owner disabled.
  if (modal) {
    ::EndDialog(window, kNeverCameUp);
  } else {
    DestroyWindow(window);
  }
}

}  // namespace

DlgController::DlgController(HWND window, std::unique_ptr<ParaStruct> parameters)
    : Controller(window), para(std::move(parameters)) {}

DlgController::~DlgController() = default;

LRESULT DlgController::WndProc(UINT message, WPARAM, LPARAM lparam) {
  if (message == kMsgIdentity) return set_result(kDialogIdentity);
  if (message == WM_SETCURSOR && keep_thread_cursor(lparam)) return set_result(1);
  return 0;
}

LRESULT DlgController::Command(unsigned id, unsigned, HWND) {
  switch (id) {
    case IDOK:
      if (!CanClose(true)) return 1;
      OnOk();
      EndDialog(IDOK);
      return 1;
    case IDCANCEL:
      EndDialog(IDCANCEL);
      return 1;
    case kFrameAbout:
      show_library_about(_hwnd);
      return 1;
    case kFrameClose:
      PostMessageA(_hwnd, WM_CLOSE, 0, 0);
      return 1;
    default:
      return 0;
  }
}

LRESULT DlgController::Init(HWND) {
  return 1;
}

bool DlgController::CanClose(bool save) {
  if (para == nullptr) return true;
  const ExceptionContext context("control update");
  para->hwnd = _hwnd;
  para->partial = save;
  para->dialog = this;
  para->updateControls();
  return true;
}

void DlgController::OnOk() {
  if (exit_function && para != nullptr) exit_function(*para);
}

void DlgController::EndDialog(INT_PTR result) {
  const HWND window = _hwnd;
  const bool modeless = !is_modal_;
  ::EndDialog(window, result);
  // Its window goes away at once, and this object with the last call into it.
  if (modeless) DestroyWindow(window);
}

LRESULT DlgController::set_result(LRESULT result) const noexcept {
  SetWindowLongPtrA(_hwnd, DWLP_MSGRESULT, result);
  return 1;
}

struct Dialog::Start {
  const Factory* factory;
  bool modal;
  bool window_made = false;
};

INT_PTR Dialog::DoModal(HINSTANCE instance, const DLGTEMPLATE* dialog, HWND parent,
                        const Factory& factory) {
  Start start{&factory, true};
  const ModalScope scope;
  const INT_PTR result = DialogBoxIndirectParamA(instance, dialog, parent, &Dialog::dialog_proc,
                                                 reinterpret_cast<LPARAM>(&start));
  if (!start.window_made) throw LWE();
  return result;
}

HWND Dialog::DoModeless(HINSTANCE instance, const DLGTEMPLATE* dialog, HWND parent,
                        const Factory& factory) {
  Start start{&factory, false};
  const HWND window = CreateDialogIndirectParamA(instance, dialog, parent, &Dialog::dialog_proc,
                                                 reinterpret_cast<LPARAM>(&start));
  if (!start.window_made) throw LWE();
  return IsWindow(window) != FALSE ? window : nullptr;
}

INT_PTR CALLBACK Dialog::dialog_proc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  Controller* const controller = dialog_controller_of_own_window(window);
  if (controller == nullptr) {
    if (message != WM_INITDIALOG) return 0;
    return start(window, wparam, *reinterpret_cast<Start*>(lparam));
  }
  ControllerCall call(*controller, message, wparam, lparam);
  if (message == WM_DESTROY || message == WM_NCDESTROY) {
    call.dispose();
    return 0;
  }
  bool failed = true;
  const LRESULT result = guarded(window, message, [&] {
    const LRESULT routed = call.route(1);
    failed = false;
    return routed;
  });
  if (!failed && message != kMsgCommand && message != kMsgFrame) return result;
  // A child's message gets the value itself, and a message that failed counts as handled with 0.
  if (returns_its_result(message)) return result;
  SetWindowLongPtrA(window, DWLP_MSGRESULT, result);
  return 1;
}

INT_PTR Dialog::start(HWND window, WPARAM focus, Start& start) {
  start.window_made = true;
  DlgController* controller = nullptr;
  guarded(window, WM_INITDIALOG, [&]() -> LRESULT {
    filter_dialog_keys();
    auto made = (*start.factory)(window);
    if (made == nullptr) return 0;
    made->is_modal_ = start.modal;
    made->attach(DWLP_USER);
    controller = made.release();
    return 1;
  });
  if (controller == nullptr) {
    abandon(window, start.modal);
    return 0;
  }
  const ControllerCall call(*controller, WM_INITDIALOG, focus, 0);
  if (!guarded(window, WM_INITDIALOG, [&] { return LRESULT{controller->CanClose(false)}; })) {
    abandon(window, start.modal);
    return 0;
  }
  return guarded(window, WM_INITDIALOG,
                 [&] { return controller->Init(reinterpret_cast<HWND>(focus)); });
}

DlgController* dialog_controller(HWND window) noexcept {
  // Only a window that calls itself a dialog of ours has a pointer of ours in its data.
  if (SendMessageA(window, kMsgIdentity, 0, 0) != kDialogIdentity) return nullptr;
  return static_cast<DlgController*>(attached_controller(window, DWLP_USER));
}

}  // namespace ORLO
