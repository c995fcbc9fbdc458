// The rows that the reader has read, shared by its thread, which writes them, and the main thread.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "inventory/package_schema.h"
#include "orlo/thread.h"

/// Each operation is one step under a lock of its own, from whatever thread it comes. Rows get lost
/// between two of them where somebody calls clear().
class ReaderRows {
 public:
  ReaderRows();

  /// Inserts, or replaces the row with the same key as a whole.
  void add(const Row& row);
  /// A copy of the first row, in key order, with this name; the case of ASCII letters is ignored.
  std::optional<Row> find(const String& name) const;
  bool has(const String& name) const;
  /// Replaces the row by a changed copy that find() gave; its key and name must be unchanged.
  /// False, and nothing happens, if the row has gone meanwhile.
  bool put_back(const Row& row);

  std::set<RowKey> keys() const;
  void erase(const std::set<RowKey>& keys);
  void clear();

  /// Something has been written since the last hand_over().
  bool changed() const noexcept { return changed_; }
  /// What distinguishes the rows from those of `current`, which becomes a copy of them. Null if
  /// nothing has been written since the last call.
  std::unique_ptr<Table> hand_over(Table& current);

 private:
  /// A name in lower case with the key of a row that has it: in order, the first of a name is the
  /// first row with it.
  using NamedKey = std::pair<String, RowKey>;
  struct NameOrder {
    bool operator()(const NamedKey& a, const NamedKey& b) const noexcept;
  };

  void set_row(const RowKey& key, const Row& row);
  Table::Rows::const_iterator find_row(const String& name) const;

  mutable ORLO::CriticalSection lock_;
  Table table_;
  std::set<NamedKey, NameOrder> names_;  ///< those of all rows; after a failed add() of others, too
  std::atomic<bool> changed_{false};     ///< written under the lock, read without
};
