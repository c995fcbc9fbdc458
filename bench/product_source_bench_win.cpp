// One pass of the installer's source over 500 products with 20 features and 2 patches each, half of
// them with an Uninstall row, beside the bare calls of the installer, the registry and the files.
#include <windows.h>

#include <msi.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/interleaved.h"
#include "bench/uninstall_seed_win.h"
#include "inventory/installer_source.h"
#include "orlo/module_functions.h"
#include "platform/installer_seed_win.h"

namespace {

constexpr int kProducts = 500;
constexpr int kFeatures = 20;
constexpr int kPatches = 2;
constexpr char kIcon[] = "C:\\windows\\system32\\msiexec.exe";
constexpr char kUserData[] = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Installer\\UserData";
constexpr char kSid[] = "S-1-5-21-0-0-0-1001";

std::string code_of(int product) {
  return String::formatted("{5A0CE5ED-0000-4000-8000-%012d}", product).c_str();
}

/// Every second product has a row with all that the installer could fill.
bool has_row(int product) {
  return product % 2 == 0;
}

MemoryInstaller::Product product_of(int product) {
  const std::string number = std::to_string(product);
  MemoryInstaller::Product result{code_of(product),
                                  {{"ProductName", "Program " + number},
                                   {"VersionString", "1.0." + number},
                                   {"InstallDate", "20240115"},
                                   {"LocalPackage", "C:\\windows\\Installer\\" + number + ".msi"},
                                   {"ProductIcon", kIcon}},
                                  {}};
  for (int i = 0; i < kFeatures; ++i)
    result.features.emplace_back("Feature" + std::to_string(i), "");
  return result;
}

HKEY create(const std::string& path) {
  HKEY key = nullptr;
  if (RegCreateKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                      &key, nullptr) != 0) {
    std::printf("can't seed\n");
    std::exit(1);
  }
  return key;
}

void seed_patch(int product, int patch) {
  const std::string user = std::string(kUserData) + "\\" + kSid;
  const std::string number = std::to_string(product * kPatches + patch);
  const std::string name = std::string(32 - number.size(), '0') + number;
  const HKEY package = create(user + "\\Patches\\" + name);
  set_text(package, "LocalPackage", "C:\\windows\\Installer\\" + number + ".msp");
  RegCloseKey(package);
  const HKEY key =
      create(user + "\\Products\\" + packed_product_key(code_of(product)) + "\\Patches\\" + name);
  set_text(key, "DisplayName", "Patch " + number);
  set_text(key, "Installed", "20240115");
  set_number(key, "State", 1);
  set_number(key, "Uninstallable", 1);
  RegCloseKey(key);
}

void seed_patches(int product) {
  for (int i = 0; i < kPatches; ++i)
    seed_patch(product, i);
}

void seed_rows(ReaderRows& rows) {
  rows.clear();
  for (int i = 0; i < kProducts; ++i) {
    if (!has_row(i)) continue;
    Row row = make_source_row("HKLM Uninstall");
    const String code(code_of(i));
    for (const PackageColumn column :
         {PackageColumn::name, PackageColumn::keyName, PackageColumn::displayName,
          PackageColumn::displayVersion, PackageColumn::installDate})
      cell(row, column).text = code;
    cell(row, PackageColumn::displayIcon).text = kIcon;
    rows.add(row);
  }
}

void product_pass(ReaderRows& rows) {
  const auto installer = make_system_installer();
  const auto registry = make_system_registry();
  const auto files = make_system_files();
  InstallerSource source(*registry, {*installer, *files, ORLO::system_clock()}, nullptr);
  std::set<RowKey> unseen;
  int made = 0;
  source.ReadMsiProducts(rows, unseen, [&](const Row& row) {
    rows.add(row);
    ++made;
  });
  if (made != kProducts / 2) std::printf("%d rows made\n", made);
}

