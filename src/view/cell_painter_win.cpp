#include "view/cell_painter.h"

namespace {

HFONT font_of(HWND window) {
  return reinterpret_cast<HFONT>(SendMessageA(window, WM_GETFONT, 0, 0));
}

HFONT make_bold(HFONT font) {
  LOGFONTA shape = {};
  GetObjectA(font, sizeof shape, &shape);
  shape.lfWeight = FW_BOLD;
  return CreateFontIndirectA(&shape);
}

}  // namespace

CellPainter::CellPainter(HWND dialog) : normal_(font_of(dialog)), bold_(make_bold(normal_)) {}

LRESULT CellPainter::apply(const CellPaint& paint, NMLVCUSTOMDRAW& draw) const {
  draw.clrText = paint.text;
  if (paint.background) draw.clrTextBk = *paint.background;
  if (paint.font == CellFont::any) return CDRF_DODEFAULT;
  SelectObject(draw.nmcd.hdc, paint.font == CellFont::bold ? bold_.get() : normal_);
  return CDRF_NEWFONT;
}

SystemColors system_colors() noexcept {
  return {GetSysColor(COLOR_WINDOWTEXT), GetSysColor(COLOR_WINDOW)};
}
