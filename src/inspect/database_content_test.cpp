#include "inspect/database_content.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "inspect/database_content_test_support.h"
#include "orlo/exception.h"

namespace {

using Texts = std::vector<std::string>;
using Lines = std::vector<Texts>;

/// A database with the four tables that each one has, and one of two rows.
class DatabaseContentTest : public testing::Test {
 protected:
  DatabaseContentTest() {
    databases_.views[kTables];
    describe_system_table("_Columns");
    describe_system_table("_Storages");
    databases_.describe("_Streams", {{"Name", "s62"}, {"Data", "V0"}},
                        "select `Data`,`Name` from `_Streams`",
                        {{{"", kInstallerTypeMismatch}, {"Icon.exe"}}});
    describe_system_table("_Tables");
  }

  void describe_system_table(const std::string& name) {
    databases_.describe(name, {{"Name", "s64"}}, "select `Name` from `" + name + "`", {});
  }
  void add_file_table() {
    databases_.add("File", {{"Name", "s72"}, {"Size", "i4"}, {"Attributes", "I2"}}, kFileRows,
                   {{ScriptedField::integer(512), {"a.dll"}, ScriptedField::integer(10)},
                    {{}, {"b.dll"}, ScriptedField::integer(-2)}});
  }

  void load() { content_.load(databases_, "C:\\a.msi"); }
  InstallerStatus failure_of_load() {
    try {
      load();
    } catch (const ORLO::SDKException& exception) {
      return exception.code;
    }
    return kInstallerSuccess;
  }
  const RefTable& table(const char* name) const { return *content_.tables().at(name); }
  Texts names() const {
    Texts result;
    for (const auto& [name, table] : content_.tables())
      result.emplace_back(name.c_str());
    return result;
  }
  /// The rows as they are shown, each with its number first.
  Lines rows(const char* name) const {
    Lines result;
    for (const auto& [key, row] : table(name).rows) {
      Texts line{key.texts.at(0).c_str()};
      for (const ShownColumn& column : shown_columns(content_.schemas().at(name)))
        line.emplace_back(row.cells.at(static_cast<size_t>(column.cell)).text.c_str());
      result.push_back(line);
    }
    return result;
  }
  Texts columns(const char* name) const {
    Texts result;
    for (const ShownColumn& column : shown_columns(content_.schemas().at(name)))
      result.emplace_back(column.name.c_str());
    return result;
  }

  static constexpr char kTables[] = "select `Name` from `_Tables`";
  static constexpr char kFileColumns[] = "select * from `File`";
  static constexpr char kFileRows[] = "select `Attributes`,`Name`,`Size` from `File`";

  ScriptedDatabases databases_;
  DatabaseContent content_;
};

TEST_F(DatabaseContentTest, ReadsEachTableAndThoseThatAreNotListed) {
  add_file_table();
  load();
  EXPECT_EQ(names(), (Texts{"File", "_Columns", "_Storages", "_Streams", "_Tables"}));
  EXPECT_EQ(
      databases_.log,
      (Texts{"open C:\\a.msi", kTables, kFileColumns, "select * from `_Tables`",
             "select * from `_Columns`", "select * from `_Streams`", "select * from `_Storages`",
             kFileRows, "select `Name` from `_Columns`", "select `Name` from `_Storages`",
             "select `Data`,`Name` from `_Streams`", kTables}));
}

TEST_F(DatabaseContentTest, ShowsColumnsInTheOrderOfTheDatabase) {
  add_file_table();
  load();
  EXPECT_EQ(columns("File"), (Texts{"Name", "Size", "Attributes"}));
  EXPECT_EQ(rows("File"), (Lines{{"1", "a.dll", "10", "512"}, {"2", "b.dll", "-2", ""}}));
}

TEST_F(DatabaseContentTest, KeysRowsByTheirNumbers) {
  add_file_table();
  load();
  const Column& number = table("File").column(kRowId);
  EXPECT_TRUE(number.isKey);
  EXPECT_EQ(number.type, ColumnType::integer);
  EXPECT_EQ(number.index, 0);
  EXPECT_EQ(table("File").keyColumnCount, 1U);
  EXPECT_EQ(table("File").rows.rbegin()->second.cells[0].integer(), 2);
}

TEST_F(DatabaseContentTest, ShowsAStreamAsBinary) {
  load();
  EXPECT_EQ(rows("_Streams"), (Lines{{"1", "Icon.exe", "<binary>"}}));
}

TEST_F(DatabaseContentTest, TellsWhyADatabaseCannotBeOpened) {
  databases_.open_status = kInstallerOpenFailed;
  EXPECT_EQ(failure_of_load(), kInstallerOpenFailed);
  EXPECT_EQ(names(), Texts());
}

TEST_F(DatabaseContentTest, ClosesEverything) {
  add_file_table();
  load();
  EXPECT_EQ(databases_.open_objects, 0);
}

}  // namespace
