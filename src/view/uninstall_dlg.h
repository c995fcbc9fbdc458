// The program's main window.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <utility>

#include "export/list_export.h"
#include "inventory/refresh_cycle.h"
#include "orlo/dialog_mixins.h"
#include "orlo/flat_button.h"
#include "orlo/wait_cursor.h"
#include "orlo/window_handles.h"
#include "orlo/window_icons.h"
#include "platform/resources.h"
#include "view/action_commands.h"
#include "view/clicked_cell.h"
#include "view/dialog_frame.h"
#include "view/dialog_services.h"
#include "view/inspect_commands.h"
#include "view/list_controller.h"
#include "view/list_icons.h"
#include "view/list_model.h"
#include "view/list_painter.h"
#include "view/sys_list.h"
#include "view/uninstall_dlg_para.h"
#include "view/update_commands.h"

class UninstallDlg : public ORLO::ResizeController<ORLO::OwnerDrawController<ORLO::DlgController>>,
                     private RefreshFrame,
                     private ExportedList {
 public:
  /// Resources and services must outlive the dialog.
  UninstallDlg(HWND window, std::unique_ptr<UninstallDlgPara> para, const Resources& resources,
               const DialogServices& services);
  ~UninstallDlg() override;

  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override;
  LRESULT Command(unsigned id, unsigned code, HWND control) override;
  LRESULT Notify(unsigned id, NMHDR* header) override;
  LRESULT Init(HWND focus_window) override;
  /// Shuts down and closes. During a refresh that happens when the refresh has ended.
  void EndDialog(INT_PTR result) override;

 private:
  using Base = ORLO::ResizeController<ORLO::OwnerDrawController<ORLO::DlgController>>;

  void set_menu();
  void set_resize_rules();
  void add_columns();
  void fill_combos();

  // Commands; in uninstall_commands_win.cpp
  void ignore() {}
  void type_chosen();
  void microsoft_toggled();
  void search_changed();
  void group_chosen();
  void show_all_columns() { model_.show_all_columns(); }
  void switch_colors();
  void show_legend();
  void show_about();
  void show_help();
  void show_issue_tracker();
  void switch_language();
  void copy_cell();
  /// As a package action it waits for the end of a refresh: its dialog would keep that from handing
  /// over what it has read.
  void export_list();
  /// False if the command isn't one of the package actions, tools and inspections. An action and an
  /// inspection wait for the end of a refresh that is running, which else would have to wait for
  /// the installer, or for the end of the dialog.
  bool start_action(unsigned command);
  void run_postponed_action();
  void run_postponed();
  void check_version() { updates_.check_now(); }
  void show_pad() { updates_.show_description(); }
  // Changes of what the list shows. They give the number of rows that are shown now, or nothing if
  // the rows are the same.
  using ListChange = std::optional<size_t> (UninstallDlg::*)(int);
  std::optional<size_t> show_type(int);
  std::optional<size_t> show_microsoft(int);
  std::optional<size_t> show_matches(int);
  std::optional<size_t> show_groups(int index);
  std::optional<size_t> show_sorted(int column);
  /// Makes a change once nobody else works on the list. Those that come in the meantime follow in
  /// their order.
  void change_list(ListChange change, int argument = 0);
  std::optional<size_t> make_changes();

  // Notices of the list, and menus; in uninstall_notices_win.cpp
  LRESULT list_notice(NMHDR& header);
  void give_text(NMLVDISPINFOA& request);
  void give_wide_text(NMLVDISPINFOW& request);
  void item_changed(const NMLISTVIEW& change);
  void double_clicked();
  void right_clicked();
  void menu_key_pressed();
  /// Opens the menu of the chosen package, if there is one that has actions.
  void open_list_menu(POINT on_screen);
  void sort_by(int column);
  void redraw_list();

  uint32_t marked_id() const { return list_.id_at(list_.selection_mark()); }
  CommandContext context() const;
  void update_menu(HMENU menu);
  /// Opens the first popup of a menu and waits for the user's choice.
  void track_popup(unsigned menu, POINT on_screen);
  /// False if it isn't a timer of ours.
  bool timer_ran(UINT_PTR timer);
  /// False if the command is left to the system.
  bool system_command(WPARAM wparam);
  /// Puts the window where it was last, or in the middle.
  void place_window();
  void requestRefresh();
  /// Forgets everything and reads anew: the user accepts the present state.
  void refresh_from_scratch();
  /// While a menu is open or the mouse drags something, the refresh waits for the end of that.
  void refresh(void (RefreshCycle::*run_noted)());
  void run_refresh(void (RefreshCycle::*run_noted)());
  void after_refresh();
  /// Whether an end has been asked for, or is under way.
  bool ending() const noexcept { return shut_down_ || due_result_.has_value(); }
  /// False if the last run has left nothing that can be used.
  bool readHistory();
  /// Stops the threads and keeps what lasts. Does nothing the second time.
  void shut_down();
  void keep_settings() noexcept;

  // ExportedList
  bool visit_packages(const Visitor& visitor) override;
  ExportFilter export_filter() const override;

  // RefreshFrame
  void forget_entries() override;
  void begin_wait() override;
  void end_wait() noexcept override;
  void show_counts() override;
  void show_failure(const String& text) override;
  void writeHistory() override;
  void refreshed() override;

  UninstallDlgPara& para_;  ///< the dialog's parameters
  UninstallPara& run_;      ///< inside these
  const Resources& resources_;
  ORLO::OwnedAccelerators accelerators_;
  const ORLO::WindowIcons window_icons_;
  ORLO::FlatButtonController refresh_button_;
  ORLO::FlatButtonController modify_button_;
  ORLO::FlatButtonController repair_button_;
  ORLO::FlatButtonController uninstall_button_;
  ListController list_controller_;
  SysListControl list_;
  ListModel model_;
  const ListPainter painter_;
  ClickedCell clicked_{model_};

  ORLO::CriticalSection listLock;
  Table currentTable;
  HistoryMerge history_;
  bool closing = false;
  void (RefreshCycle::*postponed_)() = nullptr;
  /// Changes of the list that wait for it, with their arguments.
  std::deque<std::pair<ListChange, int>> changes_;
  /// With the package as it was when the user chose it.
  struct PostponedAction {
    unsigned command;
    UninstallEntry entry;
  };
  std::optional<PostponedAction> postponed_action_;
  bool export_due_ = false;
  bool shut_down_ = false;
  /// What the dialog is to end with when the refresh that is running has ended.
  std::optional<INT_PTR> due_result_;
  std::optional<ORLO::WaitCursor> wait_cursor_;
  // After what their threads and hand-overs touch, so that they go first.
  UninstallReader reader_;
  RefreshCycle cycle_;
  DialogFrame frame_;
  ActionCommands actions_;
  ListExport export_;
  InspectCommands inspection_;
  ListIcons icons_;
  UpdateCommands updates_;
};
