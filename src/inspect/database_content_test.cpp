#include "inspect/database_content.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "inspect/database_content_test_support.h"

namespace {

class DatabaseContentTest : public DatabaseBed {
 protected:
  void add_files() {
    add("File", {{"Name", "s72"}, {"Size", "i4"}, {"Attributes", "I2"}},
        {{"a.dll", 10, 512}, {"b.dll", -2, Memory::Null()}});
  }
  const RefTable& table(const char* name) const { return *content_.tables().at(name); }
  const Cell& cell(const char* name, const char* row, const char* column) const {
    const RefTable& all = table(name);
    const auto place = static_cast<size_t>(all.column(column).index);
    return all.rows.at(RowKey{{row}}).cells.at(place);
  }
};

TEST_F(DatabaseContentTest, ReadsEachTableAndThoseThatAreNotListed) {
  add_files();
  load();
  EXPECT_EQ(table_names(content_), (Texts{"File", "_Columns", "_Storages", "_Streams", "_Tables"}));
  EXPECT_EQ(
      memory_.queries(),
      (Texts{"select `Name` from `_Tables`", "select * from `File`", "select * from `_Tables`",
             "select * from `_Columns`", "select * from `_Streams`", "select * from `_Storages`",
             "select `Attributes`,`Name`,`Size` from `File`",
             "select `Name`,`Number`,`Table`,`Type` from `_Columns`",
             "select `Data`,`Name` from `_Storages`", "select `Data`,`Name` from `_Streams`",
             "select `Name` from `_Tables`"}));
}

TEST_F(DatabaseContentTest, ShowsColumnsInTheOrderOfTheDatabase) {
  add_files();
  load();
  EXPECT_EQ(shown_titles("File"), (Texts{"Name", "Size", "Attributes"}));
  EXPECT_EQ(shown("File"), (Lines{{"1", "a.dll", "10", "512"}, {"2", "b.dll", "-2", ""}}));
}

TEST_F(DatabaseContentTest, ReadsWhatTheDatabaseSaysOfItself) {
  add_files();
  load();
  EXPECT_EQ(shown_titles("_Columns"), (Texts{"Table", "Number", "Name", "Type"}));
  EXPECT_EQ(shown("_Columns").size(), 3U);
  EXPECT_EQ(shown("_Tables"), (Lines{{"1", "File"}}));
}

TEST_F(DatabaseContentTest, KeysRowsByTheirNumbers) {
  add_files();
  load();
  const Column& number = table("File").column(kRowId);
  EXPECT_TRUE(number.isKey);
  EXPECT_EQ(number.type, ColumnType::integer);
  EXPECT_EQ(number.index, 0);
  EXPECT_EQ(table("File").keyColumnCount, 1U);
  EXPECT_STREQ(cell("File", "2", kRowId).text.c_str(), "2");
  EXPECT_EQ(cell("File", "2", kRowId).integer(), 2);
}

TEST_F(DatabaseContentTest, ListsRowsInTheOrderOfTheirNumbersAsText) {
  Memory::Table& numbers = add("Numbers", {{"Value", "s8"}});
  for (int i = 1; i <= 12; ++i)
    numbers.rows.push_back({"no " + std::to_string(i)});
  load();
  Texts order;
  for (const Texts& line : shown("Numbers"))
    order.push_back(line.at(0) + ": " + line.at(1));
  EXPECT_EQ(order, (Texts{"1: no 1", "10: no 10", "11: no 11", "12: no 12", "2: no 2", "3: no 3",
                          "4: no 4", "5: no 5", "6: no 6", "7: no 7", "8: no 8", "9: no 9"}));
}

TEST_F(DatabaseContentTest, LeavesSchemasWithoutRows) {
  add_files();
  load();
  EXPECT_EQ(content_.schemas().size(), 5U);
  for (const auto& [name, schema] : content_.schemas())
    EXPECT_EQ(schema.size(), 0U) << name.c_str();
}

TEST_F(DatabaseContentTest, ShowsAStreamAsBinary) {
  add("Icon", {{"Name", "s72"}, {"Data", "v0"}}, {{"Icon.exe", Memory::Stream()}});
  load();
  EXPECT_EQ(shown("Icon"), (Lines{{"1", "Icon.exe", "<binary>"}}));
  EXPECT_EQ(shown("_Streams"), (Lines{{"1", "Icon.Icon.exe", "<binary>"}}));
}

TEST_F(DatabaseContentTest, LeavesNullIntegersEmpty) {
  add("Numbers", {{"A", "i4"}, {"B", "I2"}}, {{7, 8}, {Memory::Null(), Memory::Null()}, {9, 10}});
  load();
  EXPECT_EQ(shown("Numbers"), (Lines{{"1", "7", "8"}, {"2", "", ""}, {"3", "9", "10"}}));
  EXPECT_EQ(cell("Numbers", "2", "A").integer(), 0);
}

TEST_F(DatabaseContentTest, ReadsIntegersAtBothEnds) {
  add("Numbers", {{"A", "i4"}}, {{INT32_MAX}, {INT32_MIN + 1}, {INT32_MIN}, {0}, {-1}});
  load();
  EXPECT_EQ(shown("Numbers"),
            (Lines{{"1", "2147483647"}, {"2", "-2147483647"}, {"3", ""}, {"4", "0"}, {"5", "-1"}}));
  EXPECT_EQ(cell("Numbers", "1", "A").integer(), INT32_MAX);
  EXPECT_EQ(cell("Numbers", "2", "A").integer(), INT32_MIN + 1);
  EXPECT_EQ(cell("Numbers", "5", "A").integer(), -1);
}

TEST_F(DatabaseContentTest, ShowsTheFirst1023CharactersOfLongTexts) {
  Memory::Table& texts = add("Texts", {{"Text", "l0"}});
  for (const size_t length : {1022U, 1023U, 1024U, 5000U})
    texts.rows.push_back({std::string(length - 1, 'x') + 'y'});
  load();
  const std::string kept(1023, 'x');
  EXPECT_EQ(shown("Texts"), (Lines{{"1", std::string(1021, 'x') + 'y'},
                                   {"2", std::string(1022, 'x') + 'y'},
                                   {"3", kept},
                                   {"4", kept}}));
}

TEST_F(DatabaseContentTest, ShowsNoHalfOfACharacterPair) {
  memory_.set_character_length(
      [](unsigned char byte) noexcept -> size_t { return byte == 0x83 ? 2 : 1; });
  add("Texts", {{"Text", "l0"}}, {{std::string(1022, 'x') + "\x83\x60"}});
  load();
  EXPECT_EQ(shown("Texts"), (Lines{{"1", std::string(1022, 'x')}}));
}

TEST_F(DatabaseContentTest, ShowsTheColumnsOfAnEmptyTable) {
  add("Empty", {{"A", "s72"}, {"B", "i2"}});
  load();
  EXPECT_EQ(shown_titles("Empty"), (Texts{"A", "B"}));
  EXPECT_EQ(shown("Empty"), Lines());
}

TEST_F(DatabaseContentTest, TellsNumbersByTheFirstLetterOfTheType) {
  add("Types", {{"1", "i2"},
                {"2", "I4"},
                {"3", "j4"},
                {"4", "J2"},
                {"5", "s0"},
                {"6", "l255"},
                {"7", "g0"},
                {"8", "v0"},
                {"9", ""},
                {"A", "4i"}});
  load();
  std::string kinds;
  for (const ShownColumn& column : shown_columns(content_.schemas().at("Types")))
    kinds += column.is_number ? 'i' : 's';
  EXPECT_EQ(kinds, "iiiissssss");
}

TEST_F(DatabaseContentTest, QuotesNames) {
  add("My table, %s's", {{"a column", "s0"}, {"select", "s0"}, {"100%", "s0"}}, {{"x", "y", "z"}});
  load();
  EXPECT_EQ(shown("My table, %s's"), (Lines{{"1", "x", "y", "z"}}));
}

TEST_F(DatabaseContentTest, TellsWhyADatabaseCannotBeOpened) {
  memory_.fail("open C:\\a.msi", 1619);
  EXPECT_EQ(load_status(), 1619U);
  EXPECT_EQ(content_.schemas().size(), 0U);
  EXPECT_EQ(content_.tables().size(), 0U);
}

TEST_F(DatabaseContentTest, SaysWhichTableItCouldNotRead) {
  add_files();
  memory_.fail("open_view select * from `File`", 13);
  try {
    load();
    FAIL();
  } catch (const ORLO::SDKException& exception) {
    EXPECT_STREQ(ORLO::context_text(exception.context).c_str(),
                 "reading the columns of a table\nObject: File");
  }
}

TEST_F(DatabaseContentTest, SharesEqualTexts) {
  add("File", {{"File", "s72"}, {"Component_", "s72"}}, {{"f1", "core"}, {"f2", "core"}});
  add("Component", {{"Component", "s72"}, {"Level", "i2"}}, {{"core", 2}});
  load();
  const String& first = cell("File", "1", "Component_").text;
  EXPECT_TRUE(first.shares_block_with(cell("File", "2", "Component_").text));
  EXPECT_TRUE(first.shares_block_with(cell("Component", "1", "Component").text));
  EXPECT_TRUE(
      cell("Component", "1", "Level").text.shares_block_with(cell("File", "2", kRowId).text));
}

TEST_F(DatabaseContentTest, KeepsTablesAliveForTheirHolders) {
  add_files();
  std::vector<ORLO::RefPtr<RefTable>> held;
  {
    DatabaseContent content;
    content.load(databases_, kPath);
    for (const auto& [name, shared] : content.tables()) {
      EXPECT_EQ(shared->ref_count, 1U);
      held.insert(held.begin(), shared);
      held.push_back(shared);
    }
  }
  EXPECT_EQ(held.back()->ref_count, 2U);
  held.erase(held.begin() + 2, held.end() - 2);
  EXPECT_EQ(held.front()->size(), 1U);
  held.erase(held.begin());
  EXPECT_EQ(held.back()->ref_count, 1U);
}

TEST(ShownColumns, LeaveOutTheKeyAndWhatHasNoName) {
  Table schema;
  schema.addColumn(kRowId, ColumnType::integer, true);
  schema.addColumn("Z", ColumnType::text);
  schema.addColumn("", ColumnType::text);
  schema.addColumn("A", ColumnType::integer);
  const std::vector<ShownColumn> shown = shown_columns(schema);
  ASSERT_EQ(shown.size(), 2U);
  EXPECT_STREQ(shown[0].name.c_str(), "Z");
  EXPECT_FALSE(shown[0].is_number);
  EXPECT_EQ(shown[0].cell, 1);
  EXPECT_STREQ(shown[1].name.c_str(), "A");
  EXPECT_TRUE(shown[1].is_number);
  EXPECT_EQ(shown[1].cell, 3);
}

TEST(ShownColumns, AreNoneOfATableWithoutColumns) {
  EXPECT_TRUE(shown_columns(Table()).empty());
}

TEST(CanBeAskedFor, TellsBackTicks) {
  EXPECT_TRUE(can_be_asked_for(""));
  EXPECT_TRUE(can_be_asked_for("File"));
  EXPECT_TRUE(can_be_asked_for("\x83'"));
  EXPECT_FALSE(can_be_asked_for("`"));
  EXPECT_FALSE(can_be_asked_for("Fi`le"));
  EXPECT_FALSE(can_be_asked_for("\x83`"));
}

TEST(CanBeAskedFor, KnowsCharactersOfTwoBytes) {
  const auto lead = [](unsigned char byte) noexcept { return byte == 0x83; };
  EXPECT_TRUE(can_be_asked_for("\x83`", lead));
  EXPECT_TRUE(can_be_asked_for("a\x83`b\x83`", lead));
  EXPECT_TRUE(can_be_asked_for("\x83", lead));
  EXPECT_FALSE(can_be_asked_for("\x83``", lead));
  EXPECT_FALSE(can_be_asked_for("\x83\x83`", lead));
}

}  // namespace
