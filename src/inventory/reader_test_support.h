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
    return {registry, files,   ORLO::system_clock(), installer, wmi,
            accounts, version, under_wow64,          [] {}};
  }

  MemoryFiles files;
  MemoryInstaller installer;
  MemoryWmi wmi;
  MemoryAccounts accounts;
  SystemVersion version{SystemVersion::kWindowsNt, 6};
};
