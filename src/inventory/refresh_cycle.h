// One refresh of the list: a pass of the reader, then the differences, row by row.
#pragma once

#include "inventory/entry.h"
#include "inventory/reader.h"
#include "inventory/table.h"

/// Takes what a refresh brings, on the main thread.
class InventoryView {
 public:
  virtual ~InventoryView() = default;
  /// The change marks of the last cycle are gone.
  virtual void clear_marks() = 0;
  /// The next changes, up to end_batch, are one batch for the eye.
  virtual void begin_batch() = 0;
  virtual void applyEntry(const UninstallEntry& entry) = 0;
  virtual void removeEntry(const RowKey& key) = 0;
  virtual void end_batch() noexcept = 0;
};

/// Lives on the main thread.
class RefreshCycle {
 public:
  /// Waits for the event and keeps the window alive meanwhile; false if the program is ending.
  using Wait = bool (*)(ORLO::Waitable& item, uint32_t timeout);

  RefreshCycle(UninstallReader& reader, Table& currentTable, InventoryView& view,
               const ORLO::Clock& clock, Wait wait = &ORLO::wait_pumping);

  /// Returns when the reader is idle again and the view up to date; false if the wait was given
  /// up, with nothing handed over.
  bool run();

 private:
  void apply(const Table& difference);

  UninstallReader& reader_;
  Table& current_table_;
  InventoryView& view_;
  const ORLO::Clock& clock_;
  const Wait wait_;
};
