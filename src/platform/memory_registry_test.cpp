#include "platform/memory_registry.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <thread>

#include "orlo/rstring.h"
#include "orlo/thread.h"

namespace {

using View = MemoryRegistry::View;

RegistryKey open(MemoryRegistry& registry, const char* path, int32_t root = kCurrentUser,
                 uint32_t access = kKeyRead) {
  RegistryKey key;
  registry.open(root, path, access, key);
  return key;
}

std::string text(MemoryRegistry& registry, const char* path, const char* name,
                 int32_t root = kCurrentUser, uint32_t access = kKeyRead) {
  return get_registry_text(open(registry, path, root, access), name).c_str();
}

ORLO::FileTime last_write(MemoryRegistry& registry, const char* path) {
  Registry::KeyInfo info;
  registry.info(open(registry, path), info);
  return info.last_write;
}

std::vector<std::string> value_names(MemoryRegistry& registry, const RegistryKey& key) {
  std::vector<std::string> names;
  for (uint32_t i = 0;; ++i) {
    char name[32];
    uint32_t length = sizeof name;
    uint32_t type = 0;
    uint32_t size = 0;
    if (registry.value_at(key, i, name, length, type, nullptr, size) != kRegSuccess) return names;
    names.emplace_back(name, length);
  }
}

}  // namespace

TEST(MemoryRegistry, LoadsARegistryText) {
  MemoryRegistry registry;
  EXPECT_TRUE(
      registry.load("Windows Registry Editor Version 5.00\r\n\r\n"
                    "[HKEY_CURRENT_USER\\Software\\A]\r\n"
                    "@=\"default\"\r\n"
                    "\"Name\"=\"\xC3\x84pfel\"\r\n"
                    "\"Size\"=dword:00000010\r\n"
                    "[HKEY_CURRENT_USER\\Software\\B]\r\n"))
      << registry.error();
  EXPECT_EQ(text(registry, "software\\a", ""), "default");
  EXPECT_EQ(text(registry, "software\\a", "NAME"), "\xC4pfel");
  EXPECT_EQ(text(registry, "software\\a", "size"), "\x10");
  EXPECT_TRUE(open(registry, "Software\\B"));
}

TEST(MemoryRegistry, RemovesWhatATextRemoves) {
  MemoryRegistry registry;
  registry.set_text("HKEY_CURRENT_USER\\A\\B", "x", u"1");
  registry.set_text("HKEY_CURRENT_USER\\C", "x", u"1");
  registry.set_text("HKEY_CURRENT_USER\\C", "y", u"2");
  EXPECT_TRUE(
      registry.load("REGEDIT4\n"
                    "[-HKEY_CURRENT_USER\\A]\n"
                    "\"lost\"=\"behind a key that is removed\"\n"
                    "[-HKEY_CURRENT_USER\\None]\n"
                    "[HKEY_CURRENT_USER\\C]\n"
                    "\"X\"=-\n"
                    "\"none\"=-\n"))
      << registry.error();
  EXPECT_FALSE(open(registry, "A"));
  EXPECT_FALSE(open(registry, "None"));
  EXPECT_EQ(value_names(registry, open(registry, "C")), std::vector<std::string>{"y"});
}

TEST(MemoryRegistry, KeepsWhatItLoadedBeforeAnError) {
  MemoryRegistry registry;
  EXPECT_FALSE(registry.load("REGEDIT4\n[HKEY_CURRENT_USER\\A]\n\"x\"=\"1\"\n\"y\"=?\n"));
  EXPECT_EQ(registry.error(), "line 4: data of an unknown form");
  EXPECT_EQ(text(registry, "A", "x"), "1");
  EXPECT_TRUE(registry.load("REGEDIT4\n"));
  EXPECT_EQ(registry.error(), "");
}

TEST(MemoryRegistry, KnowsOnlyThePredefinedKeys) {
  MemoryRegistry registry;
  EXPECT_FALSE(registry.load("REGEDIT4\n[HKEY_CURRENT_USER\\A]\n[SOFTWARE\\B]\n"));
  EXPECT_EQ(registry.error(), "line 3: not a predefined key: SOFTWARE\\B");
  EXPECT_TRUE(open(registry, "A"));
  EXPECT_TRUE(registry.load("REGEDIT4\n[hklm\\A]\n[HKEY_CLASSES_ROOT\\B]\n[HKEY_USERS\\C]\n"))
      << registry.error();
  EXPECT_TRUE(open(registry, "A", kLocalMachine));
  EXPECT_FALSE(open(registry, "A", 17));
}

TEST(MemoryRegistry, RefusesPathsThatNoRegistryCouldHold) {
  MemoryRegistry registry;
  EXPECT_THROW(registry.create("SOFTWARE\\A"), std::invalid_argument);
  EXPECT_THROW(registry.create(""), std::invalid_argument);
  EXPECT_THROW(registry.remove("HKEY_LOCAL_MACHINE"), std::invalid_argument);
  EXPECT_THROW(registry.create("HKCU\\" + std::string(256, 'k')), std::invalid_argument);
  std::string deep = "HKCU";
  for (int i = 0; i < 600; ++i)
    deep += "\\a";
  EXPECT_THROW(registry.create(deep), std::invalid_argument);
  EXPECT_THROW(registry.set_text("HKCU\\A", std::string(16384, 'v'), u"x"), std::invalid_argument);
  const std::string nul(1, '\0');
  EXPECT_THROW(registry.create("HKCU\\" + nul), std::invalid_argument);
  EXPECT_THROW(registry.set_text("HKCU\\A", nul, u"x"), std::invalid_argument);
}

TEST(MemoryRegistry, KeepsTheFirstSpellingOfNames) {
  MemoryRegistry registry;
  registry.set_text("HKEY_CURRENT_USER\\Software\\KeyName", "ValueName", u"1");
  registry.set_text("HKEY_CURRENT_USER\\SOFTWARE\\KEYNAME", "VALUENAME", u"2");
  RegistryKey software = open(registry, "software");
  char name[32];
  uint32_t length = sizeof name;
  ASSERT_EQ(registry.subkey_at(software, 0, name, length), kRegSuccess);
  EXPECT_STREQ(name, "KeyName");
  EXPECT_EQ(value_names(registry, open(registry, "software\\keyname")),
            std::vector<std::string>{"ValueName"});
  EXPECT_EQ(text(registry, "software\\keyname", "valuename"), "2");
}

TEST(MemoryRegistry, KeepsValuesInTheOrderWritten) {
  MemoryRegistry registry;
  for (const char* name : {"c", "a", "b"})
    registry.set_text("HKCU\\A", name, u"1");
  registry.set_text("HKCU\\A", "a", u"2");
  registry.remove_value("HKCU\\A", "c");
  registry.set_text("HKCU\\A", "c", u"3");
  EXPECT_EQ(value_names(registry, open(registry, "A")), (std::vector<std::string>{"a", "b", "c"}));
}

TEST(MemoryRegistry, OrdersSubkeysByUpperCase) {
  MemoryRegistry registry;
  for (const char* name : {"_u", "b", "[x", "Zz"})
    registry.create(std::string("HKCU\\A\\") + name);
  RegistryKey key = open(registry, "A");
  std::string order;
  for (uint32_t i = 0; i < 4; ++i) {
    char name[32];
    uint32_t length = sizeof name;
    ASSERT_EQ(registry.subkey_at(key, i, name, length), kRegSuccess);
    order += name + std::string(" ");
  }
  EXPECT_EQ(order, "b Zz [x _u ");
}

