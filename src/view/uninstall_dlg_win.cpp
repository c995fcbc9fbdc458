#include "view/uninstall_dlg.h"

#include <iterator>
#include <optional>
#include <utility>

#include "orlo/wait_cursor.h"
#include "orlo/window_helpers.h"
#include "persist/window_pos.h"
#include "view/resource_ids.h"

namespace {

using ORLO::ResizeRule;

constexpr COLORREF kButtonText = 0x800000;
constexpr COLORREF kActiveButtonText = 0xff0000;
// How much the dialog opens larger than its template, in pixels.
constexpr int kExtraWidth = 252;
constexpr int kExtraHeight = 300;
constexpr INT_PTR kClosed = 2;

// 1 moves the left edge with the dialog's growth, 2 the right, 4 the top, 8 the bottom edge.
constexpr ResizeRule kResizeRules[] = {
    {IDC_SEARCH, 2},
    {IDC_MICROSOFT, 3},
    {IDC_TYPE_LABEL, 3},
    {IDC_TYPE, 3},
    {IDC_GROUP_LABEL, 3},
    {IDC_GROUP, 3},
    {IDC_LIST, 10},
    {IDC_NAME_LABEL, 12},
    {IDC_NAME, 14},
    {IDC_STATUS, 15},
    {IDC_REFRESH, 15},
    {IDC_ICON_PATH_LABEL, 12},
    {IDC_ICON_PATH, 14},
    {IDC_PANE_ICON, 15},
    {IDC_VERSION_LABEL, 12},
    {IDC_VERSION, 12},
    {IDC_DATE_LABEL, 12},
    {IDC_DATE, 12},
    {IDC_MODIFY, 15},
    {IDC_REPAIR, 15},
    {IDC_UNINSTALL, 15},
    {IDC_UNINSTALL_COMMAND_LABEL, 12},
    {IDC_UNINSTALL_COMMAND, 14},
};

// Controls and menu items whose work comes with a later version.
constexpr int kIdleControls[] = {IDC_SEARCH_LABEL,
                                 IDC_SEARCH,
                                 IDC_MICROSOFT,
                                 IDC_TYPE_LABEL,
                                 IDC_TYPE,
                                 IDC_NAME_LABEL,
                                 IDC_NAME,
                                 IDC_ICON_PATH_LABEL,
                                 IDC_ICON_PATH,
                                 IDC_PANE_ICON,
                                 IDC_VERSION_LABEL,
                                 IDC_VERSION,
                                 IDC_DATE_LABEL,
                                 IDC_DATE,
                                 IDC_UNINSTALL_COMMAND_LABEL,
                                 IDC_UNINSTALL_COMMAND,
                                 IDC_MODIFY,
                                 IDC_REPAIR,
                                 IDC_UNINSTALL};
constexpr UINT kIdleMenuItems[] = {ID_MSI_CLEANUP,
                                   ID_SYSTEM_RESTORE,
                                   ID_MSCONFIG,
                                   ID_MSINFO,
                                   ID_SOFTWARE_CONTROL_PANEL,
                                   ID_ORCA,
                                   ID_EXPORT,
                                   ID_CHECK_VERSION,
                                   ID_SHOW_PAD,
                                   ID_SWITCH_LANGUAGE,
                                   ID_COLOR_BACKGROUND,
                                   ID_COLOR_LEGEND,
                                   ID_HELP_CONTENTS,
                                   ID_BUG_REPORT,
                                   ID_ABOUT};

constexpr unsigned kTypeTexts[] = {IDS_TYPE_NORMAL, IDS_TYPE_SUB_PACKAGES,
                                   IDS_TYPE_SYSTEM_COMPONENTS, IDS_TYPE_OS_UPDATES, IDS_TYPE_ALL};
constexpr int kAllPackages = 4;
// Fixed in both languages.
constexpr const char* kGroupTexts[] = {"-", "Pakettyp", "Abh\xe4ngigkeiten"};

HICON load_icon(HINSTANCE module, int width_metric, int height_metric) {
  return static_cast<HICON>(LoadImageA(module, MAKEINTRESOURCEA(IDI_ZOLVANE), IMAGE_ICON,
                                       GetSystemMetrics(width_metric),
                                       GetSystemMetrics(height_metric), LR_DEFAULTCOLOR));
}

}  // namespace

