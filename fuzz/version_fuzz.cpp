// Two version texts, parted by the first line feed: the order is one, seen from either side.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "inventory/text_helpers.h"

namespace {

void demand(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const size_t parting = bytes.find('\n');
  const String a(bytes.substr(0, parting).c_str());
  const String b(parting == std::string::npos ? "" : bytes.substr(parting + 1).c_str());
  const int order = compareVersions(a, b);
  demand(order >= -1 && order <= 1);
  demand(compareVersions(b, a) == -order);
  demand(compareVersions(a, a) == 0);
  demand(compareVersions(b, b) == 0);
  return 0;
}