TEST(MemoryRegistry, LoadsBothViewsOfTheMachinesSoftware) {
  const char* regtext =
      "REGEDIT4\n"
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\A]\n\"view\"=\"64\"\n"
      "[HKEY_LOCAL_MACHINE\\Software\\Wow6432Node\\A]\n\"view\"=\"32\"\n"
      "[HKEY_LOCAL_MACHINE\\SYSTEM\\A]\n\"view\"=\"both\"\n"
      "[HKEY_LOCAL_MACHINE\\SoftwareX\\A]\n\"view\"=\"other\"\n";
  MemoryRegistry emulated(View::wow64);
  MemoryRegistry native(View::native);
  ASSERT_TRUE(emulated.load(regtext));
  ASSERT_TRUE(native.load(regtext));
  const uint32_t in64 = kKeyRead | kKeyWow64_64;
  EXPECT_EQ(text(emulated, "SOFTWARE\\A", "view", kLocalMachine), "32");
  EXPECT_EQ(text(emulated, "SOFTWARE\\A", "view", kLocalMachine, in64), "64");
  EXPECT_EQ(text(native, "SOFTWARE\\A", "view", kLocalMachine), "64");
  EXPECT_EQ(text(native, "SOFTWARE\\A", "view", kLocalMachine, in64), "64");
  EXPECT_EQ(text(emulated, "SYSTEM\\A", "view", kLocalMachine), "both");
  EXPECT_EQ(text(emulated, "SoftwareX\\A", "view", kLocalMachine), "other");
}

TEST(MemoryRegistry, ChoosesTheViewAlsoBelowAnOpenMachineKey) {
  MemoryRegistry registry;
  registry.create("HKLM\\SOFTWARE\\only64");
  registry.create("HKLM\\SOFTWARE\\WOW6432Node\\only32");
  RegistryKey machine = open(registry, "", kLocalMachine);
  RegistryKey key;
  EXPECT_EQ(registry.open(machine, "Software\\only32", kKeyRead, key), kRegSuccess);
  EXPECT_EQ(registry.open(machine, "Software\\only64", kKeyRead, key), kRegFileNotFound);
  EXPECT_EQ(registry.open(machine, "Software\\only64", kKeyRead | kKeyWow64_64, key), kRegSuccess);
}

TEST(MemoryRegistry, StampsChangesWithAClockOfItsOwn) {
  MemoryRegistry registry;
  registry.create("HKCU\\A\\B");
  const ORLO::FileTime created = last_write(registry, "A");
  registry.set_text("HKCU\\A", "x", u"y");
  EXPECT_EQ(last_write(registry, "A"), created + ORLO::kFileTimePerSecond);
  EXPECT_EQ(last_write(registry, "A\\B"), created);
  registry.create("HKCU\\A\\B");
  EXPECT_EQ(last_write(registry, "A\\B"), created) << "nothing changed";
}

