// The base of about boxes.
#pragma once

#include <initializer_list>
#include <memory>
#include <vector>

#include "orlo/dialog_mixins.h"
#include "orlo/flat_button.h"
#include "orlo/global_dialog.h"
#include "orlo/hyperlink.h"

namespace ORLO {

/// Opens centred over its owner. Makes hyperlinks of the controls `links`, and a flat button of an
/// owner-drawn OK.
class AboutDlgController
    : public GlblDlgTemplate<CtlColorController<OwnerDrawController<DlgController>>> {
 public:
  AboutDlgController(HWND window, const char* name, std::initializer_list<int> links = {});

  LRESULT Init(HWND focus_window) override;

 private:
  std::unique_ptr<FlatButtonController> ok_button_;
  std::vector<std::unique_ptr<HyperlinkController>> links_;
};

}  // namespace ORLO
