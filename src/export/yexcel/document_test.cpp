#include "export/yexcel/document.h"

#include <gtest/gtest.h>

#include "export/yexcel/stream_reader_test_support.h"
#include "platform/memory_storage.h"

namespace {

using Operation = MemoryStorage::Operation;
using YExcel::Document;
using YExcel::test::number16;
using YExcel::test::number32;
using YExcel::test::read_book;
using YExcel::test::read_records;
using YExcel::test::ReadBook;
using YExcel::test::ReadRecord;
using YExcel::test::ReadText;

constexpr char kPath[] = "C:\\a.xls";
constexpr char16_t kWidePath[] = u"C:\\a.xls";
constexpr StorageStatus kFailure = -7;

class DocumentTest : public ::testing::Test {
 protected:
  DocumentTest() { document->New(1); }

  std::vector<std::string> names() const {
    std::vector<std::string> names;
    for (const auto& bound : document->workbook().boundSheets)
      names.push_back(bound.name.name);
    return names;
  }
  /// Where the BOF records of the worksheets are.
  static std::vector<size_t> sheet_begins(const std::string& stream) {
    std::vector<size_t> begins;
    for (const ReadRecord& record : read_records(stream)) {
      if (record.code == 2057 && number16(record.body, 2) == 16) begins.push_back(record.at);
    }
    return begins;
  }
  static std::vector<size_t> told_begins(const std::string& stream) {
    std::vector<size_t> begins;
    for (const ReadRecord& record : read_records(stream)) {
      if (record.code == 133) begins.push_back(number32(record.body, 0));
    }
    return begins;
  }

