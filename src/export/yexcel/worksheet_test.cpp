#include "export/yexcel/worksheet.h"

#include <gtest/gtest.h>

#include <limits>

#include "export/yexcel/hex_test_support.h"
#include "export/yexcel/stream_reader_test_support.h"

namespace {

using YExcel::SharedStringTable;
using YExcel::Sheet;
using YExcel::SheetCell;
using YExcel::Worksheet;
using YExcel::test::digits;
using YExcel::test::hex_of;
using YExcel::test::number16;
using YExcel::test::number32;
using YExcel::test::ReadRecord;

constexpr uint16_t kIndexCode = 523;
constexpr uint16_t kRowCode = 520;
constexpr uint16_t kDBCellCode = 215;

template <typename Record>
std::string hex_of_record(const Record& record) {
  std::string buffer = "?";  // a record is appended
  record.Write(buffer);
  EXPECT_EQ(buffer[0], '?');
  return hex_of(buffer.substr(1));
}

class WorksheetTest : public ::testing::Test {
 protected:
  SheetCell& cell(size_t row, size_t column) { return *sheet.CellAt(row, column); }
  void fill(size_t rows, size_t columns) {
    for (size_t row = 0; row < rows; ++row) {
      for (size_t column = 0; column < columns; ++column)
        cell(row, column).SetText(String::formatted("%d", static_cast<int>(row + column) % 7));
    }
  }
  std::string written(bool first = true, uint32_t position = 0) {
    strings.clear();
    Worksheet worksheet(sheet, first, strings);
    worksheet.place(position);
    size = worksheet.RecordSize();
    std::string buffer;
    worksheet.Write(buffer);
    return buffer;
  }
  std::vector<ReadRecord> records() { return YExcel::test::read_records(written()); }
  /// The bodies of the records with this code.
  std::vector<std::string> bodies(uint16_t code) {
    std::vector<std::string> found;
    for (const ReadRecord& record : records()) {
      if (record.code == code) found.push_back(record.body);
    }
    return found;
  }
  /// The cells of a sheet of one row, as bytes.
  std::string cells() {
    std::string text;
    for (const ReadRecord& record : records()) {
      const bool is_cell = record.code == 513 || record.code == 253 || record.code == 515 ||
                           record.code == 638 || record.code == 189;
      if (!is_cell) continue;
      if (!text.empty()) text.push_back(' ');
      text.append(hex_of(std::string{static_cast<char>(record.code & 0xFF),
                                     static_cast<char>(record.code >> 8)}))
          .append(":")
          .append(hex_of(record.body));
    }
    return text;
  }

