#include "inspect/msi_content_dlg.h"

#include <string>

#include "orlo/dpi.h"
#include "orlo/report.h"
#include "orlo/wait_cursor.h"
#include "orlo/window_helpers.h"
#include "platform/resource_ids.h"

namespace {

constexpr ORLO::ResizeRule kResizeRules[] = {
    {IDC_MSI_ROWS, ORLO::kMoveRight | ORLO::kMoveBottom},
    {IDC_MSI_TABLES, ORLO::kMoveBottom},
};
constexpr int kExtraWidth = 400;
constexpr int kExtraHeight = 300;
/// In pixels of a screen of 96 dots per inch.
constexpr int kColumnWidth = 100;

}  // namespace

MSIContentDlg::MSIContentDlg(HWND window, const Resources& resources, const UninstallEntry& package,
                             InstallerDatabases& databases)
    : InspectionDlg(window, resources, package, package.packagePath),
      tableList(control(IDC_MSI_TABLES)),
      contentList(control(IDC_MSI_ROWS)) {
  lay_out(kResizeRules, kExtraWidth, kExtraHeight);
  contentList.set_extended_style(LVS_EX_FULLROWSELECT, LVS_EX_FULLROWSELECT);
  load(databases);
  list_tables();
  if (!content_.schemas().empty()) show_table(content_.schemas().begin()->first);
}

void MSIContentDlg::load(InstallerDatabases& databases) {
  try {
    const ORLO::WaitCursor wait;
    content_.load(databases, entry.packagePath);
  } catch (const ORLO::Exception& exception) {
    ORLO::report_exception(exception, _hwnd);
  } catch (const std::exception& exception) {
    ORLO::report_std_exception(exception, _hwnd);
  }
}

/// The list sorts them by a rule of its own, so that the first one needn't be the first table by
/// bytes, which is the one that is shown.
void MSIContentDlg::list_tables() const {
  const ORLO::FrozenDrawing frozen(tableList);
  for (const auto& [name, table] : content_.tables())
    SendMessageA(tableList, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
  SendMessageA(tableList, LB_SETCURSEL, 0, 0);
}

LRESULT MSIContentDlg::Command(unsigned id, unsigned code, HWND control) {
  if (id != IDC_MSI_TABLES || code != LBN_SELCHANGE) {
    return InspectionDlg::Command(id, code, control);
  }
  if (const String name = chosen_table(); !name.empty()) show_table(name);
  return TRUE;
}

/// Empty if none is.
String MSIContentDlg::chosen_table() const {
  const auto index = static_cast<WPARAM>(SendMessageA(tableList, LB_GETCURSEL, 0, 0));
  const LRESULT length = SendMessageA(tableList, LB_GETTEXTLEN, index, 0);
  if (length <= 0) return String();
  std::string name(static_cast<size_t>(length) + 1, '\0');
  SendMessageA(tableList, LB_GETTEXT, index, reinterpret_cast<LPARAM>(name.data()));
  return String(name.c_str());
}

void MSIContentDlg::show_table(const String& name) const {
  const ORLO::WaitCursor wait;
  const ORLO::FrozenDrawing frozen(contentList.window());
  clear();
  const auto schema = content_.schemas().find(name);
  if (schema == content_.schemas().end()) return;
  const std::vector<ShownColumn> columns = shown_columns(schema->second);
  add_columns(columns);
  const auto table = content_.tables().find(name);
  if (table != content_.tables().end() && !columns.empty()) add_rows(*table->second, columns);
}

void MSIContentDlg::clear() const {
  contentList.clear();
  contentList.remove_columns();
}

void MSIContentDlg::add_columns(const std::vector<ShownColumn>& columns) const {
  const int width = ORLO::scale_up(kColumnWidth, ORLO::screen_dpi());
  int index = 0;
  for (const ShownColumn& column : columns)
    contentList.add_column(index++, column.name.c_str(), width,
                           column.is_number ? LVCFMT_RIGHT : LVCFMT_LEFT);
}

void MSIContentDlg::add_rows(const Table& table, const std::vector<ShownColumn>& columns) const {
  const auto text = [](const Row& row, const ShownColumn& column) {
    return row.cells[static_cast<size_t>(column.cell)].text.c_str();
  };
  int line = 0;
  for (const auto& [key, row] : table.rows) {
    contentList.insert(line, text(row, columns.front()), 0);
    for (size_t i = 1; i < columns.size(); ++i)
      contentList.set_text(line, static_cast<int>(i), text(row, columns[i]));
    ++line;
  }
}
