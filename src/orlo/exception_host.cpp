#include "orlo/exception.h"

#include <cerrno>

namespace ORLO {

bool system_message(uint32_t, String&) {
  // The build machine has no texts for the target's codes.
  return false;
}

uint32_t last_error() noexcept {
  return static_cast<uint32_t>(errno);
}

}  // namespace ORLO
