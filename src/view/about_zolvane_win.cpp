#include "view/about_zolvane.h"

#include "platform/resource_ids.h"

AboutZolvaneController::AboutZolvaneController(HWND window)
    : AboutDlgController(window, "AboutZolvane", {IDC_ABOUT_HOME_PAGE, IDC_ABOUT_MAIL}) {}

void AboutZolvaneController::show(const Resources& resources, HWND owner) {
  ORLO::Dialog::DoModal(resources.module(), resources.dialog(IDD_ABOUT), owner, [](HWND window) {
    return std::make_unique<AboutZolvaneController>(window);
  });
}
