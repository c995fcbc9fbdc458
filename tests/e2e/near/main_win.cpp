// Zolvane itself, but that the environment says where the description of its newest version is:
// ZOLVANE_NEAR, an address that a test's server answers. Without it there is no address at all.
#include <cstdlib>

#include "start/system_services.h"

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR command_line, int) {
  const char* const address = std::getenv("ZOLVANE_NEAR");
  SystemServices system(address != nullptr ? address : "");
  return run_program(instance, command_line, system.services());
}
