#include "platform/memory_wmi.h"

std::unique_ptr<Wmi> make_system_wmi() {
  return std::make_unique<MemoryWmi>();
}
