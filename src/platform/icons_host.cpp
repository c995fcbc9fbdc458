#include "platform/memory_icons.h"

std::unique_ptr<IconExtractor> make_system_icon_extractor() {
  return std::make_unique<MemoryIcons>();
}
