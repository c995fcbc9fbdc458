// What the main window hears of its list, and its menus.
#include <string>

#include "orlo/message_wait.h"
#include "platform/language.h"
#include "platform/resource_ids.h"
#include "view/uninstall_dlg.h"

namespace {

// Items whose state depends on the machine or on the chosen package, in whatever menu they stand.
constexpr unsigned kStatefulItems[] = {ID_SYSTEM_RESTORE, ID_MSCONFIG, ID_ORCA, ID_REMOVE};

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
  // An icon that has come is a change of ours, and chooses nothing.
  if (change.uChanged == LVIF_IMAGE) return;
  if ((change.uChanged & LVIF_STATE) == 0 || (change.uNewState & LVIS_FOCUSED) == 0) {
    // The pane keeps what it shows until another line gets the focus.
    para_.current = marked_id();
    para_.enable_actions();
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
  if (const unsigned command = default_command(*entry)) {
    Command(command, 0, nullptr);
  } else {
    frame_.warn(resources_.text(IDS_NO_INSTALLER_COMMAND), resources_.text(IDS_PRODUCT));
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
  clicked_.click(row < 0 ? 0 : list_.id_at(row), hit.iSubItem);
  if (row >= 0) open_list_menu(on_screen);
}

void UninstallDlg::menu_key_pressed() {
  const int row = list_.find(para_.current);
  if (row < 0) return;
  list_.ensure_visible(row);
  clicked_.click(para_.current, kProgramNameColumn);
  open_list_menu(list_.below_row(row));
}

void UninstallDlg::open_list_menu(POINT on_screen) {
  const UninstallEntry* const entry = para_.current_entry();
  if (entry != nullptr && has_actions(*entry)) track_popup(IDM_LIST, on_screen);
}

void UninstallDlg::sort_by(int column) {
  const ORLO::WaitCursor wait;
  change_list(&UninstallDlg::show_sorted, column);
  redraw_list();
}

/// Colours change where lines stay as they are.
void UninstallDlg::redraw_list() {
  InvalidateRect(list_.window(), nullptr, TRUE);
}

CommandContext UninstallDlg::context() const {
  return {para_.current_entry(), clicked_.url(), actions_.has_orca(), under_wow64()};
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
  // Done at once: a message that was posted before the choice may be one that changes what is
  // chosen.
  const BOOL chosen =
      TrackPopupMenu(popup, TPM_LEFTALIGN | TPM_TOPALIGN | TPM_RIGHTBUTTON | TPM_RETURNCMD,
                     on_screen.x, on_screen.y, 0, _hwnd, nullptr);
  if (chosen != 0) Command(static_cast<unsigned>(chosen), 0, nullptr);
}
