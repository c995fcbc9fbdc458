#include "inventory/history_merge.h"

#include <gtest/gtest.h>

#include <string>

#include "inventory/package_schema.h"

namespace {

Row package(const char* name) {
  Row row = make_package_row();
  cell(row, PackageColumn::keyName).text = name;
  cell(row, PackageColumn::HKEY_ROOT).set_number(-2147483646);
  cell(row, PackageColumn::displayName).text = name;
  return row;
}

/// A baseline that holds one package.
class HistoryMergeTest : public testing::Test {
 protected:
  HistoryMergeTest() {
    history_.lastEntries.addRow(package("App"));
    history_.loaded();
    history_.begin_cycle();
  }
  /// What the row is marked with, which its cell's text says as well.
  int mark(Row row) {
    history_.mark(row);
    const Cell& changed = cell(row, PackageColumn::changed);
    const std::string text = changed.integer() != 0 ? std::to_string(changed.integer()) : "";
    EXPECT_STREQ(changed.text.c_str(), text.c_str());
    return changed.integer();
  }
  HistoryMerge history_;
  const Table inventory_{packageSchema()};
};

TEST_F(HistoryMergeTest, UnknownPackageIsNew) {
  EXPECT_EQ(mark(package("Other")), -1);
  EXPECT_TRUE(history_.end_cycle(inventory_));
}

TEST_F(HistoryMergeTest, EqualPackageHasNoMark) {
  EXPECT_EQ(mark(package("App")), 0);
  EXPECT_FALSE(history_.end_cycle(inventory_));
}

TEST_F(HistoryMergeTest, EachTrackedColumnHasTheBitOfItsIndexModulo32) {
  for (size_t index = 0; index < kPackageColumns; ++index) {
    const auto column = static_cast<PackageColumn>(index);
    // These make it another package.
    if (column == PackageColumn::keyName || column == PackageColumn::HKEY_ROOT) continue;
    SCOPED_TRACE(index);
    Row row = package("App");
    cell(row, column).text = "7";
    const auto bit = static_cast<int>(1U << (index % 32));
    if (column == PackageColumn::changed) {
      history_.mark(row);
      EXPECT_STREQ(cell(row, column).text.c_str(), "7");
    } else {
      EXPECT_EQ(mark(row), bit);
    }
  }
}

TEST_F(HistoryMergeTest, UpdateAddressAndKeyHaveTheSameBit) {
  Row address = package("App");
  cell(address, PackageColumn::updateURL).text = "https://example.org";
  Row name = package("App");
  cell(name, PackageColumn::name).text = "App, renamed";
  EXPECT_EQ(mark(address), 1);
  EXPECT_EQ(mark(name), 1);
}

TEST_F(HistoryMergeTest, PackageOfWhichAllIsOtherIsMarkedAsANewOne) {
  Row row = package("App");
  for (size_t index = 0; index < kPackageColumns; ++index) {
    const auto column = static_cast<PackageColumn>(index);
    if (column != PackageColumn::keyName && column != PackageColumn::HKEY_ROOT)
      cell(row, column).text = "7";
  }
  history_.mark(row);
  EXPECT_EQ(cell(row, PackageColumn::changed).integer(), -1);
}

TEST_F(HistoryMergeTest, NewDateOfLastUseIsAChange) {
  Row row = package("App");
  cell(row, PackageColumn::lastUseDate).text = "13.01.2009 08:00:00";
  EXPECT_EQ(mark(row), 1 << 17);
  EXPECT_TRUE(history_.end_cycle(inventory_));
}

TEST_F(HistoryMergeTest, OnlyTheTextsOfCellsCount) {
  Row row = package("App");
  cell(row, PackageColumn::is64Bit).value = 1;
  EXPECT_EQ(mark(row), 0);
}

TEST_F(HistoryMergeTest, WithoutBaselineNothingIsMarkedButTheStateIsWorthKeeping) {
  history_.forget();
  EXPECT_EQ(history_.lastEntries.size(), 0u);
  EXPECT_EQ(mark(package("Other")), 0);
  EXPECT_EQ(mark(package("App")), 0);
  EXPECT_TRUE(history_.end_cycle(inventory_));
  EXPECT_FALSE(history_.end_cycle(inventory_));
}

TEST_F(HistoryMergeTest, BaselineWithoutRowsIsNone) {
  HistoryMerge history;
  history.loaded();
  EXPECT_FALSE(history.historyLoaded());
  Row row = package("App");
  history.mark(row);
  EXPECT_STREQ(cell(row, PackageColumn::changed).text.c_str(), "");
}

TEST_F(HistoryMergeTest, EndOfACycleMakesItsInventoryTheBaseline) {
  Table inventory(packageSchema());
  inventory.addRow(package("Other"));
  history_.end_cycle(inventory);
  history_.begin_cycle();
  EXPECT_EQ(mark(package("Other")), 0);
  EXPECT_EQ(mark(package("App")), -1);
}

TEST_F(HistoryMergeTest, EmptyInventoryIsABaselineOfTheRun) {
  history_.end_cycle(inventory_);
  EXPECT_TRUE(history_.historyLoaded());
  EXPECT_EQ(mark(package("App")), -1);
}

TEST_F(HistoryMergeTest, MarkOfOneCycleIsNotThatOfTheNext) {
  mark(package("Other"));
  EXPECT_TRUE(history_.end_cycle(inventory_));
  history_.begin_cycle();
  EXPECT_FALSE(history_.end_cycle(inventory_));
}

}  // namespace