UninstallDlg::UninstallDlg(HWND window, std::unique_ptr<UninstallDlgPara> dialog_para,
                           const Resources& resources, const UninstallReader::Services& services)
    : Base(window, std::move(dialog_para)),
      run_(static_cast<UninstallDlgPara&>(*para).run),
      resources_(resources),
      accelerators_(resources.accelerators(IDA_MAIN)),
      refresh_button_(control(IDC_REFRESH), kButtonText, kActiveButtonText),
      modify_button_(control(IDC_MODIFY), kButtonText, kActiveButtonText),
      repair_button_(control(IDC_REPAIR), kButtonText, kActiveButtonText),
      uninstall_button_(control(IDC_UNINSTALL), kButtonText, kActiveButtonText),
      list_(control(IDC_LIST)),
      model_(list_, CellTexts{resources.text(IDS_CHANGED), resources.text(IDS_NEW)}),
      currentTable(packageSchema()),
      reader_(services),
      cycle_(reader_, currentTable, model_, services.clock) {
  set_icons();
  set_menu();
  set_resize_rules();
  add_columns();
  fill_combos();
  disable_what_has_no_work_yet();
}

UninstallDlg::~UninstallDlg() {
  shut_down();
}

void UninstallDlg::set_icons() {
  const HINSTANCE module = resources_.module();
  big_icon_.reset(load_icon(module, SM_CXICON, SM_CYICON));
  small_icon_.reset(load_icon(module, SM_CXSMICON, SM_CYSMICON));
  SendMessageA(_hwnd, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(big_icon_.get()));
  SendMessageA(_hwnd, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(small_icon_.get()));
}

void UninstallDlg::set_menu() {
  // The template's menu is there in the language that the system chose; ours takes its place.
  ORLO::replace_menu(_hwnd, resources_.load_menu(IDM_MAIN));
  if (const HMENU system = GetSystemMenu(_hwnd, FALSE)) {
    AppendMenuA(system, MF_SEPARATOR, 0, nullptr);
    AppendMenuA(system, MF_STRING | MF_GRAYED, ID_ABOUT, resources_.text(IDS_ABOUT_ITEM).c_str());
  }
}

void UninstallDlg::set_resize_rules() {
  resizer.add(kResizeRules, std::size(kResizeRules));
  resizer.init(_hwnd);
  resizer.set_size(kExtraWidth, kExtraHeight);
}

void UninstallDlg::add_columns() {
  for (int index = 0; index < kListColumns; ++index) {
    const ListColumn& column = list_column(index);
    list_.add_column(index, resources_.text(column.title), column.width, column.align);
  }
  list_.set_extended_style(LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT);
}

