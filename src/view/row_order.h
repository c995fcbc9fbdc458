// All rows in the order that the list is sorted by, whether the filter shows them or not.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "persist/image_index_map.h"
#include "view/sort_state.h"

/// A package with its place in the list. Its address stays as long as the package is known.
struct ListRow {
  ListRow(uint32_t own_id, const UninstallEntry& own_entry) : id(own_id), entry(own_entry) {}

  const uint32_t id;
  UninstallEntry entry;
  const ImageIndexMap::value_type* image = nullptr;  ///< of its icon, where it has one
  bool accepted = false;                             ///< by the filter, when it was asked last
  bool in_control = false;                           ///< the list control has a line for it
  bool displaced = false;  ///< its sort key has changed since it got its place in the list
  int line = -1;           ///< its position in the control, when it was asked for last; -1: none
  int shown_image = 0;     ///< what its line in the control shows
  size_t rank = 0;         ///< among all rows at the last sort; equal for equal rows
};

using ListRows = std::vector<ListRow*>;

/// Sorts as late as it can: what comes in between two questions is sorted once.
class RowOrder {
 public:
  explicit RowOrder(const SortState& sort) noexcept : sort_(sort) {}
  RowOrder(const RowOrder&) = delete;
  RowOrder& operator=(const RowOrder&) = delete;

  void add(ListRow& row) { rows_.push_back(&row); }
  void erase(const ListRow& row);
  void clear() noexcept;
  /// The sort state, or a sort key of some row, is another one now.
  void forget_order() noexcept { sorted_ = 0; }

  /// In order; equal rows in the order of their arrival. No row is displaced afterwards.
  const ListRows& sorted();
  /// As `sorted`, and gives each row its rank.
  const ListRows& ranked();

 private:
  bool before(const ListRow* a, const ListRow* b) const;

  const SortState& sort_;
  ListRows rows_;
  size_t sorted_ = 0;  ///< so many rows from the first on are in order
};