  Sheet sheet;
  SharedStringTable strings;
  uint32_t size = 0;  ///< of what was written last, by the rules
};

TEST(WorksheetRecords, LayOutAnIndex) {
  const Worksheet::Index index{1, 0x20304, {0x11223344, 5}};
  EXPECT_EQ(hex_of_record(index),
            digits("0b02 1800 00000000 01000000 04030200 00000000 44332211 05000000"));
  EXPECT_EQ(index.RecordSize(), 28u);
}

TEST(WorksheetRecords, CountAHeaderForEachFullBodyOfAnIndex) {
  Worksheet::Index index;
  index.DBCellPos.resize(2051);
  EXPECT_EQ(index.RecordSize(), 4u + 8220);
  index.DBCellPos.resize(2052);
  EXPECT_EQ(index.RecordSize(), 4u + 8224 + 4);
}

TEST(WorksheetRecords, LayOutDimensions) {
  EXPECT_EQ(hex_of_record(Worksheet::Dimensions{1, 0x20304, 5, 0x607}),
            digits("0002 0e00 01000000 04030200 0500 0706 0000"));
}

TEST(WorksheetRecords, LayOutARow) {
  EXPECT_EQ(hex_of_record(Worksheet::Row{0x102, 29}),
            digits("0802 1000 0201 0000 1d00 ff00 0000 0000 00010000"));
}

TEST(WorksheetRecords, LayOutADBCell) {
  EXPECT_EQ(hex_of_record(Worksheet::DBCell{0x11223344, {0x506, 7}}),
            digits("d700 0800 44332211 0605 0700"));
}

TEST(WorksheetRecords, LayOutAWindow2) {
  EXPECT_EQ(hex_of_record(Worksheet::Window2()),
            digits("3e02 1200 b606 0000 0000 4000 0000 0000 0000 00000000"));
}

TEST(WorksheetRecords, LayOutMergedCells) {
  EXPECT_EQ(hex_of_record(Worksheet::MergedCells{{{1, 0x203, 4, 5}, {6, 7, 8, 9}}}),
            digits("e500 1200 0200 0100 0302 0400 0500 0600 0700 0800 0900"));
}

TEST_F(WorksheetTest, LaysOutEachKindOfCell) {
  cell(0, 1).SetText(String("a"));
  cell(0, 2).SetText(std::u16string(u"a"));
  cell(0, 3).SetInteger(5);
  cell(0, 4).SetText(String("a"));
  cell(0, 5).SetReal(1.5);
  cell(0, 6).SetReal(0.123);
  for (uint32_t column = 0; column < 7; ++column)
    cell(0, column).xfIndex = 0x110 + column;
  EXPECT_EQ(cells(), digits("0102:000000001001") + " " +                // Blank
                         digits("fd00:00000100110100000000") + " " +    // LabelSST
                         digits("fd00:00000200120101000000") + " " +    // another: it is wide
                         digits("7e02:00000300130116000000") + " " +    // RK of 5
                         digits("fd00:00000400140100000000") + " " +    // the first text again
                         digits("7e02:00000500150101c06240") + " " +    // RK of 150, divided
                         digits("0302:000006001601b0726891ed7cbf3f"));  // Number
}

TEST_F(WorksheetTest, JoinsThreeAdjacentIntegersInOneMulRK) {
  for (uint32_t i = 0; i < 3; ++i) {
    cell(0, i + 1).SetInteger(static_cast<int32_t>(i));
    cell(0, i + 1).xfIndex = i;
  }
  cell(0, 4);
  EXPECT_EQ(cells(), digits("0102:000000000000") + " " +
                         digits("bd00:00000100 000002000000 010006000000 02000a000000 0300") + " " +
                         digits("0102:000004000000"));
}

TEST_F(WorksheetTest, JoinsExactDoublesInOneMulRK) {
  cell(0, 0).SetReal(2.0);
  cell(0, 1).SetReal(1.5);
  EXPECT_EQ(cells(), digits("bd00:00000000 000000000040 000001c06240 0100"));
}

TEST_F(WorksheetTest, DoesNotJoinIntegersWithDoubles) {
  cell(0, 0).SetInteger(2);
  cell(0, 1).SetReal(2.0);
  EXPECT_EQ(cells(),
            digits("7e02:0000000000000a000000") + " " + digits("7e02:00000100000000000040"));
}

TEST_F(WorksheetTest, WritesEachInexactDoubleAsANumber) {
  for (size_t i = 0; i < 3; ++i)
    cell(0, i).SetReal(0.123);
  cell(0, 3).SetReal(2.0);
  EXPECT_EQ(cells(), digits("0302:000000000000b0726891ed7cbf3f") + " " +
                         digits("0302:000001000000b0726891ed7cbf3f") + " " +
                         digits("0302:000002000000b0726891ed7cbf3f") + " " +
                         digits("7e02:00000300000000000040"));
}

TEST_F(WorksheetTest, WritesWhatNoIntegerHoldsAsANumber) {
  cell(0, 0).SetReal(std::numeric_limits<double>::infinity());
  cell(0, 1).SetReal(1e300);
  EXPECT_EQ(cells(), digits("0302:000000000000000000000000f07f") + " " +
                         digits("0302:0000010000009c7500883ce4377e"));
}

TEST_F(WorksheetTest, EndsARunOfNumbersWithTheRow) {
  for (size_t row = 0; row < 2; ++row) {
    for (size_t column = 0; column < 2; ++column)
      cell(row, column).SetInteger(0);
  }
  EXPECT_EQ(cells(), digits("bd00:00000000 000002000000 000002000000 0100") + " " +
                         digits("bd00:01000000 000002000000 000002000000 0100"));
}

TEST_F(WorksheetTest, JoinsAWholeRowOf256Integers) {
  for (size_t column = 0; column < 256; ++column)
    cell(0, column).SetInteger(1);
  const auto found = bodies(189);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].size(), 6u + 6 * 256);
  EXPECT_EQ(number16(found[0], found[0].size() - 2), 255);
}

