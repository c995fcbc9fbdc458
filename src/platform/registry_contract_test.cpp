// What Registry promises, tested on the registry in memory here and on the system's own in
// registry_contract_win_test.cpp.
#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "orlo/rstring.h"
#include "orlo/thread.h"
#include "platform/registry_test_support.h"
#include "platform/utf16.h"

namespace {

using View = MemoryRegistry::View;

constexpr uint32_t kSoon = 5000;
constexpr uint32_t kAWhile = 100;

class MemoryBed final : public RegistryBed {
 public:
  explicit MemoryBed(View view) : view_(view), registry_(view) {}

  Registry& registry() override { return registry_; }
  View view() const override { return view_; }
  void create(const std::string& path) override { registry_.create(path); }
  void set(const std::string& path, const std::string& name, uint32_t type,
           const std::string& data) override {
    registry_.set_raw(path, name, type, data);
  }
  void remove_value(const std::string& path, const std::string& name) override {
    registry_.remove_value(path, name);
  }
  void remove(const std::string& path) override { registry_.remove(path); }

 private:
  const View view_;
  MemoryRegistry registry_;
};

struct Answer {
  RegStatus status;
  uint32_t type;
  uint32_t size;
  std::string data;
};

/// Reads with a buffer of `room` bytes; `data` is empty unless the read succeeds.
Answer read(Registry& registry, const RegistryKey& key, const char* name, uint32_t room = 256) {
  std::string buffer(room + 1, '\x7E');
  Answer answer{0, 0xFFFF, room, ""};
  answer.status = registry.value(key, name, answer.type, buffer.data(), answer.size);
  EXPECT_EQ(buffer.back(), '\x7E') << "wrote behind the buffer";
  if (answer.status == kRegSuccess) answer.data = buffer.substr(0, answer.size);
  return answer;
}

RegStatus read_name(Registry& registry, const RegistryKey& key, uint32_t index, uint32_t room,
                    std::string& name) {
  std::vector<char> buffer(room + 1, '\x7E');
  uint32_t length = room;
  const RegStatus status = registry.subkey_at(key, index, buffer.data(), length);
  EXPECT_EQ(buffer.back(), '\x7E') << "wrote behind the buffer";
  if (status == kRegSuccess) name.assign(buffer.data(), length);
  return status;
}

Registry::KeyInfo info_of(Registry& registry, const RegistryKey& key) {
  Registry::KeyInfo info;
  EXPECT_EQ(registry.info(key, info), kRegSuccess);
  return info;
}

}  // namespace

std::string text_data(std::u16string_view text) {
  return bytes_from_utf16(std::u16string(text) + u'\0');
}

RegistryContract::RegistryContract() : bed_(GetParam().make()) {
  bed_->create(kOwnUserKey);
}

RegistryKey RegistryContract::open(const std::string& below, uint32_t access) {
  RegistryKey key;
  const std::string path =
      below.empty() ? "Software\\ZolvaneTest" : "Software\\ZolvaneTest\\" + below;
  registry().open(kCurrentUser, path.c_str(), access, key);
  return key;
}

void RegistryContract::set(const std::string& name, uint32_t type, const std::string& data) {
  bed().set(kOwnUserKey, name, type, data);
}

void RegistryContract::set(const std::string& name, std::u16string_view text) {
  set(name, kRegSz, text_data(text));
}

std::vector<std::string> RegistryContract::subkeys_of(const RegistryKey& key) {
  std::vector<std::string> names;
  std::string name;
  for (uint32_t i = 0; read_name(registry(), key, i, 300, name) == kRegSuccess; ++i) {
    names.push_back(name);
  }
  return names;
}

INSTANTIATE_TEST_SUITE_P(
    Memory, RegistryContract,
    ::testing::Values(
        RegistryBedMaker{"Wow64", [] { return std::make_unique<MemoryBed>(View::wow64); }},
        RegistryBedMaker{"Native", [] { return std::make_unique<MemoryBed>(View::native); }}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_P(RegistryContract, OpensAKeyWhateverItsCase) {
  bed().create(std::string(kOwnUserKey) + "\\\xC3\x84pfel");
  EXPECT_TRUE(open("\xC4pfel"));
  EXPECT_TRUE(open("\xE4PFEL"));
}

TEST_P(RegistryContract, OverlooksEmptyPiecesInsideAPath) {
  bed().create(std::string(kOwnUserKey) + "\\a\\b");
  EXPECT_TRUE(open("a\\\\b"));
  EXPECT_TRUE(open("a\\b\\"));
}

TEST_P(RegistryContract, RefusesAPathThatBeginsWithABackslash) {
  RegistryKey key;
  EXPECT_EQ(registry().open(kCurrentUser, "\\Software\\ZolvaneTest", kKeyRead, key), 161u);
}

TEST_P(RegistryContract, SaysThatAKeyIsNotThere) {
  RegistryKey key;
  EXPECT_EQ(registry().open(kCurrentUser, "Software\\ZolvaneTest\\none", kKeyRead, key),
            kRegFileNotFound);
  EXPECT_FALSE(key);
}

TEST_P(RegistryContract, EmptiesTheKeyWhenOpeningFails) {
  RegistryKey key = open();
  ASSERT_TRUE(key);
  EXPECT_EQ(registry().open(kCurrentUser, "Software\\ZolvaneTest\\none", kKeyRead, key),
            kRegFileNotFound);
  EXPECT_FALSE(key);
}

TEST_P(RegistryContract, OpensBelowAnOpenKey) {
  bed().create(std::string(kOwnUserKey) + "\\a\\b");
  RegistryKey parent = open("", kKeyQueryValue);
  RegistryKey key;
  EXPECT_EQ(registry().open(parent, "A\\B", kKeyRead, key), kRegSuccess);
  EXPECT_TRUE(key);
}

TEST_P(RegistryContract, OpensTheKeyItselfForAnEmptyPath) {
  set("x", u"y");
  RegistryKey parent = open();
  RegistryKey key;
  ASSERT_EQ(registry().open(parent, "", kKeyRead, key), kRegSuccess);
  EXPECT_EQ(read(registry(), key, "x").data, std::string("y\0", 2));
}

TEST_P(RegistryContract, ReplacesAKeyByOneBelowIt) {
  bed().create(std::string(kOwnUserKey) + "\\a");
  RegistryKey key = open();
  ASSERT_EQ(registry().open(key, "a", kKeyRead, key), kRegSuccess);
  EXPECT_EQ(info_of(registry(), key).subkeys, 0u);
}

TEST_P(RegistryContract, RefusesWhatTheAccessRightsDontCover) {
  set("x", u"y");
  bed().create(std::string(kOwnUserKey) + "\\a");
  ORLO::Event event;
  RegistryKey query_only = open("", kKeyQueryValue);
  std::string name;
  EXPECT_EQ(read(registry(), query_only, "x").status, kRegSuccess);
  EXPECT_EQ(read_name(registry(), query_only, 0, 20, name), kRegAccessDenied);
  EXPECT_EQ(registry().notify(query_only, true, 15, event), kRegAccessDenied);
  RegistryKey enumerate_only = open("", 0x0008);
  EXPECT_EQ(read(registry(), enumerate_only, "x").status, kRegAccessDenied);
  EXPECT_EQ(read_name(registry(), enumerate_only, 0, 20, name), kRegSuccess);
}

TEST_P(RegistryContract, NeedsTheRightToQueryForInfo) {
  if (const char* why = bed().lax_about_info()) GTEST_SKIP() << why;
  RegistryKey key = open("", 0x0008);
  Registry::KeyInfo info;
  EXPECT_EQ(registry().info(key, info), kRegAccessDenied);
}

TEST_P(RegistryContract, AnswersInvalidHandleForNoKey) {
  const RegistryKey none;
  ORLO::Event event;
  std::string name;
  Registry::KeyInfo info;
  RegistryKey key;
  EXPECT_EQ(read(registry(), none, "x").status, kRegInvalidHandle);
  EXPECT_EQ(read_name(registry(), none, 0, 20, name), kRegInvalidHandle);
  EXPECT_EQ(registry().info(none, info), kRegInvalidHandle);
  EXPECT_EQ(registry().open(none, "x", kKeyRead, key), kRegInvalidHandle);
  EXPECT_EQ(registry().notify(none, true, 15, event), kRegInvalidHandle);
}

TEST_P(RegistryContract, FindsAValueWhateverTheCaseOfItsName) {
  set("DisplayName", u"a");
  set("\xC3\x84nderung", u"b");
  RegistryKey key = open();
  EXPECT_EQ(read(registry(), key, "DISPLAYNAME").data, std::string("a\0", 2));
  EXPECT_EQ(read(registry(), key, "displayname").data, std::string("a\0", 2));
  EXPECT_EQ(read(registry(), key, "\xE4NDERUNG").data, std::string("b\0", 2));
}

TEST_P(RegistryContract, SaysThatAValueIsNotThere) {
  RegistryKey key = open();
  EXPECT_EQ(read(registry(), key, "none").status, kRegFileNotFound);
  EXPECT_EQ(read(registry(), key, "").status, kRegFileNotFound);
}

TEST_P(RegistryContract, ReadsTheDefaultValueByEmptyNameAndByNull) {
  set("", u"def");
  RegistryKey key = open();
  EXPECT_EQ(read(registry(), key, "").data, std::string("def\0", 4));
  EXPECT_EQ(read(registry(), key, nullptr).data, std::string("def\0", 4));
}

TEST_P(RegistryContract, CannotReachNamesOutsideTheCodePage) {
  set("\xD0\x9F", u"a");                                        // Cyrillic
  bed().create(std::string(kOwnUserKey) + "\\QQ\xE6\xB8\xB8");  // Chinese
  RegistryKey key = open();
  EXPECT_EQ(subkeys_of(key), std::vector<std::string>{"QQ?"});
  EXPECT_FALSE(open("QQ?"));
  EXPECT_EQ(read(registry(), key, "?").status, kRegFileNotFound);
}

TEST_P(RegistryContract, ConvertsTextToTheCodePage) {
  set("x", u"\u20AC\u00E4\u2026\u041F\U0001F600");
  const Answer answer = read(registry(), open(), "x");
  EXPECT_EQ(answer.type, kRegSz);
  EXPECT_EQ(answer.data, std::string("\x80\xE4\x85???\0", 7));
}

TEST_P(RegistryContract, GivesTextAsItIsStored) {
  struct {
    const char* what;
    uint32_t type;
    std::string stored;
    std::string expected;
  } rows[] = {
      {"terminated", kRegSz, std::string("a\0b\0\0\0", 6), std::string("ab\0", 3)},
      {"unterminated", kRegSz, std::string("a\0b\0", 4), "ab"},
      {"a byte left over", kRegSz, std::string("a\0b\0c", 5), "ab"},
      {"one byte only", kRegSz, "a", ""},
      {"no bytes", kRegSz, "", ""},
      {"only a terminator", kRegSz, std::string("\0\0", 2), std::string("\0", 1)},
      {"text behind a NUL", kRegSz, std::string("a\0\0\0b\0\0\0", 8), std::string("a\0b\0", 4)},
      {"expandable", kRegExpandSz, std::string("%\0T\0%\0\0\0", 8), std::string("%T%\0", 4)},
      {"list", kRegMultiSz, std::string("a\0\0\0b\0\0\0\0\0", 10), std::string("a\0b\0\0", 5)},
      {"list without its end", kRegMultiSz, std::string("a\0\0\0b\0", 6), std::string("a\0b", 3)},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    set("x", row.type, row.stored);
    const Answer answer = read(registry(), open(), "x");
    EXPECT_EQ(answer.status, kRegSuccess);
    EXPECT_EQ(answer.type, row.type);
    EXPECT_EQ(answer.size, row.expected.size());
    EXPECT_EQ(answer.data, row.expected);
  }
}

TEST_P(RegistryContract, GivesOtherTypesByteForByte) {
  struct {
    const char* what;
    uint32_t type;
    std::string data;
  } rows[] = {
      {"binary", kRegBinary, std::string("\0\xFF\x80", 3)},
      {"empty binary", kRegBinary, ""},
      {"number", kRegDword, std::string("\1\2\3\4", 4)},
      {"number of eight bytes", kRegDword, std::string("\1\0\0\0\0\0\0\0", 8)},
      {"number of two bytes", kRegDword, "\1\2"},
      {"long number", kRegQword, "12345678"},
      {"no type", 0, std::string("a\0b\0", 4)},
      {"unknown type", 0x12345, "abc"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    set("x", row.type, row.data);
    const Answer answer = read(registry(), open(), "x");
    EXPECT_EQ(answer.status, kRegSuccess);
    EXPECT_EQ(answer.type, row.type);
    EXPECT_EQ(answer.data, row.data);
  }
}

TEST_P(RegistryContract, SaysHowMuchRoomAValueNeeds) {
  set("text", u"\u00E4bc");
  set("bytes", kRegBinary, "12345");
  RegistryKey key = open();
  for (uint32_t room = 0; room < 4; ++room) {
    SCOPED_TRACE(room);
    const Answer answer = read(registry(), key, "text", room);
    EXPECT_EQ(answer.status, kRegMoreData);
    EXPECT_EQ(answer.type, kRegSz);
    EXPECT_EQ(answer.size, 4u);
  }
  EXPECT_EQ(read(registry(), key, "text", 4).status, kRegSuccess);
  EXPECT_EQ(read(registry(), key, "bytes", 4).status, kRegMoreData);
  EXPECT_EQ(read(registry(), key, "bytes", 4).size, 5u);
  EXPECT_EQ(read(registry(), key, "bytes", 5).data, "12345");
}

TEST_P(RegistryContract, GivesOnlyTypeAndSizeWithoutABuffer) {
  set("text", kRegExpandSz, text_data(u"\u20ACb"));
  uint32_t type = 0;
  uint32_t size = 99;
  RegistryKey key = open();
  EXPECT_EQ(registry().value(key, "text", type, nullptr, size), kRegSuccess);
  EXPECT_EQ(type, kRegExpandSz);
  EXPECT_EQ(size, 3u);
}

TEST_P(RegistryContract, KeepsTheLastOfTwoWrites) {
  set("x", u"long text");
  set("X", kRegDword, std::string("\1\0\0\0", 4));
  RegistryKey key = open();
  EXPECT_EQ(read(registry(), key, "x").type, kRegDword);
  EXPECT_EQ(info_of(registry(), key).values, 1u);
}

TEST_P(RegistryContract, EnumeratesSubkeysByNameWithoutRegardToCase) {
  for (const char* name :
       {"b", "A", "10", "Zz", "9", "ab", "a b", "{1}", "\xC3\x84z", "\xC3\xA4"}) {
    bed().create(std::string(kOwnUserKey) + "\\" + name);
  }
  EXPECT_EQ(subkeys_of(open()), (std::vector<std::string>{"10", "9", "A", "a b", "ab", "b", "Zz",
                                                          "{1}", "\xE4", "\xC4z"}));
}

TEST_P(RegistryContract, EndsTheEnumerationOfSubkeys) {
  bed().create(std::string(kOwnUserKey) + "\\a");
  RegistryKey key = open();
  std::string name;
  EXPECT_EQ(read_name(registry(), key, 1, 20, name), kRegNoMoreItems);
  EXPECT_EQ(read_name(registry(), key, 0xFFFFFFFF, 20, name), kRegNoMoreItems);
}

TEST_P(RegistryContract, NeedsRoomForTheTerminatorOfASubkeysName) {
  bed().create(std::string(kOwnUserKey) + "\\abc");
  RegistryKey key = open();
  std::string name;
  EXPECT_EQ(read_name(registry(), key, 0, 3, name), kRegMoreData);
  EXPECT_EQ(read_name(registry(), key, 0, 4, name), kRegSuccess);
  EXPECT_EQ(name, "abc");
}

TEST_P(RegistryContract, TakesKeyNamesOf255Characters) {
  const std::string longest(255, 'k');
  bed().create(std::string(kOwnUserKey) + "\\" + longest);
  RegistryKey key = open();
  std::string name;
  EXPECT_EQ(info_of(registry(), key).longest_subkey_name, 255u);
  EXPECT_EQ(read_name(registry(), key, 0, 255, name), kRegMoreData);
  EXPECT_EQ(read_name(registry(), key, 0, 256, name), kRegSuccess);
  EXPECT_EQ(name, longest);
  RegistryKey below;
  EXPECT_EQ(registry().open(key, longest.c_str(), kKeyRead, below), kRegSuccess);
}

TEST_P(RegistryContract, MovesSubkeysUpWhenOneIsRemovedDuringEnumeration) {
  for (const char* name : {"a", "b", "c"})
    bed().create(std::string(kOwnUserKey) + "\\" + name);
  RegistryKey key = open();
  std::string name;
  ASSERT_EQ(read_name(registry(), key, 0, 20, name), kRegSuccess);
  EXPECT_EQ(name, "a");
  bed().remove(std::string(kOwnUserKey) + "\\a");
  ASSERT_EQ(read_name(registry(), key, 1, 20, name), kRegSuccess);
  EXPECT_EQ(name, "c");
  EXPECT_EQ(read_name(registry(), key, 2, 20, name), kRegNoMoreItems);
}

TEST_P(RegistryContract, AnswersKeyDeletedForARemovedKey) {
  bed().set(std::string(kOwnUserKey) + "\\a\\b", "x", kRegSz, text_data(u"y"));
  RegistryKey key = open("a\\b");
  ASSERT_TRUE(key);
  bed().remove(std::string(kOwnUserKey) + "\\a");
  Registry::KeyInfo info;
  RegistryKey other;
  std::string name;
  ORLO::Event event;
  EXPECT_EQ(read(registry(), key, "x").status, kRegKeyDeleted);
  EXPECT_EQ(read_name(registry(), key, 0, 20, name), kRegKeyDeleted);
  EXPECT_EQ(registry().info(key, info), kRegKeyDeleted);
  EXPECT_EQ(registry().open(key, "c", kKeyRead, other), kRegKeyDeleted);
  EXPECT_EQ(registry().notify(key, true, 15, event), kRegKeyDeleted);
}

TEST_P(RegistryContract, KeepsARemovedKeyRemovedWhenItIsMadeAnew) {
  bed().create(std::string(kOwnUserKey) + "\\a");
  RegistryKey old = open("a");
  bed().remove(std::string(kOwnUserKey) + "\\a");
  bed().create(std::string(kOwnUserKey) + "\\a");
  Registry::KeyInfo info;
  EXPECT_EQ(registry().info(old, info), kRegKeyDeleted);
  EXPECT_TRUE(open("a"));
}

TEST_P(RegistryContract, CountsAndMeasuresSubkeysAndValues) {
  bed().create(std::string(kOwnUserKey) + "\\abc\\below");
  bed().create(std::string(kOwnUserKey) + "\\z");
  set("", u"");
  set("name", u"\u20ACuro");
  set("longer name", kRegDword, std::string(4, '\0'));
  const Registry::KeyInfo info = info_of(registry(), open());
  EXPECT_EQ(info.subkeys, 2u);
  EXPECT_EQ(info.longest_subkey_name, 3u);
  EXPECT_EQ(info.values, 3u);
  EXPECT_EQ(info.longest_value_name, 11u);
  EXPECT_EQ(info.longest_value, 10u) << "bytes as stored, 16 bits to a character";
}

TEST_P(RegistryContract, MeasuresAnEmptyKeyAsZero) {
  const Registry::KeyInfo info = info_of(registry(), open());
  EXPECT_EQ(info.subkeys + info.longest_subkey_name + info.values + info.longest_value_name +
                info.longest_value,
            0u);
  EXPECT_NE(info.last_write, 0u);
}

TEST_P(RegistryContract, MovesTheWriteTimeWithEachKindOfChange) {
  bed().create(std::string(kOwnUserKey) + "\\z");
  RegistryKey key = open();
  const auto moves = [this, &key](const auto& change) {
    const ORLO::FileTime before = info_of(registry(), key).last_write;
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(kSoon);
    // The system's clock may stand still for some milliseconds.
    do {
      change();
      if (info_of(registry(), key).last_write > before) return true;
    } while (std::chrono::steady_clock::now() < end);
    return false;
  };
  EXPECT_TRUE(moves([this] { set("x", u"y"); }));
  EXPECT_TRUE(moves([this] {
    set("x", u"y");
    bed().remove_value(kOwnUserKey, "x");
  }));
  int made = 0;
  EXPECT_TRUE(moves(
      [this, &made] { bed().create(std::string(kOwnUserKey) + "\\" + std::to_string(++made)); }));
  EXPECT_TRUE(moves([this] {
    bed().create(std::string(kOwnUserKey) + "\\z");
    bed().remove(std::string(kOwnUserKey) + "\\z");
  }));
}

TEST_P(RegistryContract, LeavesTheWriteTimeWhenAKeyBelowChanges) {
  bed().create(std::string(kOwnUserKey) + "\\a");
  RegistryKey key = open();
  const ORLO::FileTime before = info_of(registry(), key).last_write;
  bed().set(std::string(kOwnUserKey) + "\\a", "x", kRegSz, text_data(u"y"));
  bed().create(std::string(kOwnUserKey) + "\\a\\b");
  EXPECT_EQ(info_of(registry(), key).last_write, before);
}

TEST_P(RegistryContract, EnumeratesEachValueOnce) {
  set("one", u"1");
  set("two", kRegDword, std::string("\2\0\0\0", 4));
  set("", kRegBinary, "3");
  RegistryKey key = open();
  std::vector<std::string> seen;
  for (uint32_t i = 0;; ++i) {
    char name[32];
    char data[32];
    uint32_t name_length = sizeof name;
    uint32_t size = sizeof data;
    uint32_t type = 0;
    const RegStatus status = registry().value_at(key, i, name, name_length, type, data, size);
    if (status != kRegSuccess) {
      EXPECT_EQ(status, kRegNoMoreItems);
      break;
    }
    seen.push_back(std::string(name, name_length) + ":" + std::to_string(type) + ":" +
                   std::string(data, size));
  }
  std::sort(seen.begin(), seen.end());
  EXPECT_EQ(seen, (std::vector<std::string>{":3:3", std::string("one:1:1\0", 8),
                                            std::string("two:4:\2\0\0\0", 10)}));
}

TEST_P(RegistryContract, SaysHowMuchRoomAnEnumeratedValueNeeds) {
  set("name", u"text");
  RegistryKey key = open();
  char name[8];
  char data[8];
  uint32_t type = 0;
  uint32_t length = 4;
  uint32_t size = sizeof data;
  EXPECT_EQ(registry().value_at(key, 0, name, length, type, data, size), kRegMoreData);
  length = 5;
  size = 4;
  EXPECT_EQ(registry().value_at(key, 0, name, length, type, data, size), kRegMoreData);
  EXPECT_EQ(size, 5u);
  length = 5;
  EXPECT_EQ(registry().value_at(key, 0, name, length, type, data, size), kRegSuccess);
  EXPECT_EQ(length, 4u);
  EXPECT_EQ(std::string(data, size), std::string("text\0", 5));
}

TEST_P(RegistryContract, ShowsTheProcessItsOwnViewUnlessAskedForThe64BitOne) {
  bed().set(kOwnMachineKey, "view", kRegSz, text_data(u"64"));
  bed().set(kOwnMachineKey32, "view", kRegSz, text_data(u"32"));
  RegistryKey own;
  RegistryKey native;
  ASSERT_EQ(registry().open(kLocalMachine, "Software\\ZolvaneTest", kKeyRead, own), kRegSuccess);
  ASSERT_EQ(
      registry().open(kLocalMachine, "software\\ZolvaneTest", kKeyRead | kKeyWow64_64, native),
      kRegSuccess);
  EXPECT_STREQ(get_registry_text(own, "view").c_str(), bed().view() == View::wow64 ? "32" : "64");
  EXPECT_STREQ(get_registry_text(native, "view").c_str(), "64");
}

TEST_P(RegistryContract, ReachesThe32BitViewByItsPathFromEachView) {
  bed().set(kOwnMachineKey32, "view", kRegSz, text_data(u"32"));
  for (const uint32_t access : {kKeyRead, kKeyRead | kKeyWow64_64}) {
    SCOPED_TRACE(access);
    RegistryKey key;
    EXPECT_EQ(registry().open(kLocalMachine, "SOFTWARE\\Wow6432Node\\ZolvaneTest", access, key),
              kRegSuccess);
    EXPECT_STREQ(get_registry_text(key, "view").c_str(), "32");
  }
}

TEST_P(RegistryContract, StaysInTheViewOfTheKeyItOpensBelow) {
  bed().create(std::string(kOwnMachineKey) + "\\only64");
  bed().create(std::string(kOwnMachineKey32) + "\\only32");
  RegistryKey native;
  ASSERT_EQ(
      registry().open(kLocalMachine, "SOFTWARE\\ZolvaneTest", kKeyRead | kKeyWow64_64, native),
      kRegSuccess);
  RegistryKey key;
  EXPECT_EQ(registry().open(native, "only64", kKeyQueryValue, key), kRegSuccess);
  EXPECT_EQ(registry().open(native, "only32", kKeyQueryValue, key), kRegFileNotFound);
}

TEST_P(RegistryContract, SharesTheUsersKeysBetweenTheViews) {
  EXPECT_TRUE(open("", kKeyRead | kKeyWow64_64));
}

TEST_P(RegistryContract, TellsOfEachKindOfChangeBelowTheKey) {
  const std::string below = std::string(kOwnUserKey) + "\\a\\b";
  bed().create(below);
  ORLO::Event event;
  RegistryKey key = open();
  const auto tells = [this, &key, &event](const auto& change) {
    EXPECT_EQ(registry().notify(key, true, 15, event), kRegSuccess);
    EXPECT_FALSE(ORLO::wait_for(event, 0));
    change();
    return ORLO::wait_for(event, kSoon);
  };
  EXPECT_TRUE(tells([this] { set("x", u"y"); }));
  EXPECT_TRUE(tells([this] { bed().remove_value(kOwnUserKey, "x"); }));
  EXPECT_TRUE(tells([&] { bed().set(below, "x", kRegSz, text_data(u"y")); }));
  EXPECT_TRUE(tells([&] { bed().remove_value(below, "x"); }));
  EXPECT_TRUE(tells([&] { bed().create(below + "\\c"); }));
  EXPECT_TRUE(tells([&] { bed().remove(below + "\\c"); }));
}

TEST_P(RegistryContract, TellsOnlyOnceForEachCall) {
  ORLO::Event event;
  RegistryKey key = open();
  ASSERT_EQ(registry().notify(key, true, 15, event), kRegSuccess);
  set("x", u"1");
  EXPECT_TRUE(ORLO::wait_for(event, kSoon));
  set("x", u"2");
  EXPECT_FALSE(ORLO::wait_for(event, kAWhile));
}

TEST_P(RegistryContract, TellsNothingOfTheKeysBelowWithoutTheSubtree) {
  bed().create(std::string(kOwnUserKey) + "\\a");
  ORLO::Event event;
  RegistryKey key = open();
  ASSERT_EQ(registry().notify(key, false, 15, event), kRegSuccess);
  bed().set(std::string(kOwnUserKey) + "\\a", "x", kRegSz, text_data(u"y"));
  bed().create(std::string(kOwnUserKey) + "\\a\\b");
  EXPECT_FALSE(ORLO::wait_for(event, kAWhile));
  bed().create(std::string(kOwnUserKey) + "\\c");
  EXPECT_TRUE(ORLO::wait_for(event, kSoon));
}

TEST_P(RegistryContract, TellsNothingOfChangesElsewhere) {
  bed().create(std::string(kOwnUserKey) + "\\a");
  bed().create(std::string(kOwnUserKey) + "\\ab");
  ORLO::Event event;
  RegistryKey key = open("a");
  ASSERT_EQ(registry().notify(key, true, 15, event), kRegSuccess);
  set("x", u"y");
  bed().set(std::string(kOwnUserKey) + "\\ab", "x", kRegSz, text_data(u"y"));
  EXPECT_FALSE(ORLO::wait_for(event, kAWhile));
}

TEST_P(RegistryContract, TellsOnlyOfTheKindsInTheFilter) {
  ORLO::Event event;
  RegistryKey names = open();
  ASSERT_EQ(registry().notify(names, true, kRegNotifyName, event), kRegSuccess);
  set("x", u"y");
  EXPECT_FALSE(ORLO::wait_for(event, kAWhile));
  bed().create(std::string(kOwnUserKey) + "\\a");
  EXPECT_TRUE(ORLO::wait_for(event, kSoon));
  names.close();

  RegistryKey values = open();
  ASSERT_EQ(registry().notify(values, true, kRegNotifyLastSet, event), kRegSuccess);
  bed().create(std::string(kOwnUserKey) + "\\b");
  EXPECT_FALSE(ORLO::wait_for(event, kAWhile));
  set("x", u"z");
  EXPECT_TRUE(ORLO::wait_for(event, kSoon));
}

TEST_P(RegistryContract, KeepsTheFilterOfTheFirstCall) {
  ORLO::Event event;
  RegistryKey key = open();
  ASSERT_EQ(registry().notify(key, true, kRegNotifyName, event), kRegSuccess);
  bed().create(std::string(kOwnUserKey) + "\\a");
  ASSERT_TRUE(ORLO::wait_for(event, kSoon));
  ASSERT_EQ(registry().notify(key, true, 15, event), kRegSuccess);
  set("x", u"y");
  EXPECT_FALSE(ORLO::wait_for(event, kAWhile));
}

TEST_P(RegistryContract, SignalsAPendingNotificationWhenItsKeyIsClosed) {
  ORLO::Event event;
  RegistryKey key = open();
  ASSERT_EQ(registry().notify(key, true, 15, event), kRegSuccess);
  key.close();
  EXPECT_TRUE(ORLO::wait_for(event, kSoon));
}

TEST_P(RegistryContract, TellsWhenTheWatchedKeyIsRemovedAndRefusesToWatchItAgain) {
  if (const char* why = bed().silent_about_own_removal()) GTEST_SKIP() << why;
  bed().create(std::string(kOwnUserKey) + "\\a");
  ORLO::Event event;
  RegistryKey key = open("a");
  ASSERT_EQ(registry().notify(key, true, kRegNotifyLastSet, event), kRegSuccess);
  bed().remove(std::string(kOwnUserKey) + "\\a");
  EXPECT_TRUE(ORLO::wait_for(event, kSoon));
  EXPECT_EQ(registry().notify(key, true, kRegNotifyLastSet, event), kRegKeyDeleted);
}

TEST_P(RegistryContract, WakesAThreadThatWaits) {
  ORLO::Event event;
  RegistryKey key = open();
  ASSERT_EQ(registry().notify(key, true, 15, event), kRegSuccess);
  bool woken = false;
  std::thread waiter([&] { woken = ORLO::wait_for(event, kSoon); });
  set("x", u"y");
  waiter.join();
  EXPECT_TRUE(woken);
}

TEST_P(RegistryContract, KnowsTheTypesOfFiles) {
  bed().set(std::string(kOwnClassesKey) + "\\shell\\edit", "", kRegSz, text_data(u"x"));
  RegistryKey key;
  ASSERT_EQ(registry().open(kClassesRoot, "ZolvaneTest\\Shell\\edit", kKeyRead, key), kRegSuccess);
  EXPECT_STREQ(get_registry_text(key, "").c_str(), "x");
  EXPECT_EQ(registry().open(kClassesRoot, "ZolvaneTest\\none", kKeyRead, key), kRegFileNotFound);
}

TEST_P(RegistryContract, DeletesAKeyWithItsValues) {
  bed().set(std::string(kOwnUserKey) + "\\a\\b", "x", kRegSz, text_data(u"y"));
  EXPECT_EQ(registry().delete_key(kCurrentUser, "software\\ZolvaneTest\\A\\B"), kRegSuccess);
  EXPECT_FALSE(open("a\\b"));
  EXPECT_TRUE(open("a"));
}

TEST_P(RegistryContract, DeletesNoKeyThatHasSubkeys) {
  bed().set(std::string(kOwnUserKey) + "\\a", "x", kRegSz, text_data(u"y"));
  bed().create(std::string(kOwnUserKey) + "\\a\\b");
  EXPECT_EQ(registry().delete_key(kCurrentUser, "Software\\ZolvaneTest\\a"), kRegAccessDenied);
  EXPECT_TRUE(open("a\\b"));
  EXPECT_STREQ(get_registry_text(open("a"), "x").c_str(), "y");
}

TEST_P(RegistryContract, SaysThatAKeyToDeleteIsNotThere) {
  EXPECT_EQ(registry().delete_key(kCurrentUser, "Software\\ZolvaneTest\\none"), kRegFileNotFound);
  EXPECT_EQ(registry().delete_key(kCurrentUser, "Software\\ZolvaneTest\\none\\none"),
            kRegFileNotFound);
}

TEST_P(RegistryContract, DeletesNoPredefinedKey) {
  for (const int32_t root : {kLocalMachine, kCurrentUser, kClassesRoot}) {
    for (const char* path : {static_cast<const char*>(nullptr), "", "\\", "\\\\"}) {
      SCOPED_TRACE(path == nullptr ? "null" : path);
      EXPECT_EQ(registry().delete_key(root, path), kRegAccessDenied);
    }
  }
  EXPECT_TRUE(open());
}

TEST_P(RegistryContract, DeletesByThePathsThatItOpensBy) {
  bed().create(std::string(kOwnUserKey) + "\\a");
  bed().create(std::string(kOwnUserKey) + "\\b");
  EXPECT_EQ(registry().delete_key(kCurrentUser, "\\Software\\ZolvaneTest\\a"), 161u);
  EXPECT_TRUE(open("a"));
  EXPECT_EQ(registry().delete_key(kCurrentUser, "Software\\\\ZolvaneTest\\\\a"), kRegSuccess);
  EXPECT_FALSE(open("a"));
  EXPECT_EQ(registry().delete_key(kCurrentUser, "Software\\ZolvaneTest\\b\\"), kRegSuccess);
  EXPECT_FALSE(open("b"));
}

TEST_P(RegistryContract, DeletesNothingByAnEndlessPath) {
  bed().create(std::string(kOwnUserKey) + "\\a");
  const std::string path = "Software\\ZolvaneTest\\a";
  // Counted in 16 bits, these would be the path of the key.
  for (const size_t behind : {size_t{256}, size_t{32768}, size_t{65536}}) {
    SCOPED_TRACE(behind);
    EXPECT_NE(registry().delete_key(kCurrentUser, (path + std::string(behind, 'a')).c_str()),
              kRegSuccess);
    EXPECT_NE(registry().delete_key(kCurrentUser, std::string(behind, 'a').c_str()), kRegSuccess);
  }
  EXPECT_TRUE(open("a"));
}

TEST_P(RegistryContract, DeletesInTheProcesssOwnView) {
  bed().create(kOwnMachineKey);
  bed().create(kOwnMachineKey32);
  EXPECT_EQ(registry().delete_key(kLocalMachine, "SOFTWARE\\ZolvaneTest"), kRegSuccess);
  const bool wow64 = bed().view() == View::wow64;
  RegistryKey key;
  EXPECT_EQ(registry().open(kLocalMachine, "SOFTWARE\\ZolvaneTest", kKeyRead | kKeyWow64_64, key),
            wow64 ? kRegSuccess : kRegFileNotFound);
  EXPECT_EQ(registry().open(kLocalMachine, "SOFTWARE\\Wow6432Node\\ZolvaneTest", kKeyRead, key),
            wow64 ? kRegFileNotFound : kRegSuccess);
}

TEST_P(RegistryContract, DeletesNothingThatOnlyTheOtherViewHas) {
  const bool wow64 = bed().view() == View::wow64;
  bed().create(wow64 ? kOwnMachineKey : kOwnMachineKey32);
  EXPECT_EQ(registry().delete_key(kLocalMachine, "SOFTWARE\\ZolvaneTest"), kRegFileNotFound);
}

TEST_P(RegistryContract, TellsOfAKeyThatIsDeleted) {
  bed().create(std::string(kOwnUserKey) + "\\a");
  RegistryKey deleted = open("a");
  ORLO::Event event;
  RegistryKey key = open();
  ASSERT_EQ(registry().notify(key, true, kRegNotifyName, event), kRegSuccess);
  ASSERT_EQ(registry().delete_key(kCurrentUser, "Software\\ZolvaneTest\\a"), kRegSuccess);
  EXPECT_TRUE(ORLO::wait_for(event, kSoon));
  Registry::KeyInfo info;
  EXPECT_EQ(registry().info(deleted, info), kRegKeyDeleted);
}

TEST_P(RegistryContract, ReadsValuesOfAnySizeAsTextAndAsBytes) {
  RegistryKey key = open();
  for (const size_t length : {0u, 1u, 1022u, 1023u, 1024u, 1025u, 3000u, 100000u}) {
    SCOPED_TRACE(length);
    const std::u16string text(length, u'\u00E4');
    const std::string expected(length, '\xE4');
    set("x", text);
    EXPECT_EQ(std::string(get_registry_text(key, "x").c_str()), expected);
    EXPECT_EQ(get_registry_text(key, "x").length(), length);
    EXPECT_EQ(get_registry_binary(key, "x").length(), length) << "one terminator dropped";
    set("x", kRegBinary, std::string(length, '\0'));
    EXPECT_EQ(get_registry_binary(key, "x").length(), length) << "all bytes kept";
    EXPECT_EQ(get_registry_text(key, "x").length(), 0u) << "ends at its first NUL";
  }
}

TEST_P(RegistryContract, CutsTextAtItsFirstNulWhateverItsTypeAndEnd) {
  struct {
    const char* what;
    uint32_t type;
    std::string data;
    const char* expected;
  } rows[] = {
      {"list", kRegMultiSz, std::string("a\0\0\0b\0\0\0\0\0", 10), "a"},
      {"text without terminator", kRegSz, std::string("a\0b\0", 4), "ab"},
      {"text with more behind a NUL", kRegSz, std::string("a\0\0\0b\0", 6), "a"},
      {"bytes with a NUL", kRegBinary, std::string("ab\0cd", 5), "ab"},
      {"bytes without a NUL", kRegBinary, "abc", "abc"},
      {"number", kRegDword, std::string("A\0\0\0", 4), "A"},
      {"unexpanded", kRegExpandSz, text_data(u"%PATH%"), "%PATH%"},
  };
  RegistryKey key = open();
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    set("x", row.type, row.data);
    EXPECT_STREQ(get_registry_text(key, "x").c_str(), row.expected);
  }
}

TEST_P(RegistryContract, DropsOneTrailingNulFromTextReadAsBytes) {
  RegistryKey key = open();
  set("x", kRegMultiSz, std::string("a\0\0\0b\0\0\0\0\0", 10));
  const String list = get_registry_binary(key, "x");
  EXPECT_EQ(std::string(list.c_str(), list.length()), std::string("a\0b\0", 4));
  set("x", kRegSz, std::string("a\0b\0", 4));
  EXPECT_STREQ(get_registry_binary(key, "x").c_str(), "ab");
  set("x", kRegDword, std::string(4, '\0'));
  EXPECT_EQ(get_registry_binary(key, "x").length(), 4u);
}

TEST_P(RegistryContract, ReadsNothingWhereNoValueOrNoKeyIs) {
  EXPECT_TRUE(get_registry_text(open(), "none").empty());
  EXPECT_TRUE(get_registry_binary(open(), "none").empty());
  EXPECT_TRUE(get_registry_text(RegistryKey(), "x").empty());
  EXPECT_TRUE(get_registry_binary(RegistryKey(), "x").empty());
}
