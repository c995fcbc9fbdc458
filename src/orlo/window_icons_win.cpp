#include "orlo/window_icons.h"

namespace ORLO {

namespace {

HICON load(HINSTANCE module, unsigned id, int width_metric, int height_metric) {
  return static_cast<HICON>(LoadImageA(module, MAKEINTRESOURCEA(id), IMAGE_ICON,
                                       GetSystemMetrics(width_metric),
                                       GetSystemMetrics(height_metric), LR_DEFAULTCOLOR));
}

void show(HWND window, WPARAM size, const OwnedIcon& icon) {
  SendMessageA(window, WM_SETICON, size, reinterpret_cast<LPARAM>(icon.get()));
}

}  // namespace

WindowIcons::WindowIcons(HWND window, HINSTANCE module, unsigned id)
    : big_(load(module, id, SM_CXICON, SM_CYICON)),
      small_(load(module, id, SM_CXSMICON, SM_CYSMICON)) {
  show(window, ICON_BIG, big_);
  show(window, ICON_SMALL, small_);
}

}  // namespace ORLO
