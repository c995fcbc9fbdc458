// The commands of the main window.
#include <algorithm>
#include <iterator>
#include <optional>
#include <string>

#include "orlo/hyperlink.h"
#include "orlo/message_wait.h"
#include "orlo/window_helpers.h"
#include "persist/configuration.h"
#include "platform/language.h"
#include "view/about_zolvane.h"
#include "view/addresses.h"
#include "view/clipboard.h"
#include "view/help.h"
#include "view/legend_dlg.h"
#include "view/resource_ids.h"
#include "view/uninstall_dlg.h"
#include "view/window_restart.h"

namespace {

// Commands whose work isn't there yet. They say so.
constexpr unsigned kPendingCommands[] = {ID_EXPORT,  ID_CHECK_VERSION, ID_SHOW_PAD,
                                         ID_PATCHES, ID_FEATURES,      ID_MSI_CONTENT};

class Counted {
 public:
  explicit Counted(int& count) : count_(count) { ++count_; }
  ~Counted() { --count_; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

 private:
  int& count_;
};

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
      {ID_ABOUT, kAnyCode, &UninstallDlg::show_about},
      {ID_COPY, kAnyCode, &UninstallDlg::copy_cell},
  };
  for (const auto& row : kCommands) {
    if (row.id != id) continue;
    if (is_meant(row.code, code, sender)) (this->*row.run)();
    return TRUE;
  }
  if (is_meant(kGiven, code, sender) && start_action(id)) return TRUE;
  if (std::find(std::begin(kPendingCommands), std::end(kPendingCommands), id) !=
      std::end(kPendingCommands)) {
    tell_pending(id);
    return TRUE;
  }
  return Base::Command(id, code, sender);
}

template <typename Change>
void UninstallDlg::change_list(Change change) {
  std::optional<size_t> shown;
  {
    const ORLO::LockWithMessages held(listLock);
    if (held) shown = change();
    if (!shown) return;
    show_counts();
  }
  if (*shown == 0) {
    para_.current = 0;
    CanClose(false);
  }
  para_.enable_actions();
  if (!ending()) icons_.start_pass();
}

void UninstallDlg::type_chosen() {
  change_list([this] { return model_.selectType(selection_of(control(IDC_TYPE))); });
}

void UninstallDlg::microsoft_toggled() {
  change_list([this] {
    return model_.toggleMicrosoft(IsDlgButtonChecked(_hwnd, IDC_MICROSOFT) == BST_CHECKED);
  });
}

void UninstallDlg::search_changed() {
  change_list([this] {
    run_.searchText = ORLO::window_text(control(IDC_SEARCH));
    return model_.searchChanged(run_.searchText);
  });
}

void UninstallDlg::group_chosen() {
  const ORLO::WaitCursor wait;
  change_list([this] {
    const std::optional<size_t> shown = model_.selectGroup(selection_of(control(IDC_GROUP)));
    if (shown) SendMessageA(control(IDC_TYPE), CB_SETCURSEL, static_cast<WPARAM>(model_.type()), 0);
    return shown;
  });
  redraw_list();
}

template <typename Show>
void UninstallDlg::show_box(Show show) {
  const Counted open(open_boxes_);
  show();
}

void UninstallDlg::switch_colors() {
  run_.colorBackground = !run_.colorBackground;
  redraw_list();
  if (!run_.noPersist) writeConfiguration(run_);
}

void UninstallDlg::show_legend() {
  show_box([this] { LegendDlg::show(resources_, _hwnd); });
}

void UninstallDlg::show_about() {
  show_box([this] { AboutZolvaneController::show(resources_, _hwnd); });
}

void UninstallDlg::copy_cell() {
  copy_to_clipboard(_hwnd, clicked_.text());
}

bool UninstallDlg::start_action(unsigned command) {
  if (ending()) return false;
  const bool started = actions_.run(command, context());
  // A refresh on which the action lies, and which has read the registry before, doesn't stand for
  // what the action has changed.
  if (started && cycle_.refreshing()) cycle_.follow();
  return started;
}

void UninstallDlg::tell_pending(unsigned command) {
  if (!can_run(command, context())) return;
  show_box([this] {
    MessageBoxA(_hwnd, resources_.text(IDS_NOT_THERE_YET).c_str(),
                resources_.text(IDS_PRODUCT).c_str(), MB_ICONINFORMATION);
  });
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
