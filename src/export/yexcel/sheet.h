// The table of cells behind one worksheet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "orlo/rstring.h"

namespace YExcel {

inline constexpr size_t kMostRows = 65536;
inline constexpr size_t kMostColumns = 256;

/// One cell. Small, as there are millions of them.
class SheetCell {
 public:
  /// In the order of what `value_` may hold.
  enum Type : int32_t { undefined = 0, integer = 1, real = 2, narrow = 3, wide = 4 };

  /// An empty text makes the cell undefined. A narrow text is shared with the caller.
  void SetText(const String& text);
  void SetText(const std::u16string& text);
  void SetInteger(int32_t value) { value_ = value; }
  void SetReal(double value) { value_ = value; }

  Type type() const noexcept { return static_cast<Type>(value_.index()); }
  // 0, or empty, where the cell is of another type.
  int32_t intValue() const noexcept;
  double doubleValue() const noexcept;
  std::string_view text() const noexcept;
  std::u16string_view wideText() const noexcept;

 private:
  using WideText = std::unique_ptr<const std::u16string>;

  [[no_unique_address]] std::variant<std::monostate, int32_t, double, String, WideText> value_;

 public:
  uint32_t xfIndex = 0;
};
// The index lies in what alignment leaves free of the value.
static_assert(sizeof(SheetCell) == 16);

/// Widths and looks of columns.
struct ColInfo {
  uint16_t firstColumnIndex = 0;
  uint16_t lastColumnIndex = 0;
  uint16_t columnWidth = 0;
  uint16_t XFRecordIndex = 0;
  uint16_t options = 0;
};

/// Always rectangular.
class Sheet {
 public:
  using Row = std::vector<SheetCell>;
  /// Rows and columns of the cells that are shown as one.
  struct Merged {
    uint16_t rows = 1;
    uint16_t columns = 1;
  };
  using Place = std::pair<size_t, size_t>;

  /// The cell; the table grows so that it holds it. Null for a row or column that a sheet doesn't
  /// have. Valid until the table grows.
  SheetCell* CellAt(size_t row, size_t column) {
    return row < cells_.size() && column < columns_ ? &cells_[row][column] : grown(row, column);
  }
  /// Shows so many cells from this one on as one. False where there is no such cell.
  bool Merge(size_t row, size_t column, Merged size);

  size_t rows() const noexcept { return cells_.size(); }
  size_t columns() const noexcept { return columns_; }
  const Row& row(size_t index) const { return cells_[index]; }
  /// By row and column of their first cells, in the order of the table.
  const std::map<Place, Merged>& merged() const noexcept { return merged_; }

  std::vector<ColInfo> colInfos;

 private:
  SheetCell* grown(size_t row, size_t column);

  size_t columns_ = 0;
  std::vector<Row> cells_;
  std::map<Place, Merged> merged_;
};

}  // namespace YExcel
