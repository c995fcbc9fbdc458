// What the list is sorted by.
#pragma once

#include <cstdint>

#include "view/columns.h"
#include "view/comparators.h"

/// At start the newest installation comes first, and no header shows an arrow.
struct SortState {
  Compare compare = comparator(kInstallDateColumn);
  int32_t column = kInstallDateColumn;
  int32_t descending = 1;
  bool arrowShown = false;  ///< the user has chosen the column

  /// Negative, 0 or positive, in the direction of the list.
  int order(const UninstallEntry& a, const UninstallEntry& b) const {
    const int natural = compare(a, b);
    if (natural == 0) return 0;
    return (natural < 0) == (descending != 0) ? 1 : -1;
  }

  /// The user's choice: the same column again turns the direction, another one starts with its
  /// natural order. A column without a comparator only takes the arrow away.
  void choose(int32_t chosen) {
    arrowShown = chosen >= 0 && chosen < comparatorCount;
    if (!arrowShown) return;
    if (chosen == column) {
      descending = descending == 0 ? 1 : 0;
      return;
    }
    column = chosen;
    descending = 0;
    compare = comparator(chosen);
  }
};
