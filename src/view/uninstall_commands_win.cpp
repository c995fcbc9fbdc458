// The commands of the main window.
#include <optional>
#include <utility>

#include "orlo/hyperlink.h"
#include "orlo/message_wait.h"
#include "orlo/system_text.h"
#include "orlo/window_helpers.h"
#include "persist/configuration.h"
#include "platform/language.h"
#include "platform/resource_ids.h"
#include "view/about_zolvane.h"
#include "view/addresses.h"
#include "view/help.h"
#include "view/legend_dlg.h"
#include "view/uninstall_dlg.h"
#include "view/window_restart.h"

namespace {

int selection_of(HWND combo) {
  return static_cast<int>(SendMessageA(combo, CB_GETCURSEL, 0, 0));
}

constexpr unsigned kAnyCode = ~0u;
/// As a menu, a key or a click gives a command. A button tells of more than clicks: of a double
/// click, of the focus.
constexpr unsigned kGiven = ~1u;
constexpr unsigned kByAccelerator = 1;

bool is_meant(unsigned wanted, unsigned code, HWND sender) {
  if (wanted == kAnyCode) return true;
  if (wanted != kGiven) return code == wanted;
  return code == BN_CLICKED || (sender == nullptr && code == kByAccelerator);
}

}  // namespace

LRESULT UninstallDlg::Command(unsigned id, unsigned code, HWND sender) {
  static constexpr struct {
    unsigned id;
    unsigned code;
    void (UninstallDlg::*run)();
  } kCommands[] = {
      // Enter must not close the dialog.
      {IDOK, kAnyCode, &UninstallDlg::ignore},
      // The key does nothing; the base class would take its number for one of its own commands.
      {ID_EXIT_KEY, kAnyCode, &UninstallDlg::ignore},
      {IDC_REFRESH, kGiven, &UninstallDlg::refresh_from_scratch},
      {IDC_TYPE, CBN_SELCHANGE, &UninstallDlg::type_chosen},
      {IDC_SEARCH, EN_CHANGE, &UninstallDlg::search_changed},
      {IDC_MICROSOFT, kAnyCode, &UninstallDlg::microsoft_toggled},
      {IDC_GROUP, CBN_SELCHANGE, &UninstallDlg::group_chosen},
      {ID_SHOW_ALL_COLUMNS, kAnyCode, &UninstallDlg::show_all_columns},
      {ID_COLOR_BACKGROUND, kAnyCode, &UninstallDlg::switch_colors},
      {ID_COLOR_LEGEND, kAnyCode, &UninstallDlg::show_legend},
      {ID_SWITCH_LANGUAGE, kAnyCode, &UninstallDlg::switch_language},
      {ID_HELP_CONTENTS, kAnyCode, &UninstallDlg::show_help},
      {ID_BUG_REPORT, kAnyCode, &UninstallDlg::show_issue_tracker},
      {ID_CHECK_VERSION, kAnyCode, &UninstallDlg::check_version},
      {ID_SHOW_PAD, kAnyCode, &UninstallDlg::show_pad},
      {ID_ABOUT, kAnyCode, &UninstallDlg::show_about},
      {ID_COPY, kAnyCode, &UninstallDlg::copy_cell},
      {ID_EXPORT, kGiven, &UninstallDlg::export_list},
  };
  for (const auto& row : kCommands) {
    if (row.id != id) continue;
    if (is_meant(row.code, code, sender)) (this->*row.run)();
    return TRUE;
  }
  if (is_meant(kGiven, code, sender) && start_action(id)) return TRUE;
  return Base::Command(id, code, sender);
}

void UninstallDlg::change_list(ListChange change, int argument) {
  changes_.emplace_back(change, argument);
  // Whoever waits for the list already makes this change, too.
  if (changes_.size() > 1) return;
  std::optional<size_t> shown;
  try {
    shown = make_changes();
  } catch (...) {
    changes_.clear();
    throw;
  }
  changes_.clear();
  if (!shown) return;
  if (*shown == 0) {
    para_.current = 0;
    CanClose(false);
  }
  para_.enable_actions();
  if (!ending()) icons_.start_pass();
}

