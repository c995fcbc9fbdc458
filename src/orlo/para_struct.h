// The parameters of a dialog: what its controls are loaded from and stored to.
#pragma once

#include "orlo/orlowin.h"

namespace ORLO {

class DlgController;

struct ParaStruct {
  /// The dialog being served, set before each update.
  HWND hwnd = nullptr;
  /// True while the controls are read into the parameters, false while they are written.
  bool partial = false;
  DlgController* dialog = nullptr;

  ParaStruct() = default;
  ParaStruct(const ParaStruct&) = default;
  ParaStruct& operator=(const ParaStruct&) = default;
  virtual ~ParaStruct() = default;

  /// Moves data between the dialog's controls and the parameters, in the direction of `partial`.
  virtual void updateControls() {}
};

}  // namespace ORLO
