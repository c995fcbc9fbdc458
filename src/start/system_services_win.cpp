#include "start/system_services.h"

// Not the runtime's way out: it would run the destructors of what other threads still use.
void end_process() noexcept {
  ExitProcess(0);
}

SystemServices::SystemServices(const char* description_url) : description_url_(description_url) {}

ProgramServices SystemServices::services() {
  return {*registry_,
          *files_,
          ORLO::system_clock(),
          *shell_,
          *icons_,
          *installer_,
          *wmi_,
          *accounts_,
          *storage_,
          {*inspected_installer_, *databases_},
          {*background_internet_, *manual_internet_, *own_key_, *temporary_files_, description_url_,
           &end_process}};
}
