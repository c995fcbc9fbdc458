// The records of cells. All begin with the place of a cell.
#pragma once

#include <cstdint>
#include <string>

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

/// The run that begins in this column.
CellRun next_run(const Sheet::Row& cells, uint16_t column) noexcept;

/// Appends the record of a run; `string_index` counts for a text only.
void write_run(std::string& buffer, uint16_t row, const Sheet::Row& cells, const CellRun& run,
               uint32_t string_index);

}  // namespace YExcel
