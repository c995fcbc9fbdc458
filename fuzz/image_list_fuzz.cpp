// Any bytes as what an image list has written.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/image_list_bytes.h"

namespace {

void demand(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string bytes(reinterpret_cast<const char*>(data), size);
  if (!check_image_list_bytes(bytes)) return 0;
  demand(bytes.size() == size && size >= 28);
  const std::string once = bytes;
  demand(check_image_list_bytes(bytes) && bytes == once);
  // Nothing that is needed may be missing.
  std::string shorter = bytes.substr(0, 28 + 54);
  demand(bytes.compare(2, 2, "\1\1") != 0 || !check_image_list_bytes(shorter));
  return 0;
}
