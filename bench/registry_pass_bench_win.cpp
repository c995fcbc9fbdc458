// One pass of the Uninstall source over 2,000 subkeys beside the bare platform calls: a floor that
// enumerates the same values once per subkey and makes the same file probes, and a naive one that
// queries each value by its name.
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "bench/interleaved.h"
#include "bench/uninstall_seed_win.h"
#include "inventory/uninstall_source.h"

namespace {

constexpr char kPath[] = "Software\\ZolvaneBench\\Uninstall";
constexpr int kSubkeys = 2000;
constexpr const char* kNames[] = {
    "ParentKeyName",   "ParentDisplayName", "DisplayName",     "DisplayVersion",   "DisplayIcon",
    "InstallLocation", "UninstallString",   "ModifyPath",      "WindowsInstaller", "InstallDate",
    "NoRemove",        "NoModify",          "SystemComponent", "Comments",         "EstimatedSize",
    "Publisher",       "Contact",           "HelpLink",        "HelpTelephone",    "URLInfoAbout",
    "URLUpdateInfo"};

HKEY open_uninstall() {
  HKEY key = nullptr;
  RegOpenKeyExA(HKEY_CURRENT_USER, kPath, 0, KEY_READ, &key);
  return key;
}

bool file_there(const char* path) {
  WIN32_FIND_DATAA data;
  const HANDLE find = FindFirstFileA(path, &data);
  if (find == INVALID_HANDLE_VALUE) return false;
  FindClose(find);
  return true;
}

/// The probes that the seeded commands need.
void probe(const std::string& command) {
  char buffer[1024];
  const bool quoted = !command.empty() && command[0] == '"';
  const std::string path = quoted ? command.substr(1, command.find('"', 1) - 1) : command;
  ExpandEnvironmentStringsA(path.c_str(), buffer, sizeof buffer);
  if (file_there(path.c_str())) return;
  char found[260];
  char* name = nullptr;
  if (SearchPathA(nullptr, path.substr(0, path.find(' ')).c_str(), ".exe", sizeof found, found,
                  &name) != 0) {
    file_there(found);
  }
}

void open_usage_cache(const char* name) {
  HKEY key = nullptr;
  const std::string path =
      std::string("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Management\\ARPCache\\") +
      name;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, &key) == 0) RegCloseKey(key);
}

template <typename ReadValues>
void floor_pass(const ReadValues& read_values) {
  const HKEY key = open_uninstall();
  char name[256];
  for (DWORD i = 0;; ++i) {
    DWORD length = sizeof name;
    if (RegEnumKeyExA(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) != 0) break;
    HKEY subkey = nullptr;
    if (RegOpenKeyExA(key, name, 0, KEY_QUERY_VALUE, &subkey) != 0) continue;
    DWORD values = 0;
    FILETIME written;
    RegQueryInfoKeyA(subkey, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &values, nullptr,
                     nullptr, nullptr, &written);
    const std::string command = read_values(subkey, values);
    RegCloseKey(subkey);
    open_usage_cache(name);
    probe(command);
  }
  RegCloseKey(key);
}

std::string enumerate_values(HKEY key, DWORD values) {
  std::string command;
  for (DWORD i = 0; i < values; ++i) {
    char name[256];
    char data[1024];
    DWORD name_length = sizeof name;
    DWORD size = sizeof data;
    DWORD type = 0;
    RegEnumValueA(key, i, name, &name_length, nullptr, &type, reinterpret_cast<BYTE*>(data), &size);
    if (lstrcmpA(name, "UninstallString") == 0) command = data;
  }
  return command;
}

std::string query_each(HKEY key, DWORD) {
  std::string command;
  for (const char* name : kNames) {
    char data[1024] = {};
    DWORD size = sizeof data;
    DWORD type = 0;
    RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<BYTE*>(data), &size);
    if (lstrcmpA(name, "UninstallString") == 0) command = data;
  }
  return command;
}

void product_pass() {
  const auto registry = make_system_registry();
  const auto files = make_system_files();
  RegistryKey key;
  registry->open(kCurrentUser, kPath, kKeyRead, key);
  UninstallSource source(*registry, *files, ORLO::system_clock());
  std::set<RowKey> unseen;
  int rows = 0;
  source.readUninstallKey(kCurrentUser, key, unseen, false, [&](const Row&) { ++rows; });
  if (rows != kSubkeys) std::printf("%d rows\n", rows);
}

}  // namespace

int main() {
  seed_uninstall(kPath, kSubkeys);
  print_ratios("Registry pass, 2,000 subkeys",
               {{"zolvane", &product_pass},
                {"floor: values enumerated", [] { floor_pass(&enumerate_values); }},
                {"naive: one query per value name", [] { floor_pass(&query_each); }}});
  return 0;
}
