#include "platform/memory_internet.h"

std::unique_ptr<Internet> make_system_internet() {
  return std::make_unique<MemoryInternet>();
}
