#include "export/yexcel/worksheet.h"

#include <algorithm>
#include <numeric>

#include "export/yexcel/cell_records.h"
#include "export/yexcel/fixed_record.h"
#include "export/yexcel/record.h"

namespace YExcel {
namespace {

constexpr uint16_t kColInfo = 125;

// Bytes of whole records.
constexpr uint32_t kColInfoSize = kRecordHeader + 12;
constexpr uint32_t kDimensionsSize = kRecordHeader + 14;
constexpr uint32_t kRowSize = kRecordHeader + 16;
constexpr uint32_t kWindow2Size = kRecordHeader + 18;

uint32_t dbcell_size(size_t rows) {
  return long_record_size(static_cast<uint32_t>(4 + 2 * rows));
}

void write_column(std::string& buffer, const ColInfo& column) {
  FixedRecord<12> record(kColInfo);
  record.put16(column.firstColumnIndex);
  record.put16(column.lastColumnIndex);
  record.put16(column.columnWidth);
  record.put16(column.XFRecordIndex);
  record.put16(column.options);
  record.put16(0);
  record.append_to(buffer);
}

uint32_t string_index(SharedStringTable& strings, const SheetCell& cell) {
  return cell.type() == SheetCell::wide ? strings.add(cell.wideText()) : strings.add(cell.text());
}

}  // namespace

Worksheet::Worksheet(const Sheet& sheet, bool first, SharedStringTable& strings) : sheet_(sheet) {
  bof_.type = BOF::kWorksheet;
  if (!first) window2_.options &= static_cast<uint16_t>(~Window2::kSelected);
  dimensions_.lastUsedRowIndexPlusOne = static_cast<uint32_t>(sheet.rows());
  dimensions_.lastUsedColumnIndexPlusOne = static_cast<uint16_t>(sheet.columns());
  index_.lastUsedRowIndexPlusOne = dimensions_.lastUsedRowIndexPlusOne;
  read_rows(strings);
  read_merged();
  // A sheet without a cell has the place of a block, which stays 0.
  index_.DBCellPos.resize(std::max<size_t>(blocks(), 1));
}

void Worksheet::read_rows(SharedStringTable& strings) {
  row_sizes_.reserve(sheet_.rows());
  string_indices_.reserve(sheet_.rows() * sheet_.columns());
  for (size_t row = 0; row < sheet_.rows(); ++row) {
    const Sheet::Row& cells = sheet_.row(row);
    uint32_t size = 0;
    for (uint16_t column = 0; column < cells.size();) {
      const CellRun run = next_run(cells, column);
      size += run.RecordSize();
      if (run.kind == CellRun::LabelSST)
        string_indices_.push_back(string_index(strings, cells[column]));
      column = run.end;
    }
    row_sizes_.push_back(size);
  }
}

void Worksheet::read_merged() {
  mergedCells_.ranges.reserve(sheet_.merged().size());
  for (const auto& [place, size] : sheet_.merged()) {
    if (size.rows <= 1 && size.columns < 2) continue;
    const auto row = static_cast<uint16_t>(place.first);
    const auto column = static_cast<uint16_t>(place.second);
    mergedCells_.ranges.push_back({row, static_cast<uint16_t>(row + size.rows - 1), column,
                                   static_cast<uint16_t>(column + size.columns - 1)});
  }
}

uint32_t Worksheet::head_size() const noexcept {
  const auto columns = static_cast<uint32_t>(sheet_.colInfos.size());
  return bof_.RecordSize() + index_.RecordSize() + kColInfoSize * columns + kDimensionsSize;
}

size_t Worksheet::end_of(size_t block) const noexcept {
  return std::min((block + 1) * kRowsInBlock, row_sizes_.size());
}

uint32_t Worksheet::rows_and_cells(size_t block) const noexcept {
  uint32_t size = 0;
  for (size_t row = block * kRowsInBlock; row < end_of(block); ++row)
    size += kRowSize + row_sizes_[row];
  return size;
}

uint32_t Worksheet::RecordSize() const noexcept {
  uint32_t size = head_size() + kWindow2Size + eof_.RecordSize() + mergedCells_.RecordSize();
  for (size_t block = 0; block < blocks(); ++block)
    size += rows_and_cells(block) + dbcell_size(end_of(block) - block * kRowsInBlock);
  return size;
}

void Worksheet::place(uint32_t BOFpos) {
  uint32_t position = BOFpos + head_size();
  for (size_t block = 0; block < blocks(); ++block) {
    position += rows_and_cells(block);
    index_.DBCellPos[block] = position;
    position += dbcell_size(end_of(block) - block * kRowsInBlock);
  }
}

void Worksheet::Write(std::string& buffer) const {
  bof_.Write(buffer);
  index_.Write(buffer);
  for (const ColInfo& column : sheet_.colInfos)
    write_column(buffer, column);
  dimensions_.Write(buffer);
  size_t text = 0;
  for (size_t block = 0; block < blocks(); ++block)
    text = write_block(buffer, block, text);
  window2_.Write(buffer);
  mergedCells_.Write(buffer);
  eof_.Write(buffer);
}

/// `text` is how many texts stand before the block; returns how many stand before the next.
size_t Worksheet::write_block(std::string& buffer, size_t block, size_t text) const {
  const auto columns = static_cast<uint16_t>(sheet_.columns());
  for (size_t row = block * kRowsInBlock; row < end_of(block); ++row)
    Row{static_cast<uint16_t>(row), columns}.Write(buffer);
  RowBytes bytes;
  for (size_t row = block * kRowsInBlock; row < end_of(block); ++row) {
    text = read_cells(row, text, bytes);
    buffer.append(bytes.bytes());
  }
  dbcell(block).Write(buffer);
  return text;
}

/// Makes the records of a row's cells; `text` as write_block() has it.
size_t Worksheet::read_cells(size_t row, size_t text, RowBytes& bytes) const {
  const Sheet::Row& cells = sheet_.row(row);
  bytes.begin(static_cast<uint16_t>(row));
  for (uint16_t column = 0; column < cells.size();) {
    const CellRun run = next_run(cells, column);
    bytes.put(cells, run, run.kind == CellRun::LabelSST ? string_indices_[text++] : 0);
    column = run.end;
  }
  return text;
}

Worksheet::DBCell Worksheet::dbcell(size_t block) const {
  const size_t first = block * kRowsInBlock;
  const size_t rows = end_of(block) - first;
  DBCell result;
  result.firstRowOffset = rows_and_cells(block);
  result.offset.reserve(rows);
  // From the second row to the first cell, then from each row's first cell to that of the next.
  result.offset.push_back(static_cast<uint16_t>((rows - 1) * kRowSize));
  for (size_t row = first; row + 1 < first + rows; ++row)
    result.offset.push_back(static_cast<uint16_t>(row_sizes_[row]));
  return result;
}

}  // namespace YExcel
