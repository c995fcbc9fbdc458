// What is new or changed since the last run, and then since the last cycle.
#pragma once

#include "inventory/table.h"

/// The baseline of a comparison and what a cycle finds against it. Main thread only.
class HistoryMerge {
 public:
  /// Its columns are those of the inventory; without rows, and not loaded.
  HistoryMerge();

  /// The baseline was filled from a file. One without rows is as good as none.
  void loaded() { historyLoaded_ = lastEntries.size() != 0; }
  /// Without a baseline nothing counts as new or changed.
  void forget();

  void begin_cycle() noexcept { anyChange_ = false; }
  /// Fills the cell `changed` of a row that has come or has changed in this cycle: -1 if the
  /// baseline doesn't know its package, else the columns that differ. It stays as it is without a
  /// baseline, and if nothing differs.
  void mark(Row& row);
  /// The inventory is the new baseline. True if it is worth keeping: a row was marked, or there
  /// was no baseline.
  bool end_cycle(const Table& inventory);

  bool historyLoaded() const noexcept { return historyLoaded_; }

  Table lastEntries;  ///< the baseline

 private:
  const ColumnIndices tracked_;
  bool historyLoaded_ = false;
  bool anyChange_ = false;
};
