#include "inventory/servicing_packages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/hooked_registry_test_support.h"
#include "orlo/fixed_clock.h"
#include "platform/memory_accounts.h"
#include "platform/memory_registry.h"

namespace {

using Field = PackageColumn;

constexpr char kPackages[] =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Component Based "
    "Servicing\\Packages";
constexpr ORLO::FileTime kNoDate = 0xF000000000000000;
constexpr ORLO::FileTime kMorningOf13January2009 = 128763036000000000;  // 07:00 UTC

/// As the program shows a date of the zone that it is in.
std::string shown(uint16_t year, uint16_t month, uint16_t day, uint16_t hour, uint16_t minute) {
  DateTime date;
  date.time = {year, month, 0, day, hour, minute};
  return date.display().c_str();
}

/// Calls of an operation, or of one with a certain name.
size_t calls_of(const MemoryRegistry& registry, const std::string& beginning) {
  const std::vector<std::string> calls = registry.calls();
  return static_cast<size_t>(std::count_if(
      calls.begin(), calls.end(), [&](const auto& call) { return call.rfind(beginning, 0) == 0; }));
}

class ServicingPackagesTest : public testing::Test {
 protected:
  static std::string path(const std::string& name) {
    return std::string(kPackages).append("\\").append(name);
  }
  void add(const std::string& name, ORLO::FileTime written = kNoDate) {
    registry_.set_last_write(path(name), written);
  }
  void text(const std::string& name, const char* value, std::u16string_view data) {
    registry_.set_text(path(name), value, data);
    add(name);
  }
  void install_time(const std::string& name, ORLO::FileTime time) {
    registry_.set_number(path(name), "InstallTimeLow", static_cast<uint32_t>(time));
    registry_.set_number(path(name), "InstallTimeHigh", static_cast<uint32_t>(time >> 32));
    add(name);
  }
  bool read_through(Registry& registry) {
    rows_.clear();
    ServicingPackagesSource source(registry, accounts_, clock_);
    return source.ReadServicingPackages(unseen_, [this](const Row& row) { rows_.push_back(row); });
  }
  bool read() { return read_through(registry_); }
  std::string value(size_t row, Field column) const {
    return cell(rows_.at(row), column).text.c_str();
  }
  std::vector<std::string> names() const {
    std::vector<std::string> result;
    for (const Row& row : rows_)
      result.emplace_back(cell(row, Field::name).text.c_str());
    return result;
  }

