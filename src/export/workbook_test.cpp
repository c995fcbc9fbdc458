#include "export/workbook.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "export/yexcel/stream_reader_test_support.h"
#include "platform/memory_storage.h"

namespace {

using YExcel::test::number16;
using YExcel::test::number32;
using YExcel::test::read_book;
using YExcel::test::read_records;
using YExcel::test::ReadBook;
using YExcel::test::ReadRecord;
using YExcel::test::ReadText;

constexpr StorageStatus kFailure = -7;
constexpr auto kInvalidArgument = static_cast<StorageStatus>(0x80070057);  // E_INVALIDARG

std::u16string widened(const std::string& text) {
  std::u16string wide;
  for (const char c : text)
    wide.push_back(static_cast<unsigned char>(c));
  return wide;
}

class WorkbookTest : public ::testing::Test {
 protected:
  /// The columns of the inventory, each with a text for each row.
  void inventory(size_t rows) {
    sheet = ExportSheetBuilder([](unsigned id) { return String::formatted("T%u", id); }, {}).take();
    for (size_t row = 0; row < rows; ++row) {
      auto& cells = sheet.rows.emplace_back();
      for (size_t column = 0; column < sheet.columns.size(); ++column)
        cells.push_back(
            String::formatted("%d.%d", static_cast<int>(row), static_cast<int>(column)));
    }
  }
  StorageStatus write() { return writeWorkbook(sheet, "a.xls", storage); }
  std::string stream() {
    EXPECT_EQ(write(), 0);
    const auto* const file = storage.file(u"a.xls");
    if (file == nullptr || file->size() != 1) ADD_FAILURE() << "not one stream";
    return file == nullptr ? std::string() : file->at(u"Workbook");
  }
  static std::vector<std::string> bodies(const std::string& stream, uint16_t code) {
    std::vector<std::string> found;
    for (const ReadRecord& record : read_records(stream)) {
      if (record.code == code) found.push_back(record.body);
    }
    return found;
  }

