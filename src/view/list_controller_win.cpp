#include "view/list_controller.h"

#include <utility>

ListController::ListController(HWND list, HeaderMenu header_menu)
    : SubclassController(list), header_menu_(std::move(header_menu)) {}

LRESULT ListController::WndProc(UINT message, WPARAM wparam, LPARAM lparam) {
  const auto is_header = [&] {
    return reinterpret_cast<HWND>(wparam) == ListView_GetHeader(_hwnd);
  };
  if (message == WM_CONTEXTMENU && is_header()) {
    header_menu_({static_cast<short>(LOWORD(lparam)), static_cast<short>(HIWORD(lparam))});
    return 0;
  }
  return SubclassController::WndProc(message, wparam, lparam);
}
