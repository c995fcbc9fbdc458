#include "view/uninstall_dlg.h"

#include <exception>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

#include "orlo/dpi.h"
#include "orlo/exception.h"
#include "orlo/window_helpers.h"
#include "persist/configuration.h"
#include "persist/entry_icon.h"
#include "persist/history.h"
#include "persist/window_pos.h"
#include "platform/resource_ids.h"
#include "view/window_restart.h"

namespace {

using ORLO::ResizeRule;

constexpr COLORREF kButtonText = 0x800000;
constexpr COLORREF kActiveButtonText = 0xff0000;
// How much the dialog opens larger than its template, in pixels of a screen of 96 dots per
// inch.
constexpr int kExtraWidth = 252;
constexpr int kExtraHeight = 300;
constexpr INT_PTR kClosed = 2;
// Posted by the registry's watchers.
constexpr UINT kRegistryChanged = WM_APP;
// Posted when a refresh has ended that an action waits for.
constexpr UINT kRunPostponedAction = WM_APP + 2;
// Looks whether a refresh that was postponed can run, every so many milliseconds.
constexpr UINT_PTR kPostponedTimer = 1;
constexpr UINT kPostponedInterval = 50;
// Closes, every so many milliseconds, a box that was about to open when the window was closed.
constexpr UINT_PTR kBoxesTimer = 2;
constexpr UINT kBoxesInterval = 50;

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

constexpr unsigned kTypeTexts[] = {IDS_TYPE_NORMAL, IDS_TYPE_SUB_PACKAGES,
                                   IDS_TYPE_SYSTEM_COMPONENTS, IDS_TYPE_OS_UPDATES, IDS_TYPE_ALL};
// Fixed in both languages.
constexpr const char* kGroupTexts[] = {"-", "Pakettyp", "Abh\xe4ngigkeiten"};

BOOL CALLBACK add_work_area(HMONITOR monitor, HDC, RECT*, LPARAM list) {
  auto& areas = *reinterpret_cast<std::vector<ScreenArea>*>(list);
  MONITORINFO info = {};
  info.cbSize = sizeof info;
  if (GetMonitorInfoA(monitor, &info) == FALSE) return TRUE;
  const bool primary = (info.dwFlags & MONITORINFOF_PRIMARY) != 0;
  const RECT& work = info.rcWork;
  areas.insert(primary ? areas.begin() : areas.end(),
               {work.left, work.top, work.right, work.bottom});
  return TRUE;
}

/// What the system allows of the window's size, and the window itself.
SizeLimits size_limits(HWND window) {
  MINMAXINFO info = {};
  info.ptMinTrackSize = {GetSystemMetrics(SM_CXMINTRACK), GetSystemMetrics(SM_CYMINTRACK)};
  info.ptMaxTrackSize = {GetSystemMetrics(SM_CXMAXTRACK), GetSystemMetrics(SM_CYMAXTRACK)};
  SendMessageA(window, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&info));
  return {info.ptMinTrackSize.x, info.ptMinTrackSize.y, info.ptMaxTrackSize.x,
          info.ptMaxTrackSize.y};
}

/// What windows may cover of each screen, that of the primary one first.
std::vector<ScreenArea> work_areas() {
  std::vector<ScreenArea> areas;
  EnumDisplayMonitors(nullptr, nullptr, &add_work_area, reinterpret_cast<LPARAM>(&areas));
  return areas;
}

/// Whether a menu of any window here, or a drag of its frame, a scroll bar or a column, has a
/// message loop of its own on the stack or holds the mouse.
bool in_menu_or_drag() {
  constexpr DWORD kLoops = GUI_INMENUMODE | GUI_POPUPMENUMODE | GUI_SYSTEMMENUMODE | GUI_INMOVESIZE;
  GUITHREADINFO info = {};
  info.cbSize = sizeof info;
  if (GetGUIThreadInfo(GetCurrentThreadId(), &info) == FALSE) return false;
  const bool dragging = info.hwndCapture != nullptr && GetKeyState(VK_LBUTTON) < 0;
  return (info.flags & kLoops) != 0 || dragging;
}

}  // namespace