TEST_F(WorksheetTest, CutsTheStyleTo16Bits) {
  cell(0, 0).xfIndex = 0x12345;
  EXPECT_EQ(cells(), "0102:000000004523");
}

TEST_F(WorksheetTest, WritesABlankForAnEmptyText) {
  cell(0, 0).SetText(String(""));
  EXPECT_EQ(cells(), "0102:000000000000");
  EXPECT_EQ(strings.stringsTotal(), 0u);
}

TEST_F(WorksheetTest, CountsATextOfTwoCellsOnceAndItsUsesTwice) {
  cell(0, 0).SetText(String("same"));
  cell(1, 0).SetText(String("same"));
  EXPECT_EQ(cells(),
            digits("fd00:00000000000000000000") + " " + digits("fd00:01000000000000000000"));
  EXPECT_EQ(strings.stringsTotal(), 2u);
  EXPECT_EQ(strings.uniqueStringsTotal(), 1u);
}

TEST_F(WorksheetTest, EntersNarrowAndWideTextsAsTheyAre) {
  cell(0, 0).SetText(String("a"));
  cell(0, 1).SetText(std::u16string(u"a\x20AC"));
  cell(0, 2).SetText(std::u16string(u"b"));
  EXPECT_EQ(cells(), digits("fd00:00000000000000000000") + " " +
                         digits("fd00:00000100000001000000") + " " +
                         digits("fd00:00000200000002000000"));
  std::string table;
  strings.Write(table);
  EXPECT_EQ(hex_of(table), digits("fc00 1800 03000000 03000000") +
                               digits("0100 00 61 0200 01 6100 ac20 0100 01 6200"));
}

TEST_F(WorksheetTest, TellsTextsBeyondTheFirst65536) {
  for (size_t i = 0; i < size_t{257} * 256; ++i)
    cell(i / 256, i % 256).SetText(String::formatted("%d", static_cast<int>(i)));
  EXPECT_EQ(number32(bodies(253).back(), 6), 257u * 256 - 1);
}

TEST_F(WorksheetTest, NumbersItsRowsAndTheirCells) {
  fill(300, 2);
  const auto rows = bodies(kRowCode);
  const auto labels = bodies(253);
  ASSERT_EQ(rows.size(), 300u);
  ASSERT_EQ(labels.size(), 600u);
  for (size_t row = 0; row < 300; ++row) {
    EXPECT_EQ(number16(rows[row], 0), row);
    EXPECT_EQ(number16(rows[row], 4), 2);
    for (const size_t column : {0U, 1U}) {
      EXPECT_EQ(number16(labels[2 * row + column], 0), row);
      EXPECT_EQ(number16(labels[2 * row + column], 2), column);
    }
  }
}

TEST_F(WorksheetTest, TellsThatAll65536RowsAndAll256ColumnsAreUsed) {
  cell(65535, 0);
  EXPECT_EQ(hex_of(bodies(kIndexCode)[0].substr(0, 16)),
            digits("00000000 00000000 00000100 00000000"));
  EXPECT_EQ(hex_of(bodies(512)[0]), digits("00000000 00000100 0000 0100 0000"));
  sheet = Sheet();
  cell(0, 255);
  EXPECT_EQ(hex_of(bodies(512)[0]), digits("00000000 01000000 0000 0001 0000"));
  EXPECT_EQ(hex_of(bodies(kRowCode)[0]), digits("0000 0000 0001 ff00 0000 0000 00010000"));
}

TEST_F(WorksheetTest, HasOneBlockForASheetWithOnlyAHeaderRow) {
  fill(1, 29);
  EXPECT_EQ(bodies(kDBCellCode).size(), 1u);
  EXPECT_EQ(bodies(kRowCode).size(), 1u);
  EXPECT_EQ(bodies(253).size(), 29u);
  EXPECT_EQ(bodies(kIndexCode)[0].size(), 16u + 4);
}

