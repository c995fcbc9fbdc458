#include "orlo/exception.h"

#include <cerrno>
#include <cstring>

namespace ORLO {

String system_error_text(uint32_t code) {
  // The build machine has no texts for the target's codes; the target's fallback stands in.
  return String::formatted("unknown error 0x%08X", code);
}

uint32_t last_error() noexcept {
  return static_cast<uint32_t>(errno);
}

}  // namespace ORLO
