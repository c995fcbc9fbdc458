#include "platform/memory_registry.h"

std::unique_ptr<Registry> make_system_registry() {
  return std::make_unique<MemoryRegistry>();
}
