#include "pads.h"

#include "orlo/exception.h"

namespace gallery {
namespace {

void fill(HWND window, COLORREF color) {
  PAINTSTRUCT paint;
  const HDC context = BeginPaint(window, &paint);
  SetDCBrushColor(context, color);
  FillRect(context, &paint.rcPaint, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
  EndPaint(window, &paint);
}

}  // namespace

LRESULT Pad::WndProc(UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case WM_LBUTTONDOWN:
      pressed_ = !pressed_;
      InvalidateRect(_hwnd, nullptr, FALSE);
      log_.add(String::formatted("%s press", name_));
      return 0;
    case WM_LBUTTONDBLCLK:
      log_.add(String::formatted("%s double", name_));
      return 0;
    case WM_RBUTTONDOWN:
      log_.add(String::formatted(
          "%s got %d", name_, SendMessageA(GetParent(_hwnd), ORLO::kMsgCommand, kPadCommand, 9)));
      return 0;
    case WM_MBUTTONDOWN:
      log_.add(String::formatted("%s got %d", name_,
                                 SendMessageA(GetParent(_hwnd), ORLO::kMsgFrame, kPadFrame, 0)));
      return 0;
    default:
      return Controller::WndProc(message, wparam, lparam);
  }
}

void Pad::Paint() {
  fill(_hwnd, pressed_ ? kPressedPadColor : kPadColor);
}

void BadPad::Paint() {
  if (!bad_) {
    fill(_hwnd, kPadColor);
    return;
  }
  log_.add("paint fails");
  throw ORLO::UserException("no colours left");
}

void BadPad::turn_bad() {
  bad_ = true;
  InvalidateRect(_hwnd, nullptr, FALSE);
}

}  // namespace gallery
