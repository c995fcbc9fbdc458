#include "orlo/resizer.h"

namespace ORLO {
namespace {

struct Deltas {
  int left;
  int top;
  int right;
  int bottom;
};

Deltas deltas_for(unsigned flags, int dx, int dy) {
  return {flags & kMoveLeft ? dx : 0, flags & kMoveTop ? dy : 0, flags & kMoveRight ? dx : 0,
          flags & kMoveBottom ? dy : 0};
}

UINT unchanged_aspects(const Deltas& deltas) {
  UINT flags = 0;
  if (deltas.left == 0 && deltas.top == 0) flags |= SWP_NOMOVE;
  if (deltas.left == deltas.right && deltas.top == deltas.bottom) flags |= SWP_NOSIZE;
  return flags;
}

RECT rectangle_in_parent(HWND parent, HWND control) {
  RECT rect = {};
  GetWindowRect(control, &rect);
  MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&rect), 2);
  return rect;
}

/// What a control takes along from its old place may be gone already where the window's own drawing
/// surface has just been made anew; some systems copy it all the same and think it drawn.
void redraw(const std::vector<HWND>& controls) {
  for (const HWND control : controls) {
    RedrawWindow(control, nullptr, nullptr,
                 RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
  }
}

}  // namespace

void Resizer::init(HWND for_window, int minimum_width, int minimum_height) {
  window = for_window;
  min_width = minimum_width;
  min_height = minimum_height;
  const RECT client = client_space(window);
  last_width = width(client);
  last_height = height(client);
}

void Resizer::init(HWND for_window) {
  RECT frame = {};
  GetWindowRect(for_window, &frame);
  init(for_window, ORLO::width(frame), ORLO::height(frame));
}

void Resizer::resize(int width, int height) {
  const int dx = width - last_width;
  const int dy = height - last_height;
  if (window == nullptr || (dx == 0 && dy == 0)) return;
  last_width = width;
  last_height = height;

  std::vector<HWND> moved;
  HDWP batch = BeginDeferWindowPos(static_cast<int>(rules.size()));
  for (const ResizeRule& rule : rules) {
    const Deltas deltas = deltas_for(rule.flags, dx, dy);
    const UINT unchanged = unchanged_aspects(deltas);
    if (unchanged == (SWP_NOMOVE | SWP_NOSIZE)) continue;
    const HWND control = GetDlgItem(window, rule.control_id);
    if (control == nullptr || batch == nullptr) continue;
    if ((unchanged & SWP_NOMOVE) == 0) moved.push_back(control);
    const RECT old = rectangle_in_parent(window, control);
    batch = DeferWindowPos(batch, control, nullptr, old.left + deltas.left, old.top + deltas.top,
                           ORLO::width(old) + deltas.right - deltas.left,
                           ORLO::height(old) + deltas.bottom - deltas.top,
                           unchanged | SWP_NOZORDER | SWP_NOACTIVATE);
  }
  if (batch == nullptr) return;
  EndDeferWindowPos(batch);
  redraw(moved);
}

void Resizer::set_size(int extra_width, int extra_height) {
  SetWindowPos(window, nullptr, 0, 0, min_width + extra_width, min_height + extra_height,
               SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  const RECT client = client_space(window);
  resize(width(client), height(client));
}

void Resizer::limit(MINMAXINFO& info) const noexcept {
  info.ptMinTrackSize = {min_width, min_height};
}

RECT client_space(HWND window) noexcept {
  RECT rect = {};
  if (!IsIconic(window)) {
    GetClientRect(window, &rect);
    return rect;
  }
  WINDOWPLACEMENT placement = {};
  placement.length = sizeof placement;
  GetWindowPlacement(window, &placement);
  const RECT& normal = placement.rcNormalPosition;
  const int edge_width = GetSystemMetrics(SM_CXEDGE) + GetSystemMetrics(SM_CXSIZEFRAME);
  const int edge_height = GetSystemMetrics(SM_CYEDGE) + GetSystemMetrics(SM_CYSIZEFRAME);
  rect.right = width(normal) - 2 * edge_width;
  rect.bottom = height(normal) - 2 * edge_height - GetSystemMetrics(SM_CYCAPTION) -
                GetSystemMetrics(SM_CYMENUSIZE);
  return rect;
}

}  // namespace ORLO
