#include "view/list_painter.h"

namespace {

uint32_t id_of(const NMLVCUSTOMDRAW& draw) noexcept {
  return static_cast<uint32_t>(draw.nmcd.lItemlParam);
}

}  // namespace

LRESULT ListPainter::draw(NMLVCUSTOMDRAW& draw, bool colored) const {
  switch (draw.nmcd.dwDrawStage) {
    case CDDS_PREPAINT:
      return colored ? CDRF_NOTIFYITEMDRAW : CDRF_DODEFAULT;
    case CDDS_ITEMPREPAINT:
      if (colors_.differ_by_cell(id_of(draw))) return CDRF_NOTIFYSUBITEMDRAW;
      return paint(draw, 0);
    case CDDS_SUBITEM | CDDS_ITEMPREPAINT:
      return paint(draw, draw.iSubItem);
    default:
      return CDRF_DODEFAULT;
  }
}

LRESULT ListPainter::paint(NMLVCUSTOMDRAW& draw, int column) const {
  return painter_.apply(colors_.cell(id_of(draw), column, system_colors()), draw);
}
