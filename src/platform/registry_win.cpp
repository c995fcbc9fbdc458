#include <windows.h>

#include <cstring>

#include "orlo/thread.h"
#include "platform/registry.h"

namespace {

// The system counts the bytes of a path's 16-bit form in 16 bits: a longer one would lead to
// another key.
constexpr size_t kLongestPath = 32000;

HKEY native(const RegistryKey& key) {
  return static_cast<HKEY>(key.handle());
}

HKEY predefined(int32_t root) {
  // The platform sign-extends the numbers of the predefined keys.
  return reinterpret_cast<HKEY>(static_cast<LONG_PTR>(root));
}

RegStatus status_of(LSTATUS status) {
  return static_cast<RegStatus>(status);
}

class SystemRegistry final : public Registry {
 public:
  RegStatus open(int32_t root, const char* path, uint32_t access, RegistryKey& key) override {
    return open_below(predefined(root), path, access, key);
  }

  RegStatus open(const RegistryKey& parent, const char* path, uint32_t access,
                 RegistryKey& key) override {
    return open_below(native(parent), path, access, key);
  }

  RegStatus info(const RegistryKey& key, KeyInfo& info) override {
    DWORD subkeys = 0, longest_subkey = 0, values = 0, longest_name = 0, longest_value = 0;
    FILETIME time{};
    const LSTATUS status =
        RegQueryInfoKeyA(native(key), nullptr, nullptr, nullptr, &subkeys, &longest_subkey, nullptr,
                         &values, &longest_name, &longest_value, nullptr, &time);
    if (status != ERROR_SUCCESS) return status_of(status);
    info = {static_cast<uint32_t>(subkeys),
            static_cast<uint32_t>(longest_subkey),
            static_cast<uint32_t>(values),
            static_cast<uint32_t>(longest_name),
            static_cast<uint32_t>(longest_value),
            (ORLO::FileTime{time.dwHighDateTime} << 32) | time.dwLowDateTime};
    return kRegSuccess;
  }

  RegStatus subkey_at(const RegistryKey& key, uint32_t index, char* name,
                      uint32_t& length) override {
    DWORD room = length;
    const LSTATUS status =
        RegEnumKeyExA(native(key), index, name, &room, nullptr, nullptr, nullptr, nullptr);
    length = static_cast<uint32_t>(room);
    return status_of(status);
  }

  RegStatus value(const RegistryKey& key, const char* name, uint32_t& type, void* data,
                  uint32_t& size) override {
    DWORD kind = 0;
    DWORD room = size;
    const LSTATUS status =
        RegQueryValueExA(native(key), name, nullptr, &kind, static_cast<LPBYTE>(data), &room);
    type = static_cast<uint32_t>(kind);
    size = static_cast<uint32_t>(room);
    return status_of(status);
  }

  RegStatus value_at(const RegistryKey& key, uint32_t index, char* name, uint32_t& name_length,
                     uint32_t& type, void* data, uint32_t& size) override {
    DWORD name_room = name_length;
    DWORD kind = 0;
    DWORD room = size;
    const LSTATUS status = RegEnumValueA(native(key), index, name, &name_room, nullptr, &kind,
                                         static_cast<LPBYTE>(data), &room);
    name_length = static_cast<uint32_t>(name_room);
    type = static_cast<uint32_t>(kind);
    size = static_cast<uint32_t>(room);
    return status_of(status);
  }

  RegStatus notify(const RegistryKey& key, bool subtree, uint32_t filter,
                   ORLO::Event& event) override {
    return status_of(RegNotifyChangeKeyValue(native(key), subtree ? TRUE : FALSE, filter,
                                             static_cast<HANDLE>(event.native()), TRUE));
  }

  RegStatus delete_key(int32_t root, const char* path) override {
    if (names_no_key(path)) return kRegAccessDenied;
    if (std::strlen(path) > kLongestPath) return kRegFileNotFound;
    return status_of(RegDeleteKeyA(predefined(root), path));
  }

 protected:
  void close(RegistryKey::Handle handle) noexcept override {
    RegCloseKey(static_cast<HKEY>(handle));
  }

 private:
  RegStatus open_below(HKEY parent, const char* path, uint32_t access, RegistryKey& key) {
    HKEY opened = nullptr;
    const LSTATUS status = RegOpenKeyExA(parent, path, 0, access, &opened);
    key = status == ERROR_SUCCESS ? RegistryKey(*this, opened) : RegistryKey();
    return status_of(status);
  }
};

}  // namespace

std::unique_ptr<Registry> make_system_registry() {
  return std::make_unique<SystemRegistry>();
}