TEST(MemoryRegistry, TakesWriteTimesFromOutside) {
  MemoryRegistry registry;
  registry.set_last_write("HKCU\\A", 129'000'000'000'000'000);
  EXPECT_EQ(last_write(registry, "A"), 129'000'000'000'000'000u);
  registry.set_last_write("HKCU\\A", 0);
  EXPECT_EQ(last_write(registry, "A"), 0u);
}

TEST(MemoryRegistry, LogsItsCalls) {
  MemoryRegistry registry;
  registry.set_text("HKCU\\A\\B", "DisplayName", u"y");
  {
    RegistryKey key = open(registry, "A");
    RegistryKey sub;
    Registry::KeyInfo info;
    char name[32];
    uint32_t type = 0;
    uint32_t length = sizeof name;
    registry.info(key, info);
    registry.subkey_at(key, 0, name, length);
    registry.subkey_at(key, 1, name, length);
    registry.open(key, "B", kKeyRead, sub);
    uint32_t size = sizeof name;
    registry.value(sub, "displayname", type, name, size);
    ORLO::Event event;
    registry.notify(key, true, 15, event);
    key.close();
  }
  EXPECT_EQ(registry.calls(),
            (std::vector<std::string>{"open A", "info A", "subkey_at B", "subkey_at ", "open B",
                                      "value displayname", "notify A"}));
  registry.clear_calls();
  EXPECT_TRUE(registry.calls().empty());
}

TEST(MemoryRegistry, FailsTheNextCallsOfAnOperation) {
  MemoryRegistry registry;
  registry.create("HKCU\\A");
  RegistryKey key;
  registry.fail("open", "", kRegAccessDenied, 2);
  EXPECT_EQ(registry.open(kCurrentUser, "A", kKeyRead, key), kRegAccessDenied);
  EXPECT_EQ(registry.open(kCurrentUser, "none", kKeyRead, key), kRegAccessDenied);
  EXPECT_EQ(registry.open(kCurrentUser, "A", kKeyRead, key), kRegSuccess);
}

TEST(MemoryRegistry, FailsAnOperationForEver) {
  MemoryRegistry registry;
  registry.create("HKCU\\A");
  RegistryKey key = open(registry, "A");
  registry.fail("info", "", kRegAccessDenied, -1);
  Registry::KeyInfo info;
  for (int i = 0; i < 5; ++i)
    EXPECT_EQ(registry.info(key, info), kRegAccessDenied);
}

TEST(MemoryRegistry, FailsEachOperationByNameAndByWholePath) {
  MemoryRegistry registry;
  const std::string path = "HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\A";
  registry.set_text(path, "x", u"y");
  registry.create(path + "\\B");
  RegistryKey key = open(registry, "SOFTWARE\\A", kLocalMachine);
  RegistryKey other;
  Registry::KeyInfo info;
  ORLO::Event event;
  char name[32];
  uint32_t type = 0;
  uint32_t length = 0;
  uint32_t size = 0;
  const struct {
    const char* operation;
    std::string name;
    std::string path;
    std::function<RegStatus()> call;
  } rows[] = {
      {"open", "b", path + "\\B", [&] { return registry.open(key, "B", kKeyRead, other); }},
      {"open", "software\\a", path,
       [&] { return registry.open(kLocalMachine, "SOFTWARE\\A", kKeyRead, other); }},
      {"info", "a", path, [&] { return registry.info(key, info); }},
      {"notify", "A", path, [&] { return registry.notify(key, true, 15, event); }},
      {"subkey_at", "B", path + "\\b",
       [&] {
         length = sizeof name;
         return registry.subkey_at(key, 0, name, length);
       }},
      {"value", "X", path + "\\x",
       [&] {
         size = sizeof name;
         return registry.value(key, "x", type, name, size);
       }},
      {"value_at", "X", path + "\\x",
       [&] {
         length = sizeof name;
         return registry.value_at(key, 0, name, length, type, nullptr, size);
       }},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.operation);
    registry.fail(row.operation, "no such name", 99, -1);
    EXPECT_EQ(row.call(), kRegSuccess);
    registry.fail(row.operation, row.name, 77);
    EXPECT_EQ(row.call(), 77u);
    EXPECT_EQ(row.call(), kRegSuccess);
    registry.fail(row.operation, row.path, 78);
    EXPECT_EQ(row.call(), 78u);
    EXPECT_EQ(row.call(), kRegSuccess);
  }
  key.close();
}

TEST(MemoryRegistry, FailsToDeleteByNameAndByWholePath) {
  MemoryRegistry registry;
  registry.create("HKEY_CURRENT_USER\\a\\b");
  registry.fail("delete_key", "no such name", 99, -1);
  registry.fail("delete_key", "A\\B", 77);
  registry.fail("delete_key", "hkey_current_user\\a\\b", 78);
  EXPECT_EQ(registry.delete_key(kCurrentUser, "a\\b"), 77u);
  EXPECT_EQ(registry.delete_key(kCurrentUser, "a\\b"), 78u);
  EXPECT_EQ(registry.delete_key(kCurrentUser, "a\\b"), kRegSuccess);
  EXPECT_EQ(registry.delete_key(kCurrentUser, "a\\b"), kRegFileNotFound);
  EXPECT_EQ(registry.calls(), std::vector<std::string>(4, "delete_key a\\b"));
  EXPECT_EQ(registry.delete_key(77, "a"), kRegInvalidHandle);
}

TEST(MemoryRegistry, StampsTheKeyAboveOneThatIsDeleted) {
  MemoryRegistry registry;
  registry.create("HKEY_CURRENT_USER\\a\\b");
  RegistryKey key;
  registry.open(kCurrentUser, "a", kKeyRead, key);
  Registry::KeyInfo before;
  Registry::KeyInfo after;
  registry.info(key, before);
  EXPECT_EQ(registry.delete_key(kCurrentUser, "a\\none"), kRegFileNotFound);
  registry.info(key, after);
  EXPECT_EQ(after.last_write, before.last_write);
  EXPECT_EQ(registry.delete_key(kCurrentUser, "a\\b"), kRegSuccess);
  registry.info(key, after);
  EXPECT_GT(after.last_write, before.last_write);
}

TEST(MemoryRegistry, CanFailTheEnumerationInItsMiddle) {
  MemoryRegistry registry;
  for (const char* name : {"a", "b", "c"})
    registry.create(std::string("HKCU\\A\\") + name);
  registry.fail("subkey_at", "b", kRegAccessDenied, -1);
  RegistryKey key = open(registry, "A");
  char name[32];
  uint32_t length = sizeof name;
  EXPECT_EQ(registry.subkey_at(key, 0, name, length), kRegSuccess);
  length = sizeof name;
  EXPECT_EQ(registry.subkey_at(key, 1, name, length), kRegAccessDenied);
}

TEST(MemoryRegistry, RefusesTheKeysOfAnotherRegistry) {
  MemoryRegistry one;
  MemoryRegistry two;
  one.create("HKCU\\A");
  RegistryKey key = open(one, "A");
  Registry::KeyInfo info;
  EXPECT_EQ(two.info(key, info), kRegInvalidHandle);
}

TEST(MemoryRegistry, SignalsEveryHandleThatWatchesAKey) {
  MemoryRegistry registry;
  registry.create("HKCU\\A\\B");
  ORLO::Event upper_event;
  ORLO::Event lower_event;
  RegistryKey upper = open(registry, "A");
  RegistryKey lower = open(registry, "A\\B");
  ASSERT_EQ(registry.notify(upper, true, 15, upper_event), kRegSuccess);
  ASSERT_EQ(registry.notify(lower, false, 15, lower_event), kRegSuccess);
  registry.set_number("HKCU\\A\\B", "n", 1);
  EXPECT_TRUE(ORLO::wait_for(upper_event, 0));
  EXPECT_TRUE(ORLO::wait_for(lower_event, 0));
}

TEST(MemoryRegistry, TellsOfWhatATextChanges) {
  MemoryRegistry registry;
  registry.create("HKCU\\A");
  ORLO::Event event;
  RegistryKey key = open(registry, "A");
  ASSERT_EQ(registry.notify(key, true, 15, event), kRegSuccess);
  ASSERT_TRUE(registry.load("REGEDIT4\n[HKEY_CURRENT_USER\\A\\B]\n\"x\"=\"y\"\n"));
  EXPECT_TRUE(ORLO::wait_for(event, 0));
}

TEST(MemoryRegistry, IsReadOnOneThreadWhileItChangesOnAnother) {
  MemoryRegistry registry;
  registry.create("HKCU\\A");
  std::thread writer([&registry] {
    for (uint32_t i = 0; i < 200; ++i) {
      registry.set_number("HKCU\\A\\" + std::to_string(i % 7), "n", i);
      if (i % 3 == 0) registry.remove("HKCU\\A\\" + std::to_string(i % 5));
    }
  });
  ORLO::Event event;
  for (int i = 0; i < 200; ++i) {
    RegistryKey key = open(registry, "A");
    ASSERT_TRUE(key);
    EXPECT_EQ(registry.notify(key, true, 15, event), kRegSuccess);
    char name[32];
    uint32_t length = sizeof name;
    for (uint32_t n = 0; registry.subkey_at(key, n, name, length) == kRegSuccess; ++n) {
      RegistryKey sub;
      registry.open(key, name, kKeyRead, sub);
      get_registry_text(sub, "n");
      length = sizeof name;
    }
  }
  writer.join();
  EXPECT_EQ(registry.open_keys(), 0u);
}
