#include "start/update_settings.h"

#include "start/program_version.h"

UpdateSettings update_settings(const char* description_url, const SystemVersion& system,
                               bool no_persist) {
  UpdateSettings settings;
  settings.appName = "zolvane";
  settings.registryPath = "Software\\Quillmere\\Zolvane";
  settings.descriptionUrl = description_url;
  settings.currentVersion = kProgramVersion;
  settings.agent = String::formatted("zolvane %s", kProgramVersion);
  settings.systemId =
      String::formatted("WIN%d.%d.%d", static_cast<int>(system.major),
                        static_cast<int>(system.minor), static_cast<int>(system.build));
  settings.limitToDaily = !no_persist;
  return settings;
}