void UninstallDlg::fill_combos() {
  const HWND types = control(IDC_TYPE);
  for (const unsigned id : kTypeTexts) {
    SendMessageA(types, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(resources_.text(id).c_str()));
  }
  // Every entry is shown as long as there is no filter, and the selection says so.
  SendMessageA(types, CB_SETCURSEL, kAllPackages, 0);
  const HWND groups = control(IDC_GROUP);
  for (const char* text : kGroupTexts) {
    SendMessageA(groups, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
  }
  SendMessageA(groups, CB_SETCURSEL, 0, 0);
  CheckDlgButton(_hwnd, IDC_MICROSOFT, BST_CHECKED);
}

void UninstallDlg::disable_what_has_no_work_yet() {
  for (const int id : kIdleControls)
    EnableWindow(control(id), FALSE);
  const HMENU menu = GetMenu(_hwnd);
  for (const UINT id : kIdleMenuItems)
    EnableMenuItem(menu, id, MF_BYCOMMAND | MF_GRAYED);
  list_.disable_header_clicks();
}

void UninstallDlg::place_window() {
  const std::optional<WindowPos> pos = parse_window_pos(run_.windowPos);
  if (!pos) {
    ORLO::center_window(_hwnd);
    return;
  }
  // Laid out anew on its way, by the message that tells of the new size.
  MoveWindow(_hwnd, pos->left, pos->top, pos->right - pos->left, pos->bottom - pos->top, TRUE);
  ShowWindow(_hwnd, pos->show_command);
}

void UninstallDlg::save_window_pos() {
  WINDOWPLACEMENT placement = {};
  placement.length = sizeof placement;
  if (GetWindowPlacement(_hwnd, &placement) == FALSE) return;
  const RECT& normal = placement.rcNormalPosition;
  keep_window_pos(
      {normal.left, normal.top, normal.right, normal.bottom, static_cast<int>(placement.showCmd)},
      run_.windowPos);
}

LRESULT UninstallDlg::Init(HWND) {
  place_window();
  ShowWindow(_hwnd, SW_SHOW);
  UpdateWindow(_hwnd);
  SetFocus(control(IDC_LIST));
  requestRefresh();
  // The focus has been set.
  return FALSE;
}

LRESULT UninstallDlg::WndProc(UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case WM_CLOSE:
      closing = true;
      EndDialog(kClosed);
      return TRUE;
    case ORLO::kMsgTranslate:
      return set_result(
          TranslateAcceleratorA(_hwnd, accelerators_.get(), reinterpret_cast<MSG*>(lparam)));
    default:
      return Base::WndProc(message, wparam, lparam);
  }
}

LRESULT UninstallDlg::Command(unsigned id, unsigned code, HWND sender) {
  switch (id) {
    case IDOK:
      // Enter must not close the dialog.
      return TRUE;
    case IDC_REFRESH:
      refresh_from_scratch();
      return TRUE;
    default:
      return Base::Command(id, code, sender);
  }
}

LRESULT UninstallDlg::Notify(unsigned id, NMHDR* header) {
  if (header->idFrom == IDC_LIST && header->code == LVN_GETDISPINFOA) {
    give_text(*reinterpret_cast<NMLVDISPINFOA*>(header));
    return TRUE;
  }
  return Base::Notify(id, header);
}

void UninstallDlg::give_text(NMLVDISPINFOA& request) {
  LVITEMA& item = request.item;
  if ((item.mask & LVIF_TEXT) == 0 || item.pszText == nullptr || item.cchTextMax <= 0) return;
  const String& text = model_.cellText(static_cast<uint32_t>(item.lParam), item.iSubItem);
  lstrcpynA(item.pszText, text.c_str(), item.cchTextMax);
}

void UninstallDlg::requestRefresh() {
  ++refreshCount;
  if (refreshing) return;
  const struct Refreshing {
    bool& flag;
    explicit Refreshing(bool& f) : flag(f) { flag = true; }
    ~Refreshing() { flag = false; }
    Refreshing(const Refreshing&) = delete;
    Refreshing& operator=(const Refreshing&) = delete;
  } running(refreshing);
  runRefreshCycle();
  UpdateWindow(list_.window());
}

void UninstallDlg::runRefreshCycle() {
  {
    const ORLO::WaitCursor cursor(IDC_WAIT);
    UpdateWindow(_hwnd);
    if (!cycle_.run()) return;
    show_counts();
  }
  const String failure = reader_.error_text();
  if (failure.empty()) return;
  MessageBoxA(_hwnd, failure.c_str(), resources_.text(IDS_EXCEPTION).c_str(), MB_ICONWARNING);
}

void UninstallDlg::refresh_from_scratch() {
  model_.clear();
  currentTable.clear_rows();
  reader_.clear();
  requestRefresh();
}

void UninstallDlg::show_counts() {
  const String text = String::formatted(resources_.text(IDS_STATUS).c_str(), list_.count(),
                                        static_cast<int>(model_.size()));
  SetDlgItemTextA(_hwnd, IDC_STATUS, text.c_str());
}

void UninstallDlg::shut_down() {
  reader_.stop(ORLO::ActiveObject::WaitMode::pump);
}

void UninstallDlg::EndDialog(INT_PTR result) {
  shut_down();
  save_window_pos();
  Base::EndDialog(result);
}
