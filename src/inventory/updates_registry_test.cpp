#include "inventory/updates_registry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/hooked_registry_test_support.h"
#include "orlo/fixed_clock.h"
#include "orlo/locale.h"
#include "platform/memory_registry.h"
#include "platform/utf16.h"

namespace {

using Field = PackageColumn;
using testing::ElementsAre;

constexpr char kBelowRoot[] = "SOFTWARE\\Microsoft\\Updates";
constexpr ORLO::FileTime kNoDate = 0xF000000000000000;
constexpr ORLO::FileTime kMorningOf13January2009 = 128763036000000000;  // 07:00 UTC

std::string shown(uint16_t year, uint16_t month, uint16_t day, uint16_t hour = 0,
                  uint16_t minute = 0) {
  DateTime date;
  date.time = {year, month, 0, day, hour, minute};
  return date.display().c_str();
}

/// The tree below the current user, which has one view only, read in Berlin on a day in winter.
/// Keys have no date unless a test gives them one.
class UpdatesRegistry : public testing::Test {
 protected:
  UpdatesRegistry() { add(""); }

  static std::string path(const std::string& below) {
    const std::string root = std::string("HKEY_CURRENT_USER\\") + kBelowRoot;
    return below.empty() ? root : root + "\\" + below;
  }
  void add(const std::string& below) {
    registry_.create(path(below));
    undated(below);
  }
  /// A new subkey has stamped the keys above it as well.
  void undated(std::string below) {
    while (!below.empty()) {
      written(below, kNoDate);
      below.resize(below.find('\\') == below.npos ? 0 : below.rfind('\\'));
    }
    written("", kNoDate);
  }
  void written(const std::string& below, ORLO::FileTime time) {
    registry_.set_last_write(path(below), time);
  }
  void text(const std::string& below, const char* value, std::u16string_view data) {
    registry_.set_text(path(below), value, data);
    undated(below);
  }
  /// The least that makes a row.
  void update(const std::string& below) { text(below, "PackageName", u"Update"); }

  int read_through(Registry& registry, const char* parent_path = "") {
    rows_.clear();
    RegistryKey key;
    EXPECT_EQ(registry.open(kCurrentUser, kBelowRoot, kKeyRead, key), kRegSuccess);
    UpdatesRegistrySource source(registry, clock_);
    return source.ReadUpdatesRegistry(key, parent_path, unseen_,
                                      [this](const Row& row) { rows_.push_back(row); });
  }
  int read(const char* parent_path = "") {
    const int count = read_through(registry_, parent_path);
    EXPECT_EQ(static_cast<size_t>(count), rows_.size());
    EXPECT_EQ(registry_.open_keys(), 0u);
    return count;
  }
  std::string value(size_t row, Field column) const {
    return cell(rows_.at(row), column).text.c_str();
  }
  /// Path and name of each row.
  std::vector<std::string> places() const {
    std::vector<std::string> result;
    result.reserve(rows_.size());
    for (const Row& row : rows_) {
      result.emplace_back(cell(row, Field::parent).text.c_str());
      result.back().append(result.back().empty() ? "" : "\\");
      result.back().append(cell(row, Field::name).text.c_str());
    }
    return result;
  }
  /// Names of `levels` keys one below the other.
  static std::string chain(int levels) {
    std::string result = "k";
    for (int level = 1; level < levels; ++level)
      result += "\\k";
    return result;
  }

