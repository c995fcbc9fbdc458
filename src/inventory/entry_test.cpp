#include "inventory/entry.h"

#include <gtest/gtest.h>

namespace {

using Field = PackageColumn;

Row row_with(Field column, const char* text) {
  Row row = make_package_row();
  cell(row, Field::size).set_number(-1);
  cell(row, column).text = text;
  return row;
}

UninstallEntry entry_of(Field column, int32_t number) {
  Row row = row_with(Field::name, "App");
  cell(row, column).set_number(number);
  return UninstallEntry::fromRow(row);
}

TEST(UninstallEntry, KeyNameFallsBackToName) {
  Row row = row_with(Field::name, "KB123");
  EXPECT_STREQ(UninstallEntry::fromRow(row).keyName.c_str(), "KB123");
  cell(row, Field::keyName).text = "key";
  EXPECT_STREQ(UninstallEntry::fromRow(row).keyName.c_str(), "key");
}

TEST(UninstallEntry, SizeIsShownInMegabytes) {
  struct Case {
    int32_t kilobytes;
    const char* text;
  };
  const Case cases[] = {
      {-1, ""},          {0, "0.00 MB"},    {1, "0.01 MB"},
      {1019, "1.00 MB"}, {1024, "1.00 MB"}, {123, "0.13 MB"},  // 0.125: ties go away from zero
      {2048, "2.00 MB"}, {-6, "-0.00 MB"},  {2147483647, "2097152.00 MB"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.kilobytes);
    EXPECT_STREQ(entry_of(Field::size, c.kilobytes).sizeText.c_str(), c.text);
  }
}

TEST(UninstallEntry, CheckTextFollowsTheState) {
  EXPECT_STREQ(entry_of(Field::OK, 1).okText.c_str(), "OK");
  EXPECT_STREQ(entry_of(Field::OK, -1).okText.c_str(), "fix");
  EXPECT_STREQ(entry_of(Field::OK, -2).okText.c_str(), "-");
  EXPECT_STREQ(entry_of(Field::OK, 0).okText.c_str(), "");
  EXPECT_STREQ(entry_of(Field::OK, 5).okText.c_str(), "");
}

TEST(UninstallEntry, FlagsAreShownAsWords) {
  EXPECT_STREQ(entry_of(Field::is64Bit, 1).is64BitText.c_str(), "yes");
  EXPECT_STREQ(entry_of(Field::is64Bit, 0).is64BitText.c_str(), "no");
  EXPECT_STREQ(entry_of(Field::systemComponent, 2).systemComponentText.c_str(), "yes");
  EXPECT_STREQ(entry_of(Field::systemComponent, 0).systemComponentText.c_str(), "no");
  EXPECT_TRUE(entry_of(Field::MSI, 256).MSI);
  EXPECT_FALSE(entry_of(Field::MSI, 0).MSI);
}

TEST(UninstallEntry, DateThatCannotBeReadLeavesItsText) {
  const UninstallEntry entry = UninstallEntry::fromRow(row_with(Field::installDate, "soon"));
  EXPECT_STREQ(entry.installDate.c_str(), "soon");
  EXPECT_TRUE(entry.installDateValue.empty());
}

TEST(UninstallEntry, DatesAreParsed) {
  const UninstallEntry entry =
      UninstallEntry::fromRow(row_with(Field::uninstallDate, "31.12.2099"));
  EXPECT_EQ(entry.uninstallDateValue.time.wYear, 2099);
  EXPECT_EQ(entry.uninstallDateValue.time.wMonth, 12);
}

TEST(Merge, LaterTextsAndNumbersWinWhereTheyHaveAValue) {
  UninstallEntry entry = UninstallEntry::fromRow(row_with(Field::displayName, "old"));
  entry.patches = 3;
  entry.size = 10;
  UninstallEntry other = UninstallEntry::fromRow(row_with(Field::publisher, "Maker"));
  entry.merge(other);
  EXPECT_STREQ(entry.displayName.c_str(), "old");
  EXPECT_STREQ(entry.publisher.c_str(), "Maker");
  EXPECT_EQ(entry.patches, 3);
  EXPECT_EQ(entry.size, 10);
  other.displayName = "new";
  other.patches = 4;
  other.size = 0;
  entry.merge(other);
  EXPECT_STREQ(entry.displayName.c_str(), "new");
  EXPECT_EQ(entry.patches, 4);
  EXPECT_EQ(entry.size, 0);
}

TEST(Merge, SourcesGrowIntoAList) {
  UninstallEntry entry;
  UninstallEntry other;
  other.source = "HKLM Uninstall";
  entry.merge(other);
  EXPECT_STREQ(entry.source.c_str(), "HKLM Uninstall");
  other.source = "MSI";
  entry.merge(other);
  EXPECT_STREQ(entry.source.c_str(), "HKLM Uninstall, MSI");
  entry.merge(other);
  EXPECT_STREQ(entry.source.c_str(), "HKLM Uninstall, MSI");
}

TEST(Merge, ShownInstallDateIsTheFirstSortKeyTheLast) {
  UninstallEntry entry = UninstallEntry::fromRow(row_with(Field::installDate, "01.02.2003"));
  entry.merge(UninstallEntry::fromRow(row_with(Field::installDate, "04.05.2006")));
  EXPECT_STREQ(entry.installDate.c_str(), "01.02.2003");
  EXPECT_EQ(entry.installDateValue.time.wYear, 2006);
  entry.merge(UninstallEntry());
  EXPECT_EQ(entry.installDateValue.time.wYear, 2006);
}

TEST(Merge, NeverTakesKeyNameOrMark) {
  UninstallEntry entry = UninstallEntry::fromRow(row_with(Field::keyName, "key"));
  UninstallEntry other = UninstallEntry::fromRow(row_with(Field::keyName, "other"));
  other.changed = -1;
  entry.merge(other);
  EXPECT_STREQ(entry.keyName.c_str(), "key");
  EXPECT_EQ(entry.changed, 0);
}

TEST(Merge, InstallerFlagIsSetAndNeverCleared) {
  UninstallEntry entry;
  UninstallEntry other;
  other.MSI = true;
  entry.merge(other);
  EXPECT_TRUE(entry.MSI);
  entry.merge(UninstallEntry());
  EXPECT_TRUE(entry.MSI);
}

TEST(SamePackage, RowWithoutRootMatchesUnderEitherRoot) {
  UninstallEntry machine = entry_of(Field::HKEY_ROOT, -2147483646);
  UninstallEntry user = entry_of(Field::HKEY_ROOT, -2147483647);
  UninstallEntry none = entry_of(Field::HKEY_ROOT, 0);
  EXPECT_TRUE(machine.same_package(none));
  EXPECT_TRUE(none.same_package(user));
  EXPECT_FALSE(machine.same_package(user));
  none.keyName = "app";
  EXPECT_FALSE(machine.same_package(none));
}

}  // namespace