UninstallDlg::UninstallDlg(HWND window, std::unique_ptr<UninstallDlgPara> dialog_para,
                           const Resources& resources, const DialogServices& services)
    : Base(window, std::move(dialog_para)),
      para_(static_cast<UninstallDlgPara&>(*para)),
      run_(para_.run),
      resources_(resources),
      accelerators_(resources.accelerators(IDA_MAIN)),
      window_icons_(window, resources.module(), IDI_ZOLVANE),
      refresh_button_(control(IDC_REFRESH), kButtonText, kActiveButtonText),
      modify_button_(control(IDC_MODIFY), kButtonText, kActiveButtonText),
      repair_button_(control(IDC_REPAIR), kButtonText, kActiveButtonText),
      uninstall_button_(control(IDC_UNINSTALL), kButtonText, kActiveButtonText),
      list_controller_(
          control(IDC_LIST), [this](POINT on_screen) { track_popup(IDM_HEADER, on_screen); },
          [this] { menu_key_pressed(); }),
      list_(control(IDC_LIST)),
      model_(list_, CellTexts{resources.text(IDS_CHANGED), resources.text(IDS_NEW)}),
      painter_(window, model_),
      currentTable(packageSchema()),
      reader_(
          services.reader, [window] { PostMessageA(window, kRegistryChanged, 0, 0); }, window),
      cycle_({reader_, currentTable, history_, listLock, model_, *this, services.reader.clock}),
      frame_(
          {window, cycle_, [this] { return closing || ending(); }, [this] { requestRefresh(); }}),
      actions_({services.reader.files, services.shell, services.reader.registry, frame_},
               [&resources](unsigned id) { return resources.text(id); }),
      export_({{services.reader.files, services.shell, services.reader.registry, frame_},
               services.storage,
               *this,
               [this](const ORLO::SaveFileDialog& dialog) { return frame_.ask_file_name(dialog); },
               [&resources](unsigned id) { return resources.text(id); }}),
      inspection_({resources, frame_, services.inspection, services.reader.registry,
                   services.reader.clock}),
      icons_({window, list_.window(), model_, listLock, services.icons, services.reader.files, run_,
              services.reader.apply_thread_language},
             resources.module()),
      updates_({window, resources, frame_, services}) {
  set_menu();
  set_resize_rules();
  add_columns();
  fill_combos();
  para_.hwnd = window;
  para_.find = [this](uint32_t id) { return model_.find(id); };
  para_.load_icon = [&files = services.reader.files,
                     &icons = services.icons](const UninstallEntry& entry) {
    return loadEntryIcon(entry, true, files, icons);
  };
  if (services.check_for_updates) updates_.start();
}

UninstallDlg::~UninstallDlg() {
  shut_down();
}

void UninstallDlg::set_menu() {
  // The template's menu is there in the language that the system chose; ours takes its place.
  ORLO::replace_menu(_hwnd, resources_.load_menu(IDM_MAIN));
  if (const HMENU system = GetSystemMenu(_hwnd, FALSE)) {
    AppendMenuA(system, MF_SEPARATOR, 0, nullptr);
    AppendMenuA(system, MF_STRING, ID_ABOUT, resources_.text(IDS_ABOUT_ITEM).c_str());
  }
}

