// Controls of a dialog, by their id.
#include "command.h"
#include "remote_win.h"
#include "window_win.h"

namespace driver {
namespace {

void write_control(Json& answer, HWND control) {
  RECT screen{};
  GetWindowRect(control, &screen);
  RECT inside = screen;
  MapWindowPoints(nullptr, GetParent(control), reinterpret_cast<POINT*>(&inside), 2);
  answer.begin_object()
      .member("handle", handle_number(control))
      .member("id", GetDlgCtrlID(control))
      .member("class", window_class(control))
      .member("text", window_text(control))
      .flag("visible", IsWindowVisible(control) != FALSE)
      .flag("enabled", IsWindowEnabled(control) != FALSE)
      .member("style", static_cast<DWORD>(GetWindowLongA(control, GWL_STYLE)));
  write_rect(answer, "rect", inside);
  write_rect(answer, "screen", screen);
  answer.end_object();
}

/// control DIALOG ID
void show_control(const Words& words, Json& answer) {
  write_control(answer, control_of(words));
}

/// controls DIALOG: its direct children in their order.
void list_controls(const Words& words, Json& answer) {
  answer.begin_array();
  HWND child = GetWindow(window_at(words, 1), GW_CHILD);
  for (; child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
    write_control(answer, child);
  answer.end_array();
}

/// control-place DIALOG ID: where it stands on the screen, without a word to its thread, which may
/// be busy.
void show_place(const Words& words, Json& answer) {
  RECT screen{};
  GetWindowRect(control_of(words), &screen);
  answer.begin_object();
  write_rect(answer, "screen", screen);
  answer.end_object();
}

/// text DIALOG ID
void read_text(const Words& words, Json& answer) {
  answer.text(window_text(control_of(words)));
}

/// set-text DIALOG ID TEXT
void set_text(const Words& words, Json& answer) {
  const std::string& text = words.text(3);
  answer.number(send_limited(control_of(words), WM_SETTEXT, 0, as_lparam(text.c_str())));
}

/// checked DIALOG ID
void is_checked(const Words& words, Json& answer) {
  answer.number(send_limited(control_of(words), BM_GETCHECK, 0, 0));
}

/// check DIALOG ID STATE: as a user's click, with the notification.
void check(const Words& words, Json& answer) {
  const HWND box = control_of(words);
  send_limited(box, BM_SETCHECK, static_cast<WPARAM>(words.number(3)), 0);
  answer.number(send_limited(window_at(words, 1), WM_COMMAND,
                             MAKEWPARAM(words.number(2), BN_CLICKED),
                             reinterpret_cast<LPARAM>(box)));
}

/// command DIALOG ID [CODE]: WM_COMMAND, as a menu item or (where there is one) the control sends.
void send_command(const Words& words, Json& answer) {
  const HWND dialog = window_at(words, 1);
  const auto id = static_cast<int>(words.number(2));
  const HWND control = GetDlgItem(dialog, id);
  answer.number(send_limited(dialog, WM_COMMAND, MAKEWPARAM(id, words.number_or(3, 0)),
                             reinterpret_cast<LPARAM>(control)));
}

/// combo-select DIALOG ID INDEX: as a user's choice, with the notification.
void select_in_combo(const Words& words, Json& answer) {
  const HWND combo = control_of(words);
  send_limited(combo, CB_SETCURSEL, static_cast<WPARAM>(words.number(3)), 0);
  answer.number(send_limited(window_at(words, 1), WM_COMMAND,
                             MAKEWPARAM(words.number(2), CBN_SELCHANGE),
                             reinterpret_cast<LPARAM>(combo)));
}

/// list-box-rect DIALOG ID INDEX: where an item stands on the screen, scrolled to where it can be
/// clicked.
void list_box_rect(const Words& words, Json& answer) {
  const HWND box = control_of(words);
  const auto index = static_cast<WPARAM>(words.number(3));
  RECT rect{};
  // The system carries this message's record across processes itself.
  if (send_limited(box, LB_SETTOPINDEX, index, 0) == LB_ERR ||
      send_limited(box, LB_GETITEMRECT, index, as_lparam(&rect)) == LB_ERR) {
    throw Refusal("the list box has no such item");
  }
  MapWindowPoints(box, nullptr, reinterpret_cast<POINT*>(&rect), 2);
  answer.begin_object();
  write_rect(answer, "screen", rect);
  answer.end_object();
}

constexpr Command kCommands[] = {
    {"control", show_control},
    {"controls", list_controls},
    {"text", read_text},
    {"set-text", set_text},
    {"checked", is_checked},
    {"check", check},
    {"command", send_command},
    {"combo-select", select_in_combo},
    {"list-box-rect", list_box_rect},
    {"control-place", show_place},
};

}  // namespace

std::span<const Command> control_commands() {
  return kCommands;
}

}  // namespace driver
