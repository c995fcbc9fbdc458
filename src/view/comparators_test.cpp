#include "view/comparators.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "view/columns.h"

namespace {

using Entry = UninstallEntry;
using Entries = std::vector<Entry>;

int sign(int order) {
  return (order > 0) - (order < 0);
}

/// `groups` are in ascending order, the members of one group are equal.
void expect_order(int column, const std::vector<Entries>& groups) {
  const Compare compare = comparator(column);
  for (size_t g = 0; g < groups.size(); ++g) {
    for (size_t h = 0; h < groups.size(); ++h) {
      for (const Entry& a : groups[g]) {
        for (const Entry& b : groups[h]) {
          EXPECT_EQ(sign(compare(a, b)), static_cast<int>(g > h) - static_cast<int>(g < h))
              << "groups " << g << " and " << h;
        }
      }
    }
  }
}

using Texts = std::vector<std::vector<const char*>>;

void expect_text_order(int column, String Entry::*field, const Texts& groups) {
  SCOPED_TRACE(column);
  std::vector<Entries> all;
  for (const auto& group : groups) {
    all.emplace_back();
    for (const char* text : group) {
      all.back().emplace_back();
      all.back().back().*field = text;
    }
  }
  expect_order(column, all);
}

struct TextColumn {
  int column;
  String Entry::*field;
};

TEST(Comparators, BytesGoByCode) {
  const TextColumn columns[] = {
      {1, &Entry::source}, {4, &Entry::parent}, {9, &Entry::uninstallCmd}, {10, &Entry::modifyCmd}};
  for (const TextColumn& c : columns) {
    expect_text_order(c.column, c.field,
                      {{""}, {" "}, {"10"}, {"9"}, {"B"}, {"Z"}, {"_"}, {"a"}, {"ab"}, {"\xc4"}});
  }
}

TEST(Comparators, EntryNamesAreCollatedWithTheirCase) {
  expect_text_order(
      0, &Entry::name,
      {{""}, {"-b"}, {"_a"}, {"{a}"}, {"10"}, {"9"}, {"a"}, {"A"}, {"\xe4"}, {"ab"}, {"b"}, {"B"}});
}

TEST(Comparators, MostTextsAreCollatedWithoutTheirCase) {
  const TextColumn columns[] = {
      {11, &Entry::installerPath}, {13, &Entry::displayIcon}, {14, &Entry::installLocation},
      {16, &Entry::packagePath},   {22, &Entry::comments},    {23, &Entry::user},
      {24, &Entry::publisher},     {25, &Entry::contact},     {26, &Entry::helpURL},
      {27, &Entry::helpPhone},     {28, &Entry::aboutURL},    {29, &Entry::updateURL}};
  for (const TextColumn& c : columns) {
    expect_text_order(c.column, c.field,
                      {{""},
                       {"-b"},
                       {"_a"},
                       {"10"},
                       {"9"},
                       {"a", "A"},
                       {"\xe4", "\xc4"},
                       {"ab", "aB", "AB"},
                       {"B", "b"}});
  }
}

TEST(Comparators, ProgramNamesBeginAtTheirFirstLetterOrDigit) {
  // A letter beyond ASCII is none to the runtime.
  expect_text_order(2, &Entry::displayName,
                    {{"()", "\xc4\xd6\xdc", "---"},
                     {"10"},
                     {"9"},
                     {"[a]b", "a]b"},
                     {"aB", "(AB", " ab",
                      "\xc4"
                      "ab"},
                     {"{B}"},
                     {"C"}});
}

TEST(Comparators, ProgramNamesFallBackToTheEntrysName) {
  Entry named;
  named.name = "z";
  named.displayName = "b";
  Entry unnamed;
  unnamed.name = "(A)";
  Entry later;
  later.name = "{C}";
  expect_order(2, {{unnamed}, {named}, {later}});
}

TEST(Comparators, VersionsGoByTheirNumbers) {
  expect_text_order(3, &Entry::displayVersion,
                    {{""},
                     {"1", "1.", "01"},
                     {"1.2", "1.02"},
                     {"1.2.1"},
                     {"1.2a"},
                     {"1.2b"},
                     {"1.10"},
                     {"2"},
                     {"10"},
                     {"10.1", "Name/x 10.1"}});
}

TEST(Comparators, ParentsGoByNameOrElseByEntry) {
  Entry first;
  first.parent = "A";
  Entry second;
  second.parent = "a";
  second.parentName = "B";
  Entry same;
  same.parent = "b";
  Entry none;
  expect_order(5, {{none}, {first}, {second, same}});
}

TEST(Comparators, DatesGoByTheirTimeAndUnreadableOnesComeLast) {
  struct DateColumn {
    int column;
    DateTime Entry::*field;
  };
  const DateColumn columns[] = {{6, &Entry::installDateValue},
                                {7, &Entry::uninstallDateValue},
                                {15, &Entry::lastUseDateValue}};
  const auto date = [](uint16_t year, uint16_t month, uint16_t day, uint16_t hour) {
    DateTime value;
    value.time = {year, month, 0, day, hour, 0, 0, 0};
    return value;
  };
  for (const DateColumn& c : columns) {
    SCOPED_TRACE(c.column);
    const auto with = [&](const DateTime& value) {
      Entry entry;
      entry.*c.field = value;
      return entry;
    };
    expect_order(c.column,
                 {{with(date(1999, 12, 31, 23))},
                  {with(date(2009, 2, 1, 0))},
                  {with(date(2009, 2, 1, 10)), with(date(2009, 2, 1, 10))},
                  {with(date(2010, 1, 1, 0))},
                  {with(DateTime()), with(date(2009, 2, 30, 0)), with(date(1500, 1, 1, 0))}});
  }
}

TEST(Comparators, NumbersAreSigned) {
  struct NumberColumn {
    int column;
    int32_t Entry::*field;
  };
  const NumberColumn columns[] = {{8, &Entry::size},      {12, &Entry::OK},
                                  {17, &Entry::features}, {18, &Entry::patches},
                                  {19, &Entry::is64Bit},  {21, &Entry::frequency}};
  for (const NumberColumn& c : columns) {
    SCOPED_TRACE(c.column);
    std::vector<Entries> groups;
    for (const int32_t number : {std::numeric_limits<int32_t>::min(), -2, -1, 0, 1, 9, 10,
                                 std::numeric_limits<int32_t>::max()}) {
      groups.emplace_back(2);
      for (Entry& entry : groups.back())
        entry.*c.field = number;
    }
    expect_order(c.column, groups);
  }
}

TEST(Comparators, SystemComponentsAreUnsigned) {
  std::vector<Entries> groups;
  for (const int32_t number : {0, 1, 2, std::numeric_limits<int32_t>::max(), -2, -1}) {
    groups.emplace_back(1);
    groups.back()[0].systemComponent = number;
  }
  expect_order(20, groups);
}

TEST(Comparators, NewComesBeforeUnchangedAndUnchangedBeforeChanged) {
  const auto marked = [](int32_t changed) {
    Entry entry;
    entry.changed = changed;
    return entry;
  };
  expect_order(kChangesColumn,
               {{marked(-1)}, {marked(0)}, {marked(1), marked(4), marked(0x40000000)}});
  // The mark of the column "About URL" is the sign.
  expect_order(kChangesColumn,
               {{marked(std::numeric_limits<int32_t>::min())}, {marked(-1)}, {marked(0)}});
}

TEST(Comparators, TreePutsSubPackagesBehindTheirParent) {
  const auto package = [](const char* name, const char* parent) {
    Entry entry;
    entry.name = name;
    entry.parent = parent;
    return entry;
  };
  expect_order(kTreeColumn, {
                                {package("", "")},
                                {package("{}", "")},
                                {package("a", ""), package("{a}", "")},
                                {package("x", "a"), package("{x}", "{a}")},
                                {package("y", "{a}"), package("{y}", "a")},
                                {package("ab", "")},
                                {package("b", ""), package("{b}", "")},
                                {package("{B}", ""), package("B", "")},
                                {package("a", "b")},
                            });
}

TEST(Comparators, TreeTakesOffOnePairOfBracesOnly) {
  const auto named = [](const char* name) {
    Entry entry;
    entry.name = name;
    return entry;
  };
  const Compare compare = comparator(kTreeColumn);
  EXPECT_EQ(compare(named("{ab}"), named("ab")), 0);
  EXPECT_NE(compare(named("{{ab}}"), named("ab")), 0);
  EXPECT_NE(compare(named("{{ab}}"), named("{ab}")), 0);
  // A brace on one side is none, nor is a pair around nothing.
  EXPECT_NE(compare(named("{ab"), named("a")), 0);
  EXPECT_NE(compare(named("ab}"), named("b")), 0);
  EXPECT_NE(compare(named("{}"), named("")), 0);
}

TEST(Comparators, TreePutsABackslashBetweenParentAndSubPackage) {
  Entry whole;
  whole.name = "a\\x";
  Entry part;
  part.name = "{x}";
  part.parent = "{a}";
  EXPECT_EQ(comparator(kTreeColumn)(whole, part), 0);
}

/// Texts that a registry can hold and nobody expects.
std::vector<String> bad_texts() {
  static constexpr char kWithNul[] = "a\0b";
  std::vector<String> texts = {"",
                               "a",
                               "A",
                               "\xe4",
                               "\xc4",
                               "ss",
                               "\xdf",
                               "-",
                               "--",
                               "_",
                               "{",
                               "{}",
                               "{a}",
                               "{{a}}",
                               "a\\b",
                               "a\\",
                               "\x01",
                               "a\x01",
                               "\xad",
                               "a\xad",
                               "\xa0",
                               " ",
                               "\xff",
                               "\x81\x8d",
                               "\t",
                               "a'b",
                               "a-b",
                               "co-op",
                               "coop",
                               "(1)",
                               "1.0",
                               "1",
                               "01",
                               "1..2",
                               ".1",
                               "1a",
                               "1.a",
                               "10",
                               "9",
                               "4294967296",
                               "99999999999999999999",
                               "-1",
                               "+1",
                               "1 ",
                               "%s%n",
                               "*?"};
  texts.emplace_back(kWithNul, kWithNul + 3);
  texts.emplace_back(std::string(255, 'z').c_str());
  texts.emplace_back(std::string(255, '{').c_str());
  texts.emplace_back(std::string(1 << 16, '(').c_str());
  return texts;
}

std::vector<Entry> bad_entries() {
  static constexpr String Entry::*kTexts[] = {
      &Entry::name,          &Entry::source,      &Entry::displayName,     &Entry::displayVersion,
      &Entry::parent,        &Entry::parentName,  &Entry::uninstallCmd,    &Entry::modifyCmd,
      &Entry::installerPath, &Entry::displayIcon, &Entry::installLocation, &Entry::packagePath,
      &Entry::comments,      &Entry::user,        &Entry::publisher,       &Entry::contact,
      &Entry::helpURL,       &Entry::helpPhone,   &Entry::aboutURL,        &Entry::updateURL};
  const std::vector<String> texts = bad_texts();
  std::vector<Entry> entries;
  for (size_t i = 0; i < texts.size(); ++i) {
    Entry entry;
    for (String Entry::*const field : kTexts)
      entry.*field = texts[i];
    const auto number = static_cast<uint16_t>(i);
    entry.installDateValue.time = {2000, static_cast<uint16_t>(number % 15), 0, number, 0, 0, 0, 0};
    entry.uninstallDateValue.time = {static_cast<uint16_t>(1600 + number % 3), 1, 0, 1, 0, 0, 0, 0};
    entry.lastUseDateValue.time = {static_cast<uint16_t>(65500 + i), 1, 0, 1, 25, 0, 0, 0};
    const int32_t extremes[] = {std::numeric_limits<int32_t>::min(), -1, 0, 1,
                                std::numeric_limits<int32_t>::max()};
    entry.size = entry.OK = entry.features = entry.patches = entry.is64Bit = entry.systemComponent =
        entry.frequency = entry.changed = extremes[i % 5];
    entries.push_back(entry);
    // A sub package without a name of its own.
    entry.displayName = entry.parentName = "";
    entry.name = "x";
    entries.push_back(entry);
  }
  return entries;
}

TEST(Comparators, AgreeWithThemselvesWhateverTheTexts) {
  const std::vector<Entry> entries = bad_entries();
  const size_t count = entries.size();
  for (int column = 0; column < comparatorCount; ++column) {
    SCOPED_TRACE(column);
    std::vector<std::vector<int>> order(count, std::vector<int>(count));
    for (size_t a = 0; a < count; ++a) {
      for (size_t b = 0; b < count; ++b)
        order[a][b] = sign(comparator(column)(entries[a], entries[b]));
    }
    for (size_t a = 0; a < count; ++a) {
      ASSERT_EQ(order[a][a], 0) << a;
      for (size_t b = 0; b < count; ++b) {
        ASSERT_EQ(order[a][b], -order[b][a]) << a << " and " << b;
        for (size_t c = 0; c < count; ++c) {
          const bool in_a_row = order[a][b] <= 0 && order[b][c] <= 0;
          ASSERT_TRUE(!in_a_row || order[a][c] <= 0) << a << ", " << b << " and " << c;
          ASSERT_TRUE(!in_a_row || order[a][c] == 0 || order[a][b] != 0 || order[b][c] != 0)
              << a << ", " << b << " and " << c;
        }
      }
    }
  }
}

}  // namespace