void UninstallDlg::set_resize_rules() {
  resizer.add(kResizeRules, std::size(kResizeRules));
  resizer.init(_hwnd);
  const int dpi = ORLO::screen_dpi();
  resizer.set_size(ORLO::scale_up(kExtraWidth, dpi), ORLO::scale_up(kExtraHeight, dpi));
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
  SendMessageA(types, CB_SETCURSEL, static_cast<WPARAM>(model_.type()), 0);
  const HWND groups = control(IDC_GROUP);
  for (const char* text : kGroupTexts) {
    SendMessageA(groups, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
  }
  SendMessageA(groups, CB_SETCURSEL, 0, 0);
  CheckDlgButton(_hwnd, IDC_MICROSOFT, BST_CHECKED);
}

void UninstallDlg::place_window() {
  const std::optional<WindowPos> saved = parse_window_pos(run_.windowPos);
  if (!saved) {
    ORLO::shrink_to_work_area(_hwnd);
    ORLO::center_window(_hwnd);
    return;
  }
  // Corrected before the window is moved, by the size that it is going to have: it never lies out
  // of reach, and is laid out once.
  const WindowPos place =
      within_reach(as_placed(*saved, size_limits(_hwnd)), work_areas(), ORLO::screen_dpi());
  // The layout follows from the message that tells of the new size.
  MoveWindow(_hwnd, place.left, place.top, place.width(), place.height(), TRUE);
  ShowWindow(_hwnd, saved->show_command);
}

LRESULT UninstallDlg::Init(HWND) {
  place_window();
  ShowWindow(_hwnd, SW_SHOW);
  UpdateWindow(_hwnd);
  // Before the first pass, during which the window is used already.
  SetFocus(control(IDC_SEARCH));
  if (!run_.noPersist && readHistory()) history_.loaded();
  requestRefresh();
  // The focus has been set.
  return FALSE;
}

LRESULT UninstallDlg::WndProc(UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case kRegistryChanged:
      requestRefresh();
      return TRUE;
    case ListIcons::kCall:
      icons_.answer_call();
      return TRUE;
    case kRunPostponedAction:
      run_postponed();
      return TRUE;
    case WM_TIMER:
      return timer_ran(wparam) ? TRUE : Base::WndProc(message, wparam, lparam);
    case WM_INITMENUPOPUP:
      update_menu(reinterpret_cast<HMENU>(wparam));
      return FALSE;
    case WM_SYSCOMMAND:
      return system_command(wparam) ? TRUE : Base::WndProc(message, wparam, lparam);
    case WM_CLOSE:
      closing = true;
      // Only what the user has typed is read.
      if (para_.current_entry() != nullptr) CanClose(true);
      EndDialog(kClosed);
      return TRUE;
    case ORLO::kMsgTranslate:
      return set_result(
          TranslateAcceleratorA(_hwnd, accelerators_.get(), reinterpret_cast<MSG*>(lparam)));
    default:
      return Base::WndProc(message, wparam, lparam);
  }
}

bool UninstallDlg::timer_ran(UINT_PTR timer) {
  switch (timer) {
    case kPostponedTimer:
      KillTimer(_hwnd, timer);
      if (const auto run_noted = std::exchange(postponed_, nullptr)) refresh(run_noted);
      return true;
    case kBoxesTimer:
      if (!frame_.close_boxes()) KillTimer(_hwnd, timer);
      return true;
    default:
      return false;
  }
}

bool UninstallDlg::system_command(WPARAM wparam) {
  // The system keeps the lowest four bits for itself.
  switch (wparam & 0xfff0) {
    case ID_ABOUT:
      show_about();
      return true;
    case SC_KEYMENU:
    case SC_MOUSEMENU:
      // The loop of a menu would keep the end waiting. Letting go of Alt opens one where the window
      // manager has taken the F4 of Alt+F4 for itself.
      return ending();
    default:
      return false;
  }
}

bool UninstallDlg::readHistory() {
  currentTable.clear_rows();
  return read_history(run_.histPath, history_.lastEntries);
}

void UninstallDlg::writeHistory() {
  if (!run_.noPersist) write_history(history_.lastEntries, run_.histPath);
}

void UninstallDlg::requestRefresh() {
  cycle_.note_request();
  refresh(&RefreshCycle::run_noted);
}

void UninstallDlg::refresh_from_scratch() {
  cycle_.note_request();
  refresh(&RefreshCycle::run_noted_afresh);
}