  const ORLO::FixedClock clock_{{2026, 11, 5, 20, 12}};
  MemoryRegistry registry_;
  MemoryAccounts accounts_;
  std::set<RowKey> unseen_;
  std::vector<Row> rows_;
};

TEST_F(ServicingPackagesTest, FillsTheCellsOfARow) {
  accounts_.add("S-1-5-18", "NT AUTHORITY", "SYSTEM");
  text("Package_1", "InstallClient", u"Agent");
  text("Package_1", "InstallName", u"Package one");
  text("Package_1", "InstallLocation", u"C:\\one\\");
  text("Package_1", "InstallUser", u"S-1-5-18");
  install_time("Package_1", kMorningOf13January2009);
  EXPECT_TRUE(read());
  ASSERT_EQ(rows_.size(), 1u);
  const std::pair<Field, std::string> filled[] = {
      {Field::name, "Package_1"},
      {Field::source, "Agent"},
      {Field::displayName, "Package one"},
      {Field::installLocation, "C:\\one\\"},
      {Field::user, "NT AUTHORITY\\SYSTEM"},
      {Field::installDate, shown(2009, 1, 13, 8, 0)},
      {Field::size, "-1"},
  };
  ASSERT_EQ(rows_[0].cells.size(), kPackageColumns);
  for (size_t i = 0; i < kPackageColumns; ++i) {
    SCOPED_TRACE(i);
    std::string expected;
    for (const auto& [column, text] : filled) {
      if (static_cast<size_t>(column) == i) expected = text;
    }
    EXPECT_EQ(value(0, static_cast<Field>(i)), expected);
  }
  EXPECT_EQ(cell(rows_[0], Field::size).integer(), -1);
  EXPECT_EQ(registry_.open_keys(), 0u);
}

TEST_F(ServicingPackagesTest, ReadsThe64BitView) {
  registry_.create(
      "HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Microsoft\\Windows\\CurrentVersion\\Component "
      "Based Servicing\\Packages\\Package_of_the_other_view");
  EXPECT_FALSE(read());
  add("Package_1");
  EXPECT_TRUE(read());
  EXPECT_EQ(names(), std::vector<std::string>{"Package_1"});
}

/// Notes what access keys are opened with.
class AccessNote : public HookedRegistry {
 public:
  explicit AccessNote(Registry& behind) : HookedRegistry(behind, [](const auto&, uint32_t) {}) {}
  RegStatus open(int32_t root, const char* path, uint32_t access, RegistryKey& key) override {
    accesses.push_back(access);
    return HookedRegistry::open(root, path, access, key);
  }
  RegStatus open(const RegistryKey& parent, const char* path, uint32_t access,
                 RegistryKey& key) override {
    accesses.push_back(access);
    return HookedRegistry::open(parent, path, access, key);
  }
  std::vector<uint32_t> accesses;
};

TEST_F(ServicingPackagesTest, AsksForNoMoreAccessThanReadingNeeds) {
  add("a");
  add("b");
  AccessNote registry(registry_);
  read_through(registry);
  EXPECT_EQ(registry.accesses, (std::vector<uint32_t>{0x20119, 1, 1}));
  EXPECT_EQ(registry.open_keys(), 0);
}

TEST_F(ServicingPackagesTest, IsFalseWhereTheKeyCannotBeOpened) {
  EXPECT_FALSE(read());
  add("a");
  registry_.fail("open", "", kRegAccessDenied);
  EXPECT_FALSE(read());
  EXPECT_TRUE(rows_.empty());
}

TEST_F(ServicingPackagesTest, IsTrueWhereTheKeyTellsNothingOfItself) {
  add("a");
  registry_.fail("info", "", kRegAccessDenied);
  EXPECT_TRUE(read());
  EXPECT_TRUE(rows_.empty());
  EXPECT_EQ(registry_.open_keys(), 0u);
}

TEST_F(ServicingPackagesTest, IsTrueWithoutAPackage) {
  registry_.create(kPackages);
  EXPECT_TRUE(read());
  EXPECT_TRUE(rows_.empty());
}

TEST_F(ServicingPackagesTest, GoesOnAfterAPackageThatCannotBeOpened) {
  for (const char* name : {"a", "b", "c"})
    add(name);
  registry_.fail("open", path("b"), kRegAccessDenied);
  EXPECT_TRUE(read());
  EXPECT_EQ(names(), (std::vector<std::string>{"a", "c"}));
}

TEST_F(ServicingPackagesTest, PassesOverANameThatOpensNoSubkey) {
  add("a\\ab");
  add("a\uFF3C");   // told as "a\\"
  add("a\uFF3Ca");  // told as "a\\a"
  add("b");
  NulNameRegistry registry(registry_);
  EXPECT_TRUE(read_through(registry));
  EXPECT_EQ(names(), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(registry.open_keys(), 0);
}

TEST_F(ServicingPackagesTest, EndsWhereTheEnumerationFails) {
  for (const char* name : {"a", "b", "c"})
    add(name);
  HookedRegistry registry(registry_, [this](const std::string& operation, uint32_t index) {
    if (operation == "subkey_at" && index == 1) {
      registry_.fail("subkey_at", "", kRegAccessDenied);
    }
  });
  EXPECT_TRUE(read_through(registry));
  EXPECT_EQ(names(), std::vector<std::string>{"a"});
  EXPECT_EQ(registry.open_keys(), 0);
}

TEST_F(ServicingPackagesTest, ReadsTheValuesOfAPackageThatTellsNothingOfItself) {
  text("a", "InstallName", u"Name");
  add("a", kMorningOf13January2009);
  bool first = true;
  HookedRegistry registry(registry_, [&](const std::string& operation, uint32_t) {
    if (operation != "info") return;
    if (!first) registry_.fail("info", "", kRegAccessDenied);
    first = false;
  });
  EXPECT_TRUE(read_through(registry));
  ASSERT_EQ(rows_.size(), 1u);
  EXPECT_EQ(value(0, Field::displayName), "Name");
  EXPECT_EQ(value(0, Field::installDate), "");
}

TEST_F(ServicingPackagesTest, LeavesNothingOfOnePackageToTheNext) {
  accounts_.add("S-1-5-18", "NT AUTHORITY", "SYSTEM");
  for (const char* value : {"InstallClient", "InstallName", "InstallLocation"})
    text("a", value, u"said");
  text("a", "InstallUser", u"S-1-5-18");
  install_time("a", kMorningOf13January2009);
  add("b");
  read();
  ASSERT_EQ(rows_.size(), 2u);
  for (const Field column : {Field::source, Field::displayName, Field::installLocation, Field::user,
                             Field::installDate}) {
    EXPECT_NE(value(0, column), "");
    EXPECT_EQ(value(1, column), "");
  }
}

TEST_F(ServicingPackagesTest, NamesAPackageWithoutANameOfItsOwnByItsKey) {
  text("Package_for_KB1~31bf~x86~~6.1", "InstallName", u"update.mum");
  read();
  EXPECT_EQ(value(0, Field::displayName), "Package_for_KB1 31bf x86  6.1 - update.mum");
  EXPECT_EQ(value(0, Field::name), "Package_for_KB1~31bf~x86~~6.1");
}

TEST_F(ServicingPackagesTest, APercentSignInAKeysNameIsACharacterLikeOthers) {
  text("Package_100%s~%n%#s", "InstallName", u"update.mum");
  read();
  EXPECT_EQ(value(0, Field::displayName), "Package_100%s %n%#s - update.mum");
}

TEST_F(ServicingPackagesTest, ShowsTildesAsBlanks) {
  const struct {
    const char16_t* install_name;
    const char* shown;
  } cases[] = {
      {u"Update.mum", "Update.mum"},
      {u"update.mum ", "update.mum "},
      {u"update.mu", "update.mu"},
      {u"", ""},
      {u"~", " "},
      {u"a~~b~", "a  b "},
      {u"%s~%n", "%s %n"},
      {u"update.mum~", "update.mum "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.shown);
    text("~key", "InstallName", c.install_name);
    read();
    EXPECT_EQ(value(0, Field::displayName), c.shown);
  }
}

TEST_F(ServicingPackagesTest, APackageWithNoInstallTimeShowsTheDateOfItsKeysLastWrite) {
  add("a", kMorningOf13January2009);
  add("b", kNoDate);
  read();
  EXPECT_EQ(value(0, Field::installDate), shown(2009, 1, 13, 8, 0));
  EXPECT_EQ(value(1, Field::installDate), "");
}

TEST_F(ServicingPackagesTest, TheInstallTimeComesBeforeTheKeysLastWrite) {
  install_time("a", kMorningOf13January2009 + ORLO::kFileTimePerDay);
  add("a", kMorningOf13January2009);
  read();
  EXPECT_EQ(value(0, Field::installDate), shown(2009, 1, 14, 8, 0));
}

TEST_F(ServicingPackagesTest, AnInstallTimeThatIsNoneGivesWayToTheKeysLastWrite) {
  const std::string two(2, '\1');
  const std::string eight(8, '\1');
  const std::string four(4, '\1');
  const struct {
    const char* value;
    uint32_t type;
    std::string data;
  } cases[] = {
      {"InstallTimeHigh", kRegBinary, four}, {"InstallTimeLow", kRegBinary, four},
      {"InstallTimeHigh", kRegSz, four},     {"InstallTimeHigh", kRegDword, two},
      {"InstallTimeLow", kRegDword, eight},  {"InstallTimeLow", kRegQword, eight},
      {"InstallTimeHigh", kRegDword, ""},    {"InstallTimeHigh", kRegDword, std::string(4, '\xF0')},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.value) + std::to_string(c.type) + "/" +
                 std::to_string(c.data.size()));
    install_time("a", kMorningOf13January2009 + ORLO::kFileTimePerDay);
    registry_.set_raw(path("a"), c.value, c.type, c.data);
    add("a", kMorningOf13January2009);
    read();
    EXPECT_EQ(value(0, Field::installDate), shown(2009, 1, 13, 8, 0));
  }
  for (const char* missing : {"InstallTimeHigh", "InstallTimeLow"}) {
    install_time("a", kMorningOf13January2009 + ORLO::kFileTimePerDay);
    registry_.remove_value(path("a"), missing);
    add("a", kMorningOf13January2009);
    read();
    EXPECT_EQ(value(0, Field::installDate), shown(2009, 1, 13, 8, 0));
  }
}

