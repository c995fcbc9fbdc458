#include "export/package_list.h"

#include <algorithm>
#include <charconv>

namespace {

/// The number at the start of a key's text, 0 if there is none.
int32_t key_number(const String& text) {
  int32_t number = 0;
  std::from_chars(text.c_str(), text.c_str() + text.length(), number);
  return number;
}

}  // namespace

void PackageList::applyEntry(const UninstallEntry& entry) {
  const auto [first, last] = by_key_name_.equal_range(entry.keyName);
  const auto known = std::find_if(first, last, [&](const auto& keyed) {
    return entries_.at(keyed.second).same_package(entry);
  });
  if (known != last) {
    entries_.at(known->second).merge(entry);
    return;
  }
  ++next_id_;
  entries_.try_emplace(next_id_, entry);
  by_key_name_.emplace(entry.keyName, next_id_);
}

void PackageList::removeEntry(const RowKey& key) {
  if (key.texts.size() != 2) return;
  const int32_t root = key_number(key.texts[0]);
  const String& name = key.texts[1];
  const auto gone = std::find_if(entries_.begin(), entries_.end(), [&](const auto& item) {
    return item.second.HKEY_ROOT == root && compare_bytes(item.second.name, name) == 0;
  });
  if (gone == entries_.end()) return;
  const auto [first, last] = by_key_name_.equal_range(gone->second.keyName);
  by_key_name_.erase(
      std::find_if(first, last, [&](const auto& keyed) { return keyed.second == gone->first; }));
  entries_.erase(gone);
}

void PackageList::clear() {
  by_key_name_.clear();
  entries_.clear();
}
