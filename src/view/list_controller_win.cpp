#include "view/list_controller.h"

#include <utility>

namespace {

constexpr LPARAM kByKeyboard = -1;

POINT point_of(LPARAM lparam) {
  return {static_cast<short>(LOWORD(lparam)), static_cast<short>(HIWORD(lparam))};
}

}  // namespace

ListController::ListController(HWND list, HeaderMenu header_menu, KeyMenu key_menu)
    : SubclassController(list),
      header_menu_(std::move(header_menu)),
      key_menu_(std::move(key_menu)) {}

LRESULT ListController::WndProc(UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == WM_CONTEXTMENU && asked_for_menu(reinterpret_cast<HWND>(wparam), lparam)) return 0;
  return SubclassController::WndProc(message, wparam, lparam);
}

bool ListController::asked_for_menu(HWND asked, LPARAM place) {
  if (asked == ListView_GetHeader(_hwnd)) {
    header_menu_(point_of(place));
    return true;
  }
  if (asked != _hwnd || place != kByKeyboard) return false;
  key_menu_();
  return true;
}
