#include "orlo/window_helpers.h"

#include <algorithm>
#include <string>

namespace ORLO {
namespace {

bool can_be_seen(HWND window) {
  return window != nullptr && IsWindowVisible(window) && !IsIconic(window);
}

/// The nearest window below `window` that could be seen as what it was opened from. Windows of
/// other programs don't count: the main window is no companion of whatever lies under it.
HWND next_visible_sibling(HWND window) {
  const DWORD thread = GetWindowThreadProcessId(window, nullptr);
  HWND sibling = GetWindow(window, GW_HWNDNEXT);
  while (sibling != nullptr) {
    if (GetWindowThreadProcessId(sibling, nullptr) == thread && can_be_seen(sibling)) {
      return sibling;
    }
    sibling = GetWindow(sibling, GW_HWNDNEXT);
  }
  return nullptr;
}

RECT work_area() {
  RECT area = {};
  SystemParametersInfoA(SPI_GETWORKAREA, 0, &area, 0);
  return area;
}

RECT area_to_center_in(HWND window) {
  const HWND owner = GetWindow(window, GW_OWNER);
  const HWND below = can_be_seen(owner) ? owner : next_visible_sibling(window);
  if (below == nullptr) return work_area();
  RECT area = {};
  GetWindowRect(below, &area);
  return area;
}

void move_window(HWND window, int left, int top) {
  SetWindowPos(window, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

/// The nearest place on [0, room) for something that begins at `start`.
int moved_in(int start, int extent, int room) {
  return std::max(0, std::min(start, room - extent));
}

/// A question with Yes and No alone takes no WM_CLOSE.
void end_box(HWND box) {
  const bool can_be_closed =
      GetDlgItem(box, IDNO) == nullptr || GetDlgItem(box, IDCANCEL) != nullptr;
  if (can_be_closed) {
    PostMessageA(box, WM_CLOSE, 0, 0);
  } else {
    PostMessageA(box, WM_COMMAND, IDNO, 0);
  }
}

BOOL CALLBACK end_if_above(HWND window, LPARAM base) {
  const auto below = reinterpret_cast<HWND>(base);
  const bool above = window != below && GetAncestor(window, GA_ROOTOWNER) == below;
  if (IsWindowVisible(window) && (above || below == nullptr)) end_box(window);
  return TRUE;
}

}  // namespace

void end_windows_above(HWND base, DWORD thread) noexcept {
  EnumThreadWindows(thread, &end_if_above, reinterpret_cast<LPARAM>(base));
}

void move_to_screen(HWND window) {
  RECT rect = {};
  GetWindowRect(window, &rect);
  const int left = moved_in(rect.left, width(rect), GetSystemMetrics(SM_CXSCREEN));
  const int top = moved_in(rect.top, height(rect), GetSystemMetrics(SM_CYSCREEN));
  if (left != rect.left || top != rect.top) move_window(window, left, top);
}

void center_window(HWND window) {
  RECT rect = {};
  GetWindowRect(window, &rect);
  const RECT area = area_to_center_in(window);
  move_window(window, area.left + (width(area) - width(rect)) / 2,
              area.top + (height(area) - height(rect)) / 2);
  move_to_screen(window);
}

void shrink_to_work_area(HWND window) {
  RECT rect = {};
  GetWindowRect(window, &rect);
  const RECT area = work_area();
  if (width(rect) <= width(area) && height(rect) <= height(area)) return;
  SetWindowPos(window, nullptr, 0, 0, std::min(width(rect), width(area)),
               std::min(height(rect), height(area)), SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void replace_menu(HWND window, OwnedMenu menu) {
  const OwnedMenu old(GetMenu(window));
  SetMenu(window, menu.release());
}

String window_text(HWND window) {
  std::string text(static_cast<size_t>(GetWindowTextLengthA(window)) + 1, '\0');
  const int length = GetWindowTextA(window, text.data(), static_cast<int>(text.size()));
  return String(text.data(), text.data() + length);
}

}  // namespace ORLO
