#include "inventory/value_set.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>

#include "inventory/hooked_registry_test_support.h"
#include "inventory/value_set_test_support.h"
#include "platform/memory_registry.h"
#include "platform/utf16.h"

namespace {

constexpr char kPath[] = "HKEY_CURRENT_USER\\App";

constexpr const char* kNames[] = {
    "ParentKeyName",   "ParentDisplayName", "DisplayName",     "DisplayVersion",   "DisplayIcon",
    "InstallLocation", "UninstallString",   "ModifyPath",      "WindowsInstaller", "InstallDate",
    "NoRemove",        "NoModify",          "SystemComponent", "Comments",         "EstimatedSize",
    "Publisher",       "Contact",           "HelpLink",        "HelpTelephone",    "URLInfoAbout",
    "URLUpdateInfo"};

/// One query by name, and a second one where the first buffer is too small.
std::string plain_text(const RegistryKey& key, const char* name) {
  std::string bytes(1024, '\x7E');
  uint32_t type = 0;
  auto size = static_cast<uint32_t>(bytes.size());
  RegStatus status = key.registry()->value(key, name, type, bytes.data(), size);
  if (status == kRegMoreData) {
    bytes.resize(size);
    status = key.registry()->value(key, name, type, bytes.data(), size);
  }
  if (status != kRegSuccess) return std::string();
  bytes.resize(size);
  return bytes.substr(0, bytes.find('\0'));
}

struct PlainNumber {
  bool there = false;
  uint32_t type = 0;
  uint32_t size = 4;
  uint32_t bits = 0;
};

PlainNumber plain_number(const RegistryKey& key, const char* name) {
  PlainNumber number;
  number.there =
      key.registry()->value(key, name, number.type, &number.bits, number.size) == kRegSuccess;
  return number;
}

/// Values that no installer should have written, the same ones for the same seed on every system.
class DirtyValues {
 public:
  explicit DirtyValues(uint32_t seed) : random_(seed) {}

  uint32_t below(uint32_t limit) { return static_cast<uint32_t>(random_() % limit); }

  std::vector<DirtyValue> next() {
    std::vector<DirtyValue> values(below(8) == 0 ? below(60) : below(20));
    for (DirtyValue& value : values)
      value = {any_name(), any_type(), any_data()};
    // A name that only looks like another stands beside the one that it looks like.
    const size_t honest = values.size();
    for (size_t i = 0; i < honest; ++i) {
      if (below(4) != 0) continue;
      const DirtyValue twin{lookalike(values[i].name), any_type(), any_data()};
      if (twin.name == values[i].name) continue;
      const uint32_t place = below(static_cast<uint32_t>(values.size()));
      values.insert(std::next(values.begin(), static_cast<std::ptrdiff_t>(place)), twin);
    }
    return values;
  }

 private:
  std::u16string any_name() {
    switch (below(12)) {
      case 0:
        return u"";
      case 1:
        return std::u16string(below(300), u'n');
      case 2:
        return utf16_from_utf8(kNames[below(std::size(kNames))]) + u"2";
      case 3:
        return {static_cast<char16_t>(0x410 + below(32)), u'\u00E4'};
      default:
        return any_case(utf16_from_utf8(kNames[below(std::size(kNames))]));
    }
  }

  std::u16string any_case(std::u16string name) {
    if (below(3) == 0) return upcase(name);
    return name;
  }

  /// Full-width letters come as plain ones in the code page.
  std::u16string lookalike(std::u16string name) {
    if (name.empty() || name[0] >= 0x80) return name;
    char16_t& letter = name[below(static_cast<uint32_t>(name.size()))];
    letter = static_cast<char16_t>(letter - u'!' + 0xFF01);
    return name;
  }

  uint32_t any_type() {
    constexpr uint32_t kTypes[] = {0, 1, 1, 1, 1, 2, 3, 4, 4, 4, 5, 6, 7, 11, 0x12345};
    return kTypes[below(std::size(kTypes))];
  }

  size_t any_length() {
    constexpr size_t kLengths[] = {0,  1,  2,  3,  4,    5,    6,    7,    8,    9,
                                   10, 20, 60, 61, 1023, 1024, 1025, 2046, 2048, 2050};
    if (below(100) == 0) return 60000 + below(20000);
    return kLengths[below(std::size(kLengths))];
  }

  std::string any_data() {
    std::string data(any_length(), '\0');
    const bool wide = below(2) == 0;
    const uint32_t nul_every = 2 + below(40);
    for (size_t i = 0; i < data.size(); ++i) {
      if (wide && i % 2 == 1) continue;
      data[i] = below(nul_every) == 0 ? '\0' : static_cast<char>(1 + below(255));
    }
    return data;
  }

  std::mt19937 random_;
};

class MemoryStore final : public ValueStore {
 public:
  MemoryRegistry& registry() override { return registry_; }
  RegistryKey fill(const std::vector<DirtyValue>& values) override {
    registry_.remove(kPath);
    registry_.create(kPath);
    for (const DirtyValue& value : values) {
      registry_.set_raw(kPath, utf8_from_utf16(value.name), value.type, value.data);
    }
    RegistryKey key;
    registry_.open(kCurrentUser, "App", kKeyQueryValue, key);
    return key;
  }

