// A static text that opens what it names.
#pragma once

#include "orlo/rstring.h"
#include "orlo/subclass_controller.h"
#include "orlo/window_handles.h"

namespace ORLO {

/// Has the shell open a target on behalf of a window; false if it can't.
bool open_with_shell(HWND owner, const String& target);

/// For a static control in a dialog that hands colour requests back to its controls. The target is
/// the program's text with the control's id, or if there is none the control's own text.
class HyperlinkController : public SubclassController {
 public:
  using Open = bool (*)(HWND owner, const String& target);
  static constexpr COLORREF kColor = 0xff0000;
  static constexpr COLORREF kVisitedColor = 0x800080;

  explicit HyperlinkController(HWND link, COLORREF color = kColor,
                               COLORREF visited_color = kVisitedColor,
                               Open open = &open_with_shell);
  ~HyperlinkController() override;

  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override;

  const String& target() const noexcept { return url_; }
  bool visited() const noexcept { return visited_; }

 private:
  void follow();
  HFONT underlined_font();
  LRESULT prepare(HDC context);

  const String url_;
  const COLORREF color_;
  const COLORREF visited_color_;
  const Open open_;
  bool visited_ = false;
  /// What the control had, and its clone with a line below; made when it is first needed.
  HFONT plain_font_ = nullptr;
  OwnedFont font_;
};

}  // namespace ORLO
