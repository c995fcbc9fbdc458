// The dialog that lists the patches of an installed product.
#pragma once

#include "inspect/inspection_dlg.h"
#include "inspect/patch_rows.h"
#include "orlo/list_view.h"

class PatchDlg : public InspectionDlg {
 public:
  /// Reads all that it shows.
  PatchDlg(HWND window, const Resources& resources, const UninstallEntry& package,
           const PatchServices& services);

 private:
  void add_columns(const PatchServices& services) const;
  void fill(const PatchServices& services) const;

  const ORLO::ListView patchList;
};
