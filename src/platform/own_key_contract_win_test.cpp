// The contract of own_key_contract_test.cpp on the system's own registry.
#include <windows.h>

#include "orlo/owned_handle.h"
#include "platform/own_key_test_support.h"

namespace {

struct KeyTraits {
  using Handle = HKEY;
  static Handle invalid() noexcept { return nullptr; }
  static void close(Handle handle) noexcept { RegCloseKey(handle); }
};
using OwnedKey = ORLO::OwnedHandle<KeyTraits>;

OwnedKey open_own_key() {
  HKEY key = nullptr;
  RegOpenKeyExA(HKEY_CURRENT_USER, kOwnTestPath, 0, KEY_ALL_ACCESS, &key);
  return OwnedKey(key);
}

void remove_test_keys() {
  RegDeleteTreeA(HKEY_CURRENT_USER, R"(Software\ZolvaneTest)");
}

class SystemOwnKeyBed final : public OwnKeyBed {
 public:
  SystemOwnKeyBed() { remove_test_keys(); }
  ~SystemOwnKeyBed() override {
    key_.reset();
    remove_test_keys();
  }
  OwnKey& key() override { return *key_; }
  void put(const char* name, uint32_t type, const std::string& bytes) override {
    EXPECT_EQ(RegSetValueExA(open_own_key().get(), name, 0, type,
                             reinterpret_cast<const BYTE*>(bytes.data()),
                             static_cast<DWORD>(bytes.size())),
              ERROR_SUCCESS);
  }
  /// No key has so long a name.
  const char* refused_path() override { return refused_path_.c_str(); }
  void lose_key() override { remove_test_keys(); }

 private:
  const std::string refused_path_ = "Software\\" + std::string(300, 'x');
  std::unique_ptr<OwnKey> key_ = make_system_own_key();
};

TEST(SystemOwnKey, WritesATextWithItsTerminator) {
  remove_test_keys();
  const auto key = make_system_own_key();
  ASSERT_TRUE(key->open(kOwnTestPath));
  EXPECT_EQ(key->set_text("a value", "abc"), kRegSuccess);
  DWORD type = 0;
  DWORD size = 0;
  EXPECT_EQ(RegQueryValueExW(open_own_key().get(), L"a value", nullptr, &type, nullptr, &size),
            ERROR_SUCCESS);
  EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
  EXPECT_EQ(size, 4 * sizeof(WCHAR));
  remove_test_keys();
}

TEST(SystemOwnKey, IsNotTheRootOfAll) {
  const auto key = make_system_own_key();
  EXPECT_FALSE(key->open(""));
  EXPECT_EQ(key->set_text("zolvane test", "x"), kRegInvalidHandle);
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(System, OwnKeyContract,
                         ::testing::Values(OwnKeyBedMaker{
                             "Own", [] { return std::make_unique<SystemOwnKeyBed>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });
