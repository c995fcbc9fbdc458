#include "view/uninstall_dlg_para.h"

#include <cstring>
#include <utility>

#include "orlo/window_helpers.h"
#include "platform/resource_ids.h"
#include "platform/system_icon.h"
#include "view/package_commands.h"

namespace {

constexpr struct {
  int control;
  String UninstallEntry::*text;
} kFields[] = {
    {IDC_NAME, &UninstallEntry::displayName},
    {IDC_VERSION, &UninstallEntry::displayVersion},
    {IDC_ICON_PATH, &UninstallEntry::displayIcon},
    {IDC_DATE, &UninstallEntry::installDate},
    {IDC_UNINSTALL_COMMAND, &UninstallEntry::uninstallCmd},
};
constexpr unsigned kActions[] = {IDC_UNINSTALL, IDC_MODIFY, IDC_REPAIR};

/// A control that shows the text already is left alone, so that it doesn't flicker.
void show_text(HWND control, const String& text) {
  if (std::strcmp(ORLO::window_text(control).c_str(), text.c_str()) == 0) return;
  SetWindowTextA(control, text.c_str());
}

}  // namespace

void UninstallDlgPara::enable_actions() const {
  const UninstallEntry* const entry = current_entry();
  for (const unsigned action : kActions) {
    const HWND button = GetDlgItem(hwnd, static_cast<int>(action));
    const bool enabled = can_run(action, {entry});
    // Keys that go to a button which can't be pressed any more would be lost.
    if (!enabled && GetFocus() == button) SetFocus(GetDlgItem(hwnd, IDC_LIST));
    EnableWindow(button, enabled);
  }
}

void UninstallDlgPara::show_icon(const UninstallEntry* entry) {
  std::unique_ptr<Icon> icon = entry != nullptr && load_icon ? load_icon(*entry) : nullptr;
  const HICON shown = icon ? handle(*icon) : nullptr;
  SendDlgItemMessageA(hwnd, IDC_PANE_ICON, STM_SETICON, reinterpret_cast<WPARAM>(shown), 0);
  // The former one goes once it isn't shown any more.
  icon_ = std::move(icon);
}

void UninstallDlgPara::updateControls() {
  const HWND search = GetDlgItem(hwnd, IDC_SEARCH);
  if (partial) {
    run.searchText = ORLO::window_text(search);
    return;
  }
  const UninstallEntry* const entry = current_entry();
  for (const auto& field : kFields) {
    show_text(GetDlgItem(hwnd, field.control), entry != nullptr ? entry->*field.text : String());
  }
  show_icon(entry);
  enable_actions();
  show_text(search, run.searchText);
}