void UninstallDlg::refresh(void (RefreshCycle::*run_noted)()) {
  if (!in_menu_or_drag()) {
    run_refresh(run_noted);
    return;
  }
  // The cycle's wait would take the keys that the menu, or the button's release that the drag, is
  // to get. Several requests become one.
  if (postponed_ != &RefreshCycle::run_noted_afresh) postponed_ = run_noted;
  SetTimer(_hwnd, kPostponedTimer, kPostponedInterval, nullptr);
}

void UninstallDlg::run_refresh(void (RefreshCycle::*run_noted)()) {
  const ListIcons::Pause pause(icons_);
  // However the cycle ends, an end that was asked for meanwhile is due.
  try {
    (cycle_.*run_noted)();
  } catch (...) {
    after_refresh();
    throw;
  }
  after_refresh();
}

void UninstallDlg::after_refresh() {
  if (cycle_.refreshing()) return;
  if (due_result_) EndDialog(*due_result_);
  // What waits goes with the window: a message of ours would come before the quit.
  if (cycle_.abandoned()) {
    postponed_action_.reset();
    export_due_ = false;
  }
  // By a message: a refresh may have been asked for by somebody who hasn't the time for an
  // installer.
  if (postponed_action_ || export_due_) PostMessageA(_hwnd, kRunPostponedAction, 0, 0);
}

void UninstallDlg::forget_entries() {
  model_.clear();
  para_.enable_actions();
}

void UninstallDlg::begin_wait() {
  wait_cursor_.emplace(IDC_WAIT);
  UpdateWindow(_hwnd);
}

void UninstallDlg::end_wait() noexcept {
  wait_cursor_.reset();
}

void UninstallDlg::show_failure(const String& text) {
  MessageBoxA(_hwnd, text.c_str(), resources_.text(IDS_EXCEPTION).c_str(), MB_ICONWARNING);
}

void UninstallDlg::refreshed() {
  model_.set_group_view();
  para_.enable_actions();
  if (!ending()) icons_.start_pass();
  UpdateWindow(list_.window());
}

void UninstallDlg::show_counts() {
  const String text = String::formatted(resources_.text(IDS_STATUS).c_str(), list_.count(),
                                        static_cast<int>(model_.size()));
  SetDlgItemTextA(_hwnd, IDC_STATUS, text.c_str());
}

void UninstallDlg::shut_down() {
  if (std::exchange(shut_down_, true)) return;
  cycle_.end();
  // Asked before, as the wait for the reader may be long.
  icons_.begin_stop();
  updates_.begin_end();
  reader_.stop(ORLO::ActiveObject::WaitMode::pump);
  icons_.stop();
  actions_.close();
  keep_settings();
  // The last, as the process may end there.
  updates_.end();
}

void UninstallDlg::keep_settings() noexcept {
  try {
    keep_window_place(_hwnd, run_.windowPos);
    if (!run_.noPersist) writeConfiguration(run_);
  } catch (const ORLO::Exception&) {
    // Lost without a word, like what a full disk refuses: the window closes in any case.
  } catch (const std::exception&) {
    // Likewise.
  }
}

void UninstallDlg::EndDialog(INT_PTR result) {
  cycle_.end();
  // A pass that runs leaves out the sources after the one that it is in.
  reader_.stop(ORLO::ActiveObject::WaitMode::none);
  updates_.begin_end();
  // An open menu would keep its own message loop, and with it the dialog's, from ending.
  EndMenu();
  due_result_ = result;
  // So would a box, and below it another one, and the wait for an installer.
  if (frame_.close_boxes()) SetTimer(_hwnd, kBoxesTimer, kBoxesInterval, nullptr);
  actions_.close();
  if (cycle_.refreshing() || shut_down_) return;
  try {
    shut_down();
  } catch (...) {
    // Nothing keeps the window open.
    Base::EndDialog(result);
    throw;
  }
  Base::EndDialog(result);
}
