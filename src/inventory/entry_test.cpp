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

struct TextOfColumn {
  Field column;
  String UninstallEntry::*text;
};

constexpr TextOfColumn kPlainTexts[] = {
    {Field::name, &UninstallEntry::name},
    {Field::source, &UninstallEntry::source},
    {Field::displayName, &UninstallEntry::displayName},
    {Field::displayVersion, &UninstallEntry::displayVersion},
    {Field::parent, &UninstallEntry::parent},
    {Field::parentName, &UninstallEntry::parentName},
    {Field::displayIcon, &UninstallEntry::displayIcon},
    {Field::installLocation, &UninstallEntry::installLocation},
    {Field::installDate, &UninstallEntry::installDate},
    {Field::uninstallDate, &UninstallEntry::uninstallDate},
    {Field::uninstallCmd, &UninstallEntry::uninstallCmd},
    {Field::modifyCmd, &UninstallEntry::modifyCmd},
    {Field::comments, &UninstallEntry::comments},
    {Field::lastUseDate, &UninstallEntry::lastUseDate},
    {Field::frequency, &UninstallEntry::frequencyText},
    {Field::installerPath, &UninstallEntry::installerPath},
    {Field::packagePath, &UninstallEntry::packagePath},
    {Field::user, &UninstallEntry::user},
    {Field::publisher, &UninstallEntry::publisher},
    {Field::contact, &UninstallEntry::contact},
    {Field::helpURL, &UninstallEntry::helpURL},
    {Field::helpPhone, &UninstallEntry::helpPhone},
    {Field::aboutURL, &UninstallEntry::aboutURL},
    {Field::updateURL, &UninstallEntry::updateURL},
    {Field::keyName, &UninstallEntry::keyName},
};

struct NumberOfColumn {
  Field column;
  int32_t UninstallEntry::*number;
};

constexpr NumberOfColumn kPlainNumbers[] = {
    {Field::noRemove, &UninstallEntry::noRemove},
    {Field::noModify, &UninstallEntry::noModify},
    {Field::systemComponent, &UninstallEntry::systemComponent},
    {Field::features, &UninstallEntry::features},
    {Field::patches, &UninstallEntry::patches},
    {Field::frequency, &UninstallEntry::frequency},
    {Field::OK, &UninstallEntry::OK},
    {Field::is64Bit, &UninstallEntry::is64Bit},
    {Field::HKEY_ROOT, &UninstallEntry::HKEY_ROOT},
    {Field::size, &UninstallEntry::size},
    {Field::changed, &UninstallEntry::changed},
};

TEST(UninstallEntry, TakesEachTextFromItsColumn) {
  Row row = make_package_row();
  for (size_t i = 0; i < row.cells.size(); ++i)
    row.cells[i].text.printf("text %d", static_cast<int>(i));
  const UninstallEntry entry = UninstallEntry::fromRow(row);
  for (const TextOfColumn& text : kPlainTexts) {
    const String expected = String::formatted("text %d", static_cast<int>(text.column));
    EXPECT_STREQ((entry.*text.text).c_str(), expected.c_str());
  }
}

TEST(UninstallEntry, TakesEachNumberFromTheValueOfItsColumn) {
  Row row = make_package_row();
  for (size_t i = 0; i < row.cells.size(); ++i) {
    row.cells[i].text = "7000";
    row.cells[i].set_integer(-static_cast<int32_t>(i));
  }
  const UninstallEntry entry = UninstallEntry::fromRow(row);
  for (const NumberOfColumn& number : kPlainNumbers)
    EXPECT_EQ(entry.*number.number, -static_cast<int32_t>(number.column));
}

