// A controller in front of a window procedure that is already there.
#pragma once

#include "orlo/controller.h"

namespace ORLO {

/// Takes over a control that a dialog template made. Owned by the dialog's object; it may die
/// before or after the control. Without a control (null) it does nothing.
class SubclassController : public Controller {
 public:
  explicit SubclassController(HWND control);
  ~SubclassController() override;

  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override;
  void Size(WPARAM type, int width, int height) override;
  void Paint() override;
  LRESULT Command(unsigned id, unsigned code, HWND control) override;
  LRESULT Notify(unsigned id, NMHDR* header) override;

 protected:
  /// Hands a message on to the procedure that was there before.
  LRESULT forward(UINT message, WPARAM wparam, LPARAM lparam) const;

 private:
  static LRESULT CALLBACK subclass_proc(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
  LRESULT forward_current() const;
  void give_back() noexcept;

  WNDPROC old_proc = nullptr;
};

}  // namespace ORLO
