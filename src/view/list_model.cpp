#include "view/list_model.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace {

constexpr int kGroup = 101;
// Fixed in both languages, as is the length that the control is told.
constexpr const char16_t* kGroupTitle = u"Gruppen-Titel";
constexpr int kGroupTitleLength = 10;
constexpr int kRevealedWidth = 100;

/// The number at the start of a key's text, 0 if there is none.
int32_t key_number(const String& text) {
  int32_t number = 0;
  std::from_chars(text.c_str(), text.c_str() + text.length(), number);
  return number;
}

}  // namespace

ListModel::ListModel(ListControl& list, CellTexts texts) : list_(list), texts_(std::move(texts)) {}

/// Keeps track of what the change does to the row's place.
template <typename Change>
void ListModel::change(ListRow& row, Change make_change) {
  const UninstallEntry old = row.entry;
  make_change(row.entry);
  if (sort_.order(old, row.entry) == 0) return;
  row.displaced = true;
  order_.forget_order();
}

void ListModel::clear_marks() {
  const auto marked = [](const auto& item) { return item.second.entry.changed != 0; };
  if (std::none_of(entries_.begin(), entries_.end(), marked)) return;
  // The marks are seen, so the list is drawn anew.
  const FrozenRedraw frozen(list_);
  for (auto& item : entries_) {
    if (marked(item)) change(item.second, [](UninstallEntry& entry) { entry.changed = 0; });
  }
}

ListRow* ListModel::find_package(const UninstallEntry& entry) {
  const auto [first, last] = by_key_name_.equal_range(entry.keyName);
  const auto found = std::find_if(
      first, last, [&](const auto& keyed) { return keyed.second->entry.same_package(entry); });
  return found != last ? found->second : nullptr;
}

void ListModel::applyEntry(const UninstallEntry& entry) {
  if (ListRow* const known = find_package(entry)) {
    change(*known, [&](UninstallEntry& merged) { merged.merge(entry); });
    shown_.redraw(*known);
    return;
  }
  ++next_id_;
  ListRow& added = entries_.try_emplace(next_id_, next_id_, entry).first->second;
  by_key_name_.emplace(entry.keyName, &added);
  order_.add(added);
  filter(added);
  if (added.accepted) shown_.insert(added);
}

void ListModel::removeEntry(const RowKey& key) {
  if (key.texts.size() != 2) return;
  const int32_t root = key_number(key.texts[0]);
  const String& name = key.texts[1];
  const auto gone = std::find_if(entries_.begin(), entries_.end(), [&](const auto& item) {
    const UninstallEntry& entry = item.second.entry;
    return entry.HKEY_ROOT == root && compare_bytes(entry.name, name) == 0;
  });
  if (gone == entries_.end()) return;
  ListRow& row = gone->second;
  shown_.erase(row);
  order_.erase(row);
  const auto [first, last] = by_key_name_.equal_range(row.entry.keyName);
  by_key_name_.erase(
      std::find_if(first, last, [&](const auto& keyed) { return keyed.second == &row; }));
  entries_.erase(gone);
}

void ListModel::clear() {
  // The control goes first: it may ask for a line's text until it is empty.
  shown_.clear();
  order_.clear();
  by_key_name_.clear();
  entries_.clear();
}

/// The icon of a row that is accepted has its place among the images; a new one waits there to be
/// loaded.
void ListModel::filter(ListRow& row) {
  row.accepted = acceptRow(row.entry, flags_, search_);
  if (!row.accepted) return;
  String& icon = row.entry.displayIcon;
  if (icon.empty()) {
    row.image = nullptr;
  } else if (row.image == nullptr || !row.image->first.shares_block_with(icon)) {
    row.image = &*images_.try_emplace(icon, kImageNotLoaded).first;
    // One block for both, so that the next look sees at once that nothing has changed.
    icon = row.image->first;
  }
}

size_t ListModel::selectType(int index) {
  type_ = index;
  flags_.select_type(index);
  return rebuildList();
}

size_t ListModel::toggleMicrosoft(bool checked) {
  flags_.showMicrosoft = checked;
  return rebuildList();
}

size_t ListModel::searchChanged(const String& text) {
  search_ = Search(text);
  return rebuildList();
}

size_t ListModel::rebuildList() {
  const auto mark = shown_.mark();
  for (auto& item : entries_)
    filter(item.second);
  const size_t count = shown_.refill(order_.sorted());
  shown_.restore(mark);
  return count;
}

void ListModel::sortByColumn(int column) {
  if (sort_.arrowShown) list_.set_sort_arrow(sort_.column, ListControl::SortArrow::none);
  sort_.choose(column);
  // The natural order shows the arrow that points down.
  list_.set_sort_arrow(
      column, sort_.descending == 0 ? ListControl::SortArrow::down : ListControl::SortArrow::up);
  sort_list();
}

void ListModel::sort_list() {
  const auto mark = shown_.mark();
  order_.forget_order();
  order_.ranked();
  shown_.sort([this](uint32_t id) { return row(id); });
  shown_.restore(mark);
}

std::optional<size_t> ListModel::selectGroup(int index) {
  groupMode_ = index;
  if (groupMode_ != 0 && sort_.arrowShown) {
    list_.set_sort_arrow(sort_.column, ListControl::SortArrow::none);
  }
  set_group_view();
  std::optional<size_t> shown;
  if (groupMode_ != 0 && !flags_.showSubPackages) shown = selectType(kTypeSubPackages);
  sort_.choose(kTreeColumn);
  sort_list();
  return shown;
}

void ListModel::set_group_view() {
  shown_.set_group(groupMode_ != 0 ? kGroup : ListControl::kNoGroup);
  list_.enable_groups(groupMode_ != 0);
  list_.add_group(kGroup, kGroupTitle, kGroupTitleLength);
}

void ListModel::show_all_columns() {
  for (int column = 0; column < kListColumns; ++column) {
    if (list_.column_width(column) == 0) list_.set_column_width(column, kRevealedWidth);
  }
}

void ListModel::visit_icons(const Visitor& visitor) {
  for (auto& item : entries_)
    item.second.line = -1;
  shown_.number_lines();
  for (auto& item : entries_) {
    ListRow& row = item.second;
    Row visited{row.entry, row.line, row.shown_image};
    const bool go_on = visitor(visited);
    row.shown_image = visited.image;
    if (!go_on) return;
  }
}

void ListModel::visit_packages(
    const std::function<void(const UninstallEntry& entry)>& visitor) const {
  for (const auto& item : entries_)
    visitor(item.second.entry);
}

const String& ListModel::cellText(uint32_t id, int column) {
  const UninstallEntry* entry = find(id);
  cell_ = entry != nullptr ? cell_text(*entry, column, texts_) : String();
  return cell_;
}

ListRow* ListModel::row(uint32_t id) {
  const auto found = entries_.find(id);
  return found != entries_.end() ? &found->second : nullptr;
}

const UninstallEntry* ListModel::find(uint32_t id) const {
  const auto found = entries_.find(id);
  return found != entries_.end() ? &found->second.entry : nullptr;
}
