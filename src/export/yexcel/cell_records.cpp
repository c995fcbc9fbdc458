#include "export/yexcel/cell_records.h"

#include <iterator>

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

/// A record that begins as those of single cells do.
template <uint32_t kBody>
FixedRecord<kBody> cell_record(uint16_t code, uint16_t row, uint16_t column,
                               const SheetCell& cell) {
  FixedRecord<kBody> record(code);
  record.put16(row);
  record.put16(column);
  record.put16(static_cast<uint16_t>(cell.xfIndex));
  return record;
}

uint32_t rk_value(const SheetCell& cell) {
  return cell.type() == SheetCell::integer ? YExcel::rk_value(cell.intValue())
                                           : YExcel::rk_value(cell.doubleValue());
}

/// Whether the cell is a number that goes well with one of this type in the short form.
bool joins(const SheetCell& cell, SheetCell::Type type) {
  if (cell.type() != type) return false;
  return type == SheetCell::integer || is_exact(cell.doubleValue());
}

CellRun number_run(const Sheet::Row& cells, uint16_t column) {
  const SheetCell::Type type = cells[column].type();
  auto end = static_cast<uint16_t>(column + 1);
  if (!joins(cells[column], type)) return {CellRun::Number, column, end};
  while (end < cells.size() && joins(cells[end], type))
    ++end;
  return {end - column == 1 ? CellRun::RK : CellRun::MulRK, column, end};
}

void write_mul_rk(std::string& buffer, uint16_t row, const Sheet::Row& cells, const CellRun& run) {
  put16(buffer, kMulRK);
  put16(buffer, static_cast<uint16_t>(run.RecordSize() - kRecordHeader));
  put16(buffer, row);
  put16(buffer, run.column);
  for (size_t column = run.column; column < run.end; ++column) {
    put16(buffer, static_cast<uint16_t>(cells[column].xfIndex));
    put32(buffer, rk_value(cells[column]));
  }
  put16(buffer, static_cast<uint16_t>(run.end - 1));
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

CellRun next_run(const Sheet::Row& cells, uint16_t column) noexcept {
  const auto end = static_cast<uint16_t>(column + 1);
  switch (cells[column].type()) {
    case SheetCell::narrow:
    case SheetCell::wide:
      return {CellRun::LabelSST, column, end};
    case SheetCell::integer:
    case SheetCell::real:
      return number_run(cells, column);
    case SheetCell::undefined:
      break;
  }
  return {CellRun::Blank, column, end};
}

void write_run(std::string& buffer, uint16_t row, const Sheet::Row& cells, const CellRun& run,
               uint32_t string_index) {
  const SheetCell& cell = cells[run.column];
  switch (run.kind) {
    case CellRun::Blank:
      return cell_record<kBlankBody>(kBlank, row, run.column, cell).append_to(buffer);
    case CellRun::LabelSST: {
      auto record = cell_record<kLabelBody>(kLabelSST, row, run.column, cell);
      record.put32(string_index);
      return record.append_to(buffer);
    }
    case CellRun::Number: {
      auto record = cell_record<kNumberBody>(kNumber, row, run.column, cell);
      record.put_double(cell.doubleValue());
      return record.append_to(buffer);
    }
    case CellRun::RK: {
      auto record = cell_record<kRKBody>(kRK, row, run.column, cell);
      record.put32(rk_value(cell));
      return record.append_to(buffer);
    }
    case CellRun::MulRK:
      return write_mul_rk(buffer, row, cells, run);
  }
}

}  // namespace YExcel
