// Sorting a list view by what its cells say.
#pragma once

#include <vector>

#include "orlo/list_view.h"

namespace ORLO {

/// By the texts of one column, without regard to the case of ASCII letters. Rows with equal texts
/// come in no certain order.
class ListSort {
 public:
  ListSort(const ListView& list, int column, bool descending = false) noexcept
      : list_(list), column_(column), descending_(descending) {}

  /// While it runs the rows' parameters are other ones, so no cell may be asked for by them then.
  void run();

 private:
  static int CALLBACK compare(LPARAM left, LPARAM right, LPARAM sort) noexcept;

  const ListView list_;
  const int column_;
  const bool descending_;
  /// By the places that the rows had before.
  std::vector<String> texts_;
};

}  // namespace ORLO