 private:
  MemoryRegistry registry_;
};

class ValueSetTest : public testing::Test {
 protected:
  void text(const char* name, std::u16string_view text) { registry_.set_text(kPath, name, text); }
  /// Reads the key through `registry`; the set may ask on until the test ends.
  void read(Registry& registry) {
    ASSERT_EQ(registry.open(kCurrentUser, "App", kKeyQueryValue, key_), kRegSuccess);
    Registry::KeyInfo info;
    const bool known = registry.info(key_, info) == kRegSuccess;
    registry_.clear_calls();
    values_.read(key_, known ? &info : nullptr);
  }
  void read() { read(registry_); }
  size_t calls(const std::string& operation) const {
    const auto all = registry_.calls();
    return static_cast<size_t>(std::count_if(all.begin(), all.end(), [&](const std::string& call) {
      return call.starts_with(operation + ' ');
    }));
  }
  /// How often the values are asked for by name to answer for all of them.
  size_t queries() {
    for (const char* name : kNames)
      values_.text(name);
    return calls("value");
  }

  MemoryRegistry registry_;
  RegistryKey key_;
  ValueSet values_;
};

TEST_F(ValueSetTest, CostsOneCallForEachValue) {
  for (const char* name : {"DisplayName", "Publisher", "Other"})
    text(name, u"x");
  read();
  EXPECT_STREQ(values_.text("displayname").c_str(), "x");
  EXPECT_EQ(queries(), 0u);
  EXPECT_EQ(calls("value_at"), 3u);
}

TEST_F(ValueSetTest, ForgetsTheValuesOfTheKeyBefore) {
  text("DisplayName", u"x");
  read();
  registry_.remove_value(kPath, "DisplayName");
  text("Publisher", u"y");
  read();
  EXPECT_TRUE(values_.text("DisplayName").empty());
  EXPECT_STREQ(values_.text("Publisher").c_str(), "y");
}

TEST_F(ValueSetTest, AsksByNameInAKeyOfManyValues) {
  for (int i = 0; i < 1000; ++i)
    text(("v" + std::to_string(i)).c_str(), u"x");
  text("DisplayName", u"last");
  read();
  EXPECT_EQ(calls("value_at"), 0u);
  EXPECT_STREQ(values_.text("DisplayName").c_str(), "last");
}

TEST_F(ValueSetTest, LeavesHugeValuesThatNobodyAsksForAlone) {
  registry_.set_raw(kPath, "Blob", kRegBinary, std::string(1 << 20, 'x'));
  text("DisplayName", u"x");
  read();
  EXPECT_STREQ(values_.text("DisplayName").c_str(), "x");
  EXPECT_EQ(calls("value_at"), 0u);
}

TEST_F(ValueSetTest, AsksByNameWhereTheKeySaysNothingOfItself) {
  text("DisplayName", u"x");
  registry_.set_number(kPath, "NoModify", 3);
  registry_.fail("info", "", kRegAccessDenied);
  read();
  EXPECT_STREQ(values_.text("DisplayName").c_str(), "x");
  EXPECT_EQ(values_.number_or("NoModify", 0), 3);
  EXPECT_EQ(values_.number_or("EstimatedSize", -1), -1);
}

TEST_F(ValueSetTest, AsksByNameWhereTheWalkFailed) {
  for (const char* name : {"DisplayName", "Comments", "Publisher"})
    text(name, u"x");
  registry_.fail("value_at", "Comments", kRegAccessDenied);
  read();
  for (const char* name : {"DisplayName", "Comments", "Publisher"})
    EXPECT_STREQ(values_.text(name).c_str(), "x") << name;
}

TEST_F(ValueSetTest, AsksByNameForAValueThatNeverFits) {
  text("DisplayName", u"x");
  text("Comments", u"y");
  registry_.fail("value_at", "DisplayName", kRegMoreData, -1);
  read();
  EXPECT_STREQ(values_.text("DisplayName").c_str(), "x");
  EXPECT_STREQ(values_.text("Comments").c_str(), "y");
}

TEST_F(ValueSetTest, MissesNothingButTheValueThatVanishesDuringTheWalk) {
  for (const char* name : {"Contact", "DisplayName", "Comments", "Publisher"})
    text(name, u"x");
  HookedRegistry hooked(registry_, [this](const std::string& operation, uint32_t index) {
    if (operation == "value_at" && index == 1) registry_.remove_value(kPath, "Contact");
  });
  read(hooked);
  for (const char* name : {"DisplayName", "Comments", "Publisher"})
    EXPECT_STREQ(values_.text(name).c_str(), "x") << name;
  key_.close();
}

TEST_F(ValueSetTest, FollowsAValueThatGrowsDuringTheWalk) {
  text("Comments", u"short");
  text("DisplayName", u"x");
  for (const size_t length : {3000U, 200000U}) {
    SCOPED_TRACE(length);
    HookedRegistry hooked(registry_, [&](const std::string& operation, uint32_t index) {
      if (operation == "value_at" && index == 0) text("Comments", std::u16string(length, u'l'));
    });
    read(hooked);
    EXPECT_EQ(values_.text("Comments").length(), length);
    EXPECT_STREQ(values_.text("DisplayName").c_str(), "x");
    key_.close();
    text("Comments", u"short");
  }
}

TEST_F(ValueSetTest, TakesAValueThatShrinksDuringTheWalk) {
  text("Comments", std::u16string(3000, u'l'));
  HookedRegistry hooked(registry_, [this](const std::string& operation, uint32_t) {
    if (operation == "value_at") text("Comments", u"short");
  });
  read(hooked);
  EXPECT_STREQ(values_.text("Comments").c_str(), "short");
  key_.close();
}

TEST_F(ValueSetTest, IsEmptyForAKeyThatWasRemovedMeanwhile) {
  text("DisplayName", u"x");
  HookedRegistry hooked(registry_, [this](const std::string& operation, uint32_t) {
    if (operation == "value_at") registry_.remove(kPath);
  });
  read(hooked);
  EXPECT_TRUE(values_.text("DisplayName").empty());
  EXPECT_EQ(values_.number_or("EstimatedSize", -1), -1);
  key_.close();
}

TEST_F(ValueSetTest, TellsANameFromOneThatOnlyLooksLikeIt) {
  for (const bool honest_first : {true, false}) {
    SCOPED_TRACE(honest_first);
    registry_.remove(kPath);
    const auto set_lookalike = [this] { text("\xEF\xBC\xA4isplayName", u"looks alike"); };
    if (!honest_first) set_lookalike();
    text("DisplayName", u"honest");
    set_lookalike();
    read();
    EXPECT_STREQ(values_.text("DisplayName").c_str(), "honest");
  }
}

TEST_F(ValueSetTest, TakesANameThatLooksLikeAMissingOneForIt) {
  // The one known difference to queries by name.
  text("\xEF\xBC\xA4isplayName", u"looks alike");
  read();
  EXPECT_STREQ(values_.text("DisplayName").c_str(), "looks alike");
}

/// A set of values beside one query for each name. `known`: whether the set is told what the key
/// holds.
void expect_like_queries(const RegistryKey& key, bool known = true) {
  Registry::KeyInfo info;
  ASSERT_EQ(key.registry()->info(key, info), kRegSuccess);
  ValueSet values;
  values.read(key, known ? &info : nullptr);
  for (const char* name : kNames) {
    SCOPED_TRACE(name);
    const String text = values.text(name);
    EXPECT_TRUE(std::string(text.c_str(), text.length()) == plain_text(key, name));
    const PlainNumber plain = plain_number(key, name);
    int32_t number = 0;
    EXPECT_EQ(values.number(name, number), plain.there);
    EXPECT_EQ(static_cast<uint32_t>(number), plain.there ? plain.bits : 0);
    EXPECT_EQ(values.number_or(name, -1), plain.there ? static_cast<int32_t>(plain.bits) : -1);
    uint32_t dword = 0;
    const bool is_dword = plain.there && plain.type == kRegDword && plain.size == 4;
    EXPECT_EQ(values.dword(name, dword), is_dword);
    EXPECT_EQ(dword, is_dword ? plain.bits : 0);
  }
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Memory, ValueSetOnDirtyData,
                         testing::Values(ValueStoreMaker{
                             "Own", [] { return std::make_unique<MemoryStore>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(ValueSetOnDirtyData, AnswersAsOneQueryForEachName) {
  const auto store = GetParam().make();
  for (uint32_t seed = 1; seed <= 150; ++seed) {
    SCOPED_TRACE(seed);
    DirtyValues values(seed);
    const RegistryKey key = store->fill(values.next());
    ASSERT_TRUE(key);
    expect_like_queries(key);
    if (testing::Test::HasFailure()) return;
  }
}

TEST_P(ValueSetOnDirtyData, AnswersAsOneQueryForEachNameWhereTheKeyIsUnknown) {
  const auto store = GetParam().make();
  for (uint32_t seed = 1001; seed <= 1010; ++seed) {
    SCOPED_TRACE(seed);
    DirtyValues values(seed);
    const RegistryKey key = store->fill(values.next());
    ASSERT_TRUE(key);
    expect_like_queries(key, false);
  }
}

TEST(ValueSetOnFaults, AnswersAsOneQueryForEachNameWhateverCallFails) {
  for (uint32_t seed = 2001; seed <= 2150; ++seed) {
    SCOPED_TRACE(seed);
    DirtyValues values(seed);
    MemoryStore store;
    const RegistryKey key = store.fill(values.next());
    ASSERT_TRUE(key);
    constexpr RegStatus kFaults[] = {kRegAccessDenied, kRegMoreData, kRegNoMoreItems,
                                     kRegFileNotFound};
    const RegStatus fault = kFaults[values.below(std::size(kFaults))];
    const char* name = kNames[values.below(std::size(kNames))];
    store.registry().fail("value_at", name, fault, values.below(2) == 0 ? 1 : -1);
    expect_like_queries(key);
  }
}
