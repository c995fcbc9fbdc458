// The program's main window.
#pragma once

#include <memory>

#include "inventory/reader.h"
#include "inventory/refresh_cycle.h"
#include "orlo/dialog_mixins.h"
#include "orlo/flat_button.h"
#include "orlo/window_handles.h"
#include "persist/uninstall_para.h"
#include "view/list_model.h"
#include "view/resources.h"
#include "view/sys_list.h"

/// The run's record as the parameters of the main dialog.
struct UninstallDlgPara : ORLO::ParaStruct {
  explicit UninstallDlgPara(const UninstallPara& run_para) : run(run_para) {}
  UninstallPara run;
};

class UninstallDlg : public ORLO::ResizeController<ORLO::OwnerDrawController<ORLO::DlgController>> {
 public:
  /// Resources and services must outlive the dialog.
  UninstallDlg(HWND window, std::unique_ptr<UninstallDlgPara> para, const Resources& resources,
               const UninstallReader::Services& services);
  ~UninstallDlg() override;

  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override;
  LRESULT Command(unsigned id, unsigned code, HWND control) override;
  LRESULT Notify(unsigned id, NMHDR* header) override;
  LRESULT Init(HWND focus_window) override;
  void EndDialog(INT_PTR result) override;

 private:
  using Base = ORLO::ResizeController<ORLO::OwnerDrawController<ORLO::DlgController>>;

  void set_icons();
  void set_menu();
  void set_resize_rules();
  void add_columns();
  void fill_combos();
  void disable_what_has_no_work_yet();
  void give_text(NMLVDISPINFOA& request);

  /// Puts the window where it was last, or in the middle.
  void place_window();
  void save_window_pos();
  void requestRefresh();
  void runRefreshCycle();
  /// Forgets everything and reads anew: the user accepts the present state.
  void refresh_from_scratch();
  void show_counts();
  /// Stops the threads. Does nothing the second time.
  void shut_down();

  UninstallPara& run_;  ///< inside the dialog's parameters
  const Resources& resources_;
  ORLO::OwnedAccelerators accelerators_;
  ORLO::OwnedIcon big_icon_;
  ORLO::OwnedIcon small_icon_;
  ORLO::FlatButtonController refresh_button_;
  ORLO::FlatButtonController modify_button_;
  ORLO::FlatButtonController repair_button_;
  ORLO::FlatButtonController uninstall_button_;
  SysListControl list_;
  ListModel model_;

  Table currentTable;
  int refreshCount = 0;
  bool refreshing = false;
  bool closing = false;
  // Behind what its passes and their hand-over touch, so that it goes first.
  UninstallReader reader_;
  RefreshCycle cycle_;
};
