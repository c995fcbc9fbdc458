// The process's entry point: the program on the services of the system.
#include "start/program.h"

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR command_line, int) {
  const auto registry = make_system_registry();
  const auto files = make_system_files();
  const auto shell = make_system_shell();
  const auto icons = make_system_icon_extractor();
  const auto installer = make_system_installer();
  const auto wmi = make_system_wmi();
  const auto accounts = make_system_accounts();
  const auto storage = make_system_storage();
  const auto inspected_installer = make_system_installer();
  const auto databases = make_system_installer_databases();
  return run_program(instance, command_line,
                     {*registry,
                      *files,
                      ORLO::system_clock(),
                      *shell,
                      *icons,
                      *installer,
                      *wmi,
                      *accounts,
                      *storage,
                      {*inspected_installer, *databases}});
}
