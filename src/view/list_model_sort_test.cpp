#include "view/list_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <vector>

#include "view/entry_test_support.h"
#include "view/recording_list_test_support.h"

namespace {

using Entry = UninstallEntry;
using Told = std::vector<std::string>;
using Names = std::vector<std::string>;

class ListModelSortTest : public testing::Test {
 protected:
  void apply(const char* name, const char* publisher, const char* date = "") {
    Entry entry = make_entry(name, date);
    entry.publisher = publisher;
    model_.applyEntry(entry);
  }
  /// Three rows, each column of them in another order.
  void apply_three() {
    apply("a", "m", "01.02.2012");
    apply("b", "k", "01.02.2013");
    apply("c", "l", "01.02.2011");
    list_.told();
  }

  static constexpr int kPublisher = 24;
  RecordingList list_;
  ListModel model_{list_, CellTexts{"changed", "new"}};
};

TEST_F(ListModelSortTest, StartsWithTheNewestInstallationAndNoArrow) {
  const SortState& sort = model_.sort_state();
  EXPECT_EQ(sort.column, 6);
  EXPECT_EQ(sort.descending, 1);
  EXPECT_FALSE(sort.arrowShown);
}

TEST_F(ListModelSortTest, AnotherColumnStartsInItsNaturalOrderWithTheArrowDown) {
  apply_three();
  model_.sortByColumn(kPublisher);
  EXPECT_EQ(list_.told(), (Told{"arrow 24 down", "sort"}));
  EXPECT_EQ(list_.texts(), (Names{"b", "c", "a"}));
  EXPECT_TRUE(model_.sort_state().arrowShown);
}

TEST_F(ListModelSortTest, SameColumnAgainTurnsTheDirection) {
  apply_three();
  model_.sortByColumn(kPublisher);
  list_.told();
  model_.sortByColumn(kPublisher);
  EXPECT_EQ(list_.told(), (Told{"arrow 24 none", "arrow 24 up", "sort"}));
  EXPECT_EQ(list_.texts(), (Names{"a", "c", "b"}));
  model_.sortByColumn(kPublisher);
  EXPECT_EQ(list_.texts(), (Names{"b", "c", "a"}));
}

TEST_F(ListModelSortTest, ArrowLeavesTheOldColumn) {
  apply_three();
  model_.sortByColumn(kPublisher);
  list_.told();
  model_.sortByColumn(0);
  EXPECT_EQ(list_.told(), (Told{"arrow 24 none", "arrow 0 down", "sort"}));
}

TEST_F(ListModelSortTest, FirstChoiceOfTheDateTurnsItsDirection) {
  apply_three();
  model_.sortByColumn(kInstallDateColumn);
  EXPECT_EQ(list_.told(), (Told{"arrow 6 down", "sort"}));
  EXPECT_EQ(list_.texts(), (Names{"c", "a", "b"}));
}

TEST_F(ListModelSortTest, ColumnWithoutComparatorOnlyTakesTheArrowAway) {
  apply_three();
  model_.sortByColumn(kPublisher);
  for (const int column : {comparatorCount, 1000, -1}) {
    SCOPED_TRACE(column);
    model_.sortByColumn(column);
    EXPECT_FALSE(model_.sort_state().arrowShown);
    EXPECT_EQ(model_.sort_state().column, kPublisher);
    EXPECT_EQ(list_.texts(), (Names{"b", "c", "a"}));
  }
}

TEST_F(ListModelSortTest, NewRowsFindTheirPlaceInTheChosenOrder) {
  apply_three();
  model_.sortByColumn(kPublisher);
  list_.told();
  apply("d", "Ll");
  apply("e", "z");
  apply("f", "A");
  EXPECT_EQ(list_.told(), (Told{"insert 2 d", "insert end e", "insert 0 f"}));
}

TEST_F(ListModelSortTest, EqualRowsAreTheControlsToOrder) {
  list_.reverse_equals = true;
  apply("a", "same", "01.02.2013");
  apply("b", "same", "01.02.2012");
  apply("c", "same", "01.02.2011");
  model_.sortByColumn(kPublisher);
  EXPECT_EQ(list_.texts(), (Names{"c", "b", "a"}));
  // The model knows of it: lines are found, and new ones land behind all of their equals.
  list_.told();
  model_.removeEntry(make_key("c"));
  apply("d", "same");
  apply("e", "earlier");
  EXPECT_EQ(list_.told(), (Told{"delete 0", "insert end d", "insert 0 e"}));
  model_.rebuildList();
  EXPECT_EQ(list_.texts(), (Names{"e", "a", "b", "d"}));
}

TEST_F(ListModelSortTest, ReversingTheDirectionLeavesEqualRowsToTheControl) {
  apply("a", "same", "01.02.2013");
  apply("b", "same", "01.02.2012");
  list_.questions = {{1, 2}};
  model_.sortByColumn(kPublisher);
  EXPECT_EQ(list_.answers, std::vector<int>{0});
  model_.sortByColumn(kPublisher);
  EXPECT_EQ(list_.answers, std::vector<int>{0});
  EXPECT_EQ(list_.texts(), (Names{"a", "b"}));
}

TEST_F(ListModelSortTest, OrderOfAnIdThatIsGoneIsUndecided) {
  apply_three();
  list_.questions = {{1, 2}, {2, 1}, {1, 99}, {99, 1}, {0, 0}};
  model_.sortByColumn(kPublisher);
  EXPECT_EQ(list_.answers, (std::vector<int>{1, -1, 0, 0, 0}));
}

TEST_F(ListModelSortTest, UnknownSizesSortBelowEveryRealSize) {
  for (const int32_t size : {0, -1, 5}) {
    Entry entry = make_entry(String::formatted("%d", size).c_str());
    entry.size = size;
    model_.applyEntry(entry);
  }
  model_.sortByColumn(8);
  EXPECT_EQ(list_.texts(), (Names{"-1", "0", "5"}));
}

TEST_F(ListModelSortTest, MergeThatChangesTheSortKeyLeavesTheRowUntilTheNextSort) {
  apply_three();
  apply("c", "", "01.02.2020");
  EXPECT_EQ(list_.texts(), (Names{"b", "a", "c"}));
  model_.rebuildList();
  EXPECT_EQ(list_.texts(), (Names{"c", "b", "a"}));
}

TEST_F(ListModelSortTest, RowOutOfItsPlaceMisleadsNoOther) {
  for (int year = 2001; year <= 2009; ++year)
    apply(String::formatted("%d", year).c_str(), "", String::formatted("01.02.%d", year).c_str());
  for (const char* name : {"2005", "2004", "2001"})
    apply(name, "", "01.02.2030");
  apply("mid", "", "01.06.2006");
  apply("low", "", "01.06.2002");
  apply("lowest", "", "01.02.1999");
  apply("high", "", "01.06.2029");
  EXPECT_EQ(list_.texts(), (Names{"high", "2009", "2008", "2007", "mid", "2006", "2005", "2004",
                                  "2003", "low", "2002", "2001", "lowest"}));
  model_.sortByColumn(0);
  model_.sortByColumn(kInstallDateColumn);
  EXPECT_EQ(list_.texts().front(), "lowest");
  EXPECT_EQ(list_.texts().back(), "2005");
}

TEST_F(ListModelSortTest, ClearedMarksLeaveTheRowsUntilTheNextSort) {
  for (const char* name : {"a", "b", "c"}) {
    Entry entry = make_entry(name);
    entry.changed = name[0] == 'b' ? -1 : 0;
    model_.applyEntry(entry);
  }
  model_.sortByColumn(kChangesColumn);
  EXPECT_EQ(list_.texts(), (Names{"b", "a", "c"}));
  model_.clear_marks();
  EXPECT_EQ(list_.texts(), (Names{"b", "a", "c"}));
  model_.rebuildList();
  EXPECT_EQ(list_.texts(), (Names{"a", "b", "c"}));
}

TEST_F(ListModelSortTest, SortStateOutlastsClearing) {
  apply_three();
  model_.sortByColumn(kPublisher);
  model_.clear();
  apply_three();
  EXPECT_EQ(list_.texts(), (Names{"b", "c", "a"}));
}

TEST_F(ListModelSortTest, SelectionSurvivesASort) {
  apply_three();
  list_.choose(0);
  model_.sortByColumn(kPublisher);
  model_.sortByColumn(kPublisher);
  EXPECT_EQ(list_.texts(), (Names{"a", "c", "b"}));
  EXPECT_EQ(list_.told(), (Told{"arrow 24 down", "sort", "show 0", "select 0 3", "arrow 24 none",
                                "arrow 24 up", "sort", "show 2", "select 2 3"}));
  EXPECT_EQ(list_.mark, 2);
}

TEST_F(ListModelSortTest, RebuildSpeaksToTheControlInThisOrder) {
  apply_three();
  list_.choose(1);
  EXPECT_EQ(model_.rebuildList(), 3u);
  EXPECT_EQ(list_.told(), (Told{"delete all", "freeze", "insert end b", "insert end a",
                                "insert end c", "thaw", "show 1", "select 1 3"}));
}

TEST_F(ListModelSortTest, SelectionSurvivesRebuildsAsLongAsItsRowIsShown) {
  apply_three();
  list_.choose(1);
  model_.searchChanged("a");
  EXPECT_EQ(list_.mark, 0);
  EXPECT_EQ(list_.state(0), ListControl::kFocused | ListControl::kSelected);
  model_.searchChanged("");
  EXPECT_EQ(list_.mark, 1);
  model_.searchChanged("c");
  EXPECT_EQ(list_.mark, -1);
  model_.searchChanged("");
  EXPECT_EQ(list_.mark, -1);
}

TEST_F(ListModelSortTest, RowThatWasChosenButNotSelectedStaysSo) {
  apply_three();
  list_.choose(2);
  list_.lines[2].state = 0;
  list_.told();
  model_.rebuildList();
  EXPECT_EQ(list_.state(2), 0u);
  EXPECT_EQ(list_.mark, 2);
}

TEST_F(ListModelSortTest, MarkBeyondTheLastLineIsNone) {
  apply_three();
  list_.mark = 3;
  model_.rebuildList();
  EXPECT_EQ(list_.mark, -1);
  list_.mark = 3;
  list_.told();
  model_.sortByColumn(kPublisher);
  EXPECT_EQ(list_.told(), (Told{"arrow 24 down", "sort"}));
}

TEST_F(ListModelSortTest, EmptyResultIsTold) {
  apply_three();
  EXPECT_EQ(model_.searchChanged("nothing like this"), 0u);
  EXPECT_EQ(list_.count(), 0);
  EXPECT_EQ(model_.size(), 3u);
  EXPECT_EQ(model_.searchChanged(""), 3u);
}

TEST_F(ListModelSortTest, GroupingShowsSubPackagesInTreeOrderUnderOneHeading) {
  apply("b", "");
  Entry part = make_entry("x");
  part.parent = "a";
  model_.applyEntry(part);
  apply("a", "");
  list_.told();
  EXPECT_TRUE(model_.selectGroup(1));
  EXPECT_EQ(model_.type(), kTypeSubPackages);
  EXPECT_EQ(list_.told(), (Told{"groups on", "group 101 Gruppen-Titel 10", "delete all", "freeze",
                                "insert end b", "insert end x", "insert end a", "thaw", "sort"}));
  EXPECT_EQ(list_.texts(), (Names{"a", "x", "b"}));
  for (const RecordingList::Line& line : list_.lines)
    EXPECT_EQ(line.group, 101);
  EXPECT_EQ(model_.sort_state().column, kTreeColumn);
  EXPECT_EQ(model_.sort_state().descending, 0);
}

TEST_F(ListModelSortTest, UngroupingLeavesTheTypeAloneAndSortsByTheTree) {
  apply("b", "");
  Entry part = make_entry("x");
  part.parent = "a";
  model_.applyEntry(part);
  apply("a", "");
  EXPECT_FALSE(model_.selectGroup(0));
  EXPECT_EQ(model_.type(), kTypeNormal);
  EXPECT_EQ(list_.texts(), (Names{"a", "b"}));
}

TEST_F(ListModelSortTest, GroupingAgainTurnsTheDirection) {
  apply_three();
  model_.selectType(kTypeAll);
  EXPECT_FALSE(model_.selectGroup(2));
  list_.told();
  EXPECT_FALSE(model_.selectGroup(2));
  EXPECT_EQ(list_.texts(), (Names{"c", "b", "a"}));
  // The tree has no header of its own that could lose its arrow.
  EXPECT_EQ(list_.told(),
            (Told{"arrow 31 none", "groups on", "group 101 Gruppen-Titel 10", "sort"}));
  EXPECT_EQ(model_.type(), kTypeAll);
}

TEST_F(ListModelSortTest, GroupingTakesTheArrowAwayAndUngroupingDoesNot) {
  apply_three();
  model_.selectType(kTypeAll);
  model_.sortByColumn(kPublisher);
  list_.told();
  model_.selectGroup(0);
  EXPECT_EQ(list_.told(), (Told{"groups off", "group 101 Gruppen-Titel 10", "sort"}));
  model_.sortByColumn(kPublisher);
  list_.told();
  model_.selectGroup(1);
  EXPECT_EQ(list_.told(),
            (Told{"arrow 24 none", "groups on", "group 101 Gruppen-Titel 10", "sort"}));
}

TEST_F(ListModelSortTest, RowsThatComeLaterJoinTheGroup) {
  model_.selectGroup(1);
  apply("a", "");
  EXPECT_EQ(list_.lines[0].group, 101);
  model_.selectGroup(0);
  apply("b", "");
  // The direction has turned.
  EXPECT_EQ(list_.texts(), (Names{"b", "a"}));
  EXPECT_EQ(list_.lines[0].group, ListControl::kNoGroup);
  list_.told();
  model_.set_group_view();
  EXPECT_EQ(list_.told(), (Told{"groups off", "group 101 Gruppen-Titel 10"}));
}

// Eight rows, and for each of the 32 orders a permutation of them that, forwards and backwards, no
// other order has.
constexpr int kRows = 8;

/// The column's digits in the factorial number system choose among the places that are left.
int place_in_column(int row, int column) {
  std::vector<int> left = {0, 1, 2, 3, 4, 5, 6, 7};
  int number = 1117 * column + 4321;
  for (int i = 0; i < row; ++i) {
    const auto choices = static_cast<int>(left.size());
    left.erase(left.begin() + number % choices);
    number /= choices;
  }
  return left[static_cast<size_t>(number) % left.size()];
}

constexpr const char* kByteTexts[] = {"B", "D", "F", "_x", "a", "c", "e", "g"};
/// Where these stand when they are collated: _x a B c D e F g.
constexpr int kCollatedPlaces[] = {2, 4, 6, 0, 1, 3, 5, 7};
constexpr const char* kFoldTexts[] = {"-z", "_Y", "9x", "aA", "B", "c", "D", "e"};
constexpr const char* kNames[] = {"(w", "{v", "5", "a", "B", "c", "D", "e"};
constexpr const char* kProgramNames[] = {"{5", "7", "[A", "(b", "C", "-d", "E", "  f"};
constexpr const char* kVersions[] = {"1", "1.2", "1.2.1", "1.2a", "1.10", "2", "9.9", "10"};

struct TextColumn {
  int column;
  String Entry::*field;
  const char* const (&texts)[kRows];
};
const TextColumn kTextColumns[] = {
    {0, &Entry::name, kNames},
    {1, &Entry::source, kByteTexts},
    {2, &Entry::displayName, kProgramNames},
    {3, &Entry::displayVersion, kVersions},
    {4, &Entry::parent, kByteTexts},
    {5, &Entry::parentName, kFoldTexts},
    {9, &Entry::uninstallCmd, kByteTexts},
    {10, &Entry::modifyCmd, kByteTexts},
    {11, &Entry::installerPath, kFoldTexts},
    {13, &Entry::displayIcon, kFoldTexts},
    {14, &Entry::installLocation, kFoldTexts},
    {16, &Entry::packagePath, kFoldTexts},
    {22, &Entry::comments, kFoldTexts},
    {23, &Entry::user, kFoldTexts},
    {24, &Entry::publisher, kFoldTexts},
    {25, &Entry::contact, kFoldTexts},
    {26, &Entry::helpURL, kFoldTexts},
    {27, &Entry::helpPhone, kFoldTexts},
    {28, &Entry::aboutURL, kFoldTexts},
    {29, &Entry::updateURL, kFoldTexts},
};
constexpr struct {
  int column;
  DateTime Entry::*field;
} kDateColumns[] = {
    {6, &Entry::installDateValue}, {7, &Entry::uninstallDateValue}, {15, &Entry::lastUseDateValue}};
constexpr struct {
  int column;
  int32_t Entry::*field;
} kNumberColumns[] = {{8, &Entry::size},      {12, &Entry::OK},      {17, &Entry::features},
                      {18, &Entry::patches},  {19, &Entry::is64Bit}, {20, &Entry::systemComponent},
                      {21, &Entry::frequency}};

/// As much of the order of changes as there is: new, unchanged, changed.
int change_of(int row) {
  return std::array{-1, 0, 4}[static_cast<size_t>(place_in_column(row, kChangesColumn) / 3)];
}

Entry disagreeing_row(int row) {
  Entry entry;
  entry.keyName = String::formatted("row %d", row);
  for (const TextColumn& c : kTextColumns)
    entry.*c.field = c.texts[place_in_column(row, c.column)];
  for (const auto& c : kDateColumns) {
    const auto place = static_cast<uint16_t>(place_in_column(row, c.column));
    // The last can't be converted.
    (entry.*c.field).time.wYear = 2020;
    (entry.*c.field).time.wMonth = static_cast<uint16_t>(place + 6);
    (entry.*c.field).time.wDay = 1;
  }
  for (const auto& c : kNumberColumns) {
    // Negative ones are the greatest where numbers have no sign.
    const int place = place_in_column(row, c.column);
    entry.*c.field = c.column == 20 ? (place < 4 ? place : place - kRows) : place - 2;
  }
  entry.changed = change_of(row);
  return entry;
}

/// Place of a row in a column's natural order.
int expected_place(int row, int column) {
  if (column == kChangesColumn) return change_of(row);
  // Every row has a parent, so the tree goes by the parents' collation.
  if (column == kTreeColumn) return kCollatedPlaces[place_in_column(row, 4)];
  return place_in_column(row, column);
}

class EveryColumn : public testing::Test {
 protected:
  EveryColumn() {
    model_.selectType(kTypeAll);
    for (int row = 0; row < kRows; ++row)
      model_.applyEntry(disagreeing_row(row));
  }
  /// Expected places of the rows as they stand.
  std::vector<int> places(int column) const {
    std::vector<int> all;
    for (const uint32_t id : list_.ids())
      all.push_back(expected_place(static_cast<int>(id) - 1, column));
    return all;
  }
  RecordingList list_;
  ListModel model_{list_, CellTexts{"changed", "new"}};
};

TEST_F(EveryColumn, SortsBothWays) {
  for (int column = 0; column < comparatorCount; ++column) {
    SCOPED_TRACE(column);
    model_.sortByColumn(column);
    std::vector<int> ascending = places(column);
    EXPECT_TRUE(std::is_sorted(ascending.begin(), ascending.end()));
    model_.sortByColumn(column);
    std::vector<int> descending = places(column);
    EXPECT_TRUE(std::is_sorted(descending.rbegin(), descending.rend()));
    EXPECT_NE(ascending, descending);
  }
}

TEST_F(EveryColumn, HasAnOrderOfItsOwn) {
  std::set<std::vector<uint32_t>> orders;
  for (int column = 0; column < comparatorCount; ++column) {
    model_.rebuildList();
    model_.sortByColumn(column);
    orders.insert(list_.ids());
    model_.sortByColumn(column);
    orders.insert(list_.ids());
  }
  EXPECT_EQ(orders.size(), static_cast<size_t>(2 * comparatorCount));
}

TEST_F(EveryColumn, TakesNewRowsAndRebuildsAsASortWouldPutThem) {
  for (int column = 0; column < comparatorCount; ++column) {
    for (const bool turned : {false, true}) {
      SCOPED_TRACE(String::formatted("%d %s", column, turned ? "turned" : "natural").c_str());
      RecordingList list;
      ListModel model(list, CellTexts());
      model.selectType(kTypeAll);
      model.sortByColumn(column);
      if (turned) model.sortByColumn(column);
      for (int row = 0; row < kRows; ++row)
        model.applyEntry(disagreeing_row(row));
      const std::vector<uint32_t> inserted = list.ids();
      model.rebuildList();
      EXPECT_EQ(list.ids(), inserted);
      std::vector<int> expected;
      expected.reserve(inserted.size());
      for (const uint32_t id : inserted)
        expected.push_back(expected_place(static_cast<int>(id) - 1, column));
      if (model.sort_state().descending != 0) std::reverse(expected.begin(), expected.end());
      EXPECT_TRUE(std::is_sorted(expected.begin(), expected.end()));
    }
  }
}

}  // namespace