TEST_F(WorksheetTest, HasABlockForEach32Rows) {
  const std::pair<size_t, size_t> blocks_of_rows[] = {{31, 1}, {32, 1}, {33, 2}, {64, 2}, {65, 3}};
  for (const auto& [rows, blocks] : blocks_of_rows) {
    SCOPED_TRACE(rows);
    fill(rows, 2);
    EXPECT_EQ(bodies(kDBCellCode).size(), blocks);
    EXPECT_EQ(bodies(kIndexCode)[0].size(), 16 + 4 * blocks);
    EXPECT_EQ(bodies(kDBCellCode).back().size(), 4 + 2 * ((rows - 1) % 32 + 1));
  }
}

TEST_F(WorksheetTest, TellsTheUsedRowsAndColumns) {
  fill(33, 3);
  EXPECT_EQ(hex_of(bodies(kIndexCode)[0].substr(0, 16)),
            digits("00000000 00000000 21000000 00000000"));
  EXPECT_EQ(hex_of(bodies(512)[0]), digits("00000000 21000000 0000 0300 0000"));
}

TEST_F(WorksheetTest, WritesASheetWithoutACell) {
  EXPECT_EQ(hex_of(written()),
            digits("0908 1000 0006 1000 a019 cd07 c9c00000 06030000") +
                digits("0b02 1400 00000000 00000000 00000000 00000000 00000000") +
                digits("0002 0e00 00000000 00000000 0000 0000 0000") +
                digits("3e02 1200 b606 0000 0000 4000 0000 0000 0000 00000000") +
                digits("0a00 0000"));
}

TEST_F(WorksheetTest, OrdersItsRecords) {
  fill(33, 1);
  sheet.colInfos.push_back({1, 2, 0x304, 5, 6});
  sheet.Merge(0, 0, {2, 1});
  std::vector<uint16_t> expected = {2057, kIndexCode, 125, 512};
  expected.insert(expected.end(), 32, kRowCode);
  expected.insert(expected.end(), 32, 253);
  expected.insert(expected.end(), {215, 520, 253, 215, 574, 229, 10});
  std::vector<uint16_t> codes;
  for (const ReadRecord& record : records())
    codes.push_back(record.code);
  EXPECT_EQ(codes, expected);
  EXPECT_EQ(hex_of(bodies(125)[0]), digits("0100 0200 0403 0500 0600 0000"));
}

TEST_F(WorksheetTest, SelectsTheFirstSheetOnly) {
  EXPECT_NE(hex_of(written(true)).find(digits("3e02 1200 b606")), std::string::npos);
  EXPECT_NE(hex_of(written(false)).find(digits("3e02 1200 b604")), std::string::npos);
}

TEST_F(WorksheetTest, TellsRangesOfMergedCells) {
  cell(9, 9);
  sheet.Merge(3, 4, {2, 3});
  sheet.Merge(1, 5, {2, 1});
  sheet.Merge(1, 6, {1, 2});
  sheet.Merge(5, 5, {1, 1});  // nothing that could be shown as one
  const auto found = bodies(229);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(hex_of(found[0]),
            digits("0300 0100 0200 0500 0500 0100 0100 0600 0700") + digits("0300 0400 0400 0600"));
}

TEST_F(WorksheetTest, WrapsRangesOfMergedCellsIn16Bits) {
  sheet.Merge(0, 0, {0, 2});
  sheet.Merge(9, 9, {65535, 65535});
  EXPECT_EQ(hex_of(bodies(229).at(0)), digits("0200 0000 ffff 0000 0100 0900 0700 0900 0700"));
}

TEST_F(WorksheetTest, HasNoRecordOfMergedCellsWithoutOne) {
  cell(0, 0);
  EXPECT_TRUE(bodies(229).empty());
}

