#include "platform/memory_shell.h"

std::unique_ptr<Shell> make_system_shell() {
  return std::make_unique<MemoryShell>();
}
