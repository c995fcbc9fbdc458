#include "view/list_model.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "view/entry_test_support.h"
#include "view/recording_list_test_support.h"

namespace {

using Told = std::vector<std::string>;
using Names = std::vector<std::string>;

class ListModelTest : public testing::Test {
 protected:
  RecordingList list_;
  ListModel model_{list_, CellTexts{"changed", "new"}};
};

TEST_F(ListModelTest, NewestInstallationStandsFirst) {
  model_.applyEntry(make_entry("old", "01.02.2003"));
  model_.applyEntry(make_entry("newest", "01.02.2013"));
  model_.applyEntry(make_entry("middle", "01.02.2008"));
  EXPECT_EQ(list_.texts(), (Names{"newest", "middle", "old"}));
  EXPECT_EQ(list_.told(), (Told{"insert end old", "insert 0 newest", "insert 1 middle"}));
}

TEST_F(ListModelTest, DatesThatCannotBeConvertedAreGreaterThanAllOthers) {
  model_.applyEntry(make_entry("dated", "01.02.2013"));
  model_.applyEntry(make_entry("none"));
  model_.applyEntry(make_entry("impossible", "31/31/2013"));
  EXPECT_EQ(list_.texts(), (Names{"none", "impossible", "dated"}));
}

TEST_F(ListModelTest, EqualRowsStayInTheOrderOfTheirArrival) {
  for (const char* name : {"c", "a", "b"})
    model_.applyEntry(make_entry(name, "01.02.2013"));
  EXPECT_EQ(list_.texts(), (Names{"c", "a", "b"}));
  model_.rebuildList();
  EXPECT_EQ(list_.texts(), (Names{"c", "a", "b"}));
}

TEST_F(ListModelTest, NewRowLandsBehindItsEqualsInFrontOfTheNextGreater) {
  model_.applyEntry(make_entry("a", "01.02.2013"));
  model_.applyEntry(make_entry("b", "01.02.2012"));
  model_.applyEntry(make_entry("a2", "01.02.2013"));
  EXPECT_EQ(list_.texts(), (Names{"a", "a2", "b"}));
}

TEST_F(ListModelTest, IdsCountFromOne) {
  model_.applyEntry(make_entry("a", "01.02.2013"));
  model_.applyEntry(make_entry("b", "01.02.2012"));
  EXPECT_EQ(list_.ids(), (std::vector<uint32_t>{1, 2}));
  EXPECT_EQ(model_.find(0), nullptr);
  EXPECT_STREQ(model_.find(2)->name.c_str(), "b");
}

TEST_F(ListModelTest, RowThatTheFilterHidesIsKeptAndHasNoLine) {
  UninstallEntry part = make_entry("part");
  part.parent = "whole";
  model_.applyEntry(part);
  EXPECT_EQ(model_.size(), 1u);
  EXPECT_EQ(list_.told(), Told{});
  EXPECT_STREQ(model_.cellText(1, 0).c_str(), "part");
  EXPECT_EQ(model_.selectType(kTypeSubPackages), 1u);
  EXPECT_EQ(list_.texts(), Names{"part"});
}

TEST_F(ListModelTest, RowOfAKnownPackageIsMergedAndRedrawn) {
  model_.applyEntry(make_entry("a", "01.02.2013"));
  model_.applyEntry(make_entry("b", "01.02.2012"));
  list_.told();
  UninstallEntry again = make_entry("b", "", 0);
  again.publisher = "Maker";
  model_.applyEntry(again);
  EXPECT_EQ(model_.size(), 2u);
  EXPECT_STREQ(model_.find(2)->publisher.c_str(), "Maker");
  EXPECT_EQ(list_.told(), Told{"redraw 1"});
}

TEST_F(ListModelTest, TwoSourcesOfOnePackageAreOneLineThatNamesBoth) {
  UninstallEntry first = make_entry("a", "01.02.2013");
  first.source = "One";
  UninstallEntry second = make_entry("a", "", 0);
  second.source = "Two";
  model_.applyEntry(first);
  model_.applyEntry(second);
  EXPECT_EQ(list_.count(), 1);
  EXPECT_STREQ(model_.cellText(1, 1).c_str(), "One, Two");
}

TEST_F(ListModelTest, RowWithoutRootMergesIntoTheFirstPackageOfItsName) {
  model_.applyEntry(make_entry("a", "", kTestCurrentUser));
  model_.applyEntry(make_entry("a", "", kTestLocalMachine));
  UninstallEntry again = make_entry("a", "", 0);
  again.publisher = "Maker";
  model_.applyEntry(again);
  EXPECT_STREQ(model_.find(1)->publisher.c_str(), "Maker");
  EXPECT_STREQ(model_.find(2)->publisher.c_str(), "");
}

TEST_F(ListModelTest, MergeOfAHiddenRowDrawsNothing) {
  UninstallEntry part = make_entry("part");
  part.parent = "whole";
  model_.applyEntry(part);
  model_.applyEntry(part);
  EXPECT_EQ(list_.told(), Told{});
}

TEST_F(ListModelTest, MergeDoesNotTestTheFilterAgain) {
  UninstallEntry entry = make_entry("a");
  model_.applyEntry(entry);
  entry.parent = "whole";
  model_.applyEntry(entry);
  EXPECT_EQ(list_.count(), 1);
  EXPECT_EQ(model_.rebuildList(), 0u);

  UninstallEntry unnamed = make_entry("b");
  unnamed.displayName = "";
  model_.applyEntry(unnamed);
  model_.applyEntry(make_entry("b"));
  EXPECT_EQ(list_.count(), 0);
  EXPECT_EQ(model_.rebuildList(), 1u);
}

TEST_F(ListModelTest, MergeNeverTakesAMark) {
  UninstallEntry entry = make_entry("a");
  model_.applyEntry(entry);
  entry.changed = 4;
  model_.applyEntry(entry);
  EXPECT_STREQ(model_.cellText(1, kChangesColumn).c_str(), "");
  UninstallEntry fresh = make_entry("b");
  fresh.changed = -1;
  model_.applyEntry(fresh);
  EXPECT_STREQ(model_.cellText(2, kChangesColumn).c_str(), "new");
}

TEST_F(ListModelTest, SameNameUnderBothRootsIsTwoPackages) {
  model_.applyEntry(make_entry("a"));
  model_.applyEntry(make_entry("a", "", kTestCurrentUser));
  EXPECT_EQ(model_.size(), 2u);
}

TEST_F(ListModelTest, RemovalTakesTheEntryWithThatNameAndRoot) {
  model_.applyEntry(make_entry("a"));
  model_.applyEntry(make_entry("a", "", kTestCurrentUser));
  list_.told();
  model_.removeEntry(make_key("a", "-2147483647"));
  ASSERT_EQ(model_.size(), 1u);
  EXPECT_EQ(list_.told(), Told{"delete 1"});
  EXPECT_EQ(list_.ids(), std::vector<uint32_t>{1});
  model_.removeEntry(make_key("nothing"));
  model_.removeEntry(make_key("a", "0"));
  model_.removeEntry(RowKey{{"a"}});
  EXPECT_EQ(model_.size(), 1u);
  EXPECT_EQ(list_.told(), Told{});
}

TEST_F(ListModelTest, RootOfZeroHasNoSpecialMeaningForARemoval) {
  model_.applyEntry(make_entry("a", "", 0));
  model_.removeEntry(make_key("a"));
  EXPECT_EQ(model_.size(), 1u);
  model_.removeEntry(make_key("a", ""));
  EXPECT_EQ(model_.size(), 0u);
}

TEST_F(ListModelTest, RemovalOfAHiddenRowDeletesNoLine) {
  UninstallEntry part = make_entry("part");
  part.parent = "whole";
  model_.applyEntry(part);
  model_.applyEntry(make_entry("a"));
  list_.told();
  model_.removeEntry(make_key("part"));
  EXPECT_EQ(model_.size(), 1u);
  EXPECT_EQ(list_.told(), Told{});
}

TEST_F(ListModelTest, EntryOfAKeyWithAPrefixIsNotFoundByItsKeyName) {
  UninstallEntry nested = make_entry("{1}.KB5");
  nested.keyName = "KB5";
  model_.applyEntry(nested);
  model_.removeEntry(make_key("KB5"));
  EXPECT_EQ(model_.size(), 1u);
}

TEST_F(ListModelTest, RemovedPackageIsANewOneWhenItComesAgain) {
  model_.applyEntry(make_entry("a"));
  model_.removeEntry(make_key("a"));
  model_.applyEntry(make_entry("a"));
  EXPECT_EQ(list_.ids(), std::vector<uint32_t>{2});
}

TEST_F(ListModelTest, RowsStillFindTheirPlaceAfterARemoval) {
  model_.applyEntry(make_entry("a", "01.02.2013"));
  model_.applyEntry(make_entry("b", "01.02.2012"));
  model_.removeEntry(make_key("a"));
  model_.applyEntry(make_entry("c", "01.02.2014"));
  EXPECT_EQ(list_.texts(), (Names{"c", "b"}));
}

TEST_F(ListModelTest, ClearingForgetsEverythingButTheFilter) {
  model_.selectType(kTypeAll);
  model_.applyEntry(make_entry("a"));
  model_.clear();
  EXPECT_EQ(model_.size(), 0u);
  EXPECT_EQ(list_.count(), 0);
  EXPECT_TRUE(model_.cellText(1, 0).empty());
  UninstallEntry unnamed = make_entry("b");
  unnamed.displayName = "";
  model_.applyEntry(unnamed);
  EXPECT_EQ(list_.ids(), std::vector<uint32_t>{2});
}

TEST_F(ListModelTest, AVisitMeetsAllPackagesInTheOrderOfTheirIdsWhateverIsShown) {
  model_.applyEntry(make_entry("b", "01.02.2012"));
  model_.applyEntry(make_entry("gone"));
  UninstallEntry hidden = make_entry("hidden");
  hidden.systemComponent = 1;
  model_.applyEntry(hidden);
  model_.applyEntry(make_entry("a", "01.02.2013"));
  model_.removeEntry(make_key("gone"));
  Names visited;
  model_.visit_packages(
      [&](const UninstallEntry& entry) { visited.emplace_back(entry.name.c_str()); });
  EXPECT_EQ(visited, (Names{"b", "hidden", "a"}));
}

TEST_F(ListModelTest, FlagsFollowTheTypeSelection) {
  EXPECT_FALSE(model_.flags().showSystemComponents);
  model_.selectType(kTypeSystemComponents);
  EXPECT_TRUE(model_.flags().showSystemComponents);
  EXPECT_FALSE(model_.flags().showUnnamed);
  model_.selectType(kTypeAll);
  EXPECT_TRUE(model_.flags().showUnnamed);
}

TEST_F(ListModelTest, BatchReachesTheControlInOnePassFromTheTop) {
  model_.applyEntry(make_entry("b", "01.02.2012"));
  list_.told();
  model_.begin_batch();
  model_.applyEntry(make_entry("d", "01.02.2010"));
  model_.applyEntry(make_entry("a", "01.02.2013"));
  model_.applyEntry(make_entry("c", "01.02.2011"));
  EXPECT_EQ(list_.told(), Told{"freeze"});
  model_.end_batch();
  EXPECT_EQ(list_.told(), (Told{"insert 0 a", "insert 2 c", "insert end d", "thaw"}));
  EXPECT_EQ(list_.texts(), (Names{"a", "b", "c", "d"}));
}

TEST_F(ListModelTest, RowsComeAndGoWithinABatch) {
  for (const char* name : {"a", "b", "c"})
    model_.applyEntry(make_entry(name));
  list_.told();
  model_.begin_batch();
  model_.applyEntry(make_entry("top", "01.02.2013"));
  UninstallEntry known = make_entry("c");
  known.publisher = "Maker";
  model_.applyEntry(known);
  model_.removeEntry(make_key("b"));
  model_.removeEntry(make_key("top"));
  model_.applyEntry(make_entry("d"));
  model_.end_batch();
  // The end of the batch redraws everything.
  EXPECT_EQ(list_.told(), (Told{"freeze", "delete 1", "insert end d", "thaw"}));
  EXPECT_EQ(list_.texts(), (Names{"a", "c", "d"}));
}

TEST_F(ListModelTest, RemovalInABatchCountsOnlyLinesThatTheControlHas) {
  model_.applyEntry(make_entry("old", "01.02.2003"));
  list_.told();
  model_.begin_batch();
  model_.applyEntry(make_entry("newer", "01.02.2013"));
  model_.removeEntry(make_key("old"));
  model_.end_batch();
  EXPECT_EQ(list_.told(), (Told{"freeze", "delete 0", "insert end newer", "thaw"}));
}

TEST_F(ListModelTest, ClearedMarksAreDrawn) {
  model_.clear_marks();
  EXPECT_EQ(list_.told(), Told{});
  UninstallEntry marked = make_entry("a");
  marked.changed = -1;
  model_.applyEntry(marked);
  EXPECT_STREQ(model_.cellText(1, kChangesColumn).c_str(), "new");
  list_.told();
  model_.clear_marks();
  EXPECT_STREQ(model_.cellText(1, kChangesColumn).c_str(), "");
  EXPECT_EQ(list_.told(), (Told{"freeze", "thaw"}));
}

TEST_F(ListModelTest, IconOfAShownRowWaitsToBeLoaded) {
  UninstallEntry shown = make_entry("shown");
  shown.displayIcon = "a.exe,0";
  UninstallEntry hidden = make_entry("hidden");
  hidden.displayIcon = "hidden.exe";
  hidden.parent = "p";
  model_.applyEntry(shown);
  model_.applyEntry(hidden);
  model_.applyEntry(make_entry("none"));
  ASSERT_EQ(model_.images().size(), 1u);
  EXPECT_EQ(model_.images().at("a.exe,0"), -1);
  for (const RecordingList::Line& line : list_.lines)
    EXPECT_EQ(line.image, 0);
}

TEST_F(ListModelTest, KnownIconIsShownAtOnce) {
  model_.images()["a.exe"] = 7;
  UninstallEntry entry = make_entry("a");
  entry.displayIcon = "a.exe";
  model_.applyEntry(entry);
  EXPECT_EQ(list_.lines[0].image, 7);
  model_.images()["a.exe"] = 8;
  model_.rebuildList();
  EXPECT_EQ(list_.lines[0].image, 8);
}

TEST_F(ListModelTest, CellsAreComposedOnDemand) {
  UninstallEntry entry = make_entry("key");
  entry.displayName = "";
  entry.features = 3;
  model_.selectType(kTypeAll);
  model_.applyEntry(entry);
  EXPECT_STREQ(model_.cellText(1, 2).c_str(), "key");
  EXPECT_STREQ(model_.cellText(1, 17).c_str(), "3");
  EXPECT_STREQ(model_.cellText(1, 31).c_str(), "");
  EXPECT_STREQ(model_.cellText(2, 0).c_str(), "");
}

TEST_F(ListModelTest, HiddenColumnsGetAWidth) {
  for (int i = 0; i < kListColumns; ++i)
    list_.add_column(i, "", list_column(i).width, ListControl::Align::left);
  list_.widths[1] = 33;
  model_.show_all_columns();
  EXPECT_EQ(list_.told(), (Told{"width 4 100", "width 7 100", "width 11 100"}));
}

}  // namespace
