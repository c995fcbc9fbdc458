#include "platform/memory_installer.h"

std::unique_ptr<Installer> make_system_installer() {
  return std::make_unique<MemoryInstaller>();
}
