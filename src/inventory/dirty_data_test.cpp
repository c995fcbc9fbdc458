// What the source makes of keys and values that no installer should have written.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "inventory/entry.h"
#include "inventory/hooked_registry_test_support.h"
#include "inventory/table.h"
#include "inventory/uninstall_test_support.h"

namespace {

using Field = PackageColumn;
using Names = std::vector<std::string>;

// With a sanitizer each one takes ten times as long.
constexpr int kManySubkeys = ZOLVANE_SANITIZED != 0 ? 10000 : 100000;

struct ValueColumn {
  const char* value;
  Field column;
};

constexpr ValueColumn kTextColumns[] = {
    {"DisplayName", Field::displayName},
    {"DisplayVersion", Field::displayVersion},
    {"ParentKeyName", Field::parent},
    {"ParentDisplayName", Field::parentName},
    {"DisplayIcon", Field::displayIcon},
    {"InstallLocation", Field::installLocation},
    {"UninstallString", Field::uninstallCmd},
    {"ModifyPath", Field::modifyCmd},
    {"Comments", Field::comments},
    {"Publisher", Field::publisher},
    {"Contact", Field::contact},
    {"HelpLink", Field::helpURL},
    {"HelpTelephone", Field::helpPhone},
    {"URLInfoAbout", Field::aboutURL},
    {"URLUpdateInfo", Field::updateURL},
};

constexpr ValueColumn kNumberColumns[] = {
    {"WindowsInstaller", Field::MSI}, {"NoRemove", Field::noRemove},
    {"NoModify", Field::noModify},    {"SystemComponent", Field::systemComponent},
    {"EstimatedSize", Field::size},
};

/// UTF-16 bytes without a terminator of their own.
std::string wide(std::u16string_view text) {
  std::string bytes;
  for (const char16_t unit : text) {
    bytes.push_back(static_cast<char>(unit & 0xFF));
    bytes.push_back(static_cast<char>(unit >> 8));
  }
  return bytes;
}

template <size_t N>
std::string bytes(const char (&literal)[N]) {
  return std::string(literal, N - 1);
}

struct DirtyCase {
  const char* what;
  uint32_t type;
  std::string data;
  std::string text;
  /// What four bytes hold of it; none if it is longer.
  std::optional<int32_t> number;
};

std::vector<DirtyCase> dirty_cases() {
  const std::optional<int32_t> none;
  const std::string megabyte(1 << 20, 'x');
  return {
      {"bytes", kRegBinary, "abc", "abc", 0x636261},
      {"four bytes", kRegBinary, "\1\2\3\4", "\1\2\3\4", 0x04030201},
      {"bytes with a NUL", kRegBinary, bytes("ab\0cd"), "ab", none},
      {"no bytes", kRegBinary, "", "", 0},
      {"text", kRegSz, wide({u"some text\0", 10}), "some text", none},
      {"a number as text", kRegSz, wide({u"12\0", 3}), "12", 0x3231},
      {"a longer number as text", kRegSz, wide({u"1234\0", 5}), "1234", none},
      {"text without terminator", kRegSz, wide(u"abcd"), "abcd", 0x64636261},
      {"text of an odd length", kRegSz, wide(u"ab") + "c", "ab", 0x6261},
      {"one byte of text", kRegSz, "a", "", 0},
      {"empty text", kRegSz, "", "", 0},
      {"only a terminator", kRegSz, bytes("\0\0"), "", 0},
      {"text behind a NUL", kRegSz, wide({u"a\0b", 3}), "a", 0x620061},
      {"text behind a NUL and an end", kRegSz, wide({u"name\0\0\u4E2D\u6587\"", 9}), "name", none},
      {"variables", kRegExpandSz, wide({u"%X%\0", 4}), "%X%", 0x255825},
      {"list", kRegMultiSz, wide({u"first\0second\0\0", 14}), "first", none},
      {"list that begins with nothing", kRegMultiSz, wide({u"\0a\0\0", 4}), "", 0x6100},
      {"text outside the code page", kRegSz, wide({u"\u041F\u20AC\u4E2D\0", 4}), "?\x80?",
       0x3F803F},
      {"half a character", kRegSz, wide({u"\xD83D\0", 2}), "?", 0x3F},
      {"number", kRegDword, bytes("\x41\0\0\0"), "A", 0x41},
      {"greatest number", kRegDword, "\xFF\xFF\xFF\xFF", "\xFF\xFF\xFF\xFF", -1},
      {"zero", kRegDword, bytes("\0\0\0\0"), "", 0},
      {"number of eight bytes", kRegDword, bytes("\1\0\0\0\0\0\0\0"), "\1", none},
      {"number of two bytes", kRegDword, "\1\2", "\1\2", 0x0201},
      {"long number", kRegQword, bytes("\1\2\0\0\0\0\0\0"), "\1\2", none},
      {"no type", 0, "abc", "abc", 0x636261},
      {"unknown type", 0x12345, "abcd", "abcd", 0x64636261},
      {"a megabyte of text", kRegSz, wide(std::u16string(1 << 20, u'x')), megabyte, none},
      {"a megabyte of bytes", kRegBinary, megabyte, megabyte, none},
  };
}

class DirtyDataTest : public UninstallBed {
 protected:
  void set_all(const DirtyCase& dirty) {
    for (const ValueColumn& name : kTextColumns)
      raw("App", name.value, dirty.type, dirty.data);
    for (const ValueColumn& name : kNumberColumns)
      raw("App", name.value, dirty.type, dirty.data);
  }
  /// Without printing texts of a megabyte where they differ.
  void expect_text(Field column, const std::string& expected) {
    EXPECT_TRUE(value(0, column) == expected)
        << "column " << static_cast<int>(column) << ": " << value(0, column).substr(0, 40);
  }
  void expect_number(Field column, int32_t expected) {
    EXPECT_EQ(cell(rows_.at(0), column).integer(), expected) << static_cast<int>(column);
    EXPECT_EQ(value(0, column), std::to_string(expected)) << static_cast<int>(column);
  }
};

TEST_F(DirtyDataTest, ValuesOfAnyTypeAndLengthAreReadUnderEveryName) {
  for (const DirtyCase& dirty : dirty_cases()) {
    SCOPED_TRACE(dirty.what);
    set_all(dirty);
    ASSERT_EQ(read().size(), 1u);
    for (const ValueColumn& name : kTextColumns)
      expect_text(name.column, dirty.text);
    for (const ValueColumn& name : kNumberColumns) {
      const int32_t failed = name.column == Field::size ? -1 : 0;
      expect_number(name.column, dirty.number.value_or(failed));
    }
    UninstallEntry::fromRow(rows_[0]);
  }
}

TEST_F(DirtyDataTest, InstallDateOfAnyTypeAndLengthIsTextUnlessItIsANumber) {
  for (const DirtyCase& dirty : dirty_cases()) {
    if (dirty.type == kRegDword && dirty.data.size() == 4) continue;
    SCOPED_TRACE(dirty.what);
    raw("App", "InstallDate", dirty.type, dirty.data);
    ASSERT_EQ(read().size(), 1u);
    expect_text(Field::installDate, dirty.text);
  }
}

TEST_F(DirtyDataTest, UsageRecordOfAnyTypeAndLengthHarmsNothing) {
  number("App", "EstimatedSize", 5);
  for (const DirtyCase& dirty : dirty_cases()) {
    SCOPED_TRACE(dirty.what);
    registry_.set_raw(std::string(kUsageCacheKey) + "\\App", "SlowInfoCache", dirty.type,
                      dirty.data);
    ASSERT_EQ(read().size(), 1u);
    expect_number(Field::size, 5);
    expect_text(Field::frequency, "");
  }
}

TEST_F(DirtyDataTest, KeyNamesOf255CharactersAreReadWhole) {
  const std::string plain(255, 'k');
  const std::string split = "{" + std::string(120, 'p') + "}." + std::string(132, 's');
  ASSERT_EQ(split.size(), 255u);
  UsageBytes record;
  record.frequency = 3;
  for (const std::string& name : {plain, split}) {
    text(name, "DisplayName", u"Name");
    usage(name, record);
  }
  ASSERT_EQ(read().size(), 2u);
  EXPECT_EQ(names(), (Names{plain, split}));
  EXPECT_EQ(value(0, Field::keyName), plain);
  EXPECT_EQ(value(1, Field::keyName), std::string(132, 's'));
  EXPECT_EQ(value(1, Field::parent), std::string(120, 'p'));
  EXPECT_EQ(value(0, Field::frequency), "3");
  EXPECT_EQ(value(1, Field::displayName), "Name");
}

TEST_F(DirtyDataTest, KeyNamesWithSpecialCharactersStandAsTheyAre) {
  const Names wanted = {" ", "%s%n%s", "..", "a/b", "a\tb", "\"", "\xE4\xDF\x80"};
  for (const std::string& name : wanted)
    add(name == wanted.back() ? "\xC3\xA4\xC3\x9F\xE2\x82\xAC" : name);
  read();
  Names found = names();
  EXPECT_EQ(std::set<std::string>(found.begin(), found.end()),
            std::set<std::string>(wanted.begin(), wanted.end()));
}

TEST_F(DirtyDataTest, KeyWhoseNameTheCodePageCannotHoldIsSkipped) {
  text("a\xD0\x9F", "DisplayName", u"unreachable");  // Cyrillic
  text("QQ\xE6\xB8\xB8\xE6\x88\x8F", "DisplayName", u"unreachable");
  text("b", "DisplayName", u"b");
  read();
  EXPECT_EQ(names(), Names{"b"});
}

TEST_F(DirtyDataTest, KeyWhoseNameOnlyLooksLikeAnothersShowsThatOtherOne) {
  text("A", "DisplayName", u"plain");
  text("\xEF\xBC\xA1", "DisplayName", u"full-width");
  ASSERT_EQ(read().size(), 2u);
  Table table(packageSchema());
  for (const Row& row : rows_) {
    EXPECT_STREQ(cell(row, Field::displayName).text.c_str(), "plain");
    table.addRow(row);
  }
  EXPECT_EQ(table.size(), 1u);
}

TEST_F(DirtyDataTest, AThousandValuesInOneKeyAreNoBurden) {
  for (int i = 0; i < 1000; ++i)
    registry_.set_text(path("App"), "v" + std::to_string(i), u"x");
  text("App", "DisplayName", u"Name");
  registry_.clear_calls();
  read();
  EXPECT_EQ(value(0, Field::displayName), "Name");
  EXPECT_LT(registry_.calls().size(), 40u);
}

TEST_F(DirtyDataTest, ManySubkeysAreAllRead) {
  char name[16];
  for (int i = 0; i < kManySubkeys; ++i) {
    std::snprintf(name, sizeof name, "k%06d", i);
    registry_.set_text(path(name), "DisplayName", u"Name");
  }
  std::set<RowKey> seen;
  RegistryKey key;
  ASSERT_EQ(registry_.open(kCurrentUser, kUninstallBelowRoot, kKeyRead, key), kRegSuccess);
  UninstallSource source(registry_, files_, clock_);
  int rows = 0;
  source.readUninstallKey(kCurrentUser, key, seen, false, [&](const Row& row) {
    std::snprintf(name, sizeof name, "k%06d", rows++);
    ASSERT_STREQ(cell(row, Field::name).text.c_str(), name);
  });
  EXPECT_EQ(rows, kManySubkeys);
}

TEST_F(DirtyDataTest, VanishingSubkeyHidesItsNeighbourInThatPassOnly) {
  for (const char* name : {"a", "b", "c", "d"})
    add(name);
  HookedRegistry hooked(registry_, [this](const std::string& operation, uint32_t index) {
    if (operation == "subkey_at" && index == 1) registry_.remove(path("a"));
  });
  read_through(hooked);
  EXPECT_EQ(names(), (Names{"a", "c", "d"}));
  read();
  EXPECT_EQ(names(), (Names{"b", "c", "d"}));
}

TEST_F(DirtyDataTest, SubkeyThatVanishesBeforeItIsOpenedIsSkipped) {
  for (const char* name : {"a", "b", "c"})
    add(name);
  int opened = 0;
  HookedRegistry hooked(registry_, [&](const std::string& operation, uint32_t) {
    // The Uninstall key, then a subkey and its usage record, each in turn.
    if (operation == "open" && ++opened == 4) registry_.remove(path("b"));
  });
  read_through(hooked);
  EXPECT_EQ(names(), Names{"a"}) << "its neighbour moved up into its place";
  read();
  EXPECT_EQ(names(), (Names{"a", "c"}));
}

TEST_F(DirtyDataTest, SubkeyThatVanishesWhileItIsReadIsARowWithoutValues) {
  text("a", "DisplayName", u"Name");
  number("a", "EstimatedSize", 5);
  for (const char* last_call : {"info", "value_at"}) {
    SCOPED_TRACE(last_call);
    text("a", "DisplayName", u"Name");
    number("a", "EstimatedSize", 5);
    int calls = 0;
    HookedRegistry hooked(registry_, [&](const std::string& operation, uint32_t) {
      // The first answer is about the Uninstall key.
      const int wanted = operation == "info" ? 2 : 1;
      if (operation == last_call && ++calls == wanted) registry_.remove(path("a"));
    });
    ASSERT_EQ(read_through(hooked).size(), 1u);
    EXPECT_EQ(value(0, Field::name), "a");
    EXPECT_EQ(value(0, Field::displayName), "");
    EXPECT_EQ(value(0, Field::size), "-1");
  }
}

TEST_F(DirtyDataTest, SubkeyThatIsAddedDuringTheWalkDoesNoHarm) {
  for (const char* name : {"b", "c", "d"})
    add(name);
  HookedRegistry hooked(registry_, [this](const std::string& operation, uint32_t index) {
    if (operation == "subkey_at" && index == 1) add("a");
  });
  read_through(hooked);
  EXPECT_EQ(names(), (Names{"b", "b", "c", "d"})) << "one is met again, which makes the same row";
}

TEST_F(DirtyDataTest, LongerNameThatIsAddedDuringTheWalkEndsThisPass) {
  for (const char* name : {"a", "b", "d"})
    add(name);
  HookedRegistry hooked(registry_, [this](const std::string& operation, uint32_t index) {
    if (operation == "subkey_at" && index == 1) add("cc");
  });
  read_through(hooked);
  EXPECT_EQ(names(), (Names{"a", "b"}));
  read();
  EXPECT_EQ(names(), (Names{"a", "b", "cc", "d"}));
}

TEST_F(DirtyDataTest, UninstallKeyThatVanishesEndsThePass) {
  for (const char* name : {"a", "b"})
    add(name);
  HookedRegistry hooked(registry_, [this](const std::string& operation, uint32_t index) {
    if (operation != "subkey_at" || index != 1) return;
    registry_.remove(std::string("HKEY_CURRENT_USER\\") + kUninstallBelowRoot);
  });
  read_through(hooked);
  EXPECT_EQ(names(), Names{"a"});
}

TEST_F(DirtyDataTest, ValuesOfAKeyThatTellsNothingOfItselfAreRead) {
  text("a", "DisplayName", u"Name");
  text("a", "InstallDate", u"20090112");
  registry_.fail("info", path("a"), kRegAccessDenied);
  read();
  EXPECT_EQ(value(0, Field::displayName), "Name");
  EXPECT_NE(value(0, Field::installDate), "");
}

TEST_F(DirtyDataTest, AnyCallThatFailsOnceCostsNoMoreThanItsOwnAnswer) {
  const char* const operations[] = {"info", "value_at", "value", "open"};
  for (const char* operation : operations) {
    for (const RegStatus status : {kRegAccessDenied, kRegMoreData, kRegKeyDeleted}) {
      SCOPED_TRACE(std::string(operation) + " " + std::to_string(status));
      for (const char* name : {"a", "b", "c"})
        text(name, "DisplayName", u"Name");
      registry_.fail(operation, path("b"), status);
      registry_.fail(operation, path("b") + "\\DisplayName", status);
      read();
      const bool skipped = std::strcmp(operation, "open") == 0;
      EXPECT_EQ(names(), skipped ? (Names{"a", "c"}) : (Names{"a", "b", "c"}));
      for (size_t row = 0; row < rows_.size(); ++row)
        EXPECT_EQ(value(row, Field::displayName), "Name");
      registry_.remove(std::string("HKEY_CURRENT_USER\\") + kUninstallBelowRoot);
    }
  }
}

TEST_F(DirtyDataTest, CommandsMadeOfBlanksQuotesAndPercentSignsAreTakenAsTheyStand) {
  const struct {
    const char16_t* command;
    const char* path;
  } rows[] = {
      {u" ", ""},          {u"\"", ""}, {u"\"\"", ""},   {u" \"\"", ""},    {u"\"\" /s", ""},
      {u"\t\t\t", "\t\t"}, {u"%", "%"}, {u"%%%", "%%%"}, {u"\"%\" x", "%"}, {u"\"\"\"", ""},
  };
  for (const auto& row : rows) {
    text("App", "UninstallString", row.command);
    text("App", "ModifyPath", row.command);
    read();
    SCOPED_TRACE(value(0, Field::uninstallCmd));
    EXPECT_EQ(value(0, Field::installerPath), row.path);
    EXPECT_EQ(value(0, Field::OK), *row.path == '\0' ? "0" : "1");
  }
}

}  // namespace
