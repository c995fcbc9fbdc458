#include "orlo/subclass_controller.h"

#include "orlo/controller_call.h"

namespace ORLO {

SubclassController::SubclassController(HWND control) : Controller(control) {
  if (control == nullptr) return;
  attach(GWLP_USERDATA);
  old_proc = reinterpret_cast<WNDPROC>(SetWindowLongPtrA(
      control, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&SubclassController::subclass_proc)));
}

SubclassController::~SubclassController() {
  give_back();
}

void SubclassController::give_back() noexcept {
  if (old_proc == nullptr || attached_controller(_hwnd, GWLP_USERDATA) != this) return;
  detach();
  SetWindowLongPtrA(_hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(old_proc));
}

LRESULT CALLBACK SubclassController::subclass_proc(HWND window, UINT message, WPARAM wparam,
                                                   LPARAM lparam) {
  auto* const controller =
      static_cast<SubclassController*>(attached_controller(window, GWLP_USERDATA));
  if (controller == nullptr) return DefWindowProcA(window, message, wparam, lparam);
  if (message == WM_NCDESTROY) {
    const WNDPROC next = controller->old_proc;
    controller->give_back();
    return CallWindowProcA(next, window, message, wparam, lparam);
  }
  ControllerCall call(*controller, message, wparam, lparam);
  return guarded(window, message, [&] { return call.route(0); });
}

LRESULT SubclassController::WndProc(UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == kMsgIdentity) return kSubclassIdentity;
  if (message == WM_SETCURSOR && keep_thread_cursor(lparam)) return 1;
  return forward(message, wparam, lparam);
}

void SubclassController::Size(WPARAM, int, int) {
  forward_current();
}
void SubclassController::Paint() {
  forward_current();
}
LRESULT SubclassController::Command(unsigned, unsigned, HWND) {
  return forward_current();
}
LRESULT SubclassController::Notify(unsigned, NMHDR*) {
  return forward_current();
}

LRESULT SubclassController::forward(UINT message, WPARAM wparam, LPARAM lparam) const {
  return CallWindowProcA(old_proc, _hwnd, message, wparam, lparam);
}

LRESULT SubclassController::forward_current() const {
  const Message message = current_message();
  return forward(message.id, message.wparam, message.lparam);
}

}  // namespace ORLO
