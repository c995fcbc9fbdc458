#include "view/row_colors.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <ostream>
#include <string>
#include <vector>

#include "view/entry_test_support.h"
#include "view/recording_list_test_support.h"

/// As a failing test shows it.
static void PrintTo(const CellPaint& paint, std::ostream* out) {
  *out << std::hex << "text " << paint.text << ", background ";
  if (paint.background) {
    *out << *paint.background;
  } else {
    *out << "none";
  }
  *out << ", font " << static_cast<int>(paint.font);
}

namespace {

constexpr SystemColors kSystem = {0x112233, 0x445566};
constexpr int kSource = 1;
constexpr int kProgramName = 2;
constexpr int kVersion = 3;
constexpr int kChangedInVersion = 0x8;

CellPaint plain(Color text = kSystem.window_text) {
  return {text, std::nullopt, CellFont::any};
}
CellPaint on(Color background, Color text = kSystem.window_text) {
  return {text, background, CellFont::any};
}
CellPaint yellow(CellFont font, Color text = kSystem.window_text) {
  return {text, kChangeYellow, font};
}
constexpr CellFont kBold = CellFont::bold;
constexpr CellFont kNormal = CellFont::normal;

class RowColorsTest : public testing::Test {
 protected:
  /// Its id.
  uint32_t add(const char* name, int32_t changed = 0, const char* parent = "",
               const char* publisher = "") {
    UninstallEntry entry = make_entry(name);
    entry.changed = changed;
    entry.parent = parent;
    entry.publisher = publisher;
    return add(entry);
  }
  uint32_t add_nameless(const char* name, int32_t changed = 0) {
    UninstallEntry entry = make_entry(name);
    entry.displayName = "";
    entry.changed = changed;
    return add(entry);
  }
  uint32_t add(const UninstallEntry& entry) {
    model_.applyEntry(entry);
    return ++last_id_;
  }
  void search(const char* text) { model_.searchChanged(text); }
  void sort_by(int column) { model_.sortByColumn(column); }

  CellPaint cell(uint32_t id, int column) const { return colors_.cell(id, column, kSystem); }
  bool differ(uint32_t id) const { return colors_.differ_by_cell(id); }
  std::vector<int> bold_columns(uint32_t id) const {
    std::vector<int> bold;
    for (int column = 0; column < kListColumns; ++column) {
      if (cell(id, column).font == kBold) bold.push_back(column);
    }
    return bold;
  }

