// What the databases in memory do besides the contract.
#include "platform/memory_installer_database.h"

#include "orlo/exception.h"
#include "platform/installer_database_test_support.h"

namespace {

using Stream = MemoryInstallerDatabases::Stream;

class MemoryDatabases : public testing::Test {
 protected:
  MemoryDatabases() {
    databases_.add("a.msi").tables = {{"T", {{"Key", "i2"}, {"Text", "S0"}}, {{1, "x"}, {2, "y"}}},
                                      {"U", {{"Key", "i2"}}, {{5}}}};
  }

  InstallerStatus open() { return databases_.open("a.msi", database_); }
  InstallerStatus ask(const char* query) { return database_->open_view(query, view_); }

  MemoryInstallerDatabases databases_;
  std::unique_ptr<InstallerDatabase> database_;
  std::unique_ptr<InstallerView> view_;
  std::unique_ptr<InstallerRecord> record_;
};

constexpr InstallerStatus kDemanded = 1234;

}  // namespace

TEST_F(MemoryDatabases, FailToOpenOnDemand) {
  databases_.fail("open b.msi", 1);
  databases_.fail("open a.msi", kDemanded);
  EXPECT_EQ(open(), kDemanded);
  EXPECT_EQ(database_, nullptr);
  EXPECT_EQ(open(), kInstallerSuccess);
}

TEST_F(MemoryDatabases, FailAQueryOnDemand) {
  databases_.fail("open_view select * from `U`", kDemanded, -1);
  open();
  EXPECT_EQ(ask("select * from `T`"), kInstallerSuccess);
  for (int time = 0; time < 3; ++time) {
    EXPECT_EQ(ask("select * from `U`"), kDemanded);
    EXPECT_EQ(view_, nullptr);
  }
}

TEST_F(MemoryDatabases, FailToTellColumnsOnDemand) {
  databases_.fail("column_info 1", kDemanded);
  open();
  ask("select * from `T`");
  EXPECT_EQ(view_->column_info(ColumnInfo::names, record_), kInstallerSuccess);
  EXPECT_EQ(view_->column_info(ColumnInfo::types, record_), kDemanded);
  EXPECT_EQ(record_, nullptr);
  EXPECT_EQ(view_->column_info(ColumnInfo::types, record_), kInstallerSuccess);
}

TEST_F(MemoryDatabases, FailAtARecordOnDemand) {
  databases_.fail("fetch 2", kDemanded, -1);
  open();
  ask("select * from `T`");
  EXPECT_EQ(view_->fetch(record_), kInstallerSuccess);
  EXPECT_EQ(view_->fetch(record_), kDemanded);
  EXPECT_EQ(record_, nullptr);
  EXPECT_EQ(view_->fetch(record_), kDemanded);
  ask("select * from `U`");
  EXPECT_EQ(view_->fetch(record_), kInstallerSuccess);
}

TEST_F(MemoryDatabases, FailAtATextOnDemand) {
  databases_.fail("text 2", kDemanded);
  open();
  ask("select * from `T`");
  view_->fetch(record_);
  char text[4] = "k";
  EXPECT_EQ(record_->text(1, text, sizeof text), kInstallerSuccess);
  EXPECT_EQ(record_->text(2, text, sizeof text), kDemanded);
  EXPECT_STREQ(text, "");
}

TEST_F(MemoryDatabases, FailToCountFieldsWithTheLastErrorOnDemand) {
  databases_.fail("field_count", kDemanded);
  open();
  ask("select * from `T`");
  view_->fetch(record_);
  EXPECT_EQ(record_->field_count(), -1);
  EXPECT_EQ(ORLO::last_error(), kDemanded);
  EXPECT_EQ(record_->field_count(), 2);
}

TEST_F(MemoryDatabases, CountWhatIsOpen) {
  EXPECT_EQ(databases_.open_objects(), 0);
  open();
  ask("select * from `T`");
  view_->fetch(record_);
  EXPECT_EQ(databases_.open_objects(), 3);
  view_->fetch(record_);
  EXPECT_EQ(databases_.open_objects(), 3);
  record_.reset();
  view_.reset();
  EXPECT_EQ(databases_.open_objects(), 1);
}

TEST_F(MemoryDatabases, KeepTheQueriesGoodOrBad) {
  open();
  ask("select * from `T`");
  ask("nonsense");
  EXPECT_EQ(databases_.queries(), (std::vector<std::string>{"select * from `T`", "nonsense"}));
}

TEST_F(MemoryDatabases, LetATestSayWhatTheOwnTablesHold) {
  databases_.add("a.msi").tables = {{"_Tables", {{"Name", "s64"}}, {{"None"}, {"None"}}},
                                    {"_Columns", {{"Odd", "i2"}}, {}},
                                    {"T", {{"Key", "i2"}}, {}}};
  open();
  ask("select `Name` from `_Tables`");
  InstallerStatus end = 0;
  EXPECT_EQ(rows_of(*view_, end), (Grid{{"None"}, {"None"}}));
  ask("select * from `_Columns`");
  EXPECT_EQ(column_texts(*view_, ColumnInfo::names), std::vector<std::string>{"Odd"});
}

TEST_F(MemoryDatabases, TellTypesInTheColumnsTableAsNumbers) {
  databases_.add("a.msi").tables = {
      {"T", {{"A", "s72"}, {"B", "S255"}, {"C", "i2"}, {"D", "I4"}, {"E", "v0"}, {"F", "L0"}}, {}}};
  open();
  ask("select `Type` from `_Columns`");
  InstallerStatus end = 0;
  EXPECT_EQ(rows_of(*view_, end),
            (Grid{{"3400"}, {"7679"}, {"1282"}, {"4356"}, {"2304"}, {"7936"}}));
}

TEST_F(MemoryDatabases, TakeAMissingValueForNone) {
  databases_.add("a.msi").tables = {{"T", {{"A", "S72"}, {"B", "I2"}}, {{}}}};
  open();
  ask("select * from `T`");
  view_->fetch(record_);
  EXPECT_EQ(texts_of(*record_), (std::vector<std::string>{"", ""}));
  EXPECT_EQ(record_->integer(2), kInstallerNull);
}

TEST_F(MemoryDatabases, NeverEndATextWithHalfACharacter) {
  databases_.set_character_length(
      [](unsigned char byte) noexcept -> size_t { return byte >= 0x81 && byte <= 0x9F ? 2 : 1; });
  databases_.add("a.msi").tables = {{"T", {{"A", "S72"}}, {{"ab\x83\x41\x83\x42"}}}};
  open();
  ask("select * from `T`");
  view_->fetch(record_);
  EXPECT_EQ(texts_of(*record_, 7), (std::vector<std::string>{"ab\x83\x41\x83\x42"}));
  EXPECT_EQ(texts_of(*record_, 6), (std::vector<std::string>{"<234>ab\x83\x41"}));
  EXPECT_EQ(texts_of(*record_, 5), (std::vector<std::string>{"<234>ab\x83\x41"}));
  EXPECT_EQ(texts_of(*record_, 4), (std::vector<std::string>{"<234>ab"}));
}
