// Databases that contradict themselves or are huge, and calls that fail.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "inspect/database_content_test_support.h"

namespace {

class DatabaseContentFaultTest : public DatabaseBed {
 protected:
  DatabaseContentFaultTest() {
    add("A", {{"Key", "s8"}, {"No", "i2"}, {"Text", "s8"}},
        {{"k1", 1, "t1"}, {"k2", 2, "t2"}, {"k3", 3, "t3"}});
    add("B", {{"Key", "s8"}}, {{"b1"}});
  }

  static constexpr char kRowsOfA[] = "select `Key`,`No`,`Text` from `A`";

  /// Loads with the failing call of these words.
  InstallerStatus load_failing(const std::string& call, InstallerStatus status = 1234) {
    DatabaseContent whole;
    HookedDatabases recorder(memory_);
    whole.load(recorder, kPath);
    const auto found = std::find(recorder.calls.begin(), recorder.calls.end(), call);
    EXPECT_NE(found, recorder.calls.end()) << call;
    databases_.failing = static_cast<size_t>(found - recorder.calls.begin());
    databases_.status = status;
    return load_status();
  }
  size_t columns_of(const char* table) const { return content_.schemas().at(table).column_count(); }
};

TEST_F(DatabaseContentFaultTest, NothingIsKnownIfTheNamesCannotBeAskedFor) {
  EXPECT_EQ(load_failing("open_view select `Name` from `_Tables`"), 1234U);
  EXPECT_TRUE(content_.schemas().empty());
}

TEST_F(DatabaseContentFaultTest, KeepsTheNamesReadUntilOneCannotBeFetched) {
  EXPECT_EQ(load_failing("fetch 2 select `Name` from `_Tables`"), 1234U);
  EXPECT_EQ(content_.schemas().size(), 1U);
  EXPECT_EQ(columns_of("A"), 0U);
  EXPECT_TRUE(content_.tables().empty());
}

TEST_F(DatabaseContentFaultTest, KeepsTheNamesReadUntilOneHasNoText) {
  EXPECT_EQ(load_failing("text 1 of 2 select `Name` from `_Tables`"), 1234U);
  EXPECT_EQ(content_.schemas().size(), 1U);
  EXPECT_TRUE(content_.tables().empty());
}

TEST_F(DatabaseContentFaultTest, KeepsTheColumnsReadUntilATableCannotBeAskedFor) {
  EXPECT_EQ(load_failing("open_view select * from `B`"), 1234U);
  EXPECT_EQ(columns_of("A"), 4U);
  EXPECT_EQ(columns_of("B"), 0U);
  EXPECT_TRUE(content_.tables().empty());
}

TEST_F(DatabaseContentFaultTest, NeedsTheNamesOfColumnsAndTheirTypes) {
  EXPECT_EQ(load_failing("names select * from `B`"), 1234U);
  EXPECT_EQ(columns_of("B"), 0U);
  EXPECT_EQ(load_failing("types select * from `B`", 87), 87U);
  EXPECT_EQ(columns_of("B"), 0U);
}

TEST_F(DatabaseContentFaultTest, TellsTheLastErrorIfColumnsCannotBeCounted) {
  memory_.fail("field_count", 6);
  EXPECT_THROW(load(), ORLO::LWE);
  EXPECT_EQ(columns_of("A"), 0U);
  memory_.fail("field_count", 6);
  EXPECT_EQ(load_status(), 6U);
}

TEST_F(DatabaseContentFaultTest, KeepsTheColumnsReadUntilOneHasNoName) {
  EXPECT_EQ(load_failing("text 3 select * from `A`"), 1234U);
  EXPECT_EQ(columns_of("A"), 3U);
  EXPECT_EQ(columns_of("B"), 0U);
}

TEST_F(DatabaseContentFaultTest, KeepsTheTablesReadUntilOneCannotBeAskedFor) {
  EXPECT_EQ(load_failing("open_view select `Key` from `B`"), 1234U);
  EXPECT_EQ(table_names(content_), (Texts{"A", "B"}));
  EXPECT_EQ(shown("A").size(), 3U);
  EXPECT_EQ(shown("B"), Lines());
}

TEST_F(DatabaseContentFaultTest, TakesAFailingFetchForTheEndOfTheTable) {
  EXPECT_EQ(load_failing(std::string("fetch 3 ") + kRowsOfA), kInstallerSuccess);
  EXPECT_EQ(shown("A"), (Lines{{"1", "k1", "1", "t1"}, {"2", "k2", "2", "t2"}}));
  EXPECT_EQ(shown("B"), (Lines{{"1", "b1"}}));
}

TEST_F(DatabaseContentFaultTest, KeepsTheRowsReadUntilATextFails) {
  EXPECT_EQ(load_failing(std::string("text 3 of 3 ") + kRowsOfA, 87), 87U);
  EXPECT_EQ(table_names(content_), Texts{"A"});
  EXPECT_EQ(shown("A"), (Lines{{"1", "k1", "1", "t1"}, {"2", "k2", "2", "t2"}}));
}

TEST_F(DatabaseContentFaultTest, TakesATypeMismatchForAStream) {
  EXPECT_EQ(load_failing(std::string("text 3 of 2 ") + kRowsOfA, kInstallerTypeMismatch), 0U);
  EXPECT_EQ(shown("A")[1], (Texts{"2", "k2", "2", "<binary>"}));
  EXPECT_EQ(shown("A").size(), 3U);
}

TEST_F(DatabaseContentFaultTest, NamesThatAreTooLongAreFailures) {
  add(std::string(1024, 'T'), {{"Key", "s8"}});
  EXPECT_EQ(load_status(), kInstallerMoreData);
}

TEST_F(DatabaseContentFaultTest, NamesMayHave1023Characters) {
  const std::string name(1023, 'T');
  add(name, {{std::string(1023, 'C'), std::string(127, 'i')}}, {{1}});
  load();
  EXPECT_EQ(shown(name.c_str()), (Lines{{"1", "1"}}));
  EXPECT_TRUE(shown_columns(content_.schemas().at(name))[0].is_number);
}

TEST_F(DatabaseContentFaultTest, TypesAreReadWithRoomFor127Characters) {
  add("C", {{"Key", std::string(128, 's')}});
  EXPECT_EQ(load_status(), kInstallerMoreData);
}

TEST_F(DatabaseContentFaultTest, EachCallThatFailsLeavesWhatWasReadBefore) {
  DatabaseContent whole;
  HookedDatabases recorder(memory_);
  whole.load(recorder, kPath);
  const Texts& calls = recorder.calls;
  const auto last_types = std::find_if(calls.rbegin(), calls.rend(),
                                       [](const auto& call) { return call.starts_with("types "); });
  const auto rows_begin = static_cast<size_t>(calls.rend() - last_types);
  for (size_t failing = 0; failing < calls.size(); ++failing) {
    SCOPED_TRACE(calls[failing]);
    const bool ends_a_table = failing >= rows_begin && calls[failing].starts_with("fetch ");
    DatabaseContent content;
    HookedDatabases databases(memory_);
    databases.failing = failing;
    InstallerStatus status = kInstallerSuccess;
    try {
      content.load(databases, kPath);
    } catch (const ORLO::SDKException& exception) {
      status = exception.code;
      EXPECT_EQ(databases.calls.size(), failing + 1);
    }
    EXPECT_EQ(status, ends_a_table ? kInstallerSuccess : 1234U);
    EXPECT_EQ(memory_.open_objects(), 0);
    for (const std::string& name : table_names(content)) {
      const Lines read = lines(content, name.c_str());
      Lines beginning = lines(whole, name.c_str());
      ASSERT_LE(read.size(), beginning.size());
      beginning.resize(read.size());
      EXPECT_EQ(read, beginning) << name;
    }
  }
}

TEST_F(DatabaseContentFaultTest, SkipsATableWithABackTick) {
  add("A`B", {{"Key", "s8"}}, {{"x"}});
  load();
  EXPECT_EQ(table_names(content_),
            (Texts{"A", "A`B", "B", "_Columns", "_Storages", "_Streams", "_Tables"}));
  EXPECT_EQ(columns_of("A`B"), 0U);
  EXPECT_EQ(shown("A`B"), Lines());
  EXPECT_EQ(shown("B"), (Lines{{"1", "b1"}}));
}

TEST_F(DatabaseContentFaultTest, LeavesAColumnWithABackTickEmpty) {
  add("C", {{"X", "s8"}, {"a`b", "s8"}, {"Y", "s8"}}, {{"x", "hidden", "y"}});
  load();
  EXPECT_EQ(shown_titles("C"), (Texts{"X", "a`b", "Y"}));
  EXPECT_EQ(shown("C"), (Lines{{"1", "x", "", "y"}}));
}

TEST_F(DatabaseContentFaultTest, AsksForNoRowsWithoutAColumnToAskFor) {
  add("C", {{"`", "s8"}, {"", "s8"}}, {{"x", "y"}});
  add("D", {}, {{}});
  load();
  EXPECT_EQ(shown("C"), Lines());
  EXPECT_EQ(shown("D"), Lines());
  EXPECT_EQ(shown("B"), (Lines{{"1", "b1"}}));
}

TEST_F(DatabaseContentFaultTest, HidesAColumnWithoutAName) {
  add("C", {{"X", "s8"}, {"", "s8"}, {"Y", "s8"}}, {{"x", "hidden", "y"}});
  load();
  EXPECT_EQ(shown_titles("C"), (Texts{"X", "Y"}));
  EXPECT_EQ(shown("C"), (Lines{{"1", "x", "y"}}));
}

TEST_F(DatabaseContentFaultTest, ShowsAColumnThatStandsTwiceOnce) {
  add("C", {{"X", "s8"}, {"Y", "s8"}, {"X", "i2"}, {"Z", "s8"}}, {{"7", "y", "8", "z"}});
  load();
  EXPECT_EQ(shown_titles("C"), (Texts{"X", "Y", "Z"}));
  EXPECT_EQ(shown("C"), (Lines{{"1", "7", "y", "z"}}));
  EXPECT_TRUE(shown_columns(content_.schemas().at("C"))[0].is_number);
}

TEST_F(DatabaseContentFaultTest, KeepsAllRowsOfATableWithAColumnNamedLikeTheKey) {
  add("C", {{"X", "s8"}, {kRowId, "s8"}, {"Y", "s8"}}, {{"x1", "1", "y1"}, {"x2", "1", "y2"}});
  load();
  EXPECT_EQ(shown_titles("C"), (Texts{"X", "Y"}));
  EXPECT_EQ(shown("C"), (Lines{{"1", "x1", "y1"}, {"2", "x2", "y2"}}));
}

TEST_F(DatabaseContentFaultTest, ReadsATableThatStandsTwiceOnce) {
  add("B", {{"Other", "s8"}}, {{"o"}});
  load();
  EXPECT_EQ(table_names(content_).size(), 6U);
  EXPECT_EQ(shown("B"), (Lines{{"1", "b1"}}));
  EXPECT_EQ(std::count(memory_.queries().begin(), memory_.queries().end(),
                       std::string("select * from `B`")),
            1);
}

TEST_F(DatabaseContentFaultTest, ReadsAListedTableOfTheDatabasesOwn) {
  add("_Tables", {{"Name", "s64"}}, {{"B"}, {"_Streams"}, {"_Tables"}});
  load();
  EXPECT_EQ(table_names(content_), (Texts{"B", "_Columns", "_Storages", "_Streams", "_Tables"}));
  EXPECT_EQ(shown_titles("_Streams"), (Texts{"Name", "Data"}));
  EXPECT_EQ(shown("_Tables").size(), 3U);
}

TEST_F(DatabaseContentFaultTest, ReadsADatabaseThatListsNoTables) {
  database_.tables.clear();
  load();
  EXPECT_EQ(table_names(content_), (Texts{"_Columns", "_Storages", "_Streams", "_Tables"}));
  EXPECT_EQ(shown("_Tables"), Lines());
  EXPECT_EQ(shown_titles("_Tables"), Texts{"Name"});
}

TEST_F(DatabaseContentFaultTest, EndsAtAListedTableThatIsNotThere) {
  add("_Tables", {{"Name", "s64"}}, {{"A"}, {"Absent"}, {"B"}});
  EXPECT_EQ(load_status(), kInstallerBadQuery);
  EXPECT_EQ(content_.schemas().size(), 3U);
  EXPECT_EQ(columns_of("A"), 4U);
  EXPECT_TRUE(content_.tables().empty());
}

TEST_F(DatabaseContentFaultTest, ReadsATableThatContradictsItsColumns) {
  add("_Columns", {{"Table", "s64"}, {"Name", "s64"}}, {{"Absent", "X"}, {"B"}, {}});
  add("C", {{"Number", "i2"}, {"Text", "s8"}, {"Stream", "v0"}},
      {{"no number", 7, "text"}, {"12", Memory::Stream(), 5}, {}});
  load();
  EXPECT_EQ(shown("C"), (Lines{{"1", "", "7", "<binary>"},
                               {"2", "12", "<binary>", "<binary>"},
                               {"3", "", "", "<binary>"}}));
  EXPECT_EQ(shown("_Columns"), (Lines{{"1", "Absent", "X"}, {"2", "B", ""}, {"3", "", ""}}));
}

TEST_F(DatabaseContentFaultTest, EndsAtATableWithoutAName) {
  add("_Tables", {{"Name", "s64"}}, {{"A"}, {Memory::Null()}});
  EXPECT_EQ(load_status(), kInstallerBadQuery);
  EXPECT_EQ(content_.schemas().size(), 2U);
}

TEST_F(DatabaseContentFaultTest, ReadsAThousandTables) {
  database_.tables.reserve(1002);
  for (int i = 0; i < 1000; ++i)
    add("T" + std::to_string(i), {{"A", "s8"}}, {{std::to_string(i)}});
  load();
  EXPECT_EQ(content_.tables().size(), 1006U);
  EXPECT_EQ(shown("T999"), (Lines{{"1", "999"}}));
}

TEST_F(DatabaseContentFaultTest, ReadsAHundredThousandRows) {
  Memory::Table& big = add("Big", {{"A", "s8"}, {"B", "i4"}, {"C", "s8"}});
  for (int i = 1; i <= 100000; ++i)
    big.rows.push_back({"text " + std::to_string(i), i, "same"});
  content_.load(memory_, kPath);
  const auto& rows = content_.tables().at("Big")->rows;
  ASSERT_EQ(rows.size(), 100000U);
  const String& same = rows.at(RowKey{{"1"}}).cells[3].text;
  for (const auto& [key, row] : rows) {
    const std::string number = key.texts[0].c_str();
    ASSERT_EQ("text " + number, row.cells[1].text.c_str());
    ASSERT_EQ(number, row.cells[2].text.c_str());
    ASSERT_EQ(std::to_string(row.cells[2].integer()), number);
    ASSERT_EQ(row.cells[0].integer(), row.cells[2].integer());
    ASSERT_TRUE(row.cells[3].text.shares_block_with(same));
  }
}

/// The hash by which equal texts are found.
uint32_t fnv(const std::string& text) {
  uint32_t hash = 2166136261U;
  for (const char character : text)
    hash = (hash ^ static_cast<unsigned char>(character)) * 16777619U;
  return hash;
}

TEST_F(DatabaseContentFaultTest, TellsTextsApartThatHashAlike) {
  Memory::Table& alike = add("Alike", {{"Text", "s0"}});
  for (const char* text : {"costarring", "liquid", "declinate", "macallums", "costarring"})
    alike.rows.push_back({text});
  ASSERT_EQ(fnv("costarring"), fnv("liquid"));
  for (int i = 0; alike.rows.size() < 200; ++i) {
    const std::string text = std::to_string(i) + "x";
    if (fnv(text) % 2048 == 7) alike.rows.push_back({text});
  }
  content_.load(memory_, kPath);
  for (size_t i = 0; i < alike.rows.size(); ++i) {
    const Row& row = content_.tables().at("Alike")->rows.at(RowKey{{std::to_string(i + 1)}});
    EXPECT_EQ(std::get<std::string>(alike.rows[i][0]), row.cells[1].text.c_str());
  }
}

TEST_F(DatabaseContentFaultTest, ReadsThreeHundredColumns) {
  Memory::Table& wide = add("Wide", {});
  Texts expected{"1"};
  wide.rows.resize(1);
  for (int i = 0; i < 300; ++i) {
    wide.columns.push_back({"C" + std::to_string(i), i % 3 == 0 ? "i4" : "s8"});
    wide.rows[0].emplace_back(i % 3 == 0 ? Memory::Value(i) : Memory::Value(std::to_string(i)));
    expected.push_back(std::to_string(i));
  }
  load();
  EXPECT_EQ(shown("Wide"), Lines{expected});
}

}  // namespace
