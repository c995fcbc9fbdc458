// The dialog that tells what the main list's colours mean.
#pragma once

#include "orlo/dialog_mixins.h"
#include "orlo/dpi.h"
#include "orlo/flat_button.h"
#include "orlo/list_view.h"
#include "platform/resources.h"
#include "view/cell_painter.h"

class LegendDlg : public ORLO::ResizeController<ORLO::OwnerDrawController<ORLO::DlgController>> {
 public:
  /// The resources must outlive the dialog. `dpi`: the resolution that its lengths are scaled to.
  LegendDlg(HWND window, const Resources& resources, int dpi = ORLO::screen_dpi());

  LRESULT Notify(unsigned id, NMHDR* header) override;
  LRESULT Init(HWND focus_window) override;

  /// Returns when the user has closed it.
  static void show(const Resources& resources, HWND owner);

 private:
  using Base = ORLO::ResizeController<ORLO::OwnerDrawController<ORLO::DlgController>>;

  void fill_list(const Resources& resources, int dpi) const;
  LRESULT draw(NMLVCUSTOMDRAW& draw) const;

  const String search_string_;
  const ORLO::ListView list_;
  const CellPainter painter_;
  ORLO::FlatButtonController close_button_;
};