template <typename Visit>
void each_subkey(HKEY parent, const std::string& path, const Visit& visit) {
  HKEY key = nullptr;
  if (RegOpenKeyExA(parent, path.c_str(), 0, KEY_READ, &key) != 0) return;
  char name[260];
  for (DWORD i = 0; RegEnumKeyA(key, i, name, sizeof name) == 0; ++i)
    visit(key, name);
  RegCloseKey(key);
}

void query(HKEY parent, const char* name, const std::vector<const char*>& values) {
  HKEY key = nullptr;
  if (RegOpenKeyExA(parent, name, 0, KEY_READ, &key) != 0) return;
  for (const char* value : values) {
    char data[1024];
    DWORD size = sizeof data;
    DWORD type = 0;
    RegQueryValueExA(key, value, nullptr, &type, reinterpret_cast<BYTE*>(data), &size);
  }
  RegCloseKey(key);
}

void floor_patches() {
  each_subkey(HKEY_LOCAL_MACHINE, kUserData, [](HKEY users, const std::string& sid) {
    each_subkey(users, sid + "\\Patches",
                [](HKEY patches, const char* patch) { query(patches, patch, {"LocalPackage"}); });
    each_subkey(users, sid + "\\Products", [](HKEY products, const std::string& product) {
      each_subkey(products, product + "\\Patches", [](HKEY patches, const char* patch) {
        query(patches, patch, {"DisplayName", "Installed", "State", "Uninstallable"});
      });
    });
  });
}

struct Msi {
  template <typename Type>
  static Type find(const char* name) {
    return ORLO::system_functions().require<Type>("msi.dll", name);
  }

  decltype(&MsiSetInternalUI) set_internal_ui =
      find<decltype(&MsiSetInternalUI)>("MsiSetInternalUI");
  decltype(&MsiEnumProductsA) enum_products = find<decltype(&MsiEnumProductsA)>("MsiEnumProductsA");
  decltype(&MsiEnumFeaturesA) enum_features = find<decltype(&MsiEnumFeaturesA)>("MsiEnumFeaturesA");
  decltype(&MsiGetProductInfoA) product_info =
      find<decltype(&MsiGetProductInfoA)>("MsiGetProductInfoA");
};

void floor_product(const Msi& msi, const char* code, bool has_row) {
  char feature[39];
  char parent[39];
  for (DWORD i = 0; msi.enum_features(code, i, feature, parent) == 0;)
    ++i;
  const auto read = [&](const char* property) {
    char value[1024];
    DWORD length = sizeof value;
    msi.product_info(code, property, value, &length);
  };
  read("LocalPackage");
  if (has_row) {
    char path[1024];
    ExpandEnvironmentStringsA(kIcon, path, sizeof path);
    CloseHandle(CreateFileA(path, 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                            FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    return;
  }
  for (const char* property : {"ProductIcon", "ProductName", "VersionString", "InstallDate"})
    read(property);
}

void floor_pass() {
  const Msi msi;
  HWND owner = nullptr;
  msi.set_internal_ui(INSTALLUILEVEL_NONE, &owner);
  floor_patches();
  char code[39];
  DWORD products = 0;
  for (; msi.enum_products(products, code) == 0; ++products)
    floor_product(msi, code, has_row(code[36] - '0'));
  if (products != kProducts) std::printf("%d products\n", static_cast<int>(products));
}

void seed_products(InstallerSeed& seed) {
  try {
    for (int i = 0; i < kProducts; ++i)
      seed.install(product_of(i));
  } catch (const std::runtime_error& error) {
    std::printf("%s\n", error.what());
    std::exit(1);
  }
}

}  // namespace

int main() {
  InstallerSeed seed;
  seed_products(seed);
  for (int i = 0; i < kProducts; ++i)
    seed_patches(i);
  ReaderRows rows;
  print_ratios("Product source, 500 products with 20 features",
               {{"zolvane", [&rows] { product_pass(rows); }, [&rows] { seed_rows(rows); }},
                {"floor: bare calls", &floor_pass}});
  RegDeleteTreeA(HKEY_LOCAL_MACHINE, (std::string(kUserData) + "\\" + kSid).c_str());
  return 0;
}