TEST_F(WorksheetTest, PutsUpTo1027RangesInARecord) {
  const std::pair<size_t, std::vector<size_t>> cases[] = {{1026, {1026}},
                                                          {1027, {1027}},
                                                          {1028, {1027, 1}},
                                                          {2054, {1027, 1027}},
                                                          {2055, {1027, 1027, 1}}};
  size_t merged = 0;
  for (const auto& [ranges, counts] : cases) {
    SCOPED_TRACE(ranges);
    for (; merged < ranges; ++merged)
      sheet.Merge(merged, 0, {1, 2});
    const auto found = bodies(229);
    ASSERT_EQ(found.size(), counts.size());
    for (size_t i = 0; i < counts.size(); ++i) {
      EXPECT_EQ(number16(found[i], 0), counts[i]);
      EXPECT_EQ(found[i].size(), 2 + 8 * counts[i]);
    }
    EXPECT_EQ(number16(found.back(), 2 + 8 * (counts.back() - 1)), ranges - 1);
    EXPECT_EQ(written().size(), size);
  }
}

TEST_F(WorksheetTest, IsAsLongAsTheRulesTell) {
  fill(70, 5);
  cell(3, 1).SetInteger(1);
  cell(3, 2).SetInteger(1);
  cell(4, 1).SetReal(0.123);
  cell(4, 2).SetReal(2);
  cell(5, 5).SetText(String());
  sheet.colInfos.resize(3);
  sheet.Merge(1, 1, {2, 2});
  EXPECT_EQ(written().size(), size);
}

TEST_F(WorksheetTest, CountsARecordOfMergedCellsThatIsNotThere) {
  fill(3, 3);
  const size_t bytes = written().size();
  EXPECT_EQ(size, bytes + 6);
}

/// What Index and DBCell of the stream say, beside where a reader meets the records.
void expect_positions(const std::vector<ReadRecord>& records, size_t before) {
  const ReadRecord* index = nullptr;
  std::vector<const ReadRecord*> rows;
  std::vector<size_t> first_cells;
  size_t block = 0;
  for (const ReadRecord& record : records) {
    if (record.code == kIndexCode) index = &record;
    if (record.code == kRowCode) rows.push_back(&record);
    const bool is_cell = record.code == 513 || record.code == 253 || record.code == 515 ||
                         record.code == 638 || record.code == 189;
    if (is_cell && number16(record.body, 2) == 0) first_cells.push_back(record.at);
    if (record.code != kDBCellCode) continue;
    ASSERT_NE(index, nullptr);
    ASSERT_EQ(rows.size(), first_cells.size());
    EXPECT_EQ(number32(index->body, 16 + 4 * block++), before + record.at);
    EXPECT_EQ(record.at - number32(record.body, 0), rows[0]->at);
    ASSERT_EQ(record.body.size(), 4 + 2 * rows.size());
    size_t position = rows[0]->at + 20;
    for (size_t i = 0; i < rows.size(); ++i) {
      position += number16(record.body, 4 + 2 * i);
      EXPECT_EQ(position, first_cells[i]);
    }
    rows.clear();
    first_cells.clear();
  }
  EXPECT_EQ(index->body.size(), 16 + 4 * block);
}

TEST_F(WorksheetTest, TellsWhereItsRowsAndCellsAre) {
  for (const size_t rows : {1U, 2U, 32U, 33U, 100U}) {
    SCOPED_TRACE(rows);
    fill(rows, 6);
    cell(rows / 2, 2).SetReal(0.123);
    cell(rows / 2, 3).SetInteger(1);
    cell(rows / 2, 4).SetInteger(1);
    cell(rows - 1, 5).SetText(String());
    sheet.colInfos.resize(sheet.colInfos.size() + 1);
    expect_positions(YExcel::test::read_records(written(true, 1000)), 1000);
  }
}

TEST_F(WorksheetTest, TellsPositionsOfTheLargestTable) {
  cell(65535, 3);
  const auto all = YExcel::test::read_records(written(true, 77));
  expect_positions(all, 77);
  EXPECT_EQ(bodies(kDBCellCode).size(), 2048u);
}

TEST_F(WorksheetTest, TellsPositionsOfTheLongestRows) {
  // A whole block of them is longer than 16 bits can tell.
  for (size_t column = 0; column < 256; ++column) {
    for (size_t row = 0; row < 32; ++row)
      cell(row, column).SetReal(0.123);
  }
  expect_positions(records(), 0);
  EXPECT_EQ(number32(bodies(kDBCellCode)[0], 0), 32u * (20 + 256 * 18));
}

}  // namespace
