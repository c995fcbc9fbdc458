// Which packages the list shows, in which order, with which texts.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "inventory/entry.h"
#include "inventory/refresh_cycle.h"
#include "view/columns.h"
#include "view/list_control.h"

/// Lives on the main thread. Ids are given to entries in the order of their arrival, from 1.
class ListModel : public InventoryView {
 public:
  /// Negative, 0 or positive, in the column's natural order.
  using Compare = int (*)(const UninstallEntry& a, const UninstallEntry& b);

  ListModel(ListControl& list, CellTexts texts);

  void clear_marks() override;
  void begin_batch() override { list_.freeze(true); }
  /// Merges into the first entry of the same package, else appends and shows a new one.
  void applyEntry(const UninstallEntry& entry) override;
  /// Takes away the first entry whose `name` and root equal those of the row key.
  void removeEntry(const RowKey& key) override;
  void end_batch() noexcept override { list_.freeze(false); }
  /// Forgets all entries and empties the list.
  void clear();

  /// Text of a cell; valid until the next call. Empty for an id or column that doesn't exist.
  const String& cellText(uint32_t id, int column);
  const UninstallEntry* find(uint32_t id) const;
  size_t size() const noexcept { return entries_.size(); }

 private:
  using Entries = std::map<uint32_t, UninstallEntry>;
  using Item = Entries::value_type;

  Item* find_package(const UninstallEntry& entry);
  bool before(const Item* a, const Item* b) const;
  void insertRow(const Item& item);
  int position_of(size_t place) const;

  ListControl& list_;
  const CellTexts texts_;
  Entries entries_;
  /// Entries by `keyName`, equal ones in the order of their ids; the field never changes.
  std::multimap<String, Item*, ByteOrder> by_key_name_;
  uint32_t next_id_ = 0;
  Compare compare_;
  bool descending_ = true;
  /// All rows in the order of the list, equal rows in the order of their arrival. The items are
  /// those of `entries_`, which stay where they are.
  std::vector<const Item*> order_;
  String cell_;
};

/// Order of installation dates; dates that can't be converted are greater than all others and
/// equal among themselves.
int compareInstallDate(const UninstallEntry& a, const UninstallEntry& b);
