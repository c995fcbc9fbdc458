// Assertions that stay in the shipped program.
#pragma once

namespace ORLO {

/// Says which condition failed, and where, and ends the process.
[[noreturn]] void assertion_failed(const char* expression, const char* source, int line) noexcept;

inline void check_assertion(bool holds, const char* expression, const char* source,
                            int line) noexcept {
  if (!holds) assertion_failed(expression, source, line);
}

}  // namespace ORLO
