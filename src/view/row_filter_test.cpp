#include "view/row_filter.h"

#include <gtest/gtest.h>

#include "view/entry_test_support.h"

namespace {

using Entry = UninstallEntry;

/// Everything is shown except what one flag hides.
ShowFlags all_flags() {
  ShowFlags flags;
  flags.select_type(kTypeAll);
  return flags;
}

bool accepted(const Entry& entry, int type, bool microsoft = true) {
  ShowFlags flags;
  flags.select_type(type);
  flags.showMicrosoft = microsoft;
  return acceptRow(entry, flags, Search());
}

TEST(ShowFlags, OnlyMicrosoftIsShownAtStart) {
  const ShowFlags flags;
  EXPECT_FALSE(flags.showUnnamed);
  EXPECT_FALSE(flags.showSystemComponents);
  EXPECT_FALSE(flags.showOsUpdates);
  EXPECT_FALSE(flags.showSubPackages);
  EXPECT_TRUE(flags.showMicrosoft);
}

TEST(ShowFlags, EachTypeSelectionAddsToTheOneBefore) {
  for (int index = 0; index <= 4; ++index) {
    SCOPED_TRACE(index);
    ShowFlags flags;
    flags.showMicrosoft = index % 2 == 0;
    flags.select_type(index);
    EXPECT_EQ(flags.showSubPackages, index >= 1);
    EXPECT_EQ(flags.showSystemComponents, index >= 2);
    EXPECT_EQ(flags.showOsUpdates, index >= 3);
    EXPECT_EQ(flags.showUnnamed, index >= 4);
    EXPECT_EQ(flags.showMicrosoft, index % 2 == 0);
  }
}

struct Sample {
  String Entry::*field;
  const char* text;
  bool holds;
};

constexpr Sample kOsUpdates[] = {
    {&Entry::parent, "OperatingSystem", true},
    {&Entry::parent, "operatingsystem", false},
    {&Entry::parent, "OperatingSystem ", false},
    {&Entry::source, "WMI QFE", true},
    {&Entry::source, "WMI QFE, HKLM", false},
    {&Entry::source, "WindowsUpdateAgent", true},
    {&Entry::source, "WindowsUpdateAgent2", false},
    {&Entry::source, "DISM Package Manager Provider", true},
    {&Entry::source, "DISM Package Manager", false},
    {&Entry::source, "Windows Update", true},
    {&Entry::source, "Windows Updates, WMI QFE", true},
    {&Entry::source, "My Windows Update", false},
    {&Entry::source, "MS Updates", true},
    {&Entry::source, "MS Updates, WMI QFE", true},
    {&Entry::source, "ms updates", false},
    {&Entry::name, "KB", true},
    {&Entry::name, "KBark", true},
    {&Entry::name, "kb123456", false},
    {&Entry::name, " KB123456", false},
    {&Entry::name, "{1}.KB123456", true},
    {&Entry::name, "{1}.kb123456", false},
    {&Entry::name, "{1} KB123456", false},
    {&Entry::displayName, "Package_for_KB123456", true},
    {&Entry::displayName, "A Package_for_KB123456", false},
    {&Entry::displayName, "KB123456", false},
    {&Entry::publisher, "WMI QFE", false},
};

TEST(RowFilter, TellsOsUpdates) {
  for (const Sample& sample : kOsUpdates) {
    SCOPED_TRACE(sample.text);
    Entry entry;
    entry.*sample.field = sample.text;
    EXPECT_EQ(is_os_update(entry), sample.holds);
    // Every update of the system is Microsoft's, too.
    EXPECT_EQ(is_microsoft(entry), sample.holds);
  }
}

TEST(RowFilter, TellsMicrosoftsPackages) {
  const Sample samples[] = {
      {&Entry::publisher, "Microsoft Corporation", true},
      {&Entry::publisher, "The Microsoft", true},
      {&Entry::publisher, "microsoft", false},
      {&Entry::displayName, "Tools for Microsoft Office", true},
      {&Entry::displayName, "Windows Driver Package", true},
      {&Entry::displayName, "WindowsTool", false},
      {&Entry::displayName, "My Windows Tool", false},
      {&Entry::name, "Microsoft .NET", true},
      {&Entry::name, "Windows Tool", false},
      {&Entry::comments, "Microsoft", false},
      {&Entry::source, "Microsoft", false},
  };
  for (const Sample& sample : samples) {
    SCOPED_TRACE(sample.text);
    Entry entry;
    entry.*sample.field = sample.text;
    EXPECT_EQ(is_microsoft(entry), sample.holds);
    EXPECT_FALSE(is_os_update(entry));
  }
}

TEST(RowFilter, EachFlagHidesItsRows) {
  struct Row {
    const char* what;
    bool ShowFlags::*flag;
    Entry entry;
  };
  Row rows[] = {
      {"unnamed", &ShowFlags::showUnnamed, make_entry("a")},
      {"system component", &ShowFlags::showSystemComponents, make_entry("a")},
      {"update", &ShowFlags::showOsUpdates, make_entry("a")},
      {"sub package", &ShowFlags::showSubPackages, make_entry("a")},
      {"microsoft", &ShowFlags::showMicrosoft, make_entry("a")},
  };
  rows[0].entry.displayName = "";
  rows[1].entry.systemComponent = -1;
  rows[2].entry.source = "WMI QFE";
  rows[3].entry.parent = "p";
  rows[4].entry.publisher = "Microsoft";
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    ShowFlags flags = all_flags();
    EXPECT_TRUE(acceptRow(row.entry, flags, Search()));
    flags.*row.flag = false;
    EXPECT_FALSE(acceptRow(row.entry, flags, Search()));
    EXPECT_TRUE(acceptRow(make_entry("plain"), flags, Search()));
  }
}

TEST(RowFilter, NormalPackagesIncludeMicrosofts) {
  Entry entry = make_entry("tool");
  entry.publisher = "Microsoft";
  EXPECT_TRUE(accepted(entry, kTypeNormal));
  EXPECT_FALSE(accepted(entry, kTypeNormal, false));
}

TEST(RowFilter, WithoutMicrosoftAnyNameThatBeginsWithKbVanishes) {
  const Entry entry = make_entry("KBarker");
  EXPECT_FALSE(accepted(entry, kTypeAll, false));
  EXPECT_TRUE(accepted(entry, kTypeAll, true));
}

TEST(RowFilter, WithoutMicrosoftOsUpdatesAreHiddenEvenUnderAllPackages) {
  for (const Sample& sample : kOsUpdates) {
    SCOPED_TRACE(sample.text);
    Entry entry = make_entry("tool");
    entry.*sample.field = sample.text;
    EXPECT_EQ(accepted(entry, kTypeAll, false), !sample.holds);
    EXPECT_EQ(accepted(entry, kTypeSystemComponents, true), !sample.holds);
    EXPECT_TRUE(accepted(entry, kTypeAll, true));
  }
}

TEST(RowFilter, SearchComesOnTopOfTheFlags) {
  Entry entry = make_entry("tool");
  EXPECT_TRUE(acceptRow(entry, ShowFlags(), Search("TOO")));
  EXPECT_FALSE(acceptRow(entry, ShowFlags(), Search("other")));
  entry.parent = "p";
  EXPECT_FALSE(acceptRow(entry, ShowFlags(), Search("TOO")));
}

}  // namespace
