#include "inventory/table.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "inventory/package_schema.h"
#include "orlo/exception.h"

namespace {

Table small_schema() {
  Table table;
  table.addColumn("key", ColumnType::text, true);
  table.addColumn("value", ColumnType::integer);
  return table;
}

Row row_of(const char* key, const char* value) {
  Row row;
  row.cells.resize(2);
  row.cells[0].text = key;
  row.cells[1].text = value;
  return row;
}

RowKey key_of(const char* text) {
  return RowKey{{String(text)}};
}

TEST(PackageSchema, HasItsColumnsInTheirOrder) {
  const char* const names[] = {"name",
                               "source",
                               "displayName",
                               "displayVersion",
                               "parent",
                               "parentName",
                               "displayIcon",
                               "installLocation",
                               "installDate",
                               "uninstallDate",
                               "uninstallCmd",
                               "modifyCmd",
                               "noRemove",
                               "noModify",
                               "systemComponent",
                               "comments",
                               "size",
                               "lastUseDate",
                               "features",
                               "patches",
                               "frequency",
                               "installerPath",
                               "packagePath",
                               "MSI",
                               "OK",
                               "64bit",
                               "user",
                               "publisher",
                               "contact",
                               "helpURL",
                               "helpPhone",
                               "aboutURL",
                               "updateURL",
                               "keyName",
                               "HKEY_ROOT",
                               "changed"};
  const std::string types =
      "tttttttt"
      "dd"
      "tt"
      "iii"
      "t"
      "i"
      "d"
      "iii"
      "tt"
      "ii"
      "tttttttt"
      "t"
      "i"
      "i";
  const Table& schema = packageSchema();
  ASSERT_EQ(std::size(names), kPackageColumns);
  ASSERT_EQ(types.size(), kPackageColumns);
  EXPECT_EQ(schema.column_count(), kPackageColumns);
  for (size_t i = 0; i < kPackageColumns; ++i) {
    SCOPED_TRACE(names[i]);
    const Column& column = schema.column(names[i]);
    EXPECT_EQ(column.index, static_cast<int32_t>(i));
    const ColumnType type = types[i] == 'i'   ? ColumnType::integer
                            : types[i] == 'd' ? ColumnType::date
                                              : ColumnType::text;
    EXPECT_EQ(column.type, type);
    EXPECT_EQ(column.isKey, i == 33 || i == 34);
    EXPECT_EQ(column.isTracked, i != 35);
  }
  EXPECT_EQ(schema.keyColumnCount, 2u);
  EXPECT_EQ(schema.size(), 0u);
}

TEST(PackageSchema, ListsColumnsByTheOrderOfTheirNames) {
  EXPECT_EQ(keyColumns(packageSchema()), (ColumnIndices{34, 33}));
  const ColumnIndices tracked = trackedColumns(packageSchema());
  ASSERT_EQ(tracked.size(), 35u);
  EXPECT_EQ((ColumnIndices{tracked.begin(), tracked.begin() + 5}),
            (ColumnIndices{25, 34, 23, 24, 31}));
}

TEST(PackageSchema, RowKeyIsRootThenKeyName) {
  Row row = make_package_row();
  cell(row, PackageColumn::HKEY_ROOT).set_number(-2147483646);
  cell(row, PackageColumn::keyName).text = "App";
  const RowKey key = packageSchema().key_of(row);
  ASSERT_EQ(key.texts.size(), 2u);
  EXPECT_STREQ(key.texts[0].c_str(), "-2147483646");
  EXPECT_STREQ(key.texts[1].c_str(), "App");
}

TEST(Table, UnknownColumnIsAUserException) {
  try {
    packageSchema().column("nothing");
    FAIL() << "no exception";
  } catch (const ORLO::UserException& exception) {
    EXPECT_STREQ(exception.what(), "column not found");
  }
}

TEST(Table, AddingAColumnAgainKeepsItsIndex) {
  Table table = small_schema();
  table.addColumn("key", ColumnType::date, true, false);
  EXPECT_EQ(table.column("key").index, 0);
  EXPECT_EQ(table.column("key").type, ColumnType::date);
  EXPECT_EQ(table.keyColumnCount, 1u);
}

TEST(Table, LaterRowWithTheSameKeyReplacesTheEarlierAsAWhole) {
  Table table = small_schema();
  table.addRow(row_of("a", "1"));
  table.addRow(row_of("a", ""));
  ASSERT_EQ(table.size(), 1u);
  EXPECT_TRUE(table.rows.begin()->second.cells[1].text.empty());
}

TEST(Table, RowsWithoutKeyCellsShareOneKey) {
  Table table(packageSchema());
  Row row = make_package_row();
  cell(row, PackageColumn::name).text = "KB1";
  table.addRow(row);
  cell(row, PackageColumn::name).text = "KB2";
  table.addRow(row);
  ASSERT_EQ(table.size(), 1u);
  EXPECT_TRUE((table.rows.begin()->first == RowKey{{String(), String()}}));
  EXPECT_STREQ(cell(table.rows.begin()->second, PackageColumn::name).text.c_str(), "KB2");
}

TEST(Table, RowThatIsReadAgainKeepsTheTextsThatItSharesWithOtherTables) {
  Table table = small_schema();
  table.addRow(row_of("a", "1"));
  const Table copy(table);
  Row again = row_of("a", "1");
  again.cells[1].set_integer(7);
  table.addRow(again);
  const Row& stored = table.rows.begin()->second;
  EXPECT_TRUE(stored.cells[1].text.shares_block_with(copy.rows.begin()->second.cells[1].text));
  EXPECT_EQ(stored.cells[1].integer(), 7);
  table.addRow(row_of("a", "2"));
  EXPECT_STREQ(copy.rows.begin()->second.cells[1].text.c_str(), "1");
}

TEST(Table, TakesOverTheMarkerOfARow) {
  Table table = small_schema();
  Row row = row_of("a", "1");
  row.marker = 7;
  table.addRow(row);
  EXPECT_EQ(table.rows.begin()->second.marker, 7);
}

TEST(Table, ALaterRowWithTheSameKeyBringsItsMarker) {
  Table table = small_schema();
  const auto marker_of = [&](int32_t marker, size_t cells) {
    Row row = row_of("a", "1");
    row.marker = marker;
    row.cells.resize(cells);
    table.addRow(row);
    EXPECT_EQ(table.size(), 1u);
    return table.rows.begin()->second.marker;
  };
  for (const size_t cells : {size_t{2}, size_t{1}, size_t{2}}) {
    SCOPED_TRACE(cells);
    EXPECT_EQ(marker_of(7, cells), 7);
    EXPECT_EQ(marker_of(Row::kRemoved, cells), Row::kRemoved);
    EXPECT_EQ(marker_of(0, cells), 0);
  }
}

TEST(Table, AssignedToItselfDoesNotChange) {
  Table table = small_schema();
  table.addRow(row_of("a", "1"));
  table.assign(table);
  EXPECT_EQ(table.size(), 1u);
}

TEST(Table, CopiesAreIndependent) {
  Table table = small_schema();
  table.addRow(row_of("a", "1"));
  Table copy(table);
  copy.addRow(row_of("b", "2"));
  EXPECT_EQ(table.size(), 1u);
  EXPECT_EQ(copy.size(), 2u);
}

TEST(RowKey, OrdersByUnsignedBytesElementByElement) {
  EXPECT_TRUE(key_of("Z") < key_of("a"));
  EXPECT_TRUE(key_of("z") < key_of("\xe4"));
  EXPECT_TRUE(key_of("ab") < key_of("abc"));
  EXPECT_TRUE((RowKey{{"a"}} < RowKey{{"a", "b"}}));
  EXPECT_FALSE(key_of("a") < key_of("a"));
}

TEST(Difference, OfTwoEmptyTablesIsEmpty) {
  EXPECT_EQ(Table(small_schema(), small_schema()).size(), 0u);
}

TEST(Difference, WithAnEmptySecondOperandIsACopy) {
  Table first = small_schema();
  first.addRow(row_of("a", "1"));
  first.addRow(row_of("b", "2"));
  const Table difference(first, small_schema());
  ASSERT_EQ(difference.size(), 2u);
  EXPECT_STREQ(difference.rows.at(key_of("b")).cells[1].text.c_str(), "2");
  EXPECT_EQ(difference.rows.at(key_of("b")).marker, 0);
}

TEST(Difference, WithAnEmptyFirstOperandMarksAllAsRemoved) {
  Table second = small_schema();
  second.addRow(row_of("a", "1"));
  const Table difference(small_schema(), second);
  ASSERT_EQ(difference.size(), 1u);
  EXPECT_EQ(difference.rows.at(key_of("a")).marker, Row::kRemoved);
  EXPECT_TRUE(difference.rows.at(key_of("a")).cells.empty());
}

TEST(Difference, TellsNewChangedAndRemovedRows) {
  Table first = small_schema();
  Table second = small_schema();
  first.addRow(row_of("changed", "2"));
  first.addRow(row_of("new", "1"));
  first.addRow(row_of("same", "1"));
  second.addRow(row_of("changed", "1"));
  second.addRow(row_of("gone", "1"));
  second.addRow(row_of("same", "1"));
  const Table difference(first, second);
  ASSERT_EQ(difference.size(), 3u);
  EXPECT_EQ(difference.rows.at(key_of("changed")).marker, 0);
  EXPECT_EQ(difference.rows.at(key_of("new")).marker, 0);
  EXPECT_EQ(difference.rows.at(key_of("gone")).marker, Row::kRemoved);
}

TEST(Difference, LooksAtTextsOnly) {
  Table first = small_schema();
  Table second = small_schema();
  Row row = row_of("a", "1");
  first.addRow(row);
  row.cells[1].set_integer(99);
  second.addRow(row);
  EXPECT_EQ(Table(first, second).size(), 0u);
}

TEST(Difference, TakesColumnsThatOnlyTheSecondHas) {
  Table second = small_schema();
  second.addColumn("extra", ColumnType::text);
  const Table difference(small_schema(), second);
  EXPECT_EQ(difference.column("extra").index, 2);
}

TEST(Difference, KeepsKeysApartThatDifferInCaseOnly) {
  Table first = small_schema();
  first.addRow(row_of("app", "1"));
  Table second = small_schema();
  second.addRow(row_of("App", "1"));
  const Table difference(first, second);
  ASSERT_EQ(difference.size(), 2u);
  EXPECT_EQ(difference.rows.at(key_of("App")).marker, Row::kRemoved);
  EXPECT_EQ(difference.rows.at(key_of("app")).marker, 0);
}

TEST(Difference, ComparesColumnsInStepOverTheShorterList) {
  Table first = small_schema();
  first.addColumn("zzz", ColumnType::text);
  Row row = row_of("a", "1");
  row.cells.resize(3);
  row.cells[2].text = "only the first has it";
  first.addRow(row);
  Table second = small_schema();
  second.addRow(row_of("a", "1"));
  EXPECT_EQ(Table(first, second).size(), 0u);
}

TEST(Difference, OfATableAndItselfIsEmpty) {
  Table table = small_schema();
  table.addRow(row_of("a", "1"));
  EXPECT_EQ(Table(table, table).size(), 0u);
}

TEST(CompareRows, OrdersByUnsignedBytesBeyondNuls) {
  Row a = row_of("", "1");
  Row b = row_of("", "1");
  a.cells[0].text.assign("x\0a", 3);
  b.cells[0].text.assign("x\0\xe4", 3);
  EXPECT_EQ(compareRows(a, {0}, b, {0}), -1);
  EXPECT_EQ(compareRows(b, {0}, a, {0}), 1);
  EXPECT_EQ(changeMask(a, b, {0}), 1u);
}

TEST(CompareRows, StopsAtTheEndOfTheShorterList) {
  EXPECT_EQ(compareRows(row_of("a", "1"), {0, 1}, row_of("a", "2"), {0}), 0);
  EXPECT_EQ(compareRows(row_of("a", "1"), {0, 1}, row_of("a", "2"), {0, 1}), -1);
  EXPECT_EQ(compareRows(row_of("b", "1"), {0}, row_of("a", "2"), {0}), 1);
}

TEST(ChangeMask, FoldsColumnsFrom32OntoTheFirstBits) {
  Row a = make_package_row();
  Row b = make_package_row();
  cell(a, PackageColumn::updateURL).text = "http://example.org";
  EXPECT_EQ(changeMask(a, b, trackedColumns(packageSchema())), 1u);
  cell(a, PackageColumn::aboutURL).text = "x";
  EXPECT_EQ(changeMask(a, b, trackedColumns(packageSchema())), 0x80000001u);
}

TEST(ChangeMask, IgnoresTheChangeColumn) {
  Row a = make_package_row();
  cell(a, PackageColumn::changed).set_number(-1);
  EXPECT_EQ(changeMask(a, make_package_row(), trackedColumns(packageSchema())), 0u);
}

TEST(Table, TwoTablesAssignedToEachOtherAtOnceDoNotBlock) {
  Table a = small_schema();
  Table b = small_schema();
  a.addRow(row_of("a", "1"));
  std::thread other([&] {
    for (int i = 0; i < 2000; ++i)
      a.assign(b);
  });
  for (int i = 0; i < 2000; ++i)
    b.assign(a);
  other.join();
  EXPECT_EQ(a.size(), b.size());
}

TEST(Table, ServesSeveralThreads) {
  Table table = small_schema();
  std::thread writer([&] {
    for (int i = 0; i < 500; ++i)
      table.addRow(row_of(std::to_string(i).c_str(), "x"));
  });
  Table seen = small_schema();
  for (int i = 0; i < 50; ++i) {
    const Table difference(table, seen);
    seen.assign(table);
    EXPECT_GE(seen.size(), difference.size());
  }
  writer.join();
  EXPECT_EQ(table.size(), 500u);
}

}  // namespace
