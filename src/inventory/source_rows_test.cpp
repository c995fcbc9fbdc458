#include "inventory/source_rows.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/memory_registry.h"

namespace {

bool is_name(const std::string& told) {
  return is_subkey_name(told.c_str(), static_cast<uint32_t>(told.size()));
}

TEST(SubkeyName, IsAnythingButABackslashAndANul) {
  for (const char* name : {"a", " ", "/", "%s", "\xE4\x80", "{1}.x"})
    EXPECT_TRUE(is_name(name)) << name;
  EXPECT_TRUE(is_name(std::string(255, 'x')));
}

TEST(SubkeyName, IsNotEmpty) {
  EXPECT_FALSE(is_name(""));
}

TEST(SubkeyName, HasNoNul) {
  using namespace std::string_literals;
  for (const std::string& name : {"\0"s, "\0x"s, "x\0"s, "x\0y"s})
    EXPECT_FALSE(is_name(name));
}

TEST(SubkeyName, HasNoBackslash) {
  for (const char* name : {"\\", "a\\", "a\\a", "\\a"})
    EXPECT_FALSE(is_name(name)) << name;
}

TEST(KeyInfo, IsNoneOfAKeyThatTellsNothing) {
  MemoryRegistry registry;
  registry.create("HKEY_CURRENT_USER\\A\\B");
  RegistryKey key;
  ASSERT_EQ(registry.open(kCurrentUser, "A", kKeyRead, key), kRegSuccess);
  const auto info = info_of(registry, key);
  ASSERT_TRUE(info);
  EXPECT_EQ(info->subkeys, 1u);
  registry.fail("info", "", kRegAccessDenied);
  EXPECT_FALSE(info_of(registry, key));
}

}  // namespace
