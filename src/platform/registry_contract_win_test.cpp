// The contract of registry_contract_test.cpp on the system's own registry.
#include <windows.h>

#include <stdexcept>

#include "orlo/owned_handle.h"
#include "platform/registry_test_support.h"
#include "platform/utf16.h"

namespace {

struct KeyTraits {
  using Handle = HKEY;
  static Handle invalid() noexcept { return nullptr; }
  static void close(Handle handle) noexcept { RegCloseKey(handle); }
};
using OwnedKey = ORLO::OwnedHandle<KeyTraits>;

std::wstring wide(std::string_view utf8) {
  const std::u16string text = utf16_from_utf8(utf8);
  return std::wstring(text.begin(), text.end());
}

/// Splits a whole path into its predefined key and the rest.
HKEY take_root(std::wstring& path) {
  const size_t end = path.find(L'\\');
  const std::wstring name = path.substr(0, end);
  path.erase(0, end + 1);
  if (name == L"HKEY_CLASSES_ROOT") return HKEY_CLASSES_ROOT;
  return name == L"HKEY_LOCAL_MACHINE" ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

void demand(LSTATUS status, const char* what) {
  if (status != ERROR_SUCCESS) throw std::runtime_error(what + (' ' + std::to_string(status)));
}

OwnedKey create_key(const std::string& path) {
  std::wstring below = wide(path);
  const HKEY root = take_root(below);
  // Types of files are the same in both views, but not the way there.
  const REGSAM view = root == HKEY_CLASSES_ROOT ? 0 : KEY_WOW64_64KEY;
  HKEY key = nullptr;
  demand(RegCreateKeyExW(root, below.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS | view, nullptr, &key,
                         nullptr),
         "create");
  return OwnedKey(key);
}

/// Removes a key with all below it; does nothing if it isn't there.
void remove_key(const std::string& path) {
  std::wstring below = wide(path);
  const HKEY root = take_root(below);
  const size_t last = below.rfind(L'\\');
  HKEY parent = nullptr;
  if (RegOpenKeyExW(root, below.substr(0, last).c_str(), 0, KEY_ALL_ACCESS | KEY_WOW64_64KEY,
                    &parent) != ERROR_SUCCESS) {
    return;
  }
  const OwnedKey owner(parent);
  RegDeleteTreeW(parent, below.c_str() + last + 1);
}

bool runs_on_wine() {
  return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
}

class SystemBed final : public RegistryBed {
 public:
  SystemBed() : registry_(make_system_registry()) { clear(); }
  ~SystemBed() override { clear(); }

  Registry& registry() override { return *registry_; }

  MemoryRegistry::View view() const override {
    BOOL emulated = FALSE;
    IsWow64Process(GetCurrentProcess(), &emulated);
    return emulated != FALSE ? MemoryRegistry::View::wow64 : MemoryRegistry::View::native;
  }

  void create(const std::string& path) override { create_key(path); }

  void set(const std::string& path, const std::string& name, uint32_t type,
           const std::string& data) override {
    // What stands behind the data must be no NUL: the system would take it into a text.
    const std::string guarded = data + "xx";
    demand(RegSetValueExW(create_key(path).get(), wide(name).c_str(), 0, type,
                          reinterpret_cast<const BYTE*>(guarded.data()),
                          static_cast<DWORD>(data.size())),
           "set");
  }

  void remove_value(const std::string& path, const std::string& name) override {
    demand(RegDeleteValueW(create_key(path).get(), wide(name).c_str()), "remove a value");
  }

  void remove(const std::string& path) override { remove_key(path); }

  const char* silent_about_own_removal() const override {
    return runs_on_wine() ? "Wine doesn't signal a watched key's own removal" : nullptr;
  }
  const char* lax_about_info() const override {
    return runs_on_wine() ? "Wine answers info without the right to query" : nullptr;
  }

 private:
  static void clear() {
    for (const char* path : {kOwnUserKey, kOwnMachineKey, kOwnMachineKey32})
      remove_key(path);
    RegDeleteTreeA(HKEY_CLASSES_ROOT, "ZolvaneTest");
  }

  std::unique_ptr<Registry> registry_;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(System, RegistryContract,
                         ::testing::Values(RegistryBedMaker{
                             "Own", [] { return std::make_unique<SystemBed>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });
