// What a dialog gains by deriving from a stack of these: ResizeController<OwnerDrawController<
// DlgController>>.
#pragma once

#include "orlo/dlg_controller.h"
#include "orlo/resizer.h"

namespace ORLO {

/// Hands owner drawing back to the control that is to be drawn.
template <typename Base>
class OwnerDrawController : public Base {
 public:
  using Base::Base;

  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override {
    if (message == WM_DRAWITEM || message == WM_MEASUREITEM) {
      // Menus send these too, with the id 0, which no control has.
      const HWND control = GetDlgItem(this->_hwnd, static_cast<int>(wparam));
      if (control != nullptr && SendMessageA(control, kMsgOwnerDraw, message, lparam) != 0) {
        return this->set_result(1);
      }
    }
    return Base::WndProc(message, wparam, lparam);
  }
};

/// Hands colour requests back to the control that is to be coloured.
template <typename Base>
class CtlColorController : public Base {
 public:
  using Base::Base;

  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override {
    if (message >= WM_CTLCOLORMSGBOX && message <= WM_CTLCOLORSTATIC) {
      const auto control = reinterpret_cast<HWND>(lparam);
      // A dialog procedure returns the brush itself.
      const LRESULT brush = SendMessageA(control, kMsgCtlColor, wparam, lparam);
      if (brush != 0) return brush;
    }
    return Base::WndProc(message, wparam, lparam);
  }
};

/// Lays the controls out anew when the window's size changes, and keeps its smallest size. The
/// derived class's constructor adds its rules to `resizer` and then calls Resizer::init.
template <typename Base>
class ResizeController : public Base {
 public:
  using Base::Base;

  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override {
    if (message == WM_GETMINMAXINFO) {
      resizer.limit(*reinterpret_cast<MINMAXINFO*>(lparam));
      return 1;
    }
    if (message == kMsgClientSpace) {
      GetClientSpace(*reinterpret_cast<RECT*>(lparam));
      return 1;
    }
    return Base::WndProc(message, wparam, lparam);
  }

  void Size(WPARAM type, int width, int height) override {
    if (type != SIZE_MINIMIZED) resizer.resize(width, height);
    Base::Size(type, width, height);
  }

  /// The client area, for a minimised window that of its normal size.
  virtual void GetClientSpace(RECT& rect) { rect = client_space(this->_hwnd); }

 protected:
  Resizer resizer;
};

}  // namespace ORLO
