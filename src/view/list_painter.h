// The main list's custom drawing: which cell gets which colours and font, stage by stage.
#pragma once

#include "view/cell_painter.h"

class ListPainter {
 public:
  /// `dialog` holds the list that `model` drives; the model must outlive this.
  ListPainter(HWND dialog, ListModel& model) : colors_(model), painter_(dialog) {}

  /// Answers a stage of drawing (CDRF_...). Without `colored` the list is plain.
  LRESULT draw(NMLVCUSTOMDRAW& draw, bool colored) const;

 private:
  LRESULT paint(NMLVCUSTOMDRAW& draw, int column) const;

  const RowColors colors_;
  const CellPainter painter_;
};
