#include "platform/memory_own_key.h"

std::unique_ptr<OwnKey> make_system_own_key() {
  return std::make_unique<MemoryOwnKey>();
}
