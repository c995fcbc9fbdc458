// A button without an edge until the mouse is over it.
#pragma once

#include "orlo/subclass_controller.h"

namespace ORLO {

/// For a control with the style BS_OWNERDRAW in a dialog that hands owner drawing back to its
/// controls. Behaves as a push button otherwise: it can be the default one.
class FlatButtonController : public SubclassController {
 public:
  /// The colours are those of the text, at rest and under the mouse.
  FlatButtonController(HWND button, COLORREF rest_color, COLORREF active_color);

  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override;

  bool is_active() const noexcept { return active; }
  bool is_default() const noexcept { return default_button; }

 private:
  bool is_hot_at(LPARAM position) const;
  void set_active(bool on);
  void set_default(bool on);
  void draw(const DRAWITEMSTRUCT& item) const;
  void draw_text(const DRAWITEMSTRUCT& item) const;

  const COLORREF rest_color_;
  const COLORREF active_color_;
  bool active = false;
  bool default_button = false;
};

}  // namespace ORLO