TEST(UninstallEntry, OfARowWithoutCellsIsEmpty) {
  const UninstallEntry entry = UninstallEntry::fromRow(Row());
  EXPECT_TRUE(entry.keyName.empty());
  EXPECT_STREQ(entry.systemComponentText.c_str(), "no");
  EXPECT_STREQ(entry.sizeText.c_str(), "0.00 MB");
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

// Not keyName, which never changes, nor source and installDate, which have rules of their own.
constexpr String UninstallEntry::*kReplacedTexts[] = {
    &UninstallEntry::name,
    &UninstallEntry::displayName,
    &UninstallEntry::displayVersion,
    &UninstallEntry::displayIcon,
    &UninstallEntry::installLocation,
    &UninstallEntry::uninstallDate,
    &UninstallEntry::uninstallCmd,
    &UninstallEntry::modifyCmd,
    &UninstallEntry::systemComponentText,
    &UninstallEntry::comments,
    &UninstallEntry::sizeText,
    &UninstallEntry::lastUseDate,
    &UninstallEntry::frequencyText,
    &UninstallEntry::installerPath,
    &UninstallEntry::packagePath,
    &UninstallEntry::okText,
    &UninstallEntry::parent,
    &UninstallEntry::parentName,
    &UninstallEntry::user,
    &UninstallEntry::publisher,
    &UninstallEntry::contact,
    &UninstallEntry::helpURL,
    &UninstallEntry::helpPhone,
    &UninstallEntry::aboutURL,
    &UninstallEntry::updateURL,
    &UninstallEntry::is64BitText,
};

TEST(Merge, ReplacesEachTextThatTheOtherHas) {
  for (String UninstallEntry::*const text : kReplacedTexts) {
    UninstallEntry entry;
    entry.*text = "old";
    entry.merge(UninstallEntry());
    EXPECT_STREQ((entry.*text).c_str(), "old");
    UninstallEntry other;
    other.*text = "new";
    entry.merge(other);
    EXPECT_STREQ((entry.*text).c_str(), "new");
  }
}

TEST(Merge, ReplacesEachNumberThatTheOtherHas) {
  for (const NumberOfColumn& column : kPlainNumbers) {
    if (column.column == Field::size || column.column == Field::changed) continue;
    SCOPED_TRACE(static_cast<int>(column.column));
    UninstallEntry entry;
    entry.*column.number = 5;
    UninstallEntry other;
    entry.merge(other);
    EXPECT_EQ(entry.*column.number, 5);
    other.*column.number = -2;
    entry.merge(other);
    EXPECT_EQ(entry.*column.number, -2);
  }
}

TEST(Merge, UnknownSizeReplacesNothing) {
  UninstallEntry entry;
  entry.size = 10;
  UninstallEntry other;
  other.size = -1;
  entry.merge(other);
  EXPECT_EQ(entry.size, 10);
  other.size = 0;
  entry.merge(other);
  EXPECT_EQ(entry.size, 0);
}

TEST(Merge, SourceThatIsPartOfAnotherOneIsNotNamedAgain) {
  UninstallEntry entry;
  entry.source = "MS Updates: a b c";
  UninstallEntry other;
  other.source = "MS Updates";
  entry.merge(other);
  EXPECT_STREQ(entry.source.c_str(), "MS Updates: a b c");
}

TEST(Merge, ReplacesTheDatesThatTheOtherHas) {
  DateTime UninstallEntry::*const dates[] = {&UninstallEntry::installDateValue,
                                             &UninstallEntry::uninstallDateValue,
                                             &UninstallEntry::lastUseDateValue};
  for (DateTime UninstallEntry::*const date : dates) {
    UninstallEntry entry;
    (entry.*date).time = {2003, 2, 0, 1};
    entry.merge(UninstallEntry());
    EXPECT_EQ((entry.*date).time.wYear, 2003);
    UninstallEntry other;
    (other.*date).time = {2006, 5, 0, 4};
    entry.merge(other);
    EXPECT_EQ((entry.*date).time.wYear, 2006);
  }
}

TEST(Merge, TakesTheShownInstallDateWhereThereIsNone) {
  UninstallEntry entry;
  entry.merge(UninstallEntry::fromRow(row_with(Field::installDate, "some day")));
  EXPECT_STREQ(entry.installDate.c_str(), "some day");
}

TEST(Merge, RowsOfOnePackageFromTwoSourcesNameBoth) {
  Row row = row_with(Field::keyName, "App");
  cell(row, Field::source).text = "HKLM Uninstall";
  cell(row, Field::HKEY_ROOT).set_number(-2147483646);
  UninstallEntry entry = UninstallEntry::fromRow(row);
  Row other_row = row_with(Field::name, "App");
  cell(other_row, Field::source).text = "MSI";
  const UninstallEntry other = UninstallEntry::fromRow(other_row);
  ASSERT_TRUE(entry.same_package(other));
  entry.merge(other);
  EXPECT_STREQ(entry.source.c_str(), "HKLM Uninstall, MSI");
  EXPECT_EQ(entry.HKEY_ROOT, -2147483646);
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
