// The records of cells. All begin with the place of a cell.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "export/yexcel/fixed_record.h"
#include "export/yexcel/sheet.h"

namespace YExcel {

/// The cells of a row, from one on, that share a record.
struct CellRun {
  enum Kind { Blank, LabelSST, Number, RK, MulRK };

  Kind kind;
  uint16_t column;  ///< of the first
  uint16_t end;     ///< the column after the last

  /// Bytes of the record.
  uint32_t RecordSize() const noexcept;
};

/// The run that begins in this column with a number.
CellRun number_run(const Sheet::Row& cells, uint16_t column) noexcept;

/// The run that begins in this column.
inline CellRun next_run(const Sheet::Row& cells, uint16_t column) noexcept {
  const auto end = static_cast<uint16_t>(column + 1);
  const SheetCell::Type type = cells[column].type();
  if (type == SheetCell::undefined) return {CellRun::Blank, column, end};
  if (type == SheetCell::narrow || type == SheetCell::wide) return {CellRun::LabelSST, column, end};
  return number_run(cells, column);
}

/// The cells of one row as bytes. Appending them to a stream at once is far quicker than one by
/// one.
class RowBytes {
 public:
  /// Begins another row.
  void begin(uint16_t row) noexcept;
  /// Appends the record of a run; `string_index` counts for a text only. Each cell is put once.
  void put(const Sheet::Row& cells, const CellRun& run, uint32_t string_index);
  std::string_view bytes() const noexcept { return {bytes_.data(), size_}; }

 private:
  template <size_t kBody>
  FixedRecord<kBody> begin_record(uint16_t code, uint16_t column, const SheetCell& cell) const;
  template <size_t kBytes>
  void append(const std::array<char, kBytes>& bytes) noexcept;
  void put_mul_rk(const Sheet::Row& cells, const CellRun& run);

  /// No cell has a longer record than a number of its own.
  std::array<char, kMostColumns * FixedRecord<14>::kSize> bytes_;
  size_t size_ = 0;
  uint16_t row_ = 0;
};

}  // namespace YExcel
