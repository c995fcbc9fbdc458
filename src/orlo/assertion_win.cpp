#include <cassert>
#include <cstdlib>

#include "orlo/assertion.h"

namespace ORLO {

// The runtime chooses between a box and the error output.
void assertion_failed(const char* expression, const char* source, int line) noexcept {
  _assert(expression, source, static_cast<unsigned>(line));
  std::abort();
}

}  // namespace ORLO
