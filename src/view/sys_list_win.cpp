#include "view/sys_list.h"

#include <algorithm>
#include <exception>

namespace {

static_assert(ListControl::kFocused == LVIS_FOCUSED);
static_assert(ListControl::kSelected == LVIS_SELECTED);
constexpr UINT kStates = LVIS_FOCUSED | LVIS_SELECTED;
constexpr int kArrows = HDF_SORTDOWN | HDF_SORTUP;

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

struct Sorting {
  const ListControl::Order& order;
  std::exception_ptr failure;
};

/// The control's own code stands between this and the caller, so a failure waits until it is over.
int CALLBACK compare_ids(LPARAM a, LPARAM b, LPARAM context) {
  auto& sorting = *reinterpret_cast<Sorting*>(context);
  if (sorting.failure) return 0;
  try {
    return sorting.order(static_cast<uint32_t>(a), static_cast<uint32_t>(b));
  } catch (...) {
    sorting.failure = std::current_exception();
    return 0;
  }
}

int arrow_format(ListControl::SortArrow arrow) {
  switch (arrow) {
    case ListControl::SortArrow::down:
      return HDF_SORTDOWN;
    case ListControl::SortArrow::up:
      return HDF_SORTUP;
    default:
      return 0;
  }
}

}  // namespace

void SysListControl::add_column(int index, const String& title, int width, Align align) {
  LVCOLUMNA column = {};
  column.mask = LVCF_FMT | LVCF_WIDTH | LVCF_TEXT | LVCF_SUBITEM;
  column.fmt = align == Align::right ? LVCFMT_RIGHT : LVCFMT_LEFT;
  column.cx = ORLO::scale_up(width, dpi_);
  column.pszText = writable(title);
  column.iSubItem = index;
  send(LVM_INSERTCOLUMNA, item(index), address(column));
}

int SysListControl::column_width(int index) const {
  return ORLO::scale_down(static_cast<int>(send(LVM_GETCOLUMNWIDTH, item(index))), dpi_);
}

void SysListControl::set_column_width(int index, int width) {
  send(LVM_SETCOLUMNWIDTH, item(index), ORLO::scale_up(width, dpi_));
}

void SysListControl::set_sort_arrow(int column, SortArrow arrow) {
  HDITEMA title = {};
  title.mask = HDI_FORMAT;
  if (SendMessageA(header(), HDM_GETITEMA, item(column), address(title)) == FALSE) return;
  title.fmt = (title.fmt & ~kArrows) | arrow_format(arrow);
  SendMessageA(header(), HDM_SETITEMA, item(column), address(title));
}

void SysListControl::insert_item(int index, const Item& line) {
  LVITEMA row = {};
  row.mask = LVIF_TEXT | LVIF_PARAM | LVIF_IMAGE;
  row.iItem = index;
  row.pszText = const_cast<char*>(line.text);
  row.iImage = line.image;
  row.lParam = static_cast<LPARAM>(line.id);
  if (line.group != kNoGroup) {
    row.mask |= LVIF_GROUPID;
    row.iGroupId = line.group;
  }
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

void SysListControl::sort(const Order& order) {
  Sorting sorting{order, nullptr};
  send(LVM_SORTITEMS, reinterpret_cast<WPARAM>(&sorting), reinterpret_cast<LPARAM>(&compare_ids));
  if (sorting.failure) std::rethrow_exception(sorting.failure);
}

int SysListControl::selection_mark() const {
  return static_cast<int>(send(LVM_GETSELECTIONMARK));
}

unsigned SysListControl::state(int index) const {
  return static_cast<unsigned>(send(LVM_GETITEMSTATE, item(index), kStates));
}

void SysListControl::select(int index, unsigned state) {
  LVITEMA row = {};
  row.state = state;
  row.stateMask = kStates;
  send(LVM_SETITEMSTATE, item(index), address(row));
  send(LVM_SETSELECTIONMARK, 0, index);
}

void SysListControl::ensure_visible(int index) {
  send(LVM_ENSUREVISIBLE, item(index), FALSE);
}

void SysListControl::enable_groups(bool on) {
  send(LVM_ENABLEGROUPVIEW, on ? TRUE : FALSE);
}

void SysListControl::add_group(int id, const char16_t* title, int title_length) {
  LVGROUP group = {};
  group.cbSize = sizeof group;
  group.mask = LVGF_HEADER | LVGF_GROUPID;
  group.pszHeader = const_cast<wchar_t*>(reinterpret_cast<const wchar_t*>(title));
  group.cchHeader = title_length;
  group.iGroupId = id;
  send(LVM_INSERTGROUP, item(-1), address(group));
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

POINT SysListControl::below_row(int index) const {
  RECT client = {};
  GetClientRect(list_, &client);
  RECT icon = {};
  icon.left = LVIR_ICON;
  send(LVM_GETITEMRECT, item(index), address(icon));
  POINT place = {std::clamp(icon.right, client.left, client.right),
                 std::clamp(icon.bottom, client.top, client.bottom)};
  ClientToScreen(list_, &place);
  return place;
}

void SysListControl::set_extended_style(DWORD styles) {
  send(LVM_SETEXTENDEDLISTVIEWSTYLE, styles, static_cast<LPARAM>(styles));
}
