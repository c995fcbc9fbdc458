#include "orlo/list_sort.h"

#include <cstring>

namespace ORLO {

// The control's own sort by places isn't the same everywhere while rows move, and their parameters
// needn't differ. So the places go into the parameters for the time of the sort.
void ListSort::run() {
  const int count = list_.count();
  std::vector<LPARAM> params;
  texts_.clear();
  for (int row = 0; row < count; ++row) {
    texts_.push_back(list_.text(row, column_));
    params.push_back(list_.param(row));
  }
  for (int row = 0; row < count; ++row)
    list_.set_param(row, row);
  SendMessageA(list_.window(), LVM_SORTITEMS, reinterpret_cast<WPARAM>(this),
               reinterpret_cast<LPARAM>(&ListSort::compare));
  for (int row = 0; row < count; ++row)
    list_.set_param(row, params[static_cast<size_t>(list_.param(row))]);
}

int CALLBACK ListSort::compare(LPARAM left, LPARAM right, LPARAM sort) noexcept {
  const ListSort& self = *reinterpret_cast<const ListSort*>(sort);
  const int order = _stricmp(self.texts_[static_cast<size_t>(left)].c_str(),
                             self.texts_[static_cast<size_t>(right)].c_str());
  return self.descending_ ? -order : order;
}

}  // namespace ORLO