  const ORLO::FixedClock clock_{{2026, 11, 5, 20, 12}};
  MemoryRegistry registry_;
  std::set<RowKey> unseen_;
  std::vector<Row> rows_;
};

TEST_F(UpdatesRegistry, CopiesWhatAnUpdateSays) {
  add("System");
  text("System\\KB123", "PackageName", u"Update for it");
  text("System\\KB123", "PackageVersion", u"2");
  text("System\\KB123", "InstalledBy", u"Somebody");
  text("System\\KB123", "InstalledDate", u"1/5/2009");
  text("System\\KB123", "InstallerName", u"update.exe");
  text("System\\KB123", "InstallerVersion", u"6.3");
  text("System\\KB123", "Publisher", u"Maker");
  text("System\\KB123", "PublishingGroup", u"Group");
  text("System\\KB123", "ReleaseType", u"Hotfix");
  text("System\\KB123", "ThisVersionInstalled", u"Y");
  text("System\\KB123", "Description", u"not asked for");
  ASSERT_EQ(read(), 1);
  const std::pair<Field, std::string> expected[] = {
      {Field::name, "KB123"},
      {Field::source, "MS Updates: update.exe 6.3 Hotfix"},
      {Field::displayName, "Update for it"},
      {Field::displayVersion, "2"},
      {Field::parent, "System"},
      {Field::parentName, "System"},
      {Field::installLocation, ""},
      {Field::installDate, shown(2009, 1, 5)},
      {Field::user, "Somebody"},
      {Field::publisher, "Maker Group"},
      {Field::helpURL, ""},
      {Field::size, "-1"},
  };
  Row rest = rows_[0];
  for (const auto& [column, text] : expected) {
    SCOPED_TRACE(static_cast<int>(column));
    EXPECT_EQ(value(0, column), text);
    cell(rest, column).text = "";
  }
  for (const Cell& other : rest.cells)
    EXPECT_TRUE(other.text.empty());
}

TEST_F(UpdatesRegistry, ValuesThatAreMissingLeaveTheirBlanks) {
  update("KB1");
  ASSERT_EQ(read(), 1);
  EXPECT_EQ(value(0, Field::source), "MS Updates:   ");
  EXPECT_EQ(value(0, Field::displayVersion), "");
  EXPECT_EQ(value(0, Field::user), "");
  EXPECT_EQ(value(0, Field::installDate), "");
}

TEST_F(UpdatesRegistry, PublisherIsASingleBlankWithNeitherOfItsParts) {
  update("KB1");
  read();
  EXPECT_EQ(value(0, Field::publisher), " ");
  text("KB1", "PublishingGroup", u"Group");
  read();
  EXPECT_EQ(value(0, Field::publisher), " Group");
}

TEST_F(UpdatesRegistry, AnUpdateThatIsNotInstalledGivesNoRowAndItsSubkeysAreStillWalked) {
  update("KB1");
  text("KB1", "ThisVersionInstalled", u"N");
  update("KB1\\KB2");
  EXPECT_EQ(read(), 1);
  EXPECT_THAT(places(), ElementsAre("KB1\\KB2"));
}

TEST_F(UpdatesRegistry, AKeyWithoutAPackageNameGivesNoRowButItsChildrenCan) {
  text("System", "PackageName", u"");
  text("System", "ThisVersionInstalled", u"Y");
  text("Other", "ThisVersionInstalled", u"Y");
  update("System\\SP1\\KB1");
  update("Other\\KB2");
  EXPECT_EQ(read(), 2);
  EXPECT_THAT(places(), ElementsAre("Other\\KB2", "System\\SP1\\KB1"));
}

TEST_F(UpdatesRegistry, InstalledIsAYInEitherCaseOrNothing) {
  const std::pair<const char16_t*, int> cases[] = {
      {u"Y", 1},  {u"y", 1},   {u"", 1},  {u"N", 0},      {u"n", 0},
      {u"YY", 0}, {u"Yes", 0}, {u"1", 0}, {u"\u00DD", 0}, {u" Y", 0},
  };
  for (const auto& [state, rows] : cases) {
    update("KB1");
    text("KB1", "ThisVersionInstalled", state);
    EXPECT_EQ(read(), rows) << utf8_from_utf16(state);
  }
}

TEST_F(UpdatesRegistry, TakesTheTimeOfDayFromTheParentKeyOfTheSameDay) {
  update("System\\KB1");
  text("System\\KB1", "InstalledDate", u"1/13/2009");
  written("System", kMorningOf13January2009);
  read();
  EXPECT_EQ(value(0, Field::installDate), shown(2009, 1, 13, 8));
  text("System\\KB1", "InstalledDate", u"1/14/2009");
  written("System", kMorningOf13January2009);
  read();
  EXPECT_EQ(value(0, Field::installDate), shown(2009, 1, 14)) << "another day";
}

TEST_F(UpdatesRegistry, WithoutADateShowsTheWriteTimeOfTheParentKeyAndNotItsOwn) {
  update("System\\KB1");
  update("KB2");
  written("System", kMorningOf13January2009);
  written("KB2", kMorningOf13January2009 + ORLO::kFileTimePerDay);
  written("System\\KB1", kMorningOf13January2009 + 2 * ORLO::kFileTimePerDay);
  written("", kMorningOf13January2009 + 3 * ORLO::kFileTimePerDay);
  ASSERT_EQ(read(), 2);
  EXPECT_EQ(value(0, Field::installDate), shown(2009, 1, 16, 8)) << "the root's";
  EXPECT_EQ(value(1, Field::installDate), shown(2009, 1, 13, 8));
}

TEST_F(UpdatesRegistry, ADateThatIsNoneIsShownAsItStands) {
  update("KB1");
  text("KB1", "InstalledDate", u"some day");
  read();
  EXPECT_EQ(value(0, Field::installDate), "some day") << "a write time that is no date is none";
  written("", kMorningOf13January2009);
  read();
  EXPECT_EQ(value(0, Field::installDate), shown(2009, 1, 13, 8));
}

TEST_F(UpdatesRegistry, AWriteTimeThatIsRefusedIsNoDate) {
  update("KB1");
  written("", kMorningOf13January2009);
  registry_.fail("info", "Updates", kRegAccessDenied);
  ASSERT_EQ(read(), 1);
  EXPECT_EQ(value(0, Field::installDate), "");
}

TEST_F(UpdatesRegistry, BeginsWithThePathItIsGiven) {
  update("KB1");
  update("SP1\\KB2");
  read("Above\\Root");
  EXPECT_THAT(places(), ElementsAre("Above\\Root\\KB1", "Above\\Root\\SP1\\KB2"));
}

TEST_F(UpdatesRegistry, AParentComesBeforeItsChildrenWithItsOwnValues) {
  text("A", "PackageName", u"first");
  text("A", "Publisher", u"Maker");
  text("A\\B", "PackageName", u"second");
  text("C", "PackageName", u"third");
  EXPECT_EQ(read(), 3);
  EXPECT_THAT(places(), ElementsAre("A", "A\\B", "C"));
  EXPECT_EQ(value(1, Field::publisher), " ") << "nothing carries over";
  EXPECT_EQ(value(2, Field::displayName), "third");
}

TEST_F(UpdatesRegistry, ATreeWithoutSubkeysGivesNoRow) {
  text("", "PackageName", u"the root itself is no update");
  EXPECT_EQ(read(), 0);
}

TEST_F(UpdatesRegistry, ErasesTheKeyOfItsRowsFromTheUnseenOnes) {
  Row other = make_source_row("x");
  cell(other, Field::keyName).text = "other";
  unseen_ = {packageSchema().key_of(make_source_row("x")), packageSchema().key_of(other)};
  add("Empty");
  read();
  EXPECT_EQ(unseen_.size(), 2u);
  update("KB1");
  read();
  EXPECT_EQ(unseen_, std::set<RowKey>{packageSchema().key_of(other)});
}

TEST_F(UpdatesRegistry, ReadsTreesOfSixtyLevels) {
  for (int level = 1; level <= 60; ++level)
    update(chain(level));
  EXPECT_EQ(read(), 60);
  EXPECT_EQ(value(59, Field::parent), chain(59));
}

/// Bytes of stack between the first delivery and the farthest one from it.
size_t stack_of_deliveries(MemoryRegistry& registry, const ORLO::Clock& clock, int& rows) {
  RegistryKey key;
  registry.open(kCurrentUser, kBelowRoot, kKeyRead, key);
  UpdatesRegistrySource source(registry, clock);
  std::set<RowKey> unseen;
  std::vector<uintptr_t> places;
  rows = source.ReadUpdatesRegistry(key, "", unseen, [&places](const Row&) {
    const char here = 0;
    places.push_back(reinterpret_cast<uintptr_t>(&here));
  });
  if (places.empty()) return 0;
  const auto [lowest, highest] = std::minmax_element(places.begin(), places.end());
  return *highest - *lowest;
}

TEST_F(UpdatesRegistry, AtTheRegistrysDeepestTheStackOfAThreadIsNotHalfUsed) {
  const int levels = 512 - 4;  // the root, and the three keys of the tree's own path
  for (int level = 1; level <= levels; ++level)
    registry_.set_text(path(chain(level)), "PackageName", u"Update");
  EXPECT_THROW(update(chain(levels + 1)), std::invalid_argument);
  int rows = 0;
  EXPECT_LT(stack_of_deliveries(registry_, clock_, rows), 1024u * 1024u / 2u);
  EXPECT_EQ(rows, levels);
  EXPECT_EQ(registry_.open_keys(), 0u);
}

/// Answers every question for a subkey with the key itself, as a link to a key further up does.
class LoopedRegistry final : public HookedRegistry {
 public:
  explicit LoopedRegistry(Registry& behind)
      : HookedRegistry(behind, [](const std::string&, uint32_t) {}) {}
  using HookedRegistry::open;
  RegStatus open(const RegistryKey&, const char*, uint32_t access, RegistryKey& key) override {
    return HookedRegistry::open(kCurrentUser, kBelowRoot, access, key);
  }
};

TEST_F(UpdatesRegistry, ALinkToAKeyFurtherUpIsFollowedNoDeeperThanARegistryGoes) {
  add("Link");
  text("", "PackageName", u"Update");
  LoopedRegistry looped(registry_);
  EXPECT_EQ(read_through(looped), 512);
  EXPECT_EQ(looped.open_keys(), 0);
}

/// A loop in which every key has several subkeys.
class BranchedRegistry final : public HookedRegistry {
 public:
  explicit BranchedRegistry(Registry& behind)
      : HookedRegistry(behind, [](const std::string&, uint32_t) {}) {}
  using HookedRegistry::open;
  RegStatus open(const RegistryKey&, const char*, uint32_t access, RegistryKey& key) override {
    ++opens;
    return HookedRegistry::open(kCurrentUser, kBelowRoot, access, key);
  }
  RegStatus subkey_at(const RegistryKey&, uint32_t index, char* name, uint32_t& length) override {
    ++enumerations;
    if (index == branches) return kRegNoMoreItems;
    length = 1;
    name[0] = static_cast<char>('a' + index);
    name[1] = '\0';
    return kRegSuccess;
  }
  int opens = 0;
  int enumerations = 0;
  uint32_t branches = 0;
};

TEST_F(UpdatesRegistry, LinksThatLeadBackUpEndEachWalkInTheEnd) {
  BranchedRegistry branched(registry_);
  RegistryKey key;
  ASSERT_EQ(branched.open(kCurrentUser, kBelowRoot, kKeyRead, key), kRegSuccess);
  UpdatesRegistrySource source(branched, clock_);
  for (const uint32_t branches : {2u, 3u}) {
    branched.branches = branches;
    branched.opens = branched.enumerations = 0;
    EXPECT_EQ(source.ReadUpdatesRegistry(key, "", unseen_, [](const Row&) {}), 0);
    EXPECT_EQ(branched.opens, 200'000);
    EXPECT_LE(branched.enumerations, 2 * branched.opens);
    EXPECT_EQ(branched.open_keys(), 1);
  }
}

TEST_F(UpdatesRegistry, ANameThatOpensNoSubkeyIsPassedOver) {
  update("a\\a");
  update("a\uFF3C");   // told as "a\\"
  update("a\uFF3Ca");  // told as "a\\a"
  const std::u16string wide = u"a\uFF3C";
  ASSERT_EQ(ORLO::system_locale().narrow(wide.data(), wide.size()), "a\\");
  EXPECT_EQ(read(), 1);
  EXPECT_THAT(places(), ElementsAre("a\\a"));
  NulNameRegistry with_nuls(registry_);
  text("", "PackageName", u"the root");
  EXPECT_EQ(read_through(with_nuls), 1);
  EXPECT_THAT(places(), ElementsAre("a\\a"));
}

TEST_F(UpdatesRegistry, NamesThatOpenTheSameKeyAreWalkedOnce) {
  std::string place;
  for (int level = 0; level < 60; ++level) {
    add(place + "\u0100");  // told as "A"
    add(place + "\uFF41");  // told as "a"
    update(place + "a");
    place += "a\\";
  }
  const std::u16string wide = u"\u0100\uFF41";
  ASSERT_EQ(ORLO::system_locale().narrow(wide.data(), wide.size()), "Aa");
  EXPECT_EQ(read(), 60);
}

TEST_F(UpdatesRegistry, AKeyThatCannotBeOpenedIsPassedOver) {
  update("KB1");
  update("KB2");
  update("KB2\\KB3");
  update("KB4");
  registry_.fail("open", "KB2", kRegAccessDenied);
  EXPECT_EQ(read(), 2);
  EXPECT_THAT(places(), ElementsAre("KB1", "KB4"));
}

TEST_F(UpdatesRegistry, ANameOutsideTheCodePageIsPassedOver) {
  update("\u6587");
  update("KB1");
  EXPECT_EQ(read(), 1);
  EXPECT_THAT(places(), ElementsAre("KB1"));
}

TEST_F(UpdatesRegistry, NamesInTheCodePageAndOfAnyLengthAreTold) {
  const std::string longest(255, 'x');
  update("\u00C4rger");
  update(longest);
  EXPECT_EQ(read(), 2);
  EXPECT_EQ(value(0, Field::name), longest);
  EXPECT_EQ(value(1, Field::name), "\xC4rger");
}

TEST_F(UpdatesRegistry, WhatItCannotEnumerateGivesNoRow) {
  update("KB1");
  registry_.fail("subkey_at", "", kRegAccessDenied, -1);
  EXPECT_EQ(read(), 0);
}

TEST_F(UpdatesRegistry, ValuesOfAnyTypeAreReadAsTextUpToANul) {
  update("KB1");
  registry_.set_number(path("KB1"), "PackageVersion", 0x00434241);
  registry_.set_raw(path("KB1"), "Publisher", kRegBinary, std::string("Ma\0ker", 6));
  registry_.set_raw(path("KB1"), "ReleaseType", kRegMultiSz,
                    bytes_from_utf16(std::u16string_view(u"One\0Two\0\0", 9)));
  registry_.set_raw(path("KB1"), "InstalledBy", kRegSz, std::string());
  registry_.set_raw(path("KB1"), "InstallerName", kRegExpandSz, bytes_from_utf16(u"%TEMP%"));
  registry_.set_raw(path("KB1"), "ThisVersionInstalled", kRegBinary, "Y");
  ASSERT_EQ(read(), 1);
  EXPECT_EQ(value(0, Field::displayVersion), "ABC");
  EXPECT_EQ(value(0, Field::publisher), "Ma ");
  EXPECT_EQ(value(0, Field::source), "MS Updates: %TEMP%  One");
  EXPECT_EQ(value(0, Field::user), "");
}

TEST_F(UpdatesRegistry, ValuesOfAnyLengthAreReadWhole) {
  for (const size_t length :
       {size_t{1}, size_t{1023}, size_t{1024}, size_t{1025}, size_t{500000}}) {
    text("KB1", "PackageName", std::u16string(length, u'x'));
    ASSERT_EQ(read(), 1);
    EXPECT_EQ(value(0, Field::displayName).size(), length);
  }
}

TEST_F(UpdatesRegistry, AmongManyValuesThoseAskedForAreFound) {
  for (int i = 0; i < 100; ++i)
    registry_.set_number(path("KB1"), "Other" + std::to_string(i), 0);
  update("KB1");
  EXPECT_EQ(read(), 1);
}

TEST_F(UpdatesRegistry, AKeysValuesAreReadInOneWalk) {
  update("KB1");
  text("KB1", "Publisher", u"Maker");
  registry_.clear_calls();
  read();
  int walked = 0;
  for (const std::string& call : registry_.calls()) {
    EXPECT_FALSE(call.starts_with("value ")) << call;
    walked += call.starts_with("value_at ") ? 1 : 0;
  }
  EXPECT_EQ(walked, 2);
}

/// What vanishes between two calls, at any place of the walk.
class VanishingUpdates : public UpdatesRegistry {
 protected:
  /// Reads with one change after so many calls, at each place in turn.
  template <typename Change>
  void change_everywhere(const Change& change) {
    for (int place = 0; place < 40; ++place) {
      SCOPED_TRACE(place);
      fill();
      int calls = 0;
      HookedRegistry hooked(registry_, [&](const std::string&, uint32_t) {
        if (calls++ == place) change();
      });
      const int count = read_through(hooked);
      EXPECT_EQ(static_cast<size_t>(count), rows_.size());
      EXPECT_LE(count, 3);
      for (const Row& row : rows_)
        EXPECT_STREQ(cell(row, Field::displayName).text.c_str(), "Update");
      EXPECT_EQ(hooked.open_keys(), 0);
    }
  }
  void fill() {
    for (const char* name : {"A", "A\\B", "C"}) {
      text(name, "Publisher", u"Maker");
      update(name);
    }
  }
};

TEST_F(VanishingUpdates, AValueThatVanishesIsAsGoodAsMissing) {
  change_everywhere([this] { registry_.remove_value(path("A"), "Publisher"); });
  change_everywhere([this] { registry_.remove_value(path("A\\B"), "PackageName"); });
}

TEST_F(VanishingUpdates, AKeyThatVanishesEndsItsOwnPartOfTheWalk) {
  change_everywhere([this] { registry_.remove(path("A")); });
  change_everywhere([this] { registry_.remove(path("A\\B")); });
}

TEST_F(UpdatesRegistry, ARowThatIsRefusedLeavesNoKeyOpen) {
  update("A\\B\\C");
  RegistryKey key;
  registry_.open(kCurrentUser, kBelowRoot, kKeyRead, key);
  UpdatesRegistrySource source(registry_, clock_);
  EXPECT_THROW(source.ReadUpdatesRegistry(key, "", unseen_,
                                          [](const Row&) { throw std::runtime_error("full"); }),
               std::runtime_error);
  EXPECT_EQ(registry_.open_keys(), 1u);
}

}  // namespace
