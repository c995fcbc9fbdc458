#include "view/sys_list.h"

namespace {

WPARAM item(int index) {
  return static_cast<WPARAM>(index);
}

template <typename Record>
LPARAM address(Record& record) {
  return reinterpret_cast<LPARAM>(&record);
}

/// The control only reads what it is handed, but its records have room for answers.
char* writable(const String& text) {
  return const_cast<char*>(text.c_str());
}

}  // namespace

void SysListControl::add_column(int index, const String& title, int width, Align align) {
  LVCOLUMNA column = {};
  column.mask = LVCF_FMT | LVCF_WIDTH | LVCF_TEXT | LVCF_SUBITEM;
  column.fmt = align == Align::right ? LVCFMT_RIGHT : LVCFMT_LEFT;
  column.cx = width;
  column.pszText = writable(title);
  column.iSubItem = index;
  send(LVM_INSERTCOLUMNA, item(index), address(column));
}

void SysListControl::insert_item(int index, const String& text, uint32_t id, int image) {
  LVITEMA row = {};
  row.mask = LVIF_TEXT | LVIF_PARAM | LVIF_IMAGE;
  row.iItem = index;
  row.pszText = writable(text);
  row.iImage = image;
  row.lParam = static_cast<LPARAM>(id);
  send(LVM_INSERTITEMA, 0, address(row));
}

void SysListControl::delete_item(int index) {
  send(LVM_DELETEITEM, item(index));
}

void SysListControl::delete_all() {
  send(LVM_DELETEALLITEMS);
}

int SysListControl::count() const {
  return static_cast<int>(send(LVM_GETITEMCOUNT));
}

int SysListControl::find(uint32_t id) const {
  LVFINDINFOA wanted = {};
  wanted.flags = LVFI_PARAM;
  wanted.lParam = static_cast<LPARAM>(id);
  return static_cast<int>(send(LVM_FINDITEMA, item(-1), address(wanted)));
}

uint32_t SysListControl::id_at(int index) const {
  LVITEMA row = {};
  row.mask = LVIF_PARAM;
  row.iItem = index;
  return send(LVM_GETITEMA, 0, address(row)) != 0 ? static_cast<uint32_t>(row.lParam) : 0;
}

void SysListControl::redraw_item(int index) {
  send(LVM_REDRAWITEMS, item(index), index);
}

void SysListControl::freeze(bool on) {
  if (on) {
    if (frozen_++ == 0) send(WM_SETREDRAW, FALSE);
    return;
  }
  if (--frozen_ > 0) return;
  send(WM_SETREDRAW, TRUE);
  InvalidateRect(list_, nullptr, TRUE);
}

void SysListControl::ensure_visible(int index) {
  send(LVM_ENSUREVISIBLE, item(index), FALSE);
}

void SysListControl::set_extended_style(DWORD styles) {
  send(LVM_SETEXTENDEDLISTVIEWSTYLE, styles, static_cast<LPARAM>(styles));
}

void SysListControl::disable_header_clicks() {
  const auto header = reinterpret_cast<HWND>(send(LVM_GETHEADER));
  SetWindowLongPtrA(header, GWL_STYLE, GetWindowLongPtrA(header, GWL_STYLE) & ~HDS_BUTTONS);
}
