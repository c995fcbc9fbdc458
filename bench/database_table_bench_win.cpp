// A table of 20,000 rows shown by the dialog of a package's tables, beside a bare list view that is
// filled with its drawing frozen.
#include <cstdio>
#include <string>
#include <vector>

#include "bench/interleaved.h"
#include "inspect/msi_content_dlg.h"
#include "orlo/list_view.h"
#include "platform/memory_installer_database.h"
#include "platform/resource_ids.h"

namespace {

constexpr uint16_t kEnglish = 2057;
constexpr char kPath[] = "C:\\bench.msi";
constexpr char kTable[] = "File";
constexpr int kRows = 20'000;

using Databases = MemoryInstallerDatabases;
using TextRows = std::vector<std::vector<std::string>>;

template <typename... Numbers>
std::string text(const char* format, Numbers... numbers) {
  return String::formatted(format, numbers...).c_str();
}

/// As the table of files of a large package.
void fill(Databases& databases) {
  Databases::Table table{kTable,
                         {{"File", "s72"},
                          {"Component_", "s72"},
                          {"FileName", "l255"},
                          {"FileSize", "i4"},
                          {"Version", "S72"},
                          {"Sequence", "i4"}},
                         {}};
  for (int i = 0; i < kRows; ++i) {
    table.rows.push_back({text("file_%d_identifier", i), text("component_%d", i / 3),
                          text("LIB%05d.DLL|library%05d.dll", i, i), i * 37, text("1.0.%d.0", i),
                          i + 1});
  }
  databases.add(kPath).tables.push_back(std::move(table));
}

HWND open_dialog(const Resources& resources, Databases& databases) {
  UninstallEntry package;
  package.packagePath = kPath;
  const HWND dialog = ORLO::Dialog::DoModeless(
      resources.module(), resources.dialog(IDD_MSI_CONTENT), nullptr, [&](HWND made) {
        return std::make_unique<MSIContentDlg>(made, resources, package, databases);
      });
  ShowWindow(dialog, SW_SHOW);
  return dialog;
}

void show_table(HWND dialog) {
  const HWND names = GetDlgItem(dialog, IDC_MSI_TABLES);
  const LRESULT index = SendMessageA(names, LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                     reinterpret_cast<LPARAM>(kTable));
  SendMessageA(names, LB_SETCURSEL, static_cast<WPARAM>(index), 0);
  SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDC_MSI_TABLES, LBN_SELCHANGE),
               reinterpret_cast<LPARAM>(names));
  UpdateWindow(GetDlgItem(dialog, IDC_MSI_ROWS));
}

TextRows texts_of(HWND list) {
  const ORLO::ListView view(list);
  TextRows rows(static_cast<size_t>(view.count()));
  for (size_t row = 0; row < rows.size(); ++row) {
    for (int column = 0; column < 6; ++column)
      rows[row].emplace_back(view.text(static_cast<int>(row), column).c_str());
  }
  return rows;
}

HWND make_bare_list(HWND like) {
  RECT place = {};
  GetWindowRect(like, &place);
  const HWND parent =
      CreateWindowExA(0, "STATIC", "bench", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 900, 600,
                      nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
  return CreateWindowExA(0, WC_LISTVIEWA, "", WS_CHILD | WS_VISIBLE | LVS_REPORT | LVS_SINGLESEL, 0,
                         0, ORLO::width(place), ORLO::height(place), parent, nullptr,
                         GetModuleHandleA(nullptr), nullptr);
}

/// The floor: the columns and texts anew, with the drawing frozen.
void fill_bare(HWND list, const TextRows& rows) {
  SendMessageA(list, WM_SETREDRAW, FALSE, 0);
  SendMessageA(list, LVM_DELETEALLITEMS, 0, 0);
  while (SendMessageA(list, LVM_DELETECOLUMN, 0, 0) != 0) {
  }
  char title[] = "Column";
  LVCOLUMNA column = {};
  column.mask = LVCF_TEXT | LVCF_WIDTH;
  column.pszText = title;
  column.cx = 100;
  for (WPARAM i = 0; i < 6; ++i)
    SendMessageA(list, LVM_INSERTCOLUMNA, i, reinterpret_cast<LPARAM>(&column));
  LVITEMA item = {};
  item.mask = LVIF_TEXT;
  for (const auto& cells : rows) {
    for (item.iSubItem = 0; item.iSubItem < 6; ++item.iSubItem) {
      item.pszText = const_cast<char*>(cells[static_cast<size_t>(item.iSubItem)].c_str());
      SendMessageA(list, item.iSubItem == 0 ? LVM_INSERTITEMA : LVM_SETITEMA, 0,
                   reinterpret_cast<LPARAM>(&item));
    }
    ++item.iItem;
  }
  SendMessageA(list, WM_SETREDRAW, TRUE, 0);
  InvalidateRect(list, nullptr, TRUE);
  UpdateWindow(list);
}

}  // namespace

int main() {
  InitCommonControls();
  Databases databases;
  fill(databases);
  const Resources resources(GetModuleHandleA(nullptr), kEnglish);
  const HWND dialog = open_dialog(resources, databases);
  show_table(dialog);
  const HWND list = GetDlgItem(dialog, IDC_MSI_ROWS);
  const TextRows rows = texts_of(list);
  if (rows.size() != kRows) {
    std::printf("the dialog doesn't show %d rows\n", kRows);
    return 1;
  }
  const HWND bare = make_bare_list(list);
  print_ratios("Showing a table of 20,000 rows and 6 columns",
               {{"zolvane", [&] { show_table(dialog); }},
                {"floor: bare list view, frozen", [&] { fill_bare(bare, rows); }}});
  DestroyWindow(dialog);
  return 0;
}
