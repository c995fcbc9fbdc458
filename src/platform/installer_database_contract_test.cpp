// What InstallerDatabases promises, tested on the databases in memory here and on the system's own
// in installer_database_contract_win_test.cpp.
#include <algorithm>

#include "platform/installer_database_test_support.h"

namespace {

using Null = MemoryInstallerDatabases::Null;
using Stream = MemoryInstallerDatabases::Stream;
using Texts = std::vector<std::string>;

class MemoryDatabaseBed final : public DatabaseBed {
 public:
  ~MemoryDatabaseBed() override { EXPECT_EQ(databases_.open_objects(), 0); }

  InstallerDatabases& databases() override { return databases_; }
  std::string write(const std::vector<MemoryTable>& tables) override {
    std::string path = std::to_string(++written_) + ".msi";
    databases_.add(path).tables = tables;
    return path;
  }
  std::string missing() override { return "none.msi"; }

 private:
  MemoryInstallerDatabases databases_;
  int written_ = 0;
};

const MemoryTable kFile = {
    "File",
    {{"Name", "s72"}, {"Size", "i4"}, {"Attributes", "I2"}, {"Content", "V0"}, {"Text", "S0"}},
    {{"b.txt", 12, Null(), Stream(), "second"}, {"a.txt", 7, 3, Stream(), Null()}}};
const MemoryTable kEmpty = {"Empty", {{"Key", "i2"}, {"Title", "L255"}}, {}};

Grid sorted(Grid rows) {
  std::sort(rows.begin(), rows.end());
  return rows;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Memory, DatabaseContract,
                         ::testing::Values(DatabaseBedMaker{
                             "Own", [] { return std::make_unique<MemoryDatabaseBed>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(DatabaseContract, ListsTheTables) {
  open({kFile, kEmpty});
  EXPECT_EQ(sorted(rows("select `Name` from `_Tables`")), (Grid{{"Empty"}, {"File"}}));
}

TEST_P(DatabaseContract, GivesTheColumnsInTheOrderOfTheDatabase) {
  open({kFile});
  ASSERT_EQ(ask("select * from `File`"), kInstallerSuccess);
  EXPECT_EQ(column_texts(*view_, ColumnInfo::names),
            (Texts{"Name", "Size", "Attributes", "Content", "Text"}));
}

TEST_P(DatabaseContract, TellsTheTypesOfTheColumns) {
  open({kFile, kEmpty});
  ASSERT_EQ(ask("select * from `File`"), kInstallerSuccess);
  EXPECT_EQ(column_texts(*view_, ColumnInfo::types), (Texts{"s72", "i4", "I2", "V0", "S0"}));
  ASSERT_EQ(ask("select * from `Empty`"), kInstallerSuccess);
  EXPECT_EQ(column_texts(*view_, ColumnInfo::types), (Texts{"i2", "L255"}));
}

TEST_P(DatabaseContract, GivesTheValuesOfEachRow) {
  open({kFile});
  EXPECT_EQ(sorted(rows("select * from `File`")),
            (Grid{{"a.txt", "7", "3", "<1804>", ""}, {"b.txt", "12", "", "<1804>", "second"}}));
}

TEST_P(DatabaseContract, GivesTheColumnsInTheOrderOfTheQuery) {
  open({kFile});
  ASSERT_EQ(ask("select `Text`,`Name`,`Content` from `File`"), kInstallerSuccess);
  EXPECT_EQ(column_texts(*view_, ColumnInfo::names), (Texts{"Text", "Name", "Content"}));
  EXPECT_EQ(column_texts(*view_, ColumnInfo::types), (Texts{"S0", "s72", "V0"}));
  InstallerStatus end = 0;
  EXPECT_EQ(sorted(rows_of(*view_, end)),
            (Grid{{"", "a.txt", "<1804>"}, {"second", "b.txt", "<1804>"}}));
}

TEST_P(DatabaseContract, HasNoRowsInAnEmptyTable) {
  open({kEmpty});
  EXPECT_EQ(rows("select `Key`,`Title` from `Empty`"), Grid());
}

TEST_P(DatabaseContract, KeepsGivingTheEndOfAnEmptyTable) {
  open({kEmpty});
  ASSERT_EQ(ask("select * from `Empty`"), kInstallerSuccess);
  std::unique_ptr<InstallerRecord> record;
  for (int time = 0; time < 3; ++time) {
    EXPECT_EQ(view_->fetch(record), kInstallerNoMoreItems);
    EXPECT_EQ(record, nullptr);
  }
}

TEST_P(DatabaseContract, HasNoRecordAfterTheLastRow) {
  open({{"T", {{"Key", "s72"}}, {{"abc"}}}});
  ASSERT_EQ(ask("select * from `T`"), kInstallerSuccess);
  std::unique_ptr<InstallerRecord> record;
  ASSERT_EQ(view_->fetch(record), kInstallerSuccess);
  EXPECT_EQ(view_->fetch(record), kInstallerNoMoreItems);
  EXPECT_EQ(record, nullptr);
}

TEST_P(DatabaseContract, GivesIntegersAtBothEndsAndNone) {
  open({{"T",
         {{"Key", "i2"}, {"Long", "I4"}, {"Short", "I2"}},
         {{1, 2147483647, 32767}, {2, -2147483647, -32767}, {3, 0, 0}, {4, Null(), Null()}}}});
  ASSERT_EQ(ask("select `Long`,`Short` from `T`"), kInstallerSuccess);
  std::vector<std::pair<int32_t, int32_t>> values;
  std::unique_ptr<InstallerRecord> record;
  while (view_->fetch(record) == kInstallerSuccess)
    values.emplace_back(record->integer(1), record->integer(2));
  EXPECT_EQ(
      values,
      (std::vector<std::pair<int32_t, int32_t>>{
          {2147483647, 32767}, {-2147483647, -32767}, {0, 0}, {kInstallerNull, kInstallerNull}}));
}

TEST_P(DatabaseContract, HasNoIntegerInATextOrAStream) {
  open({kFile});
  ASSERT_EQ(ask("select `Name`,`Content` from `File`"), kInstallerSuccess);
  std::unique_ptr<InstallerRecord> record;
  ASSERT_EQ(view_->fetch(record), kInstallerSuccess);
  EXPECT_EQ(record->integer(1), kInstallerNull);
  EXPECT_EQ(record->integer(2), kInstallerNull);
}

TEST_P(DatabaseContract, ReadsTheIntegerThatATextSpells) {
  open({{"T", {{"Key", "s72"}}, {{"-42"}}}});
  ASSERT_EQ(ask("select `Key` from `T`"), kInstallerSuccess);
  std::unique_ptr<InstallerRecord> record;
  ASSERT_EQ(view_->fetch(record), kInstallerSuccess);
  EXPECT_EQ(record->integer(1), -42);
}

TEST_P(DatabaseContract, GivesTheBeginningOfATextThatIsTooLong) {
  for (const size_t length : {size_t{1022}, size_t{1023}, size_t{1024}, size_t{5000}}) {
    SCOPED_TRACE(length);
    open({{"T", {{"Key", "i2"}, {"Text", "S0"}}, {{1, std::string(length, 'x')}}}});
    const std::string expected =
        length < 1024 ? std::string(length, 'x') : "<234>" + std::string(1023, 'x');
    EXPECT_EQ(rows("select `Text` from `T`", 1024), (Grid{{expected}}));
  }
}

TEST_P(DatabaseContract, EndsEveryTextWithinItsRoom) {
  open({{"T", {{"Key", "s72"}, {"Content", "V0"}}, {{"abc", Stream()}}}});
  EXPECT_EQ(rows("select * from `T`", 4), (Grid{{"abc", "<1804>"}}));
  EXPECT_EQ(rows("select * from `T`", 3), (Grid{{"<234>ab", "<1804>"}}));
  EXPECT_EQ(rows("select * from `T`", 1), (Grid{{"<234>", "<1804>"}}));
}

TEST_P(DatabaseContract, WritesNothingWithoutRoom) {
  open({{"T", {{"Key", "s72"}, {"Content", "V0"}}, {{"abc", Stream()}}}});
  ASSERT_EQ(ask("select * from `T`"), kInstallerSuccess);
  std::unique_ptr<InstallerRecord> record;
  ASSERT_EQ(view_->fetch(record), kInstallerSuccess);
  char kept = 'k';
  EXPECT_EQ(record->text(1, &kept, 0), kInstallerMoreData);
  EXPECT_EQ(record->text(2, &kept, 0), kInstallerTypeMismatch);
  EXPECT_EQ(kept, 'k');
}

TEST_P(DatabaseContract, HasAnEmptyTextAfterTheLastField) {
  open({{"T", {{"Key", "s72"}}, {{"abc"}}}});
  ASSERT_EQ(ask("select * from `T`"), kInstallerSuccess);
  std::unique_ptr<InstallerRecord> record;
  ASSERT_EQ(view_->fetch(record), kInstallerSuccess);
  char text[8] = "kept";
  EXPECT_EQ(record->text(2, text, sizeof text), kInstallerSuccess);
  EXPECT_STREQ(text, "");
  EXPECT_EQ(record->integer(2), kInstallerNull);
}

TEST_P(DatabaseContract, FindsNamesThatNeedQuoting) {
  open({{"My Table", {{"select", "s72"}, {"a b", "I2"}, {"x,y", "I2"}}, {{"one", 1, 2}}}});
  EXPECT_EQ(rows("select `Name` from `_Tables`"), (Grid{{"My Table"}}));
  EXPECT_EQ(rows("select `x,y`,`a b`,`select` from `My Table`"), (Grid{{"2", "1", "one"}}));
}

TEST_P(DatabaseContract, GivesAColumnThatIsAskedForTwiceTwice) {
  open({{"T", {{"Key", "s72"}}, {{"abc"}}}});
  EXPECT_EQ(rows("select `Key`,`Key` from `T`"), (Grid{{"abc", "abc"}}));
}

TEST_P(DatabaseContract, RefusesQueriesForWhatIsNotThere) {
  open({kFile});
  for (const char* const query :
       {"select * from `None`", "select * from `file`", "select `None` from `File`",
        "select `Name`,`None` from `File`", "select `name` from `File`", "select * from ``"}) {
    ask("select * from `File`");
    EXPECT_EQ(ask(query), kInstallerBadQuery) << query;
    EXPECT_EQ(view_, nullptr) << query;
  }
}

TEST_P(DatabaseContract, RefusesQueriesThatMakeNoSense) {
  open({kFile});
  for (const char* const query :
       {"", "select", "select  from `File`", "select `Name` from `Fi`le`",
        "select `Na`me` from `File`", "select * from `File", "select `Name` `Size` from `File`",
        "select `Name`, from `File`"}) {
    EXPECT_EQ(ask(query), kInstallerBadQuery) << query;
    EXPECT_EQ(view_, nullptr) << query;
  }
}

TEST_P(DatabaseContract, TellsWhatItsOwnTablesConsistOf) {
  open({kFile});
  const struct {
    const char* table;
    Texts names;
    Texts types;
  } own[] = {{"_Tables", {"Name"}, {"s64"}},
             {"_Columns", {"Table", "Number", "Name", "Type"}, {"s64", "i2", "s64", "i2"}},
             {"_Streams", {"Name", "Data"}, {"s62", "V0"}},
             {"_Storages", {"Name", "Data"}, {"s62", "V0"}}};
  for (const auto& [table, names, types] : own) {
    SCOPED_TRACE(table);
    ASSERT_EQ(ask("select * from `" + std::string(table) + "`"), kInstallerSuccess);
    EXPECT_EQ(column_texts(*view_, ColumnInfo::names), names);
    EXPECT_EQ(column_texts(*view_, ColumnInfo::types), types);
  }
}

TEST_P(DatabaseContract, ListsTheColumnsOfEachTable) {
  open({kEmpty});
  EXPECT_EQ(rows("select `Name`,`Number`,`Table` from `_Columns`"),
            (Grid{{"Key", "1", "Empty"}, {"Title", "2", "Empty"}}));
}

TEST_P(DatabaseContract, ListsTheStreams) {
  open({kFile});
  EXPECT_EQ(sorted(rows("select `Data`,`Name` from `_Streams`")),
            (Grid{{"<1804>", "File.a.txt"}, {"<1804>", "File.b.txt"}}));
}

TEST_P(DatabaseContract, HasNoStoragesInAPlainDatabase) {
  open({kFile});
  EXPECT_EQ(rows("select `Data`,`Name` from `_Storages`"), Grid());
}

TEST_P(DatabaseContract, OpensAnEmptyDatabase) {
  open({});
  EXPECT_EQ(rows("select `Name` from `_Tables`"), Grid());
  EXPECT_EQ(rows("select * from `_Columns`"), Grid());
}

TEST_P(DatabaseContract, OpensNothingAtAMissingPath) {
  open({});
  EXPECT_NE(bed().databases().open(bed().missing().c_str(), database_), kInstallerSuccess);
  EXPECT_EQ(database_, nullptr);
  EXPECT_NE(bed().databases().open("", database_), kInstallerSuccess);
  EXPECT_EQ(database_, nullptr);
}

TEST_P(DatabaseContract, OpensOneDatabaseTwice) {
  const std::string path = bed().write({kEmpty});
  std::unique_ptr<InstallerDatabase> other;
  ASSERT_EQ(bed().databases().open(path.c_str(), database_), kInstallerSuccess);
  ASSERT_EQ(bed().databases().open(path.c_str(), other), kInstallerSuccess);
  EXPECT_EQ(rows("select `Name` from `_Tables`"), (Grid{{"Empty"}}));
}

TEST_P(DatabaseContract, AnswersTwoQueriesSideBySide) {
  open({{"A", {{"Key", "i2"}}, {{1}, {2}}}, {"B", {{"Key", "i2"}}, {{7}, {8}}}});
  std::unique_ptr<InstallerView> other;
  std::unique_ptr<InstallerRecord> a;
  std::unique_ptr<InstallerRecord> b;
  ASSERT_EQ(ask("select `Key` from `A`"), kInstallerSuccess);
  ASSERT_EQ(database_->open_view("select `Key` from `B`", other), kInstallerSuccess);
  for (int row = 0; row < 2; ++row) {
    ASSERT_EQ(view_->fetch(a), kInstallerSuccess);
    ASSERT_EQ(other->fetch(b), kInstallerSuccess);
    EXPECT_EQ(a->integer(1), 1 + row);
    EXPECT_EQ(b->integer(1), 7 + row);
  }
}
