#include <cstdio>
#include <cstdlib>

#include "orlo/assertion.h"

namespace ORLO {

void assertion_failed(const char* expression, const char* source, int line) noexcept {
  std::fprintf(stderr, "Assertion failed: %s, file %s, line %d\n", expression, source, line);
  std::abort();
}

}  // namespace ORLO
