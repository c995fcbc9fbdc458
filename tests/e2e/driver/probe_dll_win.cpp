#include <windows.h>

#include <cstring>
#include <memory>
#include <string>

#include "json.h"
#include "probe.h"

namespace driver {
namespace {

/// Has the program bring a popup's items up to date, as it does when the user opens it.
void announce_popup(HWND window, HMENU popup, int position, bool is_system_menu) {
  SendMessageA(window, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(popup),
               MAKELPARAM(position, is_system_menu));
}

/// Where an item stands on the screen; only while its menu is open.
void write_place(Json& answer, HMENU menu, int position) {
  RECT place{};
  if (!GetMenuItemRect(nullptr, menu, static_cast<UINT>(position), &place)) return;
  answer.key("screen").begin_array().number(place.left).number(place.top).number(place.right);
  answer.number(place.bottom).end_array();
}

void write_items(Json& answer, HWND window, HMENU menu, bool is_system_menu) {
  answer.begin_array();
  for (int position = 0; position < GetMenuItemCount(menu); ++position) {
    char text[512] = "";
    MENUITEMINFOA item{};
    item.cbSize = sizeof item;
    item.fMask = MIIM_FTYPE | MIIM_STATE | MIIM_ID | MIIM_SUBMENU | MIIM_STRING;
    item.dwTypeData = text;
    item.cch = sizeof text;
    GetMenuItemInfoA(menu, static_cast<UINT>(position), TRUE, &item);
    answer.begin_object().member("id", item.wID).member("text", text);
    answer.flag("separator", (item.fType & MFT_SEPARATOR) != 0);
    answer.flag("gray", (item.fState & MFS_GRAYED) != 0);
    answer.flag("checked", (item.fState & MFS_CHECKED) != 0);
    write_place(answer, menu, position);
    if (item.hSubMenu != nullptr) {
      announce_popup(window, item.hSubMenu, position, is_system_menu);
      answer.key("items");
      write_items(answer, window, item.hSubMenu, is_system_menu);
    }
    answer.end_object();
  }
  answer.end_array();
}

void write_menu(Json& answer, HWND window) {
  write_items(answer, window, GetMenu(window), false);
}

void write_system_menu(Json& answer, HWND window) {
  write_items(answer, window, GetSystemMenu(window, FALSE), true);
}

/// The popup knows its menu.
void write_popup(Json& answer, HWND window) {
  const HWND popup = FindWindowA(kPopupClass, nullptr);
  const auto menu = reinterpret_cast<HMENU>(SendMessageA(popup, MN_GETHMENU, 0, 0));
  write_items(answer, window, menu, false);
}

struct ReleaseDcOf {
  HWND window;
  void operator()(HDC context) const { ReleaseDC(window, context); }
};

/// The part of a control that its text may fill; a text field has margins.
RECT room_of(HWND control) {
  RECT room{};
  GetClientRect(control, &room);
  char window_class[64] = "";
  GetClassNameA(control, window_class, sizeof window_class);
  if (std::strcmp(window_class, "Edit") == 0) {
    SendMessageA(control, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&room));
  }
  return room;
}

/// Each control's text as the program's own font draws it on one line, beside the room it has.
void write_extent(Json& answer, HWND control) {
  const std::unique_ptr<HDC__, ReleaseDcOf> context(GetDC(control), ReleaseDcOf{control});
  const auto font = reinterpret_cast<HFONT>(SendMessageA(control, WM_GETFONT, 0, 0));
  if (font != nullptr) SelectObject(context.get(), font);
  char face[LF_FACESIZE] = "";
  GetTextFaceA(context.get(), sizeof face, face);
  char text[512] = "";
  GetWindowTextA(control, text, sizeof text);
  RECT needed{};
  DrawTextA(context.get(), text, -1, &needed, DT_SINGLELINE | DT_CALCRECT);
  const RECT room = room_of(control);
  answer.begin_object().member("id", GetDlgCtrlID(control)).member("text", text);
  answer.member("width", needed.right).member("height", needed.bottom);
  answer.member("room_width", room.right - room.left);
  answer.member("room_height", room.bottom - room.top);
  answer.member("face", face).end_object();
}

void write_extents(Json& answer, HWND window) {
  answer.begin_array();
  HWND child = GetWindow(window, GW_CHILD);
  for (; child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
    write_extent(answer, child);
  answer.end_array();
}

/// Dialog units to pixels, by the dialog's own font.
void write_units(Json& answer, HWND dialog, int x, int y) {
  RECT rect{0, 0, x, y};
  MapDialogRect(dialog, &rect);
  answer.begin_array().number(rect.right).number(rect.bottom).end_array();
}

void write_combo(Json& answer, HWND combo) {
  const LRESULT count = SendMessageA(combo, CB_GETCOUNT, 0, 0);
  answer.begin_object().member("selected", SendMessageA(combo, CB_GETCURSEL, 0, 0));
  answer.key("items").begin_array();
  for (LRESULT i = 0; i < count; ++i) {
    const auto index = static_cast<WPARAM>(i);
    std::string text(static_cast<size_t>(SendMessageA(combo, CB_GETLBTEXTLEN, index, 0)) + 1, 0);
    SendMessageA(combo, CB_GETLBTEXT, index, reinterpret_cast<LPARAM>(text.data()));
    answer.text(text.c_str());
  }
  answer.end_array().end_object();
}

void answer_request(ProbeRequest& request) {
  const auto window = reinterpret_cast<HWND>(static_cast<uintptr_t>(request.window));
  Json answer;
  switch (request.question) {
    case ProbeQuestion::menu:
      write_menu(answer, window);
      break;
    case ProbeQuestion::system_menu:
      write_system_menu(answer, window);
      break;
    case ProbeQuestion::text_extents:
      write_extents(answer, window);
      break;
    case ProbeQuestion::dialog_units:
      write_units(answer, window, request.first, request.second);
      break;
    case ProbeQuestion::popup:
      write_popup(answer, window);
      break;
    case ProbeQuestion::combo:
      write_combo(answer, GetDlgItem(window, request.first));
      break;
  }
  if (answer.str().size() >= sizeof request.answer) return;
  std::memcpy(request.answer, answer.str().c_str(), answer.str().size() + 1);
  request.answered = 1;
}

}  // namespace
}  // namespace driver

extern "C" __declspec(dllexport) DWORD WINAPI zolvane_probe(void* request) {
  driver::answer_request(*static_cast<driver::ProbeRequest*>(request));
  return 0;
}
