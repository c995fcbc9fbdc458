#include "inventory/wmi_hotfixes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "inventory/update_log_test_support.h"
#include "orlo/com_error.h"
#include "orlo/file_test_support.h"
#include "orlo/fixed_clock.h"
#include "platform/memory_wmi.h"

namespace {

using Field = PackageColumn;

constexpr char kQuery[] = "SELECT * FROM Win32_QuickFixEngineering";
constexpr char kNamespace[] = "ROOT/CIMV2";

std::string shown_day(uint16_t year, uint16_t month, uint16_t day) {
  DateTime date;
  date.time = {year, month, 0, day};
  return date.format("%D").c_str();
}

class WmiHotfixesTest : public testing::Test {
 protected:
  void answer(const WmiInstances& instances) { wmi_.answer(kQuery, kNamespace, instances); }
  void read() {
    delivered_.clear();
    ReadWmiHotfixes(wmi_, clock_, rows_, unseen_, [this](const Row& row) {
      delivered_.push_back(row);
      rows_.add(row);
    });
  }
  void read(const WmiInstances& instances) {
    answer(instances);
    read();
  }
  std::string value(size_t row, Field column) const {
    return cell(delivered_.at(row), column).text.c_str();
  }
  void add_row(const char* name) {
    Row row = make_package_row();
    cell(row, Field::name).text = name;
    cell(row, Field::keyName).text = name;
    rows_.add(row);
  }