TEST_F(ServicingPackagesTest, LooksAUserUpOnceForAllPackagesAndPasses) {
  accounts_.add("S-1-5-18", "NT AUTHORITY", "SYSTEM");
  for (const char* name : {"a", "b", "c"})
    text(name, "InstallUser", u"S-1-5-18");
  ServicingPackagesSource source(registry_, accounts_, clock_);
  for (int pass = 0; pass < 2; ++pass)
    source.ReadServicingPackages(unseen_, [](const Row&) {});
  EXPECT_EQ(accounts_.calls().size(), 1u);
}

TEST_F(ServicingPackagesTest, AnUnresolvableSidIsShownInItsTextForm) {
  const std::u16string long_one = std::u16string(u"S-1-5-").append(2048, u'9');
  text("a", "InstallUser", u"S-1-5-21-1-2-3-1000");
  text("b", "InstallUser", u"no identifier");
  text("c", "InstallUser", long_one);
  text("d", "InstallUser", u"");
  read();
  EXPECT_EQ(value(0, Field::user), "S-1-5-21-1-2-3-1000");
  EXPECT_EQ(value(1, Field::user), "no identifier");
  EXPECT_EQ(value(2, Field::user), std::string("S-1-5-").append(2048, '9'));
  EXPECT_EQ(value(3, Field::user), "");
}

