#include "orlo/dpi.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace ORLO {
namespace {

/// `divisor` must be positive.
int multiply_divide(int number, int factor, int divisor) noexcept {
  const int64_t product = int64_t{number} * factor;
  const int64_t half = divisor / 2;
  const int64_t result = (product < 0 ? product - half : product + half) / divisor;
  return static_cast<int>(std::clamp<int64_t>(result, std::numeric_limits<int>::min(),
                                              std::numeric_limits<int>::max()));
}

/// A screen of which nothing is known is an ordinary one.
int known(int dpi) noexcept {
  return dpi > 0 ? dpi : kStandardDpi;
}

}  // namespace

int scale_up(int length, int dpi) noexcept {
  return multiply_divide(length, known(dpi), kStandardDpi);
}

int scale_down(int pixels, int dpi) noexcept {
  const int length = multiply_divide(pixels, kStandardDpi, known(dpi));
  if (length != 0 || pixels == 0) return length;
  return pixels < 0 ? -1 : 1;
}

}  // namespace ORLO
