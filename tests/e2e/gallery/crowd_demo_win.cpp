#include <array>
#include <memory>
#include <string>

#include "demos.h"
#include "gallery_ids.h"
#include "orlo/core_resources.h"
#include "orlo/dlg_controller.h"
// This needs what orlowin.h brings.
#include <commctrl.h>

namespace gallery {
namespace {

constexpr int kNames = 300;
constexpr int kRows = 20000;
constexpr size_t kLongText = 5000;

struct Branch {
  const char* text;
  int parent;  ///< place in the table; -1 at the root
  int image;
};

constexpr std::array<Branch, 5> kTree = {{
    {"Roots", -1, 1},
    {"Tap root", 0, 2},
    {"Hair", 1, 1},
    {"Runner", 0, 2},
    {"K\xE4hne", -1, 0},
}};

class CrowdDlg : public ORLO::DlgController {
 public:
  CrowdDlg(HWND window, const Log& log) : DlgController(window), log_(log) {
    fill_names();
    fill_cells();
    fill_tree();
  }

  LRESULT Command(unsigned id, unsigned code, HWND sender) override {
    if (id == IDC_NAMES && code == LBN_SELCHANGE) {
      const auto chosen = static_cast<int>(SendMessageA(control(IDC_NAMES), LB_GETCURSEL, 0, 0));
      log_.add(String::formatted("name %d", chosen));
      return 1;
    }
    return DlgController::Command(id, code, sender);
  }

 private:
  void fill_names() {
    for (int i = kNames; i > 0; --i) {
      const String name = String::formatted("name %03d", i);
      SendMessageA(control(IDC_NAMES), LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
    }
  }

  void fill_cells() {
    const HWND list = control(IDC_CELLS);
    for (int column = 0; column < 3; ++column)
      add_column(list, column);
    SendMessageA(list, WM_SETREDRAW, FALSE, 0);
    for (int row = 0; row < kRows; ++row) {
      add_cell(list, row, 0, String::formatted("row %d", row).c_str());
      add_cell(list, row, 1, "same");
    }
    add_cell(list, 1, 2, std::string(kLongText, 'x').c_str());
    SendMessageA(list, WM_SETREDRAW, TRUE, 0);
  }

  static void add_column(HWND list, int column) {
    char title[] = "Column 0";
    title[7] = static_cast<char>('0' + column);
    LVCOLUMNA made{};
    made.mask = LVCF_FMT | LVCF_WIDTH | LVCF_TEXT;
    made.fmt = column == 1 ? LVCFMT_RIGHT : LVCFMT_LEFT;
    made.cx = 60 + 10 * column;
    made.pszText = title;
    SendMessageA(list, LVM_INSERTCOLUMNA, static_cast<WPARAM>(column),
                 reinterpret_cast<LPARAM>(&made));
  }

  static void add_cell(HWND list, int row, int column, const char* text) {
    LVITEMA cell{};
    cell.mask = LVIF_TEXT;
    cell.iItem = row;
    cell.iSubItem = column;
    cell.pszText = const_cast<char*>(text);
    SendMessageA(list, column == 0 ? LVM_INSERTITEMA : LVM_SETITEMA, 0,
                 reinterpret_cast<LPARAM>(&cell));
  }

  void fill_tree() {
    const HWND tree = control(IDC_TREE);
    std::array<LRESULT, kTree.size()> items{};
    for (size_t i = 0; i < kTree.size(); ++i) {
      const Branch& branch = kTree[i];
      const LRESULT parent = branch.parent < 0 ? 0 : items[static_cast<size_t>(branch.parent)];
      items[i] = add_branch(tree, branch, parent);
    }
    SendMessageA(tree, TVM_EXPAND, TVE_EXPAND, items[0]);
    SendMessageA(tree, TVM_SELECTITEM, TVGN_CARET, items[3]);
  }

  static LRESULT add_branch(HWND tree, const Branch& branch, LRESULT parent) {
    TVINSERTSTRUCTA made{};
    made.hParent = parent == 0 ? TVI_ROOT : reinterpret_cast<HTREEITEM>(parent);
    made.hInsertAfter = TVI_LAST;
    made.item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE;
    made.item.pszText = const_cast<char*>(branch.text);
    made.item.iImage = branch.image;
    made.item.iSelectedImage = branch.image;
    return SendMessageA(tree, TVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&made));
  }

  const Log& log_;
};

}  // namespace

void show_crowd(HWND owner, const Log& log) {
  const HINSTANCE instance = GetModuleHandleA(nullptr);
  ORLO::Dialog::DoModal(instance, ORLO::find_dialog(instance, IDD_CROWD), owner,
                        [&](HWND window) { return std::make_unique<CrowdDlg>(window, log); });
  log.add("crowd ended");
}

}  // namespace gallery
