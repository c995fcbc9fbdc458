#include "export/yexcel/cell_records.h"

#include <cstring>

#include "export/yexcel/record.h"
#include "export/yexcel/rk.h"

namespace YExcel {
namespace {

constexpr uint16_t kBlank = 513;
constexpr uint16_t kLabelSST = 253;
constexpr uint16_t kNumber = 515;
constexpr uint16_t kRK = 638;
constexpr uint16_t kMulRK = 189;

// Bytes of the bodies.
constexpr uint32_t kBlankBody = 6;
constexpr uint32_t kLabelBody = 10;
constexpr uint32_t kNumberBody = 14;
constexpr uint32_t kRKBody = 10;
constexpr uint32_t kMulRKBody = 6;  // and for each cell:
constexpr uint32_t kMulRKCell = 6;

uint32_t rk_value(const SheetCell& cell) {
  return cell.type() == SheetCell::integer ? YExcel::rk_value(cell.intValue())
                                           : YExcel::rk_value(cell.doubleValue());
}

/// Whether the cell is a number that goes well with one of this type in the short form.
bool joins(const SheetCell& cell, SheetCell::Type type) {
  if (cell.type() != type) return false;
  return type == SheetCell::integer || is_exact(cell.doubleValue());
}

}  // namespace

uint32_t CellRun::RecordSize() const noexcept {
  switch (kind) {
    case Blank:
      return short_record_size(kBlankBody);
    case LabelSST:
      return short_record_size(kLabelBody);
    case Number:
      return short_record_size(kNumberBody);
    case RK:
      return short_record_size(kRKBody);
    case MulRK:
      break;
  }
  const auto cells = static_cast<uint32_t>(end - column);
  return long_record_size(kMulRKBody + kMulRKCell * cells);
}

CellRun number_run(const Sheet::Row& cells, uint16_t column) noexcept {
  const SheetCell::Type type = cells[column].type();
  auto end = static_cast<uint16_t>(column + 1);
  if (!joins(cells[column], type)) return {CellRun::Number, column, end};
  while (end < cells.size() && joins(cells[end], type))
    ++end;
  return {end - column == 1 ? CellRun::RK : CellRun::MulRK, column, end};
}

void RowBytes::begin(uint16_t row) noexcept {
  row_ = row;
  size_ = 0;
}

template <size_t kBytes>
void RowBytes::append(const std::array<char, kBytes>& bytes) noexcept {
  std::memcpy(bytes_.data() + size_, bytes.data(), kBytes);
  size_ += kBytes;
}

/// A record that begins as those of single cells do.
template <size_t kBody>
FixedRecord<kBody> RowBytes::begin_record(uint16_t code, uint16_t column,
                                          const SheetCell& cell) const {
  FixedRecord<kBody> record(code);
  record.put16(row_);
  record.put16(column);
  record.put16(static_cast<uint16_t>(cell.xfIndex));
  return record;
}

void RowBytes::put(const Sheet::Row& cells, const CellRun& run, uint32_t string_index) {
  const SheetCell& cell = cells[run.column];
  switch (run.kind) {
    case CellRun::Blank:
      return append(begin_record<kBlankBody>(kBlank, run.column, cell).bytes());
    case CellRun::LabelSST: {
      auto record = begin_record<kLabelBody>(kLabelSST, run.column, cell);
      record.put32(string_index);
      return append(record.bytes());
    }
    case CellRun::Number: {
      auto record = begin_record<kNumberBody>(kNumber, run.column, cell);
      record.put_double(cell.doubleValue());
      return append(record.bytes());
    }
    case CellRun::RK: {
      auto record = begin_record<kRKBody>(kRK, run.column, cell);
      record.put32(rk_value(cell));
      return append(record.bytes());
    }
    case CellRun::MulRK:
      return put_mul_rk(cells, run);
  }
}

void RowBytes::put_mul_rk(const Sheet::Row& cells, const CellRun& run) {
  FixedRecord<4> begin(kMulRK, static_cast<uint16_t>(run.RecordSize() - kRecordHeader));
  begin.put16(row_);
  begin.put16(run.column);
  append(begin.bytes());
  for (size_t column = run.column; column < run.end; ++column) {
    Bytes<kMulRKCell> cell;
    cell.put16(static_cast<uint16_t>(cells[column].xfIndex));
    cell.put32(rk_value(cells[column]));
    append(cell.bytes());
  }
  Bytes<2> last;
  last.put16(static_cast<uint16_t>(run.end - 1));
  append(last.bytes());
}

}  // namespace YExcel
