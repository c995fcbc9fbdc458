#include "orlo/byte_order.h"

#include <algorithm>
#include <cstring>

namespace ORLO {

int compare_bytes(const String& a, const String& b) noexcept {
  if (a.shares_block_with(b)) return 0;
  const size_t common = std::min(a.length(), b.length());
  const int order = common != 0 ? std::memcmp(a.c_str(), b.c_str(), common) : 0;
  if (order != 0) return order < 0 ? -1 : 1;
  if (a.length() == b.length()) return 0;
  return a.length() < b.length() ? -1 : 1;
}

}  // namespace ORLO
