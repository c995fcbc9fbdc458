#include <windows.h>

#include "platform/own_key.h"

namespace {

class SystemOwnKey final : public OwnKey {
 public:
  bool open(const char* path) override {
    key_.close();
    if (names_no_key(path)) return false;
    HKEY opened = nullptr;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr,
                        &opened, nullptr) != ERROR_SUCCESS) {
      return false;
    }
    key_ = RegistryKey(*registry_, opened);
    return true;
  }

  String text(const char* name) override { return get_registry_text(key_, name); }

  RegStatus set_text(const char* name, const String& text) override {
    const auto size = static_cast<DWORD>(text.length()) + 1;
    return static_cast<RegStatus>(RegSetValueExA(static_cast<HKEY>(key_.handle()), name, 0, REG_SZ,
                                                 reinterpret_cast<const BYTE*>(text.c_str()),
                                                 size));
  }

 private:
  const std::unique_ptr<Registry> registry_ = make_system_registry();
  RegistryKey key_;
};

}  // namespace

std::unique_ptr<OwnKey> make_system_own_key() {
  return std::make_unique<SystemOwnKey>();
}
