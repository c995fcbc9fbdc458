#include "platform/wmi.h"

#include <algorithm>
#include <cstring>

bool WmiNameOrder::operator()(const String& a, const String& b) const noexcept {
  const int order = std::memcmp(a.c_str(), b.c_str(), std::min(a.length(), b.length()));
  return order != 0 ? order < 0 : a.length() < b.length();
}
