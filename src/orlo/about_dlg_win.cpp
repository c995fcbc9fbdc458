#include "orlo/about_dlg.h"

#include "orlo/window_helpers.h"

namespace ORLO {
namespace {

constexpr COLORREF kButtonText = 0x800000;
constexpr COLORREF kActiveButtonText = 0xff0000;

bool is_owner_drawn(HWND button) {
  return button != nullptr && (GetWindowLongPtrA(button, GWL_STYLE) & BS_TYPEMASK) == BS_OWNERDRAW;
}

}  // namespace

AboutDlgController::AboutDlgController(HWND window, const char* name,
                                       std::initializer_list<int> links)
    : GlblDlgTemplate(window, name) {
  if (const HWND ok = control(IDOK); is_owner_drawn(ok)) {
    ok_button_ = std::make_unique<FlatButtonController>(ok, kButtonText, kActiveButtonText);
  }
  for (const int id : links)
    links_.push_back(std::make_unique<HyperlinkController>(control(id)));
}

LRESULT AboutDlgController::Init(HWND focus_window) {
  center_window(_hwnd);
  return GlblDlgTemplate::Init(focus_window);
}

}  // namespace ORLO
