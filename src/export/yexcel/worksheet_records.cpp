// The records of a worksheet other than cells, as bytes.
#include <algorithm>
#include <iterator>

#include "export/yexcel/fixed_record.h"
#include "export/yexcel/record.h"
#include "export/yexcel/worksheet.h"

namespace YExcel {
namespace {

constexpr uint16_t kIndex = 523;
constexpr uint16_t kDimensions = 512;
constexpr uint16_t kRow = 520;
constexpr uint16_t kDBCell = 215;
constexpr uint16_t kWindow2 = 574;
constexpr uint16_t kMergedCells = 229;

constexpr uint32_t kIndexBody = 16;  // and for each block:
constexpr uint32_t kPosition = 4;

constexpr uint16_t kRowHeight = 255;
constexpr uint32_t kRowOptions = 0x100;
constexpr uint16_t kGridLineColour = 64;

/// So many fit in a record.
constexpr size_t kMostRanges = 1027;
constexpr uint32_t kRange = 8;
constexpr uint32_t kRangesHead = kRecordHeader + 2;

}  // namespace

uint32_t Worksheet::Index::RecordSize() const noexcept {
  return long_record_size(kIndexBody + kPosition * static_cast<uint32_t>(DBCellPos.size()));
}

void Worksheet::Index::Write(std::string& buffer) const {
  std::string body;
  body.reserve(kIndexBody + kPosition * DBCellPos.size());
  put32(body, 0);
  put32(body, firstUsedRowIndex);
  put32(body, lastUsedRowIndexPlusOne);
  put32(body, 0);
  for (const uint32_t position : DBCellPos)
    put32(body, position);
  write_record(buffer, kIndex, body);
}

void Worksheet::Dimensions::Write(std::string& buffer) const {
  FixedRecord<14> record(kDimensions);
  record.put32(firstUsedRowIndex);
  record.put32(lastUsedRowIndexPlusOne);
  record.put16(firstUsedColumnIndex);
  record.put16(lastUsedColumnIndexPlusOne);
  record.put16(0);
  record.append_to(buffer);
}

void Worksheet::Row::Write(std::string& buffer) const {
  FixedRecord<16> record(kRow);
  record.put16(rowIndex);
  record.put16(0);
  record.put16(lastCellColumnIndexPlusOne);
  record.put16(kRowHeight);
  record.put32(0);
  record.put32(kRowOptions);
  record.append_to(buffer);
}

void Worksheet::DBCell::Write(std::string& buffer) const {
  std::string body;
  put32(body, firstRowOffset);
  for (const uint16_t distance : offset)
    put16(body, distance);
  write_record(buffer, kDBCell, body);
}

void Worksheet::Window2::Write(std::string& buffer) const {
  FixedRecord<18> record(kWindow2);
  record.put16(options);
  record.put32(0);
  record.put16(kGridLineColour);
  record.put32(0);
  record.put16(0);
  record.put32(0);
  record.append_to(buffer);
}

uint32_t Worksheet::MergedCells::RecordSize() const noexcept {
  const size_t records = ranges.size() > kMostRanges ? (ranges.size() - 1) / kMostRanges + 1 : 1;
  return static_cast<uint32_t>(ranges.size() * kRange + records * kRangesHead);
}

void Worksheet::MergedCells::Write(std::string& buffer) const {
  for (size_t from = 0; from < ranges.size(); from += kMostRanges) {
    const size_t end = std::min(from + kMostRanges, ranges.size());
    std::string body;
    put16(body, static_cast<uint16_t>(end - from));
    for (size_t i = from; i < end; ++i) {
      put16(body, ranges[i].firstRow);
      put16(body, ranges[i].lastRow);
      put16(body, ranges[i].firstColumn);
      put16(body, ranges[i].lastColumn);
    }
    write_record(buffer, kMergedCells, body);
  }
}

}  // namespace YExcel
