// The table of cells behind one worksheet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "orlo/rstring.h"

namespace YExcel {

inline constexpr size_t kMostRows = 65536;
inline constexpr size_t kMostColumns = 256;

/// One cell. Small, as there are millions of them.
class SheetCell {
 public:
  enum Type : int32_t { undefined = 0, integer = 1, real = 2, narrow = 3, wide = 4 };

  /// An empty text makes the cell undefined.
  void SetText(const String& text);

  uint32_t xfIndex = 0;
};

/// Always rectangular.
class Sheet {
 public:
  /// The cell; the table grows so that it holds it. Null for a row or column that a sheet doesn't
  /// have. Valid until the table grows.
  SheetCell* CellAt(size_t row, size_t column);

  size_t rows() const noexcept { return rows_; }
  size_t columns() const noexcept { return columns_; }

 private:
  size_t rows_ = 0;
  size_t columns_ = 0;
  std::vector<std::vector<SheetCell>> cells_;
};

}  // namespace YExcel
