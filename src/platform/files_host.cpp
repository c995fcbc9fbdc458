#include "platform/memory_files.h"

std::unique_ptr<Files> make_system_files() {
  return std::make_unique<MemoryFiles>();
}