/// The last number of rows, nothing if they are the same.
std::optional<size_t> UninstallDlg::make_changes() {
  const ListIcons::Pause pause(icons_);
  const ORLO::LockWithMessages held(listLock);
  if (!held) return std::nullopt;
  std::optional<size_t> shown;
  for (size_t next = 0; next < changes_.size(); ++next) {
    const auto [change, argument] = changes_[next];
    if (const std::optional<size_t> now = (this->*change)(argument)) shown = now;
  }
  if (shown) show_counts();
  return shown;
}

std::optional<size_t> UninstallDlg::show_type(int) {
  return model_.selectType(selection_of(control(IDC_TYPE)));
}

std::optional<size_t> UninstallDlg::show_microsoft(int) {
  return model_.toggleMicrosoft(IsDlgButtonChecked(_hwnd, IDC_MICROSOFT) == BST_CHECKED);
}

std::optional<size_t> UninstallDlg::show_matches(int) {
  return model_.searchChanged(run_.searchText);
}

std::optional<size_t> UninstallDlg::show_groups(int index) {
  const std::optional<size_t> shown = model_.selectGroup(index);
  if (shown) SendMessageA(control(IDC_TYPE), CB_SETCURSEL, static_cast<WPARAM>(model_.type()), 0);
  return shown;
}

std::optional<size_t> UninstallDlg::show_sorted(int column) {
  model_.sortByColumn(column);
  return std::nullopt;
}

void UninstallDlg::type_chosen() {
  change_list(&UninstallDlg::show_type);
}

void UninstallDlg::microsoft_toggled() {
  change_list(&UninstallDlg::show_microsoft);
}

void UninstallDlg::search_changed() {
  // Read at once: who shows the pane meanwhile writes the text that is known.
  run_.searchText = ORLO::window_text(control(IDC_SEARCH));
  change_list(&UninstallDlg::show_matches);
}

void UninstallDlg::group_chosen() {
  const ORLO::WaitCursor wait;
  change_list(&UninstallDlg::show_groups, selection_of(control(IDC_GROUP)));
  redraw_list();
}

void UninstallDlg::switch_colors() {
  run_.colorBackground = !run_.colorBackground;
  redraw_list();
  if (!run_.noPersist) writeConfiguration(run_);
}

void UninstallDlg::show_legend() {
  frame_.show([this] { LegendDlg::show(resources_, _hwnd); });
}

void UninstallDlg::show_about() {
  frame_.show([this] { AboutZolvaneController::show(resources_, _hwnd); });
}

void UninstallDlg::copy_cell() {
  if (const String text = clicked_.text(); !text.empty()) ORLO::copy_to_clipboard(text, _hwnd);
}

void UninstallDlg::export_list() {
  export_due_ = cycle_.refreshing();
  if (!export_due_ && !ending()) export_.exportList();
}

bool UninstallDlg::visit_packages(const Visitor& visitor) {
  const ListIcons::Pause pause(icons_);
  const ORLO::LockWithMessages held(listLock);
  if (held) model_.visit_packages(visitor);
  return static_cast<bool>(held);
}

ExportFilter UninstallDlg::export_filter() const {
  const ShowFlags& flags = model_.flags();
  return {flags.showUnnamed, flags.showSystemComponents};
}

bool UninstallDlg::start_action(unsigned command) {
  const CommandContext at = context();
  const bool waits =
      ActionCommands::is_package_action(command) || InspectCommands::is_inspection(command);
  if (!waits) return !ending() && actions_.run(command, at);
  if (at.current != nullptr) postponed_action_ = {command, *at.current};
  run_postponed_action();
  return true;
}

void UninstallDlg::run_postponed_action() {
  if (!postponed_action_ || cycle_.refreshing()) return;
  const PostponedAction action = *std::exchange(postponed_action_, std::nullopt);
  if (ending() || inspection_.run(action.command, action.entry)) return;
  actions_.run(action.command, {&action.entry});
}

void UninstallDlg::run_postponed() {
  run_postponed_action();
  if (export_due_) export_list();
}

void UninstallDlg::show_help() {
  open_help(_hwnd);
}

void UninstallDlg::show_issue_tracker() {
  ORLO::open_with_shell(_hwnd, ZOLVANE_ISSUE_TRACKER);
}

void UninstallDlg::switch_language() {
  // Hidden, it is on its way out already.
  if (!IsWindowVisible(_hwnd)) return;
  WindowRestart restart(_hwnd);
  switchLanguage(resources_.text(IDS_OTHER_LANGUAGE_SWITCH), run_, restart);
}
