#include "view/search.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>

#include "view/entry_test_support.h"

namespace {

using Entry = UninstallEntry;

TEST(Search, AnEmptyTextSearchesForNothing) {
  EXPECT_FALSE(Search().active());
  EXPECT_FALSE(Search(String()).active());
  EXPECT_FALSE(Search(String()).matches(String("text")));
  EXPECT_FALSE(Search().matches(make_entry("a")));
}

TEST(Search, TextMayStandAnywhereInEitherCase) {
  struct Row {
    const char* text;
    const char* searched;
    bool found;
  };
  const Row rows[] = {
      {"Some Program", "some", true},
      {"Some Program", "PROG", true},
      {"Some Program", "e p", true},
      {"Some Program", "programs", false},
      {"Some Program", "s*m", true},
      {"Some Program", "so?e", true},
      {"Some Program", "so?me", false},
      {"Some Program", "g*m*p", false},
      {"Some Program", "*", true},
      {"Some Program", " ", true},
      {"", "*", true},
      {"", "?", false},
      {"Tool [beta]", "[b", true},
      {"Tool b", "[b]", false},
      {"50 %d done", "%d", true},
      {"\xc4rger", "\xc4rg", true},
      {"\xc4rger", "\xe4rg", false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(String::formatted("%s in %s", row.searched, row.text).c_str());
    EXPECT_EQ(Search(row.searched).matches(String(row.text)), row.found);
  }
}

TEST(Search, LooksIntoTwentyFourFields) {
  constexpr String Entry::*kFields[] = {
      &Entry::name,
      &Entry::source,
      &Entry::displayName,
      &Entry::displayVersion,
      &Entry::installDate,
      &Entry::sizeText,
      &Entry::uninstallCmd,
      &Entry::modifyCmd,
      &Entry::displayIcon,
      &Entry::installLocation,
      &Entry::lastUseDate,
      &Entry::parent,
      &Entry::parentName,
      &Entry::is64BitText,
      &Entry::systemComponentText,
      &Entry::frequencyText,
      &Entry::comments,
      &Entry::user,
      &Entry::publisher,
      &Entry::contact,
      &Entry::helpURL,
      &Entry::helpPhone,
      &Entry::aboutURL,
      &Entry::updateURL,
  };
  static_assert(std::size(kFields) == 24);
  for (size_t i = 0; i < std::size(kFields); ++i) {
    SCOPED_TRACE(i);
    Entry entry;
    EXPECT_FALSE(Search("needle").matches(entry));
    entry.*kFields[i] = "a needle here";
    EXPECT_TRUE(Search("needle").matches(entry));
  }
}

TEST(Search, LeavesOtherFieldsAlone) {
  constexpr String Entry::*kFields[] = {&Entry::keyName, &Entry::uninstallDate,
                                        &Entry::installerPath, &Entry::packagePath, &Entry::okText};
  for (size_t i = 0; i < std::size(kFields); ++i) {
    SCOPED_TRACE(i);
    Entry entry;
    entry.*kFields[i] = "a needle here";
    EXPECT_FALSE(Search("needle").matches(entry));
  }
  Entry counted;
  counted.features = counted.patches = 4711;
  counted.changed = -1;
  EXPECT_FALSE(Search("4711").matches(counted));
  EXPECT_FALSE(Search("new").matches(counted));
}

TEST(Search, YesAndNoAreInEveryPackage) {
  Entry entry = make_entry("a");
  EXPECT_TRUE(Search("no").matches(entry));
  Row row = make_package_row();
  cell(row, PackageColumn::is64Bit).set_number(1);
  cell(row, PackageColumn::systemComponent).set_number(1);
  entry = Entry::fromRow(row);
  EXPECT_TRUE(Search("YES").matches(entry));
  EXPECT_FALSE(Search("no").matches(entry));
}

TEST(Search, ATextDoesNotReachFromOneFieldIntoTheNext) {
  Entry entry;
  entry.name = "over";
  entry.source = "head";
  EXPECT_FALSE(Search("overhead").matches(entry));
  EXPECT_FALSE(Search("over*head").matches(entry));
}

}  // namespace
