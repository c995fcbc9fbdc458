// A list view without a model behind it, which the list's benches are judged by.
#pragma once

#include <cstdio>

#include "orlo/orlowin.h"
#include "view/columns.h"
#include "view/sys_list.h"

/// A list view with the program's columns.
inline HWND make_list(HWND parent) {
  const HWND list =
      CreateWindowExA(0, WC_LISTVIEWA, "", WS_CHILD | WS_VISIBLE | LVS_REPORT | LVS_SINGLESEL, 0, 0,
                      600, 400, parent, nullptr, GetModuleHandleA(nullptr), nullptr);
  SysListControl control(list);
  for (int i = 0; i < kListColumns; ++i) {
    control.add_column(i, "Column", list_column(i).width, list_column(i).align);
  }
  return list;
}

/// The floor: `count` lines, filled in with the drawing frozen.
inline void fill_bare(HWND list, int count) {
  SendMessageA(list, WM_SETREDRAW, FALSE, 0);
  SendMessageA(list, LVM_DELETEALLITEMS, 0, 0);
  char text[32];
  for (int i = 0; i < count; ++i) {
    std::snprintf(text, sizeof text, "Bench%d", i);
    LVITEMA item = {};
    item.mask = LVIF_TEXT | LVIF_PARAM | LVIF_IMAGE;
    item.iItem = i;
    item.pszText = text;
    item.lParam = i;
    SendMessageA(list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
  }
  SendMessageA(list, WM_SETREDRAW, TRUE, 0);
  InvalidateRect(list, nullptr, TRUE);
  UpdateWindow(list);
}
