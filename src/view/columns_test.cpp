#include "view/columns.h"

#include <gtest/gtest.h>

#include <iterator>
#include <limits>

namespace {

TEST(Columns, ThereAreThirtyOneWithTheirTitlesAndWidths) {
  const unsigned titles[] = {105, 152, 104, 106, 131, 171, 107, 137, 108, 109, 110,
                             120, 121, 111, 119, 112, 144, 113, 130, 150, 114, 115,
                             116, 172, 136, 138, 139, 140, 141, 142, 132};
  static_assert(std::size(titles) == kListColumns);
  const int widths[] = {20,  0,  220, 90, 0,  120, 114, 0,   70,  200, 200, 0,   30,  200, 200, 120,
                        200, 50, 50,  50, 50, 50,  200, 150, 150, 120, 150, 100, 150, 150, 50};
  ASSERT_EQ(std::size(widths), static_cast<size_t>(kListColumns));
  for (int i = 0; i < kListColumns; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(list_column(i).title, titles[i]);
    EXPECT_EQ(list_column(i).width, widths[i]);
    const bool right = i == 3 || i == 8 || i == 17 || i == 18;
    EXPECT_EQ(list_column(i).align == ListControl::Align::right, right);
  }
}

TEST(CellText, ShowsEachColumnsField) {
  UninstallEntry e;
  String UninstallEntry::*const fields[] = {
      &UninstallEntry::name,
      &UninstallEntry::source,
      &UninstallEntry::displayName,
      &UninstallEntry::displayVersion,
      &UninstallEntry::parent,
      &UninstallEntry::parentName,
      &UninstallEntry::installDate,
      &UninstallEntry::uninstallDate,
      &UninstallEntry::sizeText,
      &UninstallEntry::uninstallCmd,
      &UninstallEntry::modifyCmd,
      &UninstallEntry::installerPath,
      &UninstallEntry::okText,
      &UninstallEntry::displayIcon,
      &UninstallEntry::installLocation,
      &UninstallEntry::lastUseDate,
      &UninstallEntry::packagePath,
      nullptr,
      nullptr,
      &UninstallEntry::is64BitText,
      &UninstallEntry::systemComponentText,
      &UninstallEntry::frequencyText,
      &UninstallEntry::comments,
      &UninstallEntry::user,
      &UninstallEntry::publisher,
      &UninstallEntry::contact,
      &UninstallEntry::helpURL,
      &UninstallEntry::helpPhone,
      &UninstallEntry::aboutURL,
      &UninstallEntry::updateURL,
  };
  for (size_t i = 0; i < std::size(fields); ++i) {
    if (fields[i] != nullptr) e.*fields[i] = String::formatted("text %d", static_cast<int>(i));
  }
  e.features = -17;
  e.patches = -3;
  const CellTexts texts{"changed", "new"};
  for (int i = 0; i < 30; ++i) {
    SCOPED_TRACE(i);
    const String expected = i == 2    ? String("   text 2")
                            : i == 17 ? String("-17")
                            : i == 18 ? String("-3")
                                      : String::formatted("text %d", i);
    EXPECT_STREQ(cell_text(e, i, texts).c_str(), expected.c_str());
  }
  EXPECT_STREQ(cell_text(e, 31, texts).c_str(), "");
  EXPECT_STREQ(cell_text(e, -1, texts).c_str(), "");
}

TEST(CellText, ProgramNameFallsBackToTheEntrysName) {
  UninstallEntry e;
  e.name = "key";
  EXPECT_STREQ(cell_text(e, 2, {}).c_str(), "key");
  e.displayName = "shown";
  EXPECT_STREQ(cell_text(e, 2, {}).c_str(), "shown");
  e.parent = "p";
  EXPECT_STREQ(cell_text(e, 2, {}).c_str(), "   shown");
  EXPECT_STREQ(cell_text(e, 5, {}).c_str(), "p");
}

TEST(CellText, ChangesAreNewOrChanged) {
  UninstallEntry e;
  const CellTexts texts{"changed", "new"};
  EXPECT_STREQ(cell_text(e, 30, texts).c_str(), "");
  e.changed = -1;
  EXPECT_STREQ(cell_text(e, 30, texts).c_str(), "new");
  // The mark of the column "About URL" is the sign.
  for (const int32_t mark : {4, 1, 0x40000000, std::numeric_limits<int32_t>::min(), -2}) {
    SCOPED_TRACE(mark);
    e.changed = mark;
    EXPECT_STREQ(cell_text(e, 30, texts).c_str(), "changed");
  }
}

}  // namespace
