#include "orlo/controller.h"

#include "orlo/assertion.h"
#include "orlo/com_objects.h"
#include "orlo/controller_call.h"
#include "orlo/thread_record.h"

namespace ORLO {
namespace {

/// What this thread's window procedures looked up last. Only the thread that owns a window looks it
/// up, and a controller takes itself out when it leaves its window.
struct LookupCache {
  HWND last_window = nullptr;
  Controller* last_controller = nullptr;
  HWND last_dialog = nullptr;
  Controller* last_dialog_controller = nullptr;
};

LookupCache& lookup_cache() noexcept {
  thread_local LookupCache cache;
  return cache;
}

void forget_lookup(HWND window) noexcept {
  LookupCache& cache = lookup_cache();
  if (cache.last_window == window) cache.last_window = nullptr;
  if (cache.last_dialog == window) cache.last_dialog = nullptr;
}

Controller* look_up(HWND window, int index, HWND& last, Controller*& last_found) noexcept {
  if (window == last) return last_found;
  Controller* const found = attached_controller(window, index);
  if (found == nullptr) return nullptr;
  last = window;
  last_found = found;
  return found;
}

/// A main window that others still use through an object of the library's stays, unseen.
bool hide_instead_of_closing(HWND window) {
  if (window != current_thread_record()._hmainwnd || in_shutdown()) return false;
  return com_objects().while_in_use([window] { ShowWindow(window, SW_HIDE); });
}

}  // namespace

Controller::~Controller() {
  for (ControllerCall* call = calls_; call != nullptr; call = call->outer_) {
    call->controller_ = nullptr;
  }
  detach();
  ThreadRecord& record = current_thread_record();
  if (_hwnd != nullptr && record._hmainwnd == _hwnd) {
    record._hmainwnd = nullptr;
    PostQuitMessage(0);
  }
}

LRESULT Controller::WndProc(UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == kMsgIdentity) return kPlainIdentity;
  if (message == WM_SETCURSOR && keep_thread_cursor(lparam)) return 1;
  if (message == WM_CLOSE && hide_instead_of_closing(_hwnd)) return 0;
  return DefWindowProcA(_hwnd, message, wparam, lparam);
}

void Controller::Size(WPARAM, int, int) {}

void Controller::Paint() {
  PAINTSTRUCT paint;
  const HDC _hdc = BeginPaint(_hwnd, &paint);
  if (!check_assertion(_hdc != nullptr, "_hdc", "controller", __LINE__)) return;
  EndPaint(_hwnd, &paint);
}

LRESULT Controller::Command(unsigned, unsigned, HWND) {
  return 0;
}
LRESULT Controller::Notify(unsigned, NMHDR*) {
  return 0;
}
LRESULT Controller::Frame(unsigned) {
  return 0;
}

void Controller::attach(int index) {
  const LONG_PTR old_userdata = GetWindowLongPtrA(_hwnd, index);
  check_assertion(old_userdata == 0, "!old_userdata", "controller", __LINE__);
  forget_lookup(_hwnd);
  SetWindowLongPtrA(_hwnd, index, reinterpret_cast<LONG_PTR>(this));
  attached_index_ = index;
  attached_ = true;
}

void Controller::detach() noexcept {
  if (!attached_) return;
  attached_ = false;
  forget_lookup(_hwnd);
  if (attached_controller(_hwnd, attached_index_) == this) {
    SetWindowLongPtrA(_hwnd, attached_index_, 0);
  }
}

const Controller::Message& Controller::current_message() const noexcept {
  return calls_->message_;
}

bool Controller::keep_thread_cursor(LPARAM hit) noexcept {
  const HCURSOR cursor = current_thread_record().cursor;
  const WORD area = LOWORD(hit);
  const bool covered = (area >= HTCLIENT && area <= HTMAXBUTTON) || area == HTCLOSE;
  if (cursor == nullptr || !covered) return false;
  SetCursor(cursor);
  return true;
}

Controller* attached_controller(HWND window, int index) noexcept {
  return reinterpret_cast<Controller*>(GetWindowLongPtrA(window, index));
}

Controller* plain_controller_of_own_window(HWND window) noexcept {
  LookupCache& cache = lookup_cache();
  return look_up(window, GWLP_USERDATA, cache.last_window, cache.last_controller);
}

Controller* dialog_controller_of_own_window(HWND window) noexcept {
  LookupCache& cache = lookup_cache();
  return look_up(window, DWLP_USER, cache.last_dialog, cache.last_dialog_controller);
}

Controller* controller_of(HWND window) noexcept {
  const LRESULT identity = SendMessageA(window, kMsgIdentity, 0, 0);
  if ((identity & ~kDialogBit) != kPlainIdentity) return nullptr;
  if (identity == kDialogIdentity) return attached_controller(window, DWLP_USER);
  return attached_controller(window, GWLP_USERDATA);
}

ControllerCall::ControllerCall(Controller& controller, UINT message, WPARAM wparam,
                               LPARAM lparam) noexcept
    : controller_(&controller), outer_(controller.calls_), message_{message, wparam, lparam} {
  controller.calls_ = this;
}

ControllerCall::~ControllerCall() {
  if (controller_ == nullptr) return;
  controller_->calls_ = outer_;
  if (outer_ == nullptr && controller_->doomed_) delete controller_;
}

LRESULT ControllerCall::route(LRESULT handled) {
  Controller& controller = *controller_;
  const auto [id, wparam, lparam] = message_;
  switch (id) {
    case WM_SIZE:
      controller.Size(wparam, LOWORD(lparam), HIWORD(lparam));
      return handled;
    case WM_PAINT:
      controller.Paint();
      return handled;
    case WM_NOTIFY:
      return controller.Notify(static_cast<unsigned>(wparam), reinterpret_cast<NMHDR*>(lparam));
    case WM_COMMAND:
      return controller.Command(LOWORD(wparam), HIWORD(wparam), reinterpret_cast<HWND>(lparam));
    case kMsgCommand:
      return controller.Command(static_cast<unsigned>(wparam), static_cast<unsigned>(lparam),
                                nullptr);
    case kMsgFrame:
      return controller.Frame(LOWORD(wparam));
    default:
      return controller.WndProc(id, wparam, lparam);
  }
}

void ControllerCall::dispose() noexcept {
  controller_->detach();
  controller_->doomed_ = true;
}

}  // namespace ORLO
