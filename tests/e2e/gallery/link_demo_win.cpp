#include <memory>

#include "demos.h"
#include "gallery_ids.h"
#include "orlo/about_dlg.h"
#include "orlo/core_resources.h"
#include "orlo/window_helpers.h"

namespace gallery {
namespace {

class LinksDlg : public ORLO::AboutDlgController {
 public:
  LinksDlg(HWND window, const Log& log)
      : AboutDlgController(window, "links", {IDC_TEXT_LINK, IDC_STRING_LINK, IDC_BROKEN_LINK}),
        log_(log),
        grey_(control(IDC_DISABLED_BUTTON), RGB(0, 0, 0), RGB(255, 0, 0)) {}

  void EndDialog(INT_PTR result) override {
    log_.add(String::formatted("links ended %d", static_cast<int>(result)));
    AboutDlgController::EndDialog(result);
  }

 private:
  const Log& log_;
  ORLO::FlatButtonController grey_;
};

}  // namespace

void show_links(HWND owner, const Log& log) {
  const HINSTANCE instance = GetModuleHandleA(nullptr);
  const HWND window =
      ORLO::Dialog::DoModeless(instance, ORLO::find_dialog(instance, IDD_LINKS), owner,
                               [&](HWND made) { return std::make_unique<LinksDlg>(made, log); });
  if (window == nullptr) return;
  ORLO::center_window(window);
  ShowWindow(window, SW_SHOW);
}

}  // namespace gallery
