#include "orlo/list_view.h"

#include <string>

namespace ORLO {
namespace {

template <typename Record>
LPARAM address(Record& record) {
  return reinterpret_cast<LPARAM>(&record);
}

/// The control only reads what it is handed, but its records have room for answers.
char* writable(const char* text) {
  return const_cast<char*>(text);
}

}  // namespace

void ListView::add_column(int index, const char* title, int width, int format) const {
  LVCOLUMNA column = {};
  column.mask = LVCF_FMT | LVCF_WIDTH | LVCF_TEXT | LVCF_SUBITEM;
  column.fmt = format;
  column.cx = width;
  column.pszText = writable(title);
  column.iSubItem = index;
  send(LVM_INSERTCOLUMNA, static_cast<WPARAM>(index), address(column));
}

int ListView::insert(int index, const char* text, LPARAM param) const {
  LVITEMA item = {};
  item.mask = LVIF_TEXT | LVIF_PARAM;
  item.iItem = index;
  item.pszText = text != nullptr ? writable(text) : LPSTR_TEXTCALLBACKA;
  item.lParam = param;
  return static_cast<int>(send(LVM_INSERTITEMA, 0, address(item)));
}

void ListView::set_text(int row, int column, const char* text) const {
  LVITEMA item = {};
  item.iSubItem = column;
  item.pszText = text != nullptr ? writable(text) : LPSTR_TEXTCALLBACKA;
  send(LVM_SETITEMTEXTA, static_cast<WPARAM>(row), address(item));
}

String ListView::text(int row, int column) const {
  std::string buffer(256, '\0');
  for (;;) {
    LVITEMA item = {};
    item.iSubItem = column;
    item.pszText = buffer.data();
    item.cchTextMax = static_cast<int>(buffer.size());
    const auto length =
        static_cast<size_t>(send(LVM_GETITEMTEXTA, static_cast<WPARAM>(row), address(item)));
    // A text that fills the buffer may have been cut.
    if (length + 1 < buffer.size()) {
      // An owner that answers by itself may have put another text in the buffer's place.
      return String(item.pszText, item.pszText + length);
    }
    buffer.resize(buffer.size() * 2);
  }
}

LPARAM ListView::param(int row) const {
  LVITEMA item = {};
  item.mask = LVIF_PARAM;
  item.iItem = row;
  return send(LVM_GETITEMA, 0, address(item)) != 0 ? item.lParam : 0;
}

void ListView::set_param(int row, LPARAM param) const {
  LVITEMA item = {};
  item.mask = LVIF_PARAM;
  item.iItem = row;
  item.lParam = param;
  send(LVM_SETITEMA, 0, address(item));
}

int ListView::find(LPARAM param) const {
  LVFINDINFOA wanted = {};
  wanted.flags = LVFI_PARAM;
  wanted.lParam = param;
  return static_cast<int>(send(LVM_FINDITEMA, static_cast<WPARAM>(-1), address(wanted)));
}

}  // namespace ORLO
