#include "view/clicked_cell.h"

#include <gtest/gtest.h>

#include <string>

#include "view/recording_list_test_support.h"

namespace {

constexpr int kNameColumn = 2;
constexpr int kContactColumn = 25;

class ClickedCellTest : public testing::Test {
 protected:
  ClickedCellTest() {
    UninstallEntry entry;
    entry.name = entry.keyName = "Alder";
    entry.displayName = "Alder Tools";
    entry.contact = "desk@alder.example";
    model_.applyEntry(entry);
  }

  RecordingList list_;
  ListModel model_{list_, CellTexts{"changed", "new"}};
  ClickedCell cell_{model_};
};

TEST_F(ClickedCellTest, HasNothingBeforeTheFirstClick) {
  EXPECT_TRUE(cell_.text().empty());
  EXPECT_TRUE(cell_.url().empty());
}

TEST_F(ClickedCellTest, HasTheTextOfTheCell) {
  cell_.click(1, kNameColumn);
  EXPECT_STREQ(cell_.text().c_str(), "Alder Tools");
  EXPECT_TRUE(cell_.url().empty());
}

TEST_F(ClickedCellTest, LeadsWhereTheCellLeads) {
  cell_.click(1, kContactColumn);
  EXPECT_STREQ(cell_.url().c_str(), "mailto:desk@alder.example");
}

TEST_F(ClickedCellTest, AClickBesideTheLinesForgetsCellAndAddress) {
  cell_.click(1, kContactColumn);
  cell_.click(0, -1);
  EXPECT_TRUE(cell_.text().empty());
  EXPECT_TRUE(cell_.url().empty());
}

TEST_F(ClickedCellTest, ACellOfAPackageThatHasGoneHasNoText) {
  cell_.click(1, kNameColumn);
  model_.clear();
  EXPECT_TRUE(cell_.text().empty());
}

TEST_F(ClickedCellTest, StaysWithThePackageWhenItsLineMoves) {
  cell_.click(1, kNameColumn);
  UninstallEntry newer;
  newer.name = newer.keyName = "Birch";
  newer.displayName = "Birch";
  model_.applyEntry(newer);
  model_.sortByColumn(kNameColumn);
  model_.sortByColumn(kNameColumn);
  EXPECT_STREQ(cell_.text().c_str(), "Alder Tools");
}

TEST_F(ClickedCellTest, CutsATextToWhatTheListWouldGive) {
  UninstallEntry entry;
  entry.name = entry.keyName = "Long";
  entry.displayName = std::string(1000, 'x').c_str();
  model_.applyEntry(entry);
  cell_.click(2, kNameColumn);
  EXPECT_EQ(cell_.text().length(), 259u);
}

}  // namespace
