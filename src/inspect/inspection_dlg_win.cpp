#include "inspect/inspection_dlg.h"

#include "orlo/dpi.h"
#include "orlo/window_helpers.h"
#include "platform/resource_ids.h"

InspectionDlg::InspectionDlg(HWND window, const Resources& resources, const UninstallEntry& package,
                             const String& subject)
    : Base(window), entry(package), icons_(window, resources.module(), IDI_ZOLVANE) {
  const String title = ORLO::window_text(window);
  SetWindowTextA(window, String::formatted("%#s: %#s", title, subject).c_str());
}

void InspectionDlg::grow(int extra_width, int extra_height) {
  const int dpi = ORLO::screen_dpi();
  resizer.set_size(ORLO::scale_up(extra_width, dpi), ORLO::scale_up(extra_height, dpi));
}

LRESULT InspectionDlg::Init(HWND focus_window) {
  ORLO::shrink_to_work_area(_hwnd);
  ORLO::center_window(_hwnd);
  return Base::Init(focus_window);
}
