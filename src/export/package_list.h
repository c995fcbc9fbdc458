// The packages of a pass without a list to show them in.
#pragma once

#include <cstdint>
#include <map>

#include "inventory/refresh_cycle.h"

/// Merges what a cycle brings as the list does: into the first entry of the same package, else as
/// a new one, numbered in order of arrival.
class PackageList : public InventoryView {
 public:
  using Entries = std::map<uint32_t, UninstallEntry>;

  void clear_marks() override {}
  void begin_batch() override {}
  void applyEntry(const UninstallEntry& entry) override;
  /// A cycle that begins without rows takes none away.
  void removeEntry(const RowKey&) override {}
  void end_batch() noexcept override {}
  void clear();

  /// By their numbers.
  const Entries& entries() const noexcept { return entries_; }

 private:
  Entries entries_;
  uint32_t next_id_ = 0;
  /// Numbers by `keyName`, equal ones in their order; the field never changes.
  std::multimap<String, uint32_t, ByteOrder> by_key_name_;
};