  RecordingList list_;
  ListModel model_{list_, CellTexts{"changed", "new"}};
  const RowColors colors_{model_};
  uint32_t last_id_ = 0;
};

using Columns = std::vector<int>;

TEST_F(RowColorsTest, HaveTheirValues) {
  EXPECT_EQ(kSubPackageGrey, 0x808080u);
  EXPECT_EQ(kSearchRed, 0x0000ffu);
  EXPECT_EQ(kSystemBlue, 0xffe4e4u);
  EXPECT_EQ(kChangeYellow, 0x00ffffu);
  EXPECT_EQ(kSortCream, 0xe4ffffu);
}

// Item or cell by cell

TEST_F(RowColorsTest, AlikeRowsArePaintedAsAWhole) {
  EXPECT_FALSE(differ(add("plain")));
  EXPECT_FALSE(differ(add("new", -1)));
  EXPECT_FALSE(differ(add("part", 0, "whole")));
  EXPECT_FALSE(differ(add("by its maker", 0, "", "Microsoft")));
}

TEST_F(RowColorsTest, ChangedAndNamelessRowsDifferByCell) {
  EXPECT_TRUE(differ(add("changed", 1)));
  EXPECT_TRUE(differ(add("changed in the last column", INT32_MIN)));
  EXPECT_TRUE(differ(add_nameless("nameless")));
  EXPECT_TRUE(differ(add_nameless("nameless and new", -1)));
}

TEST_F(RowColorsTest, UnderASearchOrAChosenSortColumnEveryRowDiffersByCell) {
  const uint32_t plain_row = add("plain");
  search("lain");
  EXPECT_TRUE(differ(plain_row));
  EXPECT_TRUE(differ(plain_row + 1));
  search("");
  EXPECT_FALSE(differ(plain_row));
  sort_by(kVersion);
  EXPECT_TRUE(differ(plain_row));
  EXPECT_TRUE(differ(plain_row + 1));
}

TEST_F(RowColorsTest, TheSortOrderOfTheStartMarksNothing) {
  const uint32_t id = add("plain");
  ASSERT_EQ(model_.sort_state().column, kInstallDateColumn);
  EXPECT_FALSE(differ(id));
  EXPECT_EQ(cell(id, kInstallDateColumn), plain());
  EXPECT_EQ(cell(id, kInstallDateColumn + 1), plain());
}

// Text

TEST_F(RowColorsTest, TextIsTheUsersOwnColour) {
  const uint32_t id = add("plain");
  for (int column = 0; column < kListColumns; ++column)
    EXPECT_EQ(cell(id, column), plain()) << column;
}

TEST_F(RowColorsTest, SubPackagesAreGreyInEveryCell) {
  const uint32_t id = add("part", 0, "whole");
  for (int column = 0; column < kListColumns; ++column)
    EXPECT_EQ(cell(id, column), plain(kSubPackageGrey)) << column;
}

TEST_F(RowColorsTest, SourceOfANamelessRowIsGrey) {
  const uint32_t id = add_nameless("nameless");
  for (int column = 0; column < kListColumns; ++column) {
    EXPECT_EQ(cell(id, column), plain(column == kSource ? kSubPackageGrey : kSystem.window_text))
        << column;
  }
}

TEST_F(RowColorsTest, ParentsShownNameAloneMakesNoSubPackage) {
  UninstallEntry entry = make_entry("part");
  entry.parentName = "Whole";
  EXPECT_EQ(cell(add(entry), 0), plain());
}

TEST_F(RowColorsTest, SearchedTextIsRedInTheCellsThatHaveIt) {
  UninstallEntry entry = make_entry("Quarry");
  entry.publisher = "The quarrymen";
  const uint32_t id = add(entry);
  search("QUARRY");
  for (int column = 0; column < kListColumns; ++column) {
    const bool has_it = column == 0 || column == kProgramName || column == 24;
    EXPECT_EQ(cell(id, column), plain(has_it ? kSearchRed : kSystem.window_text)) << column;
  }
}

TEST_F(RowColorsTest, SearchOverridesGreyCellByCell) {
  const uint32_t id = add("part", 0, "whole");
  search("par");
  EXPECT_EQ(cell(id, 0), plain(kSearchRed));
  EXPECT_EQ(cell(id, kVersion), plain(kSubPackageGrey));
  const uint32_t nameless = add_nameless("nameless");
  EXPECT_EQ(cell(nameless, kSource), plain(kSubPackageGrey));
}

TEST_F(RowColorsTest, SearchLooksAtWhatTheCellShows) {
  UninstallEntry entry = make_entry("part");
  entry.parent = "whole";
  entry.changed = kChangedInVersion;
  entry.features = 731;
  const uint32_t id = add(entry);
  // The blanks in front of a sub package's name are shown, and only there.
  search("   p");
  EXPECT_EQ(cell(id, kProgramName).text, kSearchRed);
  EXPECT_EQ(cell(id, 0).text, kSubPackageGrey);
  search("731");
  EXPECT_EQ(cell(id, 17).text, kSearchRed);
  search("hang");
  EXPECT_EQ(cell(id, kChangesColumn).text, kSearchRed);
}

TEST_F(RowColorsTest, SearchTakesWildcards) {
  const uint32_t id = add("Quarry");
  search("q*?y");
  EXPECT_EQ(cell(id, 0).text, kSearchRed);
  search("q??y");
  EXPECT_EQ(cell(id, 0).text, kSystem.window_text);
}

TEST_F(RowColorsTest, ATextIsComposedForASearchAlone) {
  const uint32_t asked = add("asked for");
  const uint32_t painted = add("painted", kChangedInVersion, "whole", "Microsoft");
  const String& composed = model_.cellText(asked, kProgramName);
  sort_by(kVersion);
  cell(painted, kProgramName);
  EXPECT_STREQ(composed.c_str(), "asked for");
  search("p");
  cell(painted, kProgramName);
  EXPECT_STREQ(composed.c_str(), "   painted");
}

// Background and font of changed rows

TEST_F(RowColorsTest, NewRowIsYellowAndBoldAsAWhole) {
  const uint32_t id = add("new", -1);
  ASSERT_FALSE(differ(id));
  EXPECT_EQ(cell(id, 0), yellow(kBold));
}

TEST_F(RowColorsTest, NewRowUnderASearchIsYellowEverywhereAndBoldInTwoColumns) {
  const uint32_t id = add("new", -1);
  search("new");
  EXPECT_EQ(cell(id, 0), yellow(kBold, kSearchRed));
  EXPECT_EQ(cell(id, kSource), yellow(kBold));
  EXPECT_EQ(cell(id, kProgramName), yellow(kNormal, kSearchRed));
  EXPECT_EQ(cell(id, kVersion), yellow(kNormal));
  EXPECT_EQ(cell(id, kChangesColumn), yellow(kNormal, kSearchRed));
  EXPECT_EQ(bold_columns(id), (Columns{0, 1}));
}

TEST_F(RowColorsTest, NewRowUnderAChosenSortColumnIsYellowEverywhereAndBoldInTwoColumns) {
  const uint32_t id = add("new", -1);
  sort_by(kVersion);
  for (int column = 0; column < kListColumns; ++column)
    EXPECT_EQ(cell(id, column), yellow(column <= 1 ? kBold : kNormal)) << column;
}

TEST_F(RowColorsTest, NewRowWithoutANameIsBoldInTwoColumnsAtAnyTime) {
  const uint32_t id = add_nameless("new", -1);
  ASSERT_TRUE(differ(id));
  EXPECT_EQ(bold_columns(id), (Columns{0, 1}));
  EXPECT_EQ(cell(id, kSource), yellow(kBold, kSubPackageGrey));
}

TEST_F(RowColorsTest, ChangedRowIsYellowAndBoldWhereItHasChanged) {
  const uint32_t id = add("changed", 0x4 | kChangedInVersion);
  for (int column = 0; column < kListColumns; ++column)
    EXPECT_EQ(cell(id, column), yellow(column == 2 || column == 3 ? kBold : kNormal)) << column;
}

TEST_F(RowColorsTest, EachBitMarksItsColumn) {
  const struct {
    uint32_t bit;
    Columns bold;
  } bits[] = {
      {0x1, {0}},         {0x2, {1}},         {0x4, {2}},         {0x8, {3}},
      {0x10, {4}},        {0x20, {5}},        {0x40, {13}},       {0x80, {14}},
      {0x100, {6}},       {0x200, {7}},       {0x400, {9}},       {0x800, {10}},
      {0x1000, {}},       {0x2000, {}},       {0x4000, {21}},     {0x8000, {23}},
      {0x10000, {8}},     {0x20000, {15}},    {0x40000, {17}},    {0x80000, {18}},
      {0x100000, {22}},   {0x200000, {11}},   {0x400000, {16}},   {0x800000, {}},
      {0x1000000, {12}},  {0x2000000, {19}},  {0x4000000, {20}},  {0x8000000, {24}},
      {0x10000000, {25}}, {0x20000000, {26}}, {0x40000000, {27}}, {0x80000000, {28}},
  };
  for (const auto& row : bits) {
    SCOPED_TRACE(row.bit);
    const std::string name = std::to_string(row.bit);
    const uint32_t id = add(name.c_str(), static_cast<int32_t>(row.bit));
    EXPECT_TRUE(differ(id));
    EXPECT_EQ(bold_columns(id), row.bold);
    EXPECT_EQ(cell(id, 29), yellow(kNormal));
    EXPECT_EQ(cell(id, 30), yellow(kNormal));
  }
}

TEST_F(RowColorsTest, ColumnsWithoutABitAreNeverBold) {
  const uint32_t id = add("changed in all but one", -2);
  for (const int column : {29, 30, kListColumns, kTreeColumn, 1000, -1})
    EXPECT_EQ(cell(id, column).font, kNormal) << column;
  EXPECT_EQ(cell(id, 28).font, kBold);
  EXPECT_EQ(cell(id, 0).font, kNormal);
}

TEST_F(RowColorsTest, ChangedSubPackageStaysGrey) {
  EXPECT_EQ(cell(add("part", -1, "whole"), 0), yellow(kBold, kSubPackageGrey));
  EXPECT_EQ(cell(add("piece", 1, "whole"), 0), yellow(kBold, kSubPackageGrey));
  EXPECT_EQ(cell(2, 1), yellow(kNormal, kSubPackageGrey));
}

// Background of all others

TEST_F(RowColorsTest, RowsOfTheSystemAreBlueInEveryCell) {
  const uint32_t by_publisher = add("maker's", 0, "", "Microsoft Corporation");
  const uint32_t by_name = add("Windows Kit");
  const uint32_t by_update = add("KB1234");
  for (int column = 0; column < kListColumns; ++column) {
    EXPECT_EQ(cell(by_publisher, column), on(kSystemBlue)) << column;
    EXPECT_EQ(cell(by_name, column), on(kSystemBlue)) << column;
    EXPECT_EQ(cell(by_update, column), on(kSystemBlue)) << column;
  }
  EXPECT_EQ(cell(add("microsoft"), 0), plain());
}

TEST_F(RowColorsTest, SubPackageOfTheSystemIsGreyOnBlue) {
  const uint32_t id = add("part", 0, "whole", "Microsoft");
  EXPECT_EQ(cell(id, 0), on(kSystemBlue, kSubPackageGrey));
  search("part");
  EXPECT_EQ(cell(id, 0), on(kSystemBlue, kSearchRed));
  EXPECT_EQ(cell(id, kVersion), on(kSystemBlue, kSubPackageGrey));
}

TEST_F(RowColorsTest, SortColumnIsCreamAndTheNextIsTheWindowsColour) {
  const uint32_t id = add("plain");
  sort_by(kVersion);
  for (int column = 0; column < kListColumns; ++column) {
    const CellPaint wanted = column == kVersion       ? on(kSortCream)
                             : column == kVersion + 1 ? on(kSystem.window)
                                                      : plain();
    EXPECT_EQ(cell(id, column), wanted) << column;
  }
  // The other way round.
  sort_by(kVersion);
  ASSERT_EQ(model_.sort_state().descending, 1);
  EXPECT_EQ(cell(id, kVersion), on(kSortCream));
  EXPECT_EQ(cell(id, kVersion + 1), on(kSystem.window));
  sort_by(0);
  EXPECT_EQ(cell(id, 0), on(kSortCream));
  EXPECT_EQ(cell(id, 1), on(kSystem.window));
  EXPECT_EQ(cell(id, kVersion), plain());
}

TEST_F(RowColorsTest, BehindTheLastColumnNothingNeedsResetting) {
  const uint32_t id = add("plain");
  sort_by(kListColumns - 1);
  for (int column = 0; column < kListColumns - 1; ++column)
    EXPECT_EQ(cell(id, column), plain()) << column;
  EXPECT_EQ(cell(id, kListColumns - 1), on(kSortCream));
}

TEST_F(RowColorsTest, TheOrderOfTheTreeShadesNoColumn) {
  const uint32_t id = add("plain");
  model_.selectGroup(1);
  ASSERT_TRUE(model_.sort_state().arrowShown);
  for (int column = 0; column < kListColumns; ++column)
    EXPECT_EQ(cell(id, column), plain()) << column;
}

TEST_F(RowColorsTest, SortColumnShowsOnlyWhereNothingStrongerDoes) {
  const uint32_t plain_part = add("part", 0, "whole");
  const uint32_t system = add("system", 0, "", "Microsoft");
  const uint32_t changed = add("changed", kChangedInVersion);
  const uint32_t changed_system = add("changed system", -1, "", "Microsoft");
  sort_by(kVersion);
  search("s");
  EXPECT_EQ(cell(plain_part, kVersion), on(kSortCream, kSubPackageGrey));
  EXPECT_EQ(cell(system, kVersion), on(kSystemBlue));
  EXPECT_EQ(cell(system, kVersion + 1), on(kSystemBlue));
  EXPECT_EQ(cell(changed, kVersion), yellow(kBold));
  EXPECT_EQ(cell(changed, kVersion + 1), yellow(kNormal));
  EXPECT_EQ(cell(changed_system, kVersion), yellow(kNormal));
}

// Rows that are gone

TEST_F(RowColorsTest, AnUnknownRowIsPlain) {
  EXPECT_FALSE(differ(17));
  EXPECT_EQ(cell(17, 0), plain());
  sort_by(kVersion);
  EXPECT_EQ(cell(17, kVersion), plain());
  search("x");
  EXPECT_EQ(cell(17, 0), plain());
  // Its text is empty, and this pattern matches that.
  search("*");
  EXPECT_EQ(cell(17, 0), plain(kSearchRed));
}

TEST_F(RowColorsTest, FollowTheRowsMark) {
  const uint32_t id = add("new", -1);
  EXPECT_EQ(cell(id, 0), yellow(kBold));
  model_.clear_marks();
  EXPECT_EQ(cell(id, 0), plain());
}

}  // namespace
