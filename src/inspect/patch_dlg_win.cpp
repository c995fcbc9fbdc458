#include "inspect/patch_dlg.h"

#include "orlo/dpi.h"
#include "orlo/wait_cursor.h"
#include "orlo/window_helpers.h"
#include "platform/resource_ids.h"

namespace {

constexpr ORLO::ResizeRule kResizeRules[] = {
    {IDC_PATCH_LIST, ORLO::kMoveRight | ORLO::kMoveBottom},
};
constexpr int kExtraWidth = 400;
constexpr int kExtraHeight = 300;

}  // namespace

PatchDlg::PatchDlg(HWND window, const Resources& resources, const UninstallEntry& package,
                   const PatchServices& services)
    : InspectionDlg(window, resources, package, package.displayName),
      patchList(control(IDC_PATCH_LIST)) {
  lay_out(kResizeRules, kExtraWidth, kExtraHeight);
  patchList.set_extended_style(LVS_EX_FULLROWSELECT, LVS_EX_FULLROWSELECT);
  add_columns(services);
  fill(services);
}

void PatchDlg::add_columns(const PatchServices& services) const {
  const int dpi = ORLO::screen_dpi();
  for (int index = 0; index < kPatchColumns; ++index) {
    const PatchColumn& column = patch_column(index);
    patchList.add_column(index, services.text_of(column.title).c_str(),
                         ORLO::scale_up(column.width, dpi));
  }
}

void PatchDlg::fill(const PatchServices& services) const {
  const ORLO::WaitCursor wait;
  const ORLO::FrozenDrawing frozen(patchList.window());
  patchList.clear();
  int line = 0;
  for (const PatchRow& row : read_patch_rows(services, entry.name)) {
    patchList.insert(line, row[0].c_str(), 0);
    for (int column = 1; column < kPatchColumns; ++column)
      patchList.set_text(line, column, row[static_cast<size_t>(column)].c_str());
    ++line;
  }
}