TEST_F(ServicingPackagesTest, ReadsEachKeysValuesInOneWalk) {
  text("a", "InstallClient", u"x");
  text("a", "InstallName", u"y");
  add("b");
  registry_.clear_calls();
  read();
  EXPECT_EQ(calls_of(registry_, "open"), 3u);
  EXPECT_EQ(calls_of(registry_, "info"), 3u);
  EXPECT_EQ(calls_of(registry_, "value_at"), 2u);
  EXPECT_EQ(calls_of(registry_, "value "), 0u);
}

TEST_F(ServicingPackagesTest, TakesTheRowsKeyOffTheUnseenOnes) {
  add("a");
  const RowKey empty = packageSchema().key_of(make_package_row());
  const RowKey other{{"x", "y"}};
  unseen_ = {empty, other};
  read();
  EXPECT_TRUE(unseen_ == std::set<RowKey>{other});
}

TEST_F(ServicingPackagesTest, ReadsNamesOfTheGreatestLength) {
  const std::string longest(255, 'n');
  add("a");
  add(longest);
  read();
  EXPECT_EQ(names(), (std::vector<std::string>{"a", longest}));
}

/// A key of many packages, all alike, without a registry's cost.
class EndlessPackages final : public HookedRegistry {
 public:
  EndlessPackages(Registry& behind, uint32_t count)
      : HookedRegistry(behind, [](const auto&, uint32_t) {}), count_(count) {}

  RegStatus subkey_at(const RegistryKey& key, uint32_t index, char* name,
                      uint32_t& length) override {
    return index < count_ ? HookedRegistry::subkey_at(key, 0, name, length) : kRegNoMoreItems;
  }

 private:
  const uint32_t count_;
};

TEST_F(ServicingPackagesTest, Reads100000Packages) {
  text("Package_for_KB1~31bf", "InstallName", u"update.mum");
  EndlessPackages registry(registry_, 100000);
  ServicingPackagesSource source(registry, accounts_, clock_);
  size_t rows = 0;
  EXPECT_TRUE(source.ReadServicingPackages(unseen_, [&](const Row& row) {
    if (cell(row, Field::displayName).text.length() == 33) ++rows;
  }));
  EXPECT_EQ(rows, 100000u);
  EXPECT_EQ(registry.open_keys(), 0);
}

}  // namespace
