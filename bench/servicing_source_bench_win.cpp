// The source of servicing packages over 5,000 keys beside the bare platform calls: one enumeration
// that opens each key, asks what it holds, enumerates its values once and closes it.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench/interleaved.h"
#include "bench/uninstall_seed_win.h"
#include "inventory/servicing_packages.h"

namespace {

constexpr char kPath[] =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Component Based Servicing\\Packages";
constexpr int kPackages = 5000;
constexpr DWORD kSeedAccess = KEY_ALL_ACCESS | KEY_WOW64_64KEY;

void seed_package(HKEY packages, const std::string& name) {
  HKEY key = nullptr;
  if (RegCreateKeyExA(packages, name.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                      nullptr) != 0) {
    std::printf("can't seed\n");
    std::exit(1);
  }
  set_text(key, "InstallClient", "WindowsUpdateAgent");
  set_text(key, "InstallName", "update.mum");
  set_text(key, "InstallLocation", "\\\\?\\C:\\Windows\\SoftwareDistribution\\Download\\0\\inst\\");
  set_text(key, "InstallUser", "S-1-5-18");
  set_number(key, "InstallTimeLow", 0x8C2F3A10);
  set_number(key, "InstallTimeHigh", 0x01CBA5F0);
  set_number(key, "CurrentState", 112);
  set_number(key, "SelfUpdate", 0);
  set_number(key, "Visibility", 1);
  RegCloseKey(key);
}

void seed() {
  HKEY packages = nullptr;
  RegCreateKeyExA(HKEY_LOCAL_MACHINE, kPath, 0, nullptr, 0, kSeedAccess, nullptr, &packages,
                  nullptr);
  for (int i = 0; i < kPackages; ++i) {
    std::string name = "Package_for_KB";
    seed_package(packages,
                 name.append(std::to_string(1000000 + i)).append("~31bf3856ad364e35~amd64~~6.1"));
  }
  RegCloseKey(packages);
}

void read_values(HKEY key) {
  DWORD values = 0;
  FILETIME written;
  RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &values, nullptr,
                   nullptr, nullptr, &written);
  for (DWORD i = 0; i < values; ++i) {
    char name[256];
    char data[1024];
    DWORD name_length = sizeof name;
    DWORD size = sizeof data;
    DWORD type = 0;
    RegEnumValueA(key, i, name, &name_length, nullptr, &type, reinterpret_cast<BYTE*>(data), &size);
  }
}

void floor_pass() {
  HKEY packages = nullptr;
  RegOpenKeyExA(HKEY_LOCAL_MACHINE, kPath, 0, KEY_READ | KEY_WOW64_64KEY, &packages);
  char name[256];
  for (DWORD i = 0;; ++i) {
    DWORD length = sizeof name;
    if (RegEnumKeyExA(packages, i, name, &length, nullptr, nullptr, nullptr, nullptr) != 0) break;
    HKEY key = nullptr;
    if (RegOpenKeyExA(packages, name, 0, KEY_QUERY_VALUE, &key) != 0) continue;
    read_values(key);
    RegCloseKey(key);
  }
  RegCloseKey(packages);
}

void product_pass() {
  const auto registry = make_system_registry();
  const auto accounts = make_system_accounts();
  ServicingPackagesSource source(*registry, *accounts, ORLO::system_clock());
  std::set<RowKey> unseen;
  int rows = 0;
  source.ReadServicingPackages(unseen, [&](const Row&) { ++rows; });
  if (rows != kPackages) std::printf("%d rows\n", rows);
}

}  // namespace

int main() {
  seed();
  print_ratios("Servicing packages, 5,000 keys",
               {{"zolvane", &product_pass}, {"floor: values enumerated", &floor_pass}});
  return 0;
}