  ExportSheet sheet;
  MemoryStorage storage;
};

TEST_F(WorkbookTest, HasTwoFonts26XFsAndNoFormatFor35Rows) {
  inventory(34);  // and that of the titles
  const std::string written = stream();
  EXPECT_EQ(bodies(written, 520).size(), 35u);
  EXPECT_EQ(bodies(written, 49).size(), 2u);
  EXPECT_EQ(bodies(written, 224).size(), 26u);
  EXPECT_TRUE(bodies(written, 1054).empty());
  EXPECT_EQ(bodies(written, 215).size(), 2u);
}

TEST_F(WorkbookTest, HasTheTitlesInRow0AndTheRowsFromRow1) {
  inventory(40);
  const ReadBook book = read_book(stream());
  ASSERT_EQ(book.sheets.size(), 1u);
  EXPECT_EQ(book.sheets[0].name, "Sheet1");
  EXPECT_EQ(book.sheets[0].cells.size(), 29u * 41);
  for (uint16_t column = 0; column < 29; ++column) {
    const auto text = [&](uint16_t row) {
      return std::get<ReadText>(book.sheets[0].cells.at({row, column}).value).characters;
    };
    EXPECT_EQ(text(0), widened(sheet.columns[column].title.c_str()));
    for (uint16_t row = 0; row < 40; ++row)
      EXPECT_EQ(text(static_cast<uint16_t>(row + 1)), widened(sheet.rows[row][column].c_str()));
  }
}

TEST_F(WorkbookTest, ShowsTitlesInBoldArial) {
  inventory(1);
  const std::string written = stream();
  const auto cells = read_book(written).sheets.at(0).cells;
  const auto xfs = bodies(written, 224);
  const auto fonts = bodies(written, 49);
  for (uint16_t column = 0; column < 29; ++column) {
    const std::string& xf = xfs.at(cells.at({0, column}).xf);
    EXPECT_EQ(number16(xf, 2), 0);
    EXPECT_EQ(number16(xf, 4), 120);
    EXPECT_EQ(xf[6], 32);
    const std::string& font = fonts.at(number16(xf, 0));
    EXPECT_EQ(number16(font, 0), 200);
    EXPECT_EQ(number16(font, 2), 0);
    EXPECT_EQ(number16(font, 4), 0x7FFF);
    EXPECT_EQ(number16(font, 6), 700);
    EXPECT_EQ(font.substr(8), std::string("\0\0\0\0\0\0\5\1A\0r\0i\0a\0l\0", 18));
  }
}

TEST_F(WorkbookTest, DeclaresTheCellsOfEachColumn) {
  inventory(2);
  const std::string written = stream();
  const auto cells = read_book(written).sheets.at(0).cells;
  const auto xfs = bodies(written, 224);
  const std::map<std::u16string, uint16_t> formats = {
      {u"General", 0}, {u"0", 1}, {u"M/D/YY h:mm", 22}, {u"@", 49}};
  for (uint16_t column = 0; column < 29; ++column) {
    const std::string& xf = xfs.at(cells.at({1, column}).xf);
    EXPECT_EQ(number16(xf, 0), 0);
    EXPECT_EQ(number16(xf, 2), formats.at(sheet.columns[column].format));
    EXPECT_EQ(xf[6], static_cast<char>(32 + sheet.columns[column].align));
    EXPECT_EQ(cells.at({1, column}).xf, cells.at({2, column}).xf);
  }
}

TEST_F(WorkbookTest, LeavesCellsBlankThatHaveNoText) {
  inventory(1);
  sheet.rows[0][3] = "";
  const std::string written = stream();
  const auto blank = bodies(written, 513);
  ASSERT_EQ(blank.size(), 1u);
  EXPECT_EQ(number16(blank[0], 0), 1);
  EXPECT_EQ(number16(blank[0], 2), 3);
  EXPECT_NE(number16(blank[0], 4), 0);  // in its column's style
}

TEST_F(WorkbookTest, HoldsTheTitlesWhereThereIsNoRow) {
  inventory(0);
  const ReadBook book = read_book(stream());
  EXPECT_EQ(book.sheets.at(0).cells.size(), 29u);
}

TEST_F(WorkbookTest, WritesASheetWithoutAColumn) {
  const ReadBook book = read_book(stream());
  EXPECT_TRUE(book.sheets.at(0).cells.empty());
}

TEST_F(WorkbookTest, WritesTextsAsNarrowOnes) {
  inventory(1);
  sheet.rows[0][0] = "\x80 \xFC";
  const ReadBook book = read_book(stream());
  EXPECT_EQ(std::get<ReadText>(book.sheets.at(0).cells.at({1, 0}).value),
            (ReadText{u"\x80 \xFC", false}));
}

TEST_F(WorkbookTest, CutsTextsAt32767Characters) {
  inventory(3);
  const std::string most(32767, 'x');
  sheet.rows[0][0] = most;
  sheet.rows[1][0] = most + "y";
  sheet.rows[2][0] = std::string(100000, 'z');
  sheet.columns[0].title = String(std::string(40000, 't'));
  // A text over several records isn't read back, so this looks at what the table counts.
  const auto table = bodies(stream(), 252).at(0);
  const uint32_t texts = 29 * 4;
  EXPECT_EQ(number32(table, 0), texts);
  EXPECT_EQ(number32(table, 4), texts - 1);  // the second is cut to the first
  EXPECT_EQ(number16(table, 8), 32767);
}

TEST_F(WorkbookTest, LeavesOutCellsBeyondTheColumnsAndDoesWithoutMissingOnes) {
  inventory(2);
  sheet.rows[0].push_back("more");
  sheet.rows[1].resize(3, String());
  const auto cells = read_book(stream()).sheets.at(0).cells;
  EXPECT_EQ(cells.size(), 29u * 3);
  EXPECT_EQ(cells.at({2, 3}).value, YExcel::test::ReadValue());
}

TEST_F(WorkbookTest, HasWrittenTheWholeFileWhenItReturns) {
  inventory(1);
  EXPECT_EQ(write(), 0);
  EXPECT_NE(storage.file(u"a.xls"), nullptr);
  EXPECT_EQ(storage.calls().back(), "close a.xls");
}

TEST_F(WorkbookTest, TellsThePlatformsFailure) {
  inventory(1);
  using Operation = MemoryStorage::Operation;
  for (const Operation operation :
       {Operation::create, Operation::create_stream, Operation::open_stream, Operation::write}) {
    MemoryStorage failing;
    failing.fail(operation, kFailure);
    EXPECT_EQ(writeWorkbook(sheet, "a.xls", failing), kFailure);
  }
  storage.take_at_most(10);
  EXPECT_LT(write(), 0);
}

TEST_F(WorkbookTest, RefusesMoreRowsThanASheetHas) {
  sheet.columns.push_back({"title", u"General", 0});
  sheet.rows.resize(65536, {String("text")});
  EXPECT_EQ(write(), kInvalidArgument);
  EXPECT_TRUE(storage.calls().empty());
  sheet.rows.pop_back();
  EXPECT_EQ(write(), 0);
}

TEST_F(WorkbookTest, RefusesMoreColumnsThanASheetHas) {
  sheet.columns.resize(257);
  EXPECT_EQ(write(), kInvalidArgument);
  EXPECT_TRUE(storage.calls().empty());
  sheet.columns.pop_back();
  EXPECT_EQ(write(), 0);
}

}  // namespace
