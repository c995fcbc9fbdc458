// Packages for the benches that read the registry.
#pragma once

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

inline void set_text(HKEY key, const char* name, const std::string& text) {
  RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                 static_cast<DWORD>(text.size()) + 1);
}

inline void set_number(HKEY key, const char* name, DWORD number) {
  RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number);
}

/// Makes `count` subkeys with values as installers write them below a key of the current user.
inline void seed_uninstall(const char* path, int count) {
  for (int i = 0; i < count; ++i) {
    const std::string number = std::to_string(i);
    HKEY key = nullptr;
    const std::string subkey = std::string(path) + "\\{" + number + "-BENCH}";
    if (RegCreateKeyExA(HKEY_CURRENT_USER, subkey.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                        &key, nullptr) != 0) {
      std::printf("can't seed\n");
      std::exit(1);
    }
    set_text(key, "DisplayName", "Program " + number);
    set_text(key, "DisplayVersion", "1.0." + number);
    set_text(key, "Publisher", "Vendor " + std::to_string(i % 50));
    set_text(key, "InstallDate", "2024" + std::to_string(1001 + i % 200).substr(1) + "1");
    set_text(key, "InstallLocation", "C:\\Program Files\\Vendor\\Program " + number);
    set_text(key, "UninstallString",
             i % 2 == 0 ? "MsiExec.exe /X{" + number + "}"
                        : "\"C:\\windows\\system32\\msiexec.exe\" /x " + number);
    set_text(key, "DisplayIcon", "C:\\windows\\system32\\msiexec.exe,0");
    set_text(key, "HelpLink", "https://help.example.org/" + number);
    set_text(key, "URLInfoAbout", "https://www.example.org/" + number);
    set_number(key, "EstimatedSize", static_cast<DWORD>(i) * 10);
    set_number(key, "WindowsInstaller", static_cast<DWORD>(i % 2 == 0));
    set_number(key, "NoModify", 1);
    RegCloseKey(key);
  }
}