  const ORLO::FixedClock clock_{{2026, 11, 5, 20, 12}};
  MemoryWmi wmi_;
  ReaderRows rows_;
  std::set<RowKey> unseen_;
  std::vector<Row> delivered_;
};

TEST_F(WmiHotfixesTest, FillTheCellsOfARow) {
  read({{{"Caption", "http://support.example/?kbid=1"},
         {"Description", "Hotfix"},
         {"FixComments", "comment"},
         {"HotFixID", "KB1"},
         {"InstallDate", "2001"},
         {"InstalledBy", "HOME\\ann"},
         {"InstalledOn", "1/15/2011"},
         {"Name", "nobody"},
         {"ServicePackInEffect", "SP4"},
         {"Status", "OK"}}});
  ASSERT_EQ(delivered_.size(), 1u);
  const std::pair<Field, std::string> filled[] = {
      {Field::name, "KB1"},
      {Field::source, "WMI QFE"},
      {Field::displayName, "Hotfix"},
      {Field::displayVersion, "SP4"},
      {Field::installDate, shown_day(2011, 1, 15)},
      {Field::user, "HOME\\ann"},
      {Field::helpURL, "http://support.example/?kbid=1"},
      {Field::size, "-1"},
  };
  ASSERT_EQ(delivered_[0].cells.size(), kPackageColumns);
  for (size_t i = 0; i < kPackageColumns; ++i) {
    SCOPED_TRACE(i);
    std::string expected;
    for (const auto& [column, text] : filled) {
      if (static_cast<size_t>(column) == i) expected = text;
    }
    EXPECT_EQ(value(0, static_cast<Field>(i)), expected);
  }
  EXPECT_EQ(wmi_.queries(),
            std::vector<std::string>{"ROOT/CIMV2: SELECT * FROM Win32_QuickFixEngineering"});
  EXPECT_EQ(wmi_.connections(), 0);
}

TEST_F(WmiHotfixesTest, AnUpdateIsNamedWithItsHotfix) {
  const struct {
    const char* description;
    const char* hotfix;
    const char* shown;
  } cases[] = {
      {"Update", "KB1", "Update KB1"},
      {"Security Update", "KB2", "Security Update KB2"},
      {"Update", "", "Update"},
      {"Security Update", "", "Security Update"},
      {"update", "KB3", "update"},
      {"UPDATE", "KB3", "UPDATE"},
      {"Security update", "KB4", "Security update"},
      {"Update ", "KB5", "Update "},
      {" Update", "KB5", " Update"},
      {"Updates", "KB6", "Updates"},
      {"Hotfix", "KB7", "Hotfix"},
      {"Service Pack", "KB8", "Service Pack"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.shown);
    rows_.clear();
    read({{{"Description", c.description}, {"HotFixID", c.hotfix}}});
    ASSERT_EQ(delivered_.size(), 1u);
    EXPECT_EQ(value(0, Field::displayName), c.shown);
    EXPECT_EQ(value(0, Field::name), c.hotfix);
  }
}

TEST_F(WmiHotfixesTest, ADescriptionOfUpdateInLowerCaseIsNotExtended) {
  read({{{"Description", "update"}, {"HotFixID", "KB1"}}});
  EXPECT_EQ(value(0, Field::displayName), "update");
}

TEST_F(WmiHotfixesTest, ARecordWithoutADescriptionShowsItsServicePackAlone) {
  read({{{"HotFixID", "File 1"},
         {"ServicePackInEffect", "KB2079403"},
         {"InstalledOn", "1/15/2011"},
         {"InstalledBy", "ann"},
         {"Caption", "http://x"}}});
  ASSERT_EQ(delivered_.size(), 1u);
  EXPECT_EQ(value(0, Field::name), "KB2079403");
  EXPECT_EQ(value(0, Field::displayName), "KB2079403");
  EXPECT_EQ(value(0, Field::displayVersion), "");
  EXPECT_EQ(value(0, Field::installDate), "");
  EXPECT_EQ(value(0, Field::user), "ann");
  EXPECT_EQ(value(0, Field::helpURL), "http://x");
}

TEST_F(WmiHotfixesTest, AServicePackOfThatNameIsExtendedToo) {
  read({{{"ServicePackInEffect", "Update"}}});
  EXPECT_EQ(value(0, Field::name), "Update");
  EXPECT_EQ(value(0, Field::displayName), "Update Update");
}

TEST_F(WmiHotfixesTest, ADateThatIsNoneIsShownAsItStands) {
  for (const char* text : {"", "01cba5f0e4a3f7d2", "yesterday", "-"}) {
    SCOPED_TRACE(text);
    rows_.clear();
    read({{{"Description", "x"}, {"HotFixID", "KB1"}, {"InstalledOn", text}}});
    EXPECT_EQ(value(0, Field::installDate), text);
  }
}

TEST_F(WmiHotfixesTest, ADateIsShownWithoutItsTimeOfDay) {
  read({{{"Description", "x"}, {"HotFixID", "KB1"}, {"InstalledOn", "15.01.2011 12:34:56"}}});
  EXPECT_EQ(value(0, Field::installDate), shown_day(2011, 1, 15));
}

TEST_F(WmiHotfixesTest, ARowOfTheRecordsNameSuppressesIt) {
  add_row("Known");
  read({{{"Description", "x"}, {"HotFixID", "KB1"}, {"Name", "kNOWN"}},
        {{"Description", "x"}, {"HotFixID", "KB2"}, {"Name", "Unknown"}}});
  ASSERT_EQ(delivered_.size(), 1u);
  EXPECT_EQ(value(0, Field::name), "KB2");
}

TEST_F(WmiHotfixesTest, ARowOfTheHotfixSuppressesNothing) {
  add_row("KB1");
  read({{{"Description", "x"}, {"HotFixID", "KB1"}}});
  EXPECT_EQ(delivered_.size(), 1u);
}

TEST_F(WmiHotfixesTest, ARecordMayBeSuppressedByTheOneBeforeIt) {
  read({{{"Description", "x"}, {"HotFixID", "KB1"}},
        {{"Description", "x"}, {"HotFixID", "KB2"}, {"Name", "KB1"}},
        {{"Description", "x"}, {"HotFixID", "KB3"}, {"Name", "KB2"}}});
  ASSERT_EQ(delivered_.size(), 2u);
  EXPECT_EQ(value(0, Field::name), "KB1");
  EXPECT_EQ(value(1, Field::name), "KB3");
}

TEST_F(WmiHotfixesTest, AnInstanceWithoutPropertiesIsARowWithoutAName) {
  read({{}});
  ASSERT_EQ(delivered_.size(), 1u);
  EXPECT_EQ(value(0, Field::name), "");
  EXPECT_EQ(value(0, Field::displayName), "");
  EXPECT_EQ(value(0, Field::source), "WMI QFE");
}

TEST_F(WmiHotfixesTest, ARowWithoutANameSuppressesRecordsWithoutAName) {
  read({{},
        {{"HotFixID", "KB1"}, {"Description", "x"}},
        {{"HotFixID", "KB2"}, {"Description", "x"}, {"Name", "other"}}});
  ASSERT_EQ(delivered_.size(), 2u);
  EXPECT_EQ(value(0, Field::name), "");
  EXPECT_EQ(value(1, Field::name), "KB2");
}

TEST_F(WmiHotfixesTest, ASuccessWithoutATitleInTheLogDoesSoToo) {
  const TempFolder folder;
  ReadUpdateLog(folder.make("log", success_line("") + "\n").c_str(), clock_, unseen_,
                [this](const Row& row) { rows_.add(row); });
  read({{{"HotFixID", "KB1"}, {"Description", "x"}}});
  EXPECT_TRUE(delivered_.empty());
}

TEST_F(WmiHotfixesTest, TakeTheRowsKeyOffTheUnseenOnes) {
  const RowKey empty = packageSchema().key_of(make_package_row());
  const RowKey other{{"x", "y"}};
  unseen_ = {empty, other};
  read({{{"HotFixID", "KB1"}}});
  EXPECT_TRUE(unseen_ == std::set<RowKey>{other});
}

TEST_F(WmiHotfixesTest, GiveNoRowWithoutWmi) {
  read();
  EXPECT_TRUE(delivered_.empty());
  answer({{{"HotFixID", "KB1"}}});
  wmi_.refuse();
  read();
  EXPECT_TRUE(delivered_.empty());
  EXPECT_EQ(wmi_.connections(), 0);
}

TEST_F(WmiHotfixesTest, GiveNoRowWhereTheEnumerationDies) {
  wmi_.fail_after(1);
  read({{{"HotFixID", "KB1"}}, {{"HotFixID", "KB2"}}});
  EXPECT_TRUE(delivered_.empty());
}

TEST_F(WmiHotfixesTest, GiveNoRowWithoutAnInstance) {
  read(WmiInstances{});
  EXPECT_TRUE(delivered_.empty());
}

TEST_F(WmiHotfixesTest, PassOnThatAPropertyHasNoText) {
  wmi_.throw_at("Caption");
  answer({{{"Caption", "x"}, {"HotFixID", "KB1"}}});
  EXPECT_THROW(read(), ORLO::ComError);
  EXPECT_TRUE(delivered_.empty());
  EXPECT_EQ(wmi_.connections(), 0);
}

}  // namespace
