#include "orlo/virtual_list.h"

#include <utility>

#include "orlo/assertion.h"

namespace ORLO {

uint32_t VirtualListData::insert_row(int index) {
  const uint32_t id = rows_.add();
  insert(index, nullptr, static_cast<LPARAM>(id));
  return id;
}

uint32_t VirtualListData::insert_row(int index, Texts texts) {
  const uint32_t id = rows_.add(std::move(texts));
  insert(index, nullptr, static_cast<LPARAM>(id));
  return id;
}

void VirtualListData::remove_row(uint32_t id) {
  const int row = find(static_cast<LPARAM>(id));
  if (row >= 0) remove(row);
  rows_.remove(id);
}

void VirtualListData::remove_all() {
  clear();
  rows_.clear();
}

bool VirtualListData::Notify(NMHDR* header) {
  if (header->code != LVN_GETDISPINFOA) return false;
  auto* const pDispInfo = reinterpret_cast<NMLVDISPINFOA*>(header);
  const bool ours = static_cast<int>(pDispInfo->hdr.idFrom) == GetDlgCtrlID(_hwnd);
  check_assertion(ours, "pDispInfo->hdr.idFrom==GetDlgCtrlID(_hwnd)", "virtual_list", __LINE__);
  if (!ours) return false;
  give_text(pDispInfo->item);
  return true;
}

void VirtualListData::give_text(LVITEMA& item) {
  if ((item.mask & LVIF_TEXT) == 0) return;
  const String& text = rows_.text(static_cast<uint32_t>(item.lParam), item.iSubItem,
                                  [this](uint32_t id, Texts& texts) { fill(id, texts); });
  // The row's own text lives as long as the row: longer than the drawing.
  item.pszText = const_cast<char*>(text.c_str());
}

}  // namespace ORLO
