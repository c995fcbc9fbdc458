#include "export/yexcel/sheet.h"

#include <gtest/gtest.h>

namespace {

using YExcel::Sheet;
using YExcel::SheetCell;

TEST(SheetCell, IsUndefinedAtFirst) {
  const SheetCell cell;
  EXPECT_EQ(cell.type(), SheetCell::undefined);
  EXPECT_EQ(cell.xfIndex, 0u);
  EXPECT_EQ(cell.intValue(), 0);
  EXPECT_EQ(cell.doubleValue(), 0);
  EXPECT_EQ(cell.text(), "");
  EXPECT_EQ(cell.wideText(), u"");
}

TEST(SheetCell, SharesANarrowText) {
  const String text("text");
  SheetCell cell;
  cell.SetText(text);
  EXPECT_EQ(cell.type(), SheetCell::narrow);
  EXPECT_EQ(cell.text(), "text");
  EXPECT_EQ(cell.text().data(), text.c_str());
}

TEST(SheetCell, KeepsEachCharacterOfAText) {
  SheetCell cell;
  cell.SetText(String(std::string("a\0b", 3)));
  EXPECT_EQ(cell.text(), std::string_view("a\0b", 3));
  cell.SetText(std::u16string(u"\x20AC\0z", 3));
  EXPECT_EQ(cell.type(), SheetCell::wide);
  EXPECT_EQ(cell.wideText(), std::u16string_view(u"\x20AC\0z", 3));
}

TEST(SheetCell, BecomesUndefinedByAnEmptyText) {
  SheetCell cell;
  cell.SetText(String("text"));
  cell.SetText(String());
  EXPECT_EQ(cell.type(), SheetCell::undefined);
  EXPECT_EQ(cell.text(), "");
  cell.SetText(std::u16string(u"text"));
  cell.SetText(std::u16string());
  EXPECT_EQ(cell.type(), SheetCell::undefined);
  EXPECT_EQ(cell.wideText(), u"");
}

TEST(SheetCell, KeepsItsStyleWhateverItHolds) {
  SheetCell cell;
  cell.xfIndex = 0xDEADBEEF;
  cell.SetText(String("text"));
  cell.SetInteger(-1);
  EXPECT_EQ(cell.type(), SheetCell::integer);
  EXPECT_EQ(cell.intValue(), -1);
  cell.SetReal(-0.5);
  EXPECT_EQ(cell.type(), SheetCell::real);
  EXPECT_EQ(cell.doubleValue(), -0.5);
  cell.SetText(std::u16string(u"text"));
  cell.SetText(String());
  EXPECT_EQ(cell.xfIndex, 0xDEADBEEFu);
}

TEST(Sheet, HasNoCellAtFirst) {
  const Sheet sheet;
  EXPECT_EQ(sheet.rows(), 0u);
  EXPECT_EQ(sheet.columns(), 0u);
}

TEST(Sheet, GrowsToHoldTheCellThatIsAskedFor) {
  Sheet sheet;
  ASSERT_NE(sheet.CellAt(2, 3), nullptr);
  EXPECT_EQ(sheet.rows(), 3u);
  EXPECT_EQ(sheet.columns(), 4u);
  EXPECT_EQ(sheet.CellAt(1, 1)->type(), SheetCell::undefined);
  EXPECT_EQ(sheet.rows(), 3u);
  EXPECT_EQ(sheet.columns(), 4u);
}

TEST(Sheet, StaysRectangularAndKeepsItsCells) {
  Sheet sheet;
  sheet.CellAt(1, 0)->SetInteger(7);
  sheet.CellAt(0, 2)->SetText(String("a"));
  sheet.CellAt(3, 1)->SetReal(1.5);
  EXPECT_EQ(sheet.rows(), 4u);
  EXPECT_EQ(sheet.columns(), 3u);
  for (size_t row = 0; row < sheet.rows(); ++row)
    EXPECT_EQ(sheet.row(row).size(), 3u);
  EXPECT_EQ(sheet.CellAt(1, 0)->intValue(), 7);
  EXPECT_EQ(sheet.CellAt(0, 2)->text(), "a");
  EXPECT_EQ(sheet.CellAt(3, 1)->doubleValue(), 1.5);
}

TEST(Sheet, HasNoCellBeyondItsLastRowAndColumn) {
  Sheet sheet;
  EXPECT_EQ(sheet.CellAt(65536, 0), nullptr);
  EXPECT_EQ(sheet.CellAt(0, 256), nullptr);
  EXPECT_FALSE(sheet.Merge(65536, 0, {2, 2}));
  EXPECT_EQ(sheet.rows(), 0u);
  EXPECT_NE(sheet.CellAt(0, 255), nullptr);
  Sheet high;
  EXPECT_NE(high.CellAt(65535, 0), nullptr);
}

TEST(Sheet, TellsItsMergedCellsInTheOrderOfTheTable) {
  Sheet sheet;
  EXPECT_TRUE(sheet.Merge(1, 0, {2, 2}));
  EXPECT_TRUE(sheet.Merge(0, 5, {3, 1}));
  EXPECT_EQ(sheet.rows(), 2u);
  EXPECT_EQ(sheet.columns(), 6u);
  ASSERT_EQ(sheet.merged().size(), 2u);
  EXPECT_EQ(sheet.merged().begin()->first, Sheet::Place(0, 5));
}

TEST(Sheet, ShowsAsOneWhatACellWasMergedWithLast) {
  Sheet sheet;
  sheet.Merge(1, 1, {2, 3});
  sheet.Merge(1, 1, {4, 5});
  ASSERT_EQ(sheet.merged().size(), 1u);
  EXPECT_EQ(sheet.merged().begin()->second.rows, 4);
  EXPECT_EQ(sheet.merged().begin()->second.columns, 5);
}

}  // namespace
