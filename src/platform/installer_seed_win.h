// Products that the registry lets the system's installer see, without an installation.
#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "orlo/owned_handle.h"
#include "platform/memory_installer.h"

/// Writes the keys of products that are installed for the machine, and removes them at its end.
class InstallerSeed {
 public:
  InstallerSeed() = default;
  InstallerSeed(const InstallerSeed&) = delete;
  InstallerSeed& operator=(const InstallerSeed&) = delete;
  ~InstallerSeed() {
    for (const std::string& path : trees_)
      remove(path);
  }

  void install(const MemoryInstaller::Product& product) {
    const std::string packed = packed_product_key(product.code);
    const OwnedKey advertised = create_tree("SOFTWARE\\Classes\\Installer\\Products\\" + packed);
    const std::string installed = kInstaller + ("UserData\\S-1-5-18\\Products\\" + packed);
    create_tree(installed);
    const OwnedKey properties = create(installed + "\\InstallProperties");
    set_number(properties, "WindowsInstaller", 1);
    for (const auto& [name, value] : product.properties) {
      if (name == "ProductName" || name == "ProductIcon") set(advertised, name, value);
      set(properties, registered_name(name), value);
    }
    const OwnedKey features = create_tree(kInstaller + ("Features\\" + packed));
    for (const auto& [name, parent] : product.features)
      set(features, name, parent);
    seed_states(product, packed, installed);
  }

 private:
  struct KeyTraits {
    using Handle = HKEY;
    static Handle invalid() noexcept { return nullptr; }
    static void close(Handle handle) noexcept { RegCloseKey(handle); }
  };
  using OwnedKey = ORLO::OwnedHandle<KeyTraits>;

  /// A feature that isn't installed is marked before its parent's name; one that is only advertised
  /// has no list of its components, not even an empty one.
  void seed_states(const MemoryInstaller::Product& product, const std::string& packed,
                   const std::string& installed) {
    const OwnedKey known = create_tree("SOFTWARE\\Classes\\Installer\\Features\\" + packed);
    const OwnedKey components = create(installed + "\\Features");
    for (const auto& [name, parent] : product.features) {
      const auto state = product.states.find(name);
      const int32_t wanted = state != product.states.end() ? state->second : kFeatureLocal;
      set(known, name, wanted == kFeatureAbsent ? '\x06' + parent : parent);
      if (wanted == kFeatureLocal) set(components, name, "");
    }
  }

  static constexpr char kInstaller[] = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Installer\\";
  static constexpr REGSAM kAccess = KEY_ALL_ACCESS | KEY_WOW64_64KEY;

  static void demand(LSTATUS status) {
    if (status != ERROR_SUCCESS) throw std::runtime_error("the registry refuses a product");
  }

  static OwnedKey create(const std::string& path) {
    HKEY key = nullptr;
    demand(RegCreateKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, 0, kAccess, nullptr, &key,
                           nullptr));
    return OwnedKey(key);
  }

  /// A key that is removed at the end with all below it.
  OwnedKey create_tree(const std::string& path) {
    trees_.push_back(path);
    return create(path);
  }

  static void remove(const std::string& path) {
    const size_t last = path.rfind('\\');
    HKEY parent = nullptr;
    RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.substr(0, last).c_str(), 0, kAccess, &parent);
    const OwnedKey owner(parent);
    if (owner) RegDeleteTreeA(parent, path.c_str() + last + 1);
  }

  static void set(const OwnedKey& key, const std::string& name, const std::string& text) {
    demand(RegSetValueExA(key.get(), name.c_str(), 0, REG_SZ,
                          reinterpret_cast<const BYTE*>(text.c_str()),
                          static_cast<DWORD>(text.size()) + 1));
  }
  static void set_number(const OwnedKey& key, const std::string& name, DWORD number) {
    demand(RegSetValueExA(key.get(), name.c_str(), 0, REG_DWORD,
                          reinterpret_cast<const BYTE*>(&number), sizeof number));
  }

  static std::string registered_name(const std::string& property) {
    if (property == "ProductName") return "DisplayName";
    return property == "VersionString" ? "DisplayVersion" : property;
  }

  std::vector<std::string> trees_;
};
