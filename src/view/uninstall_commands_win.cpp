// What the user can do in the main window: commands, notices of the list, menus.
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
#include "view/help.h"
#include "view/legend_dlg.h"
#include "view/resource_ids.h"
#include "view/uninstall_dlg.h"
#include "view/window_restart.h"

namespace {

// Commands whose work isn't there yet. They say so.
constexpr unsigned kPendingCommands[] = {
    ID_MSI_CLEANUP, ID_SYSTEM_RESTORE, ID_MSCONFIG,      ID_MSINFO,
    ID_ORCA,        ID_EXPORT,         ID_CHECK_VERSION, ID_SHOW_PAD,
    IDC_UNINSTALL,  IDC_MODIFY,        IDC_REPAIR,       ID_REMOVE,
    ID_COPY,        ID_LAUNCH_URL,     ID_PATCHES,       ID_FEATURES,
    ID_MSI_CONTENT, ID_OPEN_WITH_ORCA, ID_OPEN_FOLDER,   ID_SOFTWARE_CONTROL_PANEL};

// Items whose state depends on the machine or on the chosen package, in whatever menu they stand.
constexpr unsigned kStatefulItems[] = {ID_SYSTEM_RESTORE, ID_MSCONFIG, ID_ORCA, ID_REMOVE};

/// Holds a section for a scope; messages flow while it is waited for.
class HeldWithMessages {
 public:
  explicit HeldWithMessages(ORLO::CriticalSection& section)
      : section_(section), held_(ORLO::try_enter_with_messages(section)) {}
  ~HeldWithMessages() {
    if (held_) section_.leave();
  }
  HeldWithMessages(const HeldWithMessages&) = delete;
  HeldWithMessages& operator=(const HeldWithMessages&) = delete;

  /// False if the program is to quit.
  explicit operator bool() const noexcept { return held_; }

 private:
  ORLO::CriticalSection& section_;
  const bool held_;
};

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

template <typename Item>
bool asks_for_text(const Item& item) {
  return (item.mask & LVIF_TEXT) != 0 && item.iSubItem < kListColumns && item.pszText != nullptr &&
         item.cchTextMax > 0;
}

void gray(HMENU menu, unsigned item, bool grayed) {
  const UINT state = grayed ? MF_GRAYED : MF_ENABLED;
  EnableMenuItem(menu, item, MF_BYCOMMAND | state);
}

}  // namespace

LRESULT UninstallDlg::Command(unsigned id, unsigned code, HWND sender) {
  constexpr unsigned kAnyCode = ~0u;
  static constexpr struct {
    unsigned id;
    unsigned code;
    void (UninstallDlg::*run)();
  } kCommands[] = {
      // Enter must not close the dialog.
      {IDOK, kAnyCode, &UninstallDlg::ignore},
      // The key does nothing; the base class would take its number for one of its own commands.
      {ID_EXIT_KEY, kAnyCode, &UninstallDlg::ignore},
      {IDC_REFRESH, kAnyCode, &UninstallDlg::refresh_from_scratch},
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
  };
  for (const auto& row : kCommands) {
    if (row.id != id) continue;
    if (row.code == kAnyCode || row.code == code) (this->*row.run)();
    return TRUE;
  }
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
    const HeldWithMessages held(listLock);
    if (held) shown = change();
    if (!shown) return;
    show_counts();
  }
  if (*shown > 0) return;
  para_.current = 0;
  CanClose(false);
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

LRESULT UninstallDlg::Notify(unsigned id, NMHDR* header) {
  if (header->hwndFrom == list_.window()) return list_notice(*header);
  const bool is_click = header->code == HDN_ITEMCLICKA || header->code == HDN_ITEMCLICKW;
  // Both forms are alike up to what is read here.
  if (is_click && header->hwndFrom == list_.header()) {
    sort_by(reinterpret_cast<const NMHEADERA*>(header)->iItem);
    return TRUE;
  }
  return Base::Notify(id, header);
}

LRESULT UninstallDlg::list_notice(NMHDR& header) {
  switch (header.code) {
    case LVN_GETDISPINFOA:
      give_text(reinterpret_cast<NMLVDISPINFOA&>(header));
      return TRUE;
    case LVN_GETDISPINFOW:
      give_wide_text(reinterpret_cast<NMLVDISPINFOW&>(header));
      return TRUE;
    case NM_CUSTOMDRAW:
      return set_result(
          painter_.draw(reinterpret_cast<NMLVCUSTOMDRAW&>(header), run_.colorBackground));
    case LVN_ITEMCHANGED:
      item_changed(reinterpret_cast<const NMLISTVIEW&>(header));
      return TRUE;
    case NM_DBLCLK:
      double_clicked();
      return TRUE;
    case NM_RCLICK:
      right_clicked();
      return TRUE;
    default:
      return FALSE;
  }
}

void UninstallDlg::give_text(NMLVDISPINFOA& request) {
  LVITEMA& item = request.item;
  if (!asks_for_text(item)) return;
  const String& text = model_.cellText(static_cast<uint32_t>(item.lParam), item.iSubItem);
  lstrcpynA(item.pszText, text.c_str(), item.cchTextMax);
}

void UninstallDlg::give_wide_text(NMLVDISPINFOW& request) {
  LVITEMW& item = request.item;
  if (!asks_for_text(item)) return;
  const String& text = model_.cellText(static_cast<uint32_t>(item.lParam), item.iSubItem);
  const auto length = static_cast<int>(text.length());
  std::wstring wide(text.length(), L'\0');
  wide.resize(static_cast<size_t>(
      MultiByteToWideChar(CP_ACP, 0, text.c_str(), length, wide.data(), length)));
  lstrcpynW(item.pszText, wide.c_str(), item.cchTextMax);
}

void UninstallDlg::item_changed(const NMLISTVIEW& change) {
  if ((change.uChanged & LVIF_STATE) == 0 || (change.uNewState & LVIS_FOCUSED) == 0) {
    // The pane keeps what it shows until another line gets the focus.
    para_.current = marked_id();
    return;
  }
  if (para_.current_entry() != nullptr) CanClose(true);
  para_.current = list_.id_at(change.iItem);
  CanClose(false);
}

void UninstallDlg::double_clicked() {
  para_.current = marked_id();
  const UninstallEntry* const entry = para_.current_entry();
  if (entry == nullptr || !has_actions(*entry)) return;
  if (canUninstall(entry)) {
    Command(IDC_UNINSTALL, 0, nullptr);
  } else if (canModify(entry)) {
    Command(IDC_MODIFY, 0, nullptr);
  } else {
    show_box([this] {
      MessageBoxA(_hwnd, resources_.text(IDS_NO_INSTALLER_COMMAND).c_str(),
                  resources_.text(IDS_PRODUCT).c_str(), MB_ICONWARNING);
    });
  }
}

void UninstallDlg::right_clicked() {
  const DWORD position = GetMessagePos();
  const POINT on_screen = {static_cast<short>(LOWORD(position)),
                           static_cast<short>(HIWORD(position))};
  LVHITTESTINFO hit = {};
  hit.pt = on_screen;
  ScreenToClient(list_.window(), &hit.pt);
  const auto row = static_cast<int>(
      SendMessageA(list_.window(), LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
  url_ = row < 0 ? String() : cell_url(model_.cellText(list_.id_at(row), hit.iSubItem));
  const UninstallEntry* const entry = para_.current_entry();
  if (row < 0 || entry == nullptr || !has_actions(*entry)) return;
  track_popup(IDM_LIST, on_screen);
}

void UninstallDlg::sort_by(int column) {
  const ORLO::WaitCursor wait;
  model_.sortByColumn(column);
  redraw_list();
}

/// Colours change where lines stay as they are.
void UninstallDlg::redraw_list() {
  InvalidateRect(list_.window(), nullptr, TRUE);
}

CommandContext UninstallDlg::context() const {
  // Without a look for the editor of MSI files there is none.
  return {para_.current_entry(), !url_.empty(), false, under_wow64()};
}

void UninstallDlg::update_menu(HMENU menu) {
  const UINT colored = run_.colorBackground ? MF_CHECKED : MF_UNCHECKED;
  CheckMenuItem(menu, ID_COLOR_BACKGROUND, MF_BYCOMMAND | colored);
  const CommandContext at = context();
  for (const unsigned item : kStatefulItems)
    gray(menu, item, !can_run(item, at));
}

void UninstallDlg::track_popup(unsigned menu, POINT on_screen) {
  // Its loop would keep the end waiting.
  if (ending()) return;
  const ORLO::OwnedMenu loaded = resources_.load_menu(menu);
  const HMENU popup = GetSubMenu(loaded.get(), 0);
  const CommandContext at = context();
  for (int position = 0; position < GetMenuItemCount(popup); ++position) {
    const UINT item = GetMenuItemID(popup, position);
    gray(popup, item, !can_run(item, at));
  }
  TrackPopupMenu(popup, TPM_LEFTALIGN | TPM_TOPALIGN | TPM_RIGHTBUTTON, on_screen.x, on_screen.y, 0,
                 _hwnd, nullptr);
}
