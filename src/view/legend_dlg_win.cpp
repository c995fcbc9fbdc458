#include "view/legend_dlg.h"

#include <iterator>

#include "orlo/window_helpers.h"
#include "platform/resource_ids.h"
#include "view/legend.h"

namespace {

constexpr COLORREF kButtonText = 0x800000;
constexpr COLORREF kActiveButtonText = 0xff0000;
// How much the dialog opens larger than its template, in pixels of a screen of 96 dots per
// inch.
constexpr int kExtraWidth = 100;
constexpr int kExtraHeight = 50;

constexpr ORLO::ResizeRule kResizeRules[] = {
    {IDC_LEGEND_LIST, ORLO::kMoveRight | ORLO::kMoveBottom},
    {IDOK, ORLO::kMoveLeft | ORLO::kMoveRight | ORLO::kMoveTop | ORLO::kMoveBottom},
};

}  // namespace

LegendDlg::LegendDlg(HWND window, const Resources& resources, int dpi)
    : Base(window),
      search_string_(resources.text(IDS_SEARCH_STRING)),
      list_(control(IDC_LEGEND_LIST)),
      painter_(window),
      close_button_(control(IDOK), kButtonText, kActiveButtonText) {
  resizer.add(kResizeRules, std::size(kResizeRules));
  resizer.init(window);
  resizer.set_size(ORLO::scale_up(kExtraWidth, dpi), ORLO::scale_up(kExtraHeight, dpi));
  fill_list(resources, dpi);
}

void LegendDlg::fill_list(const Resources& resources, int dpi) const {
  for (int index = 0; index < kLegendColumns; ++index) {
    const LegendColumn& column = legend_column(index);
    list_.add_column(index, resources.text(column.title).c_str(), ORLO::scale_up(column.width, dpi),
                     column.align == ListControl::Align::right ? LVCFMT_RIGHT : LVCFMT_LEFT);
  }
  constexpr DWORD kStyles = LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT;
  list_.set_extended_style(kStyles, kStyles);
  for (int row = 0; row < kLegendRows; ++row) {
    list_.insert(row, legend_text(row, 0, search_string_).c_str(), row);
    for (int column = 1; column < kLegendColumns; ++column)
      list_.set_text(row, column, legend_text(row, column, search_string_).c_str());
  }
}

LRESULT LegendDlg::Notify(unsigned id, NMHDR* header) {
  if (header->hwndFrom != list_.window() || header->code != NM_CUSTOMDRAW) {
    return Base::Notify(id, header);
  }
  return set_result(draw(*reinterpret_cast<NMLVCUSTOMDRAW*>(header)));
}

LRESULT LegendDlg::Init(HWND focus_window) {
  ORLO::center_window(_hwnd);
  return Base::Init(focus_window);
}

LRESULT LegendDlg::draw(NMLVCUSTOMDRAW& draw) const {
  switch (draw.nmcd.dwDrawStage) {
    case CDDS_PREPAINT:
    case CDDS_ITEMPREPAINT:
      return CDRF_NOTIFYSUBITEMDRAW;
    case CDDS_SUBITEM | CDDS_ITEMPREPAINT: {
      const auto row = static_cast<int>(draw.nmcd.lItemlParam);
      return painter_.apply(legend_paint(legend_text(row, 0, search_string_),
                                         legend_text(row, draw.iSubItem, search_string_),
                                         draw.iSubItem, search_string_, system_colors()),
                            draw);
    }
    default:
      return CDRF_DODEFAULT;
  }
}

void LegendDlg::show(const Resources& resources, HWND owner) {
  ORLO::Dialog::DoModal(
      resources.module(), resources.dialog(IDD_LEGEND), owner,
      [&resources](HWND window) { return std::make_unique<LegendDlg>(window, resources); });
}
