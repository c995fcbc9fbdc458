// The values of value_set_test.cpp in the system's own registry.
#include <windows.h>

#include <stdexcept>

#include "inventory/value_set_test_support.h"

namespace {

constexpr char kPath[] = "Software\\ZolvaneValueSetTest";

const wchar_t* native(const std::u16string& text) {
  static_assert(sizeof(char16_t) == sizeof(wchar_t));
  return reinterpret_cast<const wchar_t*>(text.c_str());
}

void set(HKEY key, const DirtyValue& value) {
  // What stands behind the data must be no NUL: the system would take it into a text.
  const std::string guarded = value.data + "xx";
  if (RegSetValueExW(key, native(value.name), 0, value.type,
                     reinterpret_cast<const BYTE*>(guarded.data()),
                     static_cast<DWORD>(value.data.size())) != ERROR_SUCCESS) {
    throw std::runtime_error("the registry refuses a value");
  }
}

class SystemStore final : public ValueStore {
 public:
  ~SystemStore() override { RegDeleteTreeA(HKEY_CURRENT_USER, kPath); }

  Registry& registry() override { return *registry_; }

  RegistryKey fill(const std::vector<DirtyValue>& values) override {
    RegDeleteTreeA(HKEY_CURRENT_USER, kPath);
    HKEY writable = nullptr;
    RegCreateKeyExA(HKEY_CURRENT_USER, kPath, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &writable,
                    nullptr);
    for (const DirtyValue& value : values)
      set(writable, value);
    RegCloseKey(writable);
    RegistryKey key;
    registry_->open(kCurrentUser, kPath, kKeyQueryValue, key);
    return key;
  }

 private:
  const std::unique_ptr<Registry> registry_ = make_system_registry();
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(System, ValueSetOnDirtyData,
                         testing::Values(ValueStoreMaker{
                             "Own", [] { return std::make_unique<SystemStore>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });
