#include "platform/registry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "orlo/rstring.h"
#include "platform/memory_registry.h"

namespace {

/// Answers "value" only, from a script: each call takes the next size, and the value is there when
/// the buffer has it.
class ScriptedRegistry final : public Registry {
 public:
  explicit ScriptedRegistry(std::vector<uint32_t> sizes) : sizes_(std::move(sizes)) {}

  size_t reads() const { return reads_; }

  RegStatus open(int32_t, const char*, uint32_t, RegistryKey&) override { return kRegAccessDenied; }
  RegStatus open(const RegistryKey&, const char*, uint32_t, RegistryKey&) override {
    return kRegAccessDenied;
  }
  RegStatus info(const RegistryKey&, KeyInfo&) override { return kRegAccessDenied; }
  RegStatus subkey_at(const RegistryKey&, uint32_t, char*, uint32_t&) override {
    return kRegAccessDenied;
  }
  RegStatus value_at(const RegistryKey&, uint32_t, char*, uint32_t&, uint32_t&, void*,
                     uint32_t&) override {
    return kRegAccessDenied;
  }
  RegStatus notify(const RegistryKey&, bool, uint32_t, ORLO::Event&) override {
    return kRegAccessDenied;
  }

  RegStatus delete_key(int32_t, const char*) override { return kRegAccessDenied; }

  RegStatus value(const RegistryKey&, const char*, uint32_t& type, void* data,
                  uint32_t& size) override {
    const uint32_t room = size;
    size = sizes_[std::min(reads_++, sizes_.size() - 1)];
    type = kRegSz;
    if (size > room) return kRegMoreData;
    std::memset(data, 'x', size);
    return kRegSuccess;
  }

 protected:
  void close(RegistryKey::Handle) noexcept override {}

 private:
  const std::vector<uint32_t> sizes_;
  size_t reads_ = 0;
};

}  // namespace

TEST(RegistryReads, ReadAValueOfOneBufferOnce) {
  ScriptedRegistry registry({1024});
  const RegistryKey key(registry, &registry);
  EXPECT_EQ(get_registry_text(key, "x").length(), 1024u);
  EXPECT_EQ(registry.reads(), 1u);
}

TEST(RegistryReads, ReadALargerValueTwice) {
  ScriptedRegistry registry({1025});
  const RegistryKey key(registry, &registry);
  EXPECT_EQ(get_registry_binary(key, "x").length(), 1025u);
  EXPECT_EQ(registry.reads(), 2u);
}

TEST(RegistryReads, FollowAValueThatGrowsMeanwhile) {
  ScriptedRegistry registry({2000, 3000, 4000, 4000});
  const RegistryKey key(registry, &registry);
  EXPECT_EQ(get_registry_text(key, "x").length(), 4000u);
  EXPECT_EQ(registry.reads(), 4u);
}

TEST(RegistryReads, TakeAValueThatShrinksMeanwhile) {
  ScriptedRegistry registry({5000, 10});
  const RegistryKey key(registry, &registry);
  EXPECT_EQ(get_registry_text(key, "x").length(), 10u);
}

TEST(RegistryReads, GiveUpOnAValueThatGrowsForEver) {
  std::vector<uint32_t> sizes;
  for (uint32_t size = 2000; size < 2100; ++size)
    sizes.push_back(size);
  ScriptedRegistry registry(sizes);
  const RegistryKey key(registry, &registry);
  EXPECT_TRUE(get_registry_binary(key, "x").empty());
  EXPECT_LT(registry.reads(), 20u);
}

TEST(RegistryReads, AreEmptyWhenTheSecondReadFails) {
  MemoryRegistry registry;
  registry.set_text("HKEY_CURRENT_USER\\A", "x", std::u16string(2000, u'x'));
  RegistryKey key;
  ASSERT_EQ(registry.open(kCurrentUser, "A", kKeyRead, key), kRegSuccess);
  registry.fail("value", "x", kRegMoreData);
  registry.fail("value", "x", kRegAccessDenied);
  EXPECT_TRUE(get_registry_text(key, "x").empty());
  EXPECT_EQ(get_registry_text(key, "x").length(), 2000u);
}

TEST(RegistryKey, IsClosedOnceWhereverItGoes) {
  MemoryRegistry registry;
  registry.create("HKEY_CURRENT_USER\\A");
  {
    RegistryKey first;
    RegistryKey second;
    ASSERT_EQ(registry.open(kCurrentUser, "A", kKeyRead, first), kRegSuccess);
    ASSERT_EQ(registry.open(kCurrentUser, "A", kKeyRead, second), kRegSuccess);
    EXPECT_EQ(registry.open_keys(), 2u);
    second = std::move(first);
    EXPECT_FALSE(first);  // NOLINT(bugprone-use-after-move): a moved key is empty.
    EXPECT_EQ(registry.open_keys(), 1u);
    RegistryKey third(std::move(second));
    EXPECT_TRUE(third);
    third.close();
    third.close();
    EXPECT_EQ(registry.open_keys(), 0u);
    ASSERT_EQ(registry.open(kCurrentUser, "A", kKeyRead, first), kRegSuccess);
  }
  EXPECT_EQ(registry.open_keys(), 0u);
}
