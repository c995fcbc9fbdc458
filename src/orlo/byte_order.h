// Texts in the order of their unsigned bytes.
#pragma once

#include "orlo/rstring.h"

namespace ORLO {

/// Order by unsigned bytes: -1, 0 or 1.
int compare_bytes(const String& a, const String& b) noexcept;

struct ByteOrder {
  bool operator()(const String& a, const String& b) const noexcept {
    return compare_bytes(a, b) < 0;
  }
};

}  // namespace ORLO