  MemoryStorage storage;
  std::unique_ptr<Document> document = std::make_unique<Document>(storage);
};

TEST_F(DocumentTest, HasExactlyOneBoundSheetNamedSheet1) {
  EXPECT_EQ(names(), std::vector<std::string>{"Sheet1"});
  EXPECT_NE(document->SheetAt(0), nullptr);
  EXPECT_EQ(document->SheetAt(1), nullptr);
  const ReadBook book = read_book(document->stream());
  ASSERT_EQ(book.sheets.size(), 1u);
  EXPECT_EQ(book.sheets[0].name, "Sheet1");
}

TEST_F(DocumentTest, HasAtLeastOneSheet) {
  document->New(0);
  EXPECT_EQ(names(), std::vector<std::string>{"Sheet1"});
}

TEST_F(DocumentTest, NumbersTheSheetsOfANewWorkbook) {
  document->New(3);
  EXPECT_EQ(names(), (std::vector<std::string>{"Sheet1", "Sheet2", "Sheet3"}));
}

TEST_F(DocumentTest, BeginsAnew) {
  document->SheetAt(0)->CellAt(0, 0)->SetInteger(1);
  document->workbook().formats.emplace_back();
  document->New(1);
  EXPECT_EQ(document->SheetAt(0)->rows(), 0u);
  EXPECT_TRUE(document->workbook().formats.empty());
}

TEST_F(DocumentTest, AddsASheetAtTheEndOrBeforeAnother) {
  const auto first = document->SheetAt(0);
  const auto last = document->AddSheet("last");
  const auto inner = document->AddSheet("inner", 1);
  const auto front = document->AddSheet("front", 0);
  const auto beyond = document->AddSheet("beyond", 9);
  const auto negative = document->AddSheet("negative", -5);
  EXPECT_EQ(names(),
            (std::vector<std::string>{"front", "Sheet1", "inner", "last", "beyond", "negative"}));
  const std::shared_ptr<YExcel::Sheet> expected[] = {front, first, inner, last, beyond, negative};
  for (size_t i = 0; i < 6; ++i)
    EXPECT_EQ(document->SheetAt(i), expected[i]);
}

TEST_F(DocumentTest, AddsNoSheetWithANameThatIsInUse) {
  EXPECT_EQ(document->AddSheet("Sheet1"), nullptr);
  EXPECT_EQ(document->SheetAt(1), nullptr);
}

TEST_F(DocumentTest, WritesTheCellsOfAllSheets) {
  document->New(2);
  document->SheetAt(0)->CellAt(0, 0)->SetText(String("both"));
  document->SheetAt(1)->CellAt(1, 0)->SetText(String("both"));
  const ReadBook book = read_book(document->stream());
  ASSERT_EQ(book.sheets.size(), 2u);
  EXPECT_EQ(book.stringsTotal, 2u);
  ASSERT_EQ(book.strings.size(), 1u);
  const ReadText both{u"both", false};
  EXPECT_EQ(std::get<ReadText>(book.sheets[0].cells.at({0, 0}).value), both);
  EXPECT_EQ(std::get<ReadText>(book.sheets[1].cells.at({1, 0}).value), both);
  EXPECT_EQ(book.sheets[1].cells.size(), 2u);
}

TEST_F(DocumentTest, SelectsTheFirstSheetOnly) {
  document->New(3);
  std::vector<bool> selected;
  for (const ReadRecord& record : read_records(document->stream())) {
    if (record.code == 574) selected.push_back((number16(record.body, 0) & 0x200) != 0);
  }
  EXPECT_EQ(selected, (std::vector<bool>{true, false, false}));
}

TEST_F(DocumentTest, TellsWhereSheetsWithMergedCellsBegin) {
  document->New(3);
  for (size_t i = 0; i < 3; ++i) {
    document->SheetAt(i)->CellAt(40 * i, 0)->SetText(String::formatted("%d", static_cast<int>(i)));
    for (size_t range = 0; range < 1 + 1027 * i; ++range)
      document->SheetAt(i)->Merge(range, 0, {1, 2});
  }
  const std::string stream = document->stream();
  EXPECT_EQ(told_begins(stream), sheet_begins(stream));
}

TEST_F(DocumentTest, TellsEachSheet6BytesLateForOneWithoutMergedCells) {
  document->New(3);
  const std::string stream = document->stream();
  const auto begins = sheet_begins(stream);
  EXPECT_EQ(told_begins(stream), (std::vector<size_t>{begins[0], begins[1] + 6, begins[2] + 12}));
}

TEST_F(DocumentTest, TellsPositionsFromTheStartOfTheStream) {
  document->SheetAt(0)->CellAt(40, 2)->SetText(String("text"));
  const auto records = read_records(document->stream());
  size_t index = 0;
  std::vector<size_t> blocks;
  for (size_t i = 0; i < records.size(); ++i) {
    if (records[i].code == 523) index = i;
    if (records[i].code == 215) blocks.push_back(records[i].at);
  }
  ASSERT_EQ(blocks.size(), 2u);
  EXPECT_EQ(number32(records[index].body, 16), blocks[0]);
  EXPECT_EQ(number32(records[index].body, 20), blocks[1]);
}

TEST_F(DocumentTest, TellsPositionsByTheRulesEvenWhereStringsNeedMoreRecords) {
  // Each of the first two strings leaves less room than a string is begun in, and so the third
  // stands in a third record, though the body as a whole would fill less than two.
  const size_t lengths[] = {8205, 8216, 4};
  for (size_t i = 0; i < 3; ++i) {
    const std::string text(lengths[i], static_cast<char>('a' + i));
    document->SheetAt(0)->CellAt(i, 0)->SetText(String(text));
  }
  const std::string stream = document->stream();
  std::vector<size_t> bodies;
  for (const ReadRecord& record : read_records(stream)) {
    if (record.code == 252 || record.code == 60) bodies.push_back(record.body.size());
  }
  EXPECT_EQ(bodies, (std::vector<size_t>{8216, 8219, 7}));
  EXPECT_EQ(sheet_begins(stream)[0] - told_begins(stream)[0], 4u);
}

TEST_F(DocumentTest, GivesTheSameStreamAgain) {
  document->SheetAt(0)->CellAt(3, 3)->SetText(String("text"));
  EXPECT_EQ(document->stream(), document->stream());
}

TEST_F(DocumentTest, AsksThePlatformInThisOrder) {
  ASSERT_TRUE(document->SaveAs(kPath));
  const size_t size = document->stream().size();
  document.reset();
  EXPECT_EQ(storage.calls(),
            (std::vector<std::string>{"create C:\\a.xls", "create stream Workbook",
                                      "open stream Workbook", "write " + std::to_string(size),
                                      "close stream Workbook", "commit", "close C:\\a.xls"}));
}

TEST_F(DocumentTest, LeavesAFileWithExactlyOneStreamOnceItIsGone) {
  document->SheetAt(0)->CellAt(0, 0)->SetText(String("text"));
  const std::string stream = document->stream();
  ASSERT_TRUE(document->SaveAs(kPath));
  EXPECT_EQ(storage.file(kWidePath), nullptr);
  document.reset();
  ASSERT_NE(storage.file(kWidePath), nullptr);
  EXPECT_EQ(*storage.file(kWidePath), (MemoryStorage::Streams{{u"Workbook", stream}}));
}

TEST_F(DocumentTest, ReplacesAnExistingFile) {
  document->SheetAt(0)->CellAt(100, 5);
  ASSERT_TRUE(document->SaveAs(kPath));
  document->New(1);
  ASSERT_TRUE(document->SaveAs(kPath));  // lets go of its own file first
  const std::string stream = document->stream();
  document.reset();
  EXPECT_EQ(*storage.file(kWidePath), (MemoryStorage::Streams{{u"Workbook", stream}}));
}

TEST_F(DocumentTest, ReadsThePathInTheCodePage) {
  ASSERT_TRUE(document->SaveAs("C:\\\x80.xls"));
  document.reset();
  EXPECT_NE(storage.file(u"C:\\\x20AC.xls"), nullptr);
}

TEST_F(DocumentTest, SavesNothingWithoutAFile) {
  EXPECT_FALSE(document->Save());
  EXPECT_EQ(document->status(), static_cast<StorageStatus>(0x80030006));  // STG_E_INVALIDHANDLE
  EXPECT_TRUE(storage.calls().empty());
}

TEST_F(DocumentTest, SavesAgainIntoTheSameFile) {
  ASSERT_TRUE(document->SaveAs(kPath));
  document->SheetAt(0)->CellAt(0, 0)->SetText(String("text"));
  const std::string stream = document->stream();
  EXPECT_TRUE(document->Save());
  EXPECT_EQ(document->status(), 0);
  document.reset();
  EXPECT_EQ(storage.file(kWidePath)->at(u"Workbook"), stream);
}

TEST_F(DocumentTest, FailsWhereTheFileCannotBeCreated) {
  storage.refuse(kWidePath);
  EXPECT_FALSE(document->SaveAs(kPath));
  EXPECT_LT(document->status(), 0);
  EXPECT_FALSE(document->Save());
}

TEST_F(DocumentTest, FailsAsEachOperationDoes) {
  for (const Operation operation :
       {Operation::create, Operation::create_stream, Operation::open_stream, Operation::write}) {
    SCOPED_TRACE(static_cast<int>(operation));
    MemoryStorage failing;
    failing.fail(operation, kFailure);
    Document failed(failing);
    failed.New(1);
    EXPECT_FALSE(failed.SaveAs(kPath));
    EXPECT_EQ(failed.status(), kFailure);
    // Nothing is asked after the failure but to let go of what is open.
    const auto last = std::find_if(failing.calls().rbegin(), failing.calls().rend(),
                                   [](const auto& call) { return call.rfind("close", 0) != 0; });
    const auto asked = static_cast<size_t>(failing.calls().rend() - last);
    EXPECT_EQ(asked, static_cast<size_t>(operation) + 1);
  }
}

TEST_F(DocumentTest, FailsWhereTheDiskIsFullWhenAllHasBeenTaken) {
  storage.fail(Operation::commit, kFailure);
  EXPECT_FALSE(document->SaveAs(kPath));
  EXPECT_EQ(document->status(), kFailure);
}

TEST_F(DocumentTest, TakesOnlyANegativeStatusForAFailure) {
  constexpr StorageStatus kRemark = 1;
  storage.fail(Operation::write, kRemark);
  EXPECT_TRUE(document->SaveAs(kPath));
  EXPECT_EQ(document->status(), 0);
}

TEST_F(DocumentTest, KeepsTheStatusOfItsLastFailure) {
  storage.refuse(kWidePath);
  EXPECT_FALSE(document->SaveAs(kPath));
  const StorageStatus failure = document->status();
  EXPECT_TRUE(document->SaveAs("C:\\b.xls"));
  EXPECT_EQ(document->status(), failure);
  EXPECT_LT(failure, 0);
}

TEST_F(DocumentTest, FailsWhereTheStreamTakesFewerBytes) {
  storage.take_at_most(100);
  EXPECT_FALSE(document->SaveAs(kPath));
  EXPECT_LT(document->status(), 0);
}

}  // namespace
