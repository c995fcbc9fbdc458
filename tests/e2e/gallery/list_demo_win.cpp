#include <memory>

#include "demos.h"
#include "gallery_ids.h"
#include "orlo/core_resources.h"
#include "orlo/dlg_controller.h"
#include "orlo/exception.h"
#include "orlo/list_sort.h"
#include "orlo/virtual_list.h"

namespace gallery {
namespace {

constexpr const char* kWords[] = {"pear", "Apple", "fig", "Cherry", "banana"};
constexpr int kRowsAtStart = 5;

class Words : public ORLO::VirtualListData {
 public:
  Words(HWND list, const Log& log) : VirtualListData(list), log_(log) {}
  /// The next row has no data to be had.
  void fail_for(uint32_t id) { failing_ = id; }

 protected:
  void fill(uint32_t id, Texts& texts) override {
    log_.add(String::formatted("fill %d", id));
    if (id == failing_) throw ORLO::UserException("no such word");
    texts = {kWords[(id - 1) % std::size(kWords)], String::formatted("%03d", 1000 - id * 7)};
  }

 private:
  const Log& log_;
  uint32_t failing_ = 0;
};

class ListDlg : public ORLO::DlgController {
 public:
  ListDlg(HWND window, const Log& log) : DlgController(window), words_(control(IDC_LIST), log) {
    words_.add_column(0, "Word", 150);
    words_.add_column(1, "Number", 90, LVCFMT_RIGHT);
    words_.set_extended_style(LVS_EX_FULLROWSELECT, LVS_EX_FULLROWSELECT);
    for (int i = 0; i < kRowsAtStart; ++i)
      words_.insert_row(i);
  }

  LRESULT Notify(unsigned id, NMHDR* header) override {
    if (id == IDC_LIST && header->code == LVN_COLUMNCLICK) {
      sort_by(reinterpret_cast<const NMLISTVIEW*>(header)->iSubItem);
      return 1;
    }
    return words_.Notify(header) ? 1 : 0;
  }

  LRESULT Command(unsigned id, unsigned code, HWND sender) override {
    switch (id) {
      case IDC_ADD:
        words_.insert_row(0);
        return 1;
      case IDC_FAILING_ADD:
        // Ids grow by one.
        words_.fail_for(static_cast<uint32_t>(words_.count()) + 1);
        words_.insert_row(0);
        return 1;
      default:
        return DlgController::Command(id, code, sender);
    }
  }

 private:
  /// The other way round each time the same column is clicked.
  void sort_by(int column) {
    descending_ = column == column_ && !descending_;
    column_ = column;
    ORLO::ListSort(words_, column, descending_).run();
  }

  Words words_;
  int column_ = -1;
  bool descending_ = false;
};

}  // namespace

void show_list(HWND owner, const Log& log) {
  const HINSTANCE instance = GetModuleHandleA(nullptr);
  ORLO::Dialog::DoModal(instance, ORLO::find_dialog(instance, IDD_LIST), owner,
                        [&](HWND window) { return std::make_unique<ListDlg>(window, log); });
  log.add("list ended");
}

}  // namespace gallery
