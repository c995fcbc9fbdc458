// The records of a worksheet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "export/yexcel/shared_string_table.h"
#include "export/yexcel/sheet.h"
#include "export/yexcel/workbook.h"

namespace YExcel {

/// Rows stand in blocks: first what tells of the rows, then their cells, then where both are.
inline constexpr size_t kRowsInBlock = 32;

class RowBytes;

/// Writes a sheet, which must outlive it and stay as it is.
class Worksheet {
 public:
  /// The used rows, and where the DBCell of each block is.
  struct Index {
    uint32_t firstUsedRowIndex = 0;
    uint32_t lastUsedRowIndexPlusOne = 0;
    std::vector<uint32_t> DBCellPos;

    uint32_t RecordSize() const noexcept;
    void Write(std::string& buffer) const;
  };

  /// Rows and columns that are used.
  struct Dimensions {
    uint32_t firstUsedRowIndex = 0;
    uint32_t lastUsedRowIndexPlusOne = 0;
    uint16_t firstUsedColumnIndex = 0;
    uint16_t lastUsedColumnIndexPlusOne = 0;

    void Write(std::string& buffer) const;
  };

  struct Row {
    uint16_t rowIndex = 0;
    uint16_t lastCellColumnIndexPlusOne = 0;

    void Write(std::string& buffer) const;
  };

  /// Where the rows and cells of a block are.
  struct DBCell {
    uint32_t firstRowOffset = 0;
    std::vector<uint16_t> offset;

    void Write(std::string& buffer) const;
  };

  struct Window2 {
    static constexpr uint16_t kSelected = 0x200;

    uint16_t options = 0x6B6;

    void Write(std::string& buffer) const;
  };

  struct MergedCells {
    struct Range {
      uint16_t firstRow;
      uint16_t lastRow;
      uint16_t firstColumn;
      uint16_t lastColumn;
    };
    std::vector<Range> ranges;

    /// Counts a record even if there is no range, and so none is written.
    uint32_t RecordSize() const noexcept;
    void Write(std::string& buffer) const;
  };

  /// Enters the sheet's texts in the table. Only the first sheet of a workbook is selected.
  Worksheet(const Sheet& sheet, bool first, SharedStringTable& strings);

  /// Bytes by the rules for records.
  uint32_t RecordSize() const noexcept;
  /// Tells where in the stream the worksheet is going to begin.
  void place(uint32_t BOFpos);
  void Write(std::string& buffer) const;

 private:
  void read_rows(SharedStringTable& strings);
  void read_merged();
  /// Bytes of what stands before the first block.
  uint32_t head_size() const noexcept;
  /// Bytes of a block up to its DBCell.
  uint32_t rows_and_cells(size_t block) const noexcept;
  size_t blocks() const noexcept { return (row_sizes_.size() + kRowsInBlock - 1) / kRowsInBlock; }
  /// The row after the last one of a block.
  size_t end_of(size_t block) const noexcept;
  size_t write_block(std::string& buffer, size_t block, size_t text) const;
  size_t read_cells(size_t row, size_t text, RowBytes& bytes) const;
  DBCell dbcell(size_t block) const;

  const Sheet& sheet_;
  BOF bof_;
  Index index_;
  Dimensions dimensions_;
  Window2 window2_;
  MergedCells mergedCells_;
  YEOF eof_;
  std::vector<uint32_t> row_sizes_;       ///< of the records of each row's cells
  std::vector<uint32_t> string_indices_;  ///< of all texts, in the order of the table
};

}  // namespace YExcel
