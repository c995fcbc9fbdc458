#include "orlo/controller.h"

#include "orlo/assertion.h"
#include "orlo/controller_call.h"
#include "orlo/thread_record.h"

namespace ORLO {
namespace {

void validate_if_painting(HWND window, UINT message) {
  if (message == WM_PAINT) ValidateRect(window, nullptr);
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
  return DefWindowProcA(_hwnd, message, wparam, lparam);
}

void Controller::Size(WPARAM, int, int) {}

void Controller::Paint() {
  PAINTSTRUCT paint;
  const HDC _hdc = BeginPaint(_hwnd, &paint);
  check_assertion(_hdc != nullptr, "_hdc", "controller", __LINE__);
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
  SetWindowLongPtrA(_hwnd, index, reinterpret_cast<LONG_PTR>(this));
  attached_index_ = index;
  attached_ = true;
}

void Controller::detach() noexcept {
  if (!attached_) return;
  attached_ = false;
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

void report_in_window(const Exception& exception, HWND window, UINT message) {
  validate_if_painting(window, message);
  report_exception(exception, window);
  validate_if_painting(window, message);
}

void report_in_window(const std::exception& exception, HWND window, UINT message) {
  validate_if_painting(window, message);
  report_std_exception(exception, window);
  validate_if_painting(window, message);
}

}  // namespace ORLO
