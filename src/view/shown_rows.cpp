#include "view/shown_rows.h"

#include <algorithm>

void ShownRows::begin_batch() {
  list_.freeze(true);
  in_batch_ = true;
}

void ShownRows::end_batch() noexcept {
  in_batch_ = false;
  give_to_control();
  list_.freeze(false);
}

/// A displaced row says nothing about the place of others.
ListRows::iterator ShownRows::place_of(const ListRow& row) {
  const auto at_home = [](const ListRow* other) { return !other->displaced; };
  auto first = rows_.begin();
  auto last = rows_.end();
  while (first != last) {
    const auto middle = first + (last - first) / 2;
    const auto probe = std::find_if(middle, last, at_home);
    if (probe == last || sort_.order(row.entry, (*probe)->entry) < 0) {
      last = middle;
    } else {
      first = probe + 1;
    }
  }
  return std::find_if(first, rows_.end(), at_home);
}

void ShownRows::insert(ListRow& row) {
  const auto place = rows_.insert(place_of(row), &row);
  if (in_batch_) return;
  const bool last = place + 1 == rows_.end();
  insert_line(last ? ListControl::kEnd : static_cast<int>(place - rows_.begin()), row);
}

int ShownRows::drawn_image(const ListRow& row) const {
  const int image =
      row.image != nullptr ? std::max(row.image->second, kDefaultImage) : kDefaultImage;
  return images_ != nullptr ? drawn_index(image, images_->count()) : image;
}

void ShownRows::insert_line(int position, ListRow& row) {
  row.shown_image = drawn_image(row);
  list_.insert_item(position, {row.entry.name.c_str(), row.id, row.shown_image, group_});
  row.in_control = true;
}

void ShownRows::number_lines() {
  int line = 0;
  for (ListRow* const row : rows_)
    row->line = row->in_control ? line++ : -1;
}

void ShownRows::give_to_control() {
  for (size_t i = 0; i < rows_.size(); ++i) {
    if (rows_[i]->in_control) continue;
    // The control has the lines in front of this one, and perhaps none behind it.
    insert_line(i + 1 == rows_.size() ? ListControl::kEnd : static_cast<int>(i), *rows_[i]);
  }
}

int ShownRows::position_of(const ListRow& row) const {
  if (!row.in_control) return -1;
  const auto found = std::find(rows_.begin(), rows_.end(), &row);
  return static_cast<int>(
      std::count_if(rows_.begin(), found, [](const ListRow* r) { return r->in_control; }));
}

void ShownRows::erase(const ListRow& row) {
  const int position = position_of(row);
  std::erase(rows_, &row);
  if (position >= 0) list_.delete_item(position);
}

void ShownRows::redraw(const ListRow& row) {
  // The end of a batch redraws everything.
  if (in_batch_) return;
  const int position = position_of(row);
  if (position >= 0) list_.redraw_item(position);
}

size_t ShownRows::refill(const ListRows& ordered) {
  clear();
  const FrozenRedraw frozen(list_);
  for (ListRow* const row : ordered) {
    row->in_control = false;
    if (!row->accepted) continue;
    rows_.push_back(row);
    insert_line(ListControl::kEnd, *row);
  }
  return rows_.size();
}

void ShownRows::sort(const std::function<ListRow*(uint32_t)>& row_of) {
  give_to_control();
  list_.sort([&](uint32_t a, uint32_t b) {
    const ListRow* const row_a = row_of(a);
    const ListRow* const row_b = row_of(b);
    if (row_a == nullptr || row_b == nullptr) return 0;
    return static_cast<int>(row_a->rank > row_b->rank) -
           static_cast<int>(row_a->rank < row_b->rank);
  });
  // Equal rows stand as the control has put them.
  for (size_t i = 0; i < rows_.size(); ++i) {
    if (ListRow* const row = row_of(list_.id_at(static_cast<int>(i)))) rows_[i] = row;
  }
}

void ShownRows::clear() {
  rows_.clear();
  list_.delete_all();
}

std::optional<ShownRows::Mark> ShownRows::mark() const {
  const int position = list_.selection_mark();
  if (position < 0) return std::nullopt;
  const uint32_t id = list_.id_at(position);
  if (id == 0) return std::nullopt;
  return Mark{id, list_.state(position)};
}

void ShownRows::restore(const std::optional<Mark>& mark) {
  if (!mark) return;
  const auto found = std::find_if(rows_.begin(), rows_.end(),
                                  [&](const ListRow* row) { return row->id == mark->id; });
  if (found == rows_.end()) return;
  const auto position = static_cast<int>(found - rows_.begin());
  list_.ensure_visible(position);
  list_.select(position, mark->state);
}
