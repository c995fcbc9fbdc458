// What packages are looked into by.
#pragma once

#include "platform/installer.h"
#include "platform/installer_database.h"

/// On the main thread; all must outlive their user. The installer isn't the one that the reader's
/// thread asks.
struct InspectServices {
  Installer& installer;
  InstallerDatabases& databases;
};
