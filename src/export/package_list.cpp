#include "export/package_list.h"

#include <algorithm>

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

void PackageList::clear() {
  by_key_name_.clear();
  entries_.clear();
}
