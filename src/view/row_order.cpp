#include "view/row_order.h"

#include <algorithm>

void RowOrder::erase(const ListRow& row) {
  const auto found = std::find(rows_.begin(), rows_.end(), &row);
  if (found == rows_.end()) return;
  if (static_cast<size_t>(found - rows_.begin()) < sorted_) --sorted_;
  rows_.erase(found);
}

void RowOrder::clear() noexcept {
  rows_.clear();
  sorted_ = 0;
}

bool RowOrder::before(const ListRow* a, const ListRow* b) const {
  const int order = sort_.order(a->entry, b->entry);
  return order != 0 ? order < 0 : a->id < b->id;
}

const ListRows& RowOrder::sorted() {
  if (sorted_ == rows_.size()) return rows_;
  const auto earlier = [this](const ListRow* a, const ListRow* b) { return before(a, b); };
  const auto newcomers = rows_.begin() + static_cast<std::ptrdiff_t>(sorted_);
  std::stable_sort(newcomers, rows_.end(), earlier);
  std::inplace_merge(rows_.begin(), newcomers, rows_.end(), earlier);
  sorted_ = rows_.size();
  for (ListRow* const row : rows_)
    row->displaced = false;
  return rows_;
}

const ListRows& RowOrder::ranked() {
  sorted();
  const ListRow* last = nullptr;
  for (ListRow* const row : rows_) {
    const bool equal = last != nullptr && sort_.order(last->entry, row->entry) == 0;
    row->rank = last == nullptr ? 0 : last->rank + static_cast<size_t>(!equal);
    last = row;
  }
  return rows_;
}
