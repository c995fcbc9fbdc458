// What a reader stands on, in memory.
#pragma once

#include "inventory/reader.h"
#include "platform/memory_accounts.h"
#include "platform/memory_files.h"
#include "platform/memory_installer.h"
#include "platform/memory_wmi.h"

/// A system of version 6 with nothing installed but what the registry says.
struct MemorySystem {
  UninstallReader::Services over(Registry& registry, bool under_wow64 = true) {
    return over(registry, installer, wmi, under_wow64);
  }
  /// With others in the place of two of them.
  UninstallReader::Services over(Registry& registry, Installer& other_installer, Wmi& other_wmi,
                                 bool under_wow64 = true) {
    return {.registry = registry,
            .files = files,
            .clock = ORLO::system_clock(),
            .installer = other_installer,
            .wmi = other_wmi,
            .accounts = accounts,
            .version = version,
            .under_wow64 = under_wow64,
            .apply_thread_language = [] {}};
  }

  MemoryFiles files;
  MemoryInstaller installer;
  MemoryWmi wmi;
  MemoryAccounts accounts;
  SystemVersion version{SystemVersion::kWindowsNt, 6, 1, 7601};
};
