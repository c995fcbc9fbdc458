#include "inventory/installer_patches.h"

#include <algorithm>

#include "inventory/source_rows.h"

namespace {

constexpr char kUserDataPath[] =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Installer\\UserData";
constexpr uint32_t kKeyNameRoom = 260;

constexpr size_t kCodeDigits = 32;
/// Lengths of the runs of digits that are reversed, one after the other.
constexpr size_t kReversedRuns[] = {8, 4, 4, 2, 2, 2, 2, 2, 2, 2, 2};

template <typename Visit>
void each_subkey(Registry& registry, const RegistryKey& key, const Visit& visit) {
  char name[kKeyNameRoom];
  for (uint32_t index = 0;; ++index) {
    uint32_t length = kKeyNameRoom;
    if (registry.subkey_at(key, index, name, length) != kRegSuccess) return;
    if (is_subkey_name(name, length)) visit(String(name));
  }
}

/// Opens the key of this name, `folder` below it, and visits its subkeys.
template <typename Visit>
void each_subkey_below(Registry& registry, const RegistryKey& parent, const String& name,
                       const char* folder, const Visit& visit) {
  const String path = String::formatted("%s\\%s", name, folder);
  RegistryKey key;
  if (registry.open(parent, path.c_str(), kKeyRead, key) != kRegSuccess) return;
  each_subkey(registry, key, [&](const String& subkey) { visit(key, subkey); });
}

/// Four bytes of any type; 0 for what is missing, shorter or longer.
uint32_t read_number(Registry& registry, const RegistryKey& key, const char* name) {
  uint32_t number = 0;
  uint32_t type = 0;
  uint32_t size = sizeof number;
  const RegStatus status = registry.value(key, name, type, &number, size);
  return status == kRegSuccess && size == sizeof number ? number : 0;
}

class PatchWalk {
 public:
  PatchWalk(Registry& registry, PatchMap& patches, ProductPatchMap& products)
      : registry_(registry), patches_(patches), products_(products) {}

  void read_user(const RegistryKey& user_data, const String& sid) {
    each_subkey_below(
        registry_, user_data, sid, "Patches",
        [this](const RegistryKey& key, const String& patch) { read_package(key, patch); });
    each_subkey_below(
        registry_, user_data, sid, "Products",
        [this](const RegistryKey& key, const String& product) { read_product(key, product); });
  }

 private:
  void read_package(const RegistryKey& parent, const String& patch) {
    PatchInfo& info = patches_[patch];
    RegistryKey key;
    if (registry_.open(parent, patch.c_str(), kKeyRead, key) != kRegSuccess) return;
    info.localPackage = get_registry_text(key, "LocalPackage");
  }

  void read_product(const RegistryKey& parent, const String& product) {
    PatchSet& applied = products_[product];
    each_subkey_below(registry_, parent, product, "Patches",
                      [&](const RegistryKey& key, const String& patch) {
                        applied.insert(patch);
                        read_patch(key, patch);
                      });
  }

  void read_patch(const RegistryKey& parent, const String& patch) {
    PatchInfo& info = patches_[patch];
    RegistryKey key;
    if (registry_.open(parent, patch.c_str(), kKeyRead, key) != kRegSuccess) return;
    info.displayName = get_registry_text(key, "DisplayName");
    info.installed = get_registry_text(key, "Installed");
    info.state = read_number(registry_, key, "State");
    info.uninstallable = read_number(registry_, key, "Uninstallable");
  }

  Registry& registry_;
  PatchMap& patches_;
  ProductPatchMap& products_;
};

}  // namespace

String PackProductCode(const String& code) {
  String packed = code;
  char* const begin = packed.writable();
  char* const end = std::remove_if(begin, begin + packed.length(),
                                   [](char c) { return c == '{' || c == '}' || c == '-'; });
  packed.resize(static_cast<size_t>(end - begin));
  if (packed.length() != kCodeDigits) return packed;
  char* run = packed.writable();
  for (const size_t length : kReversedRuns) {
    std::reverse(run, run + length);
    run += length;
  }
  return packed;
}

RegStatus LoadInstallerPatches(Registry& registry, PatchMap& patchMap,
                               ProductPatchMap& productPatchMap) {
  patchMap.clear();
  RegistryKey user_data;
  const RegStatus status = registry.open(kLocalMachine, kUserDataPath, kKeyRead, user_data);
  if (status != kRegSuccess) return status;
  PatchWalk walk(registry, patchMap, productPatchMap);
  each_subkey(registry, user_data, [&](const String& sid) { walk.read_user(user_data, sid); });
  return kRegSuccess;
}
