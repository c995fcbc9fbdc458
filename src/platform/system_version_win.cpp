#include "platform/system_version.h"

#include <windows.h>

SystemVersion system_version() noexcept {
  OSVERSIONINFOA version = {};
  version.dwOSVersionInfoSize = sizeof version;
  if (GetVersionExA(&version) == FALSE) return {};
  return {version.dwPlatformId, version.dwMajorVersion, version.dwMinorVersion,
          version.dwBuildNumber};
}
