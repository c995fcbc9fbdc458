#include "inventory/reader_rows.h"

#include "orlo/ascii.h"

using ORLO::ascii_lower;
using ORLO::Lock;

namespace {

const String& name_of(const Row& row) {
  return cell(row, PackageColumn::name).text;
}

}  // namespace

bool ReaderRows::NameOrder::operator()(const NamedKey& a, const NamedKey& b) const noexcept {
  const int order = compare_bytes(a.first, b.first);
  return order != 0 ? order < 0 : a.second < b.second;
}

ReaderRows::ReaderRows() : table_(packageSchema()) {}

void ReaderRows::add(const Row& row) {
  const Lock hold(lock_);
  set_row(table_.key_of(row), row);
}

void ReaderRows::set_row(const RowKey& key, const Row& row) {
  changed_ = true;
  const auto stored = table_.rows.find(key);
  auto old_name = names_.end();
  if (stored != table_.rows.end()) {
    if (compare_bytes(name_of(stored->second), name_of(row)) == 0) return table_.addRow(row);
    old_name = names_.find({ascii_lower(name_of(stored->second)), key});
  }
  // Each row has its name among names_ at every step, so that none gets lost where memory is short.
  const auto new_name = names_.insert({ascii_lower(name_of(row)), key}).first;
  table_.addRow(row);
  if (old_name != names_.end() && old_name != new_name) names_.erase(old_name);
}

Table::Rows::const_iterator ReaderRows::find_row(const String& name) const {
  const String lower = ascii_lower(name);
  for (auto named = names_.lower_bound({lower, RowKey()});
       named != names_.end() && compare_bytes(named->first, lower) == 0; ++named) {
    const auto row = table_.rows.find(named->second);
    if (row != table_.rows.end() && ORLO::equal_nocase(name_of(row->second), lower)) return row;
  }
  return table_.rows.end();
}

std::optional<Row> ReaderRows::find(const String& name) const {
  const Lock hold(lock_);
  const auto row = find_row(name);
  if (row == table_.rows.end()) return std::nullopt;
  return row->second;
}

bool ReaderRows::has(const String& name) const {
  const Lock hold(lock_);
  return find_row(name) != table_.rows.end();
}

bool ReaderRows::put_back(const Row& row) {
  const Lock hold(lock_);
  const RowKey key = table_.key_of(row);
  const auto stored = table_.rows.find(key);
  if (stored == table_.rows.end()) return false;
  if (compare_bytes(name_of(stored->second), name_of(row)) != 0) return false;
  set_row(key, row);
  return true;
}

std::set<RowKey> ReaderRows::keys() const {
  const Lock hold(lock_);
  std::set<RowKey> keys;
  for (const auto& [key, row] : table_.rows)
    keys.insert(keys.end(), key);
  return keys;
}

void ReaderRows::erase(const std::set<RowKey>& keys) {
  if (keys.empty()) return;
  const Lock hold(lock_);
  changed_ = true;
  for (const RowKey& key : keys) {
    const auto row = table_.rows.find(key);
    if (row == table_.rows.end()) continue;
    names_.erase({ascii_lower(name_of(row->second)), key});
    table_.erase(key);
  }
}

void ReaderRows::clear() {
  const Lock hold(lock_);
  names_.clear();
  table_.clear_rows();
}

std::unique_ptr<Table> ReaderRows::hand_over(Table& current) {
  const Lock hold(lock_);
  if (!changed_) return nullptr;
  auto difference = std::make_unique<Table>(table_, current);
  if (difference->size() != 0) current.assign(table_);
  changed_ = false;
  return difference;
}
