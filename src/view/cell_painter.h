// Carries a cell's paint out in a list view's custom draw notification.
#pragma once

#include "orlo/window_handles.h"
#include "view/row_colors.h"

/// Owns the bold twin of its dialog's font.
class CellPainter {
 public:
  /// For a list that draws in the font of its dialog, which must not get another one.
  explicit CellPainter(HWND dialog);

  /// Returns what the control is to be answered (CDRF_...).
  LRESULT apply(const CellPaint& paint, NMLVCUSTOMDRAW& draw) const;

 private:
  const HFONT normal_;
  const ORLO::OwnedFont bold_;
};

SystemColors system_colors() noexcept;
