// The process's entry point: the program on the services of the system.
#include "start/system_services.h"
#include "view/addresses.h"

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR command_line, int) {
  SystemServices system(ZOLVANE_UPDATE_URL);
  return run_program(instance, command_line, system.services());
}
