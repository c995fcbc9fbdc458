#include "view/list_model.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace {

/// The number at the start of a key's text, 0 if there is none.
int32_t key_number(const String& text) {
  int32_t number = 0;
  std::from_chars(text.c_str(), text.c_str() + text.length(), number);
  return number;
}

}  // namespace

int compareInstallDate(const UninstallEntry& a, const UninstallEntry& b) {
  ORLO::FileTime time_a = 0;
  ORLO::FileTime time_b = 0;
  const bool known_a = ORLO::to_file_time(a.installDateValue.time, time_a);
  const bool known_b = ORLO::to_file_time(b.installDateValue.time, time_b);
  if (!known_a || !known_b) return static_cast<int>(!known_a) - static_cast<int>(!known_b);
  return static_cast<int>(time_a > time_b) - static_cast<int>(time_a < time_b);
}

ListModel::ListModel(ListControl& list, CellTexts texts)
    : list_(list), texts_(std::move(texts)), compare_(&compareInstallDate) {}

void ListModel::clear_marks() {
  for (auto& [id, entry] : entries_)
    entry.changed = 0;
}

ListModel::Item* ListModel::find_package(const UninstallEntry& entry) {
  const auto [first, last] = by_key_name_.equal_range(entry.keyName);
  const auto found = std::find_if(
      first, last, [&](const auto& keyed) { return keyed.second->second.same_package(entry); });
  return found != last ? found->second : nullptr;
}

void ListModel::applyEntry(const UninstallEntry& entry) {
  if (Item* const known = find_package(entry)) {
    known->second.merge(entry);
    const int position = list_.find(known->first);
    if (position >= 0) list_.redraw_item(position);
    return;
  }
  Item& added = *entries_.emplace(++next_id_, entry).first;
  by_key_name_.emplace(entry.keyName, &added);
  insertRow(added);
}

void ListModel::removeEntry(const RowKey& key) {
  if (key.texts.size() != 2) return;
  const int32_t root = key_number(key.texts[0]);
  const String& name = key.texts[1];
  const auto gone = std::find_if(entries_.begin(), entries_.end(), [&](const auto& item) {
    return item.second.HKEY_ROOT == root && compare_bytes(item.second.name, name) == 0;
  });
  if (gone == entries_.end()) return;
  const int position = list_.find(gone->first);
  if (position >= 0) list_.delete_item(position);
  std::erase(order_, &*gone);
  std::erase_if(by_key_name_, [&](const auto& keyed) { return keyed.second == &*gone; });
  entries_.erase(gone);
}

void ListModel::clear() {
  order_.clear();
  by_key_name_.clear();
  entries_.clear();
  list_.delete_all();
}

bool ListModel::before(const Item* a, const Item* b) const {
  const int order = compare_(a->second, b->second);
  if (order != 0) return descending_ ? order > 0 : order < 0;
  return a->first < b->first;
}

int ListModel::position_of(size_t place) const {
  const uint32_t id = order_[place]->first;
  // The list normally stands in this very order; only a list that doesn't is searched.
  const auto position = static_cast<int>(place);
  return list_.id_at(position) == id ? position : list_.find(id);
}

void ListModel::insertRow(const Item& item) {
  const auto place =
      std::lower_bound(order_.begin(), order_.end(), &item,
                       [this](const Item* a, const Item* b) { return before(a, b); });
  const auto next = static_cast<size_t>(place - order_.begin());
  const int position = next == order_.size() ? ListControl::kEnd : position_of(next);
  order_.insert(place, &item);
  list_.insert_item(position < 0 ? ListControl::kEnd : position, item.second.name, item.first, 0);
}

const String& ListModel::cellText(uint32_t id, int column) {
  const UninstallEntry* entry = find(id);
  cell_ = entry != nullptr ? cell_text(*entry, column, texts_) : String();
  return cell_;
}

const UninstallEntry* ListModel::find(uint32_t id) const {
  const auto found = entries_.find(id);
  return found != entries_.end() ? &found->second : nullptr;
}
