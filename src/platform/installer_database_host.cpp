#include "platform/memory_installer_database.h"

std::unique_ptr<InstallerDatabases> make_system_installer_databases() {
  return std::make_unique<MemoryInstallerDatabases>();
}
