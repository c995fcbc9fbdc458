// Assertions that stay in the shipped program.
#pragma once

namespace ORLO {

/// Says which condition failed, and where: once for each expression; during shut-down only its own.
void assertion_failed(const char* expression, const char* source, int line) noexcept;

/// True if the condition holds; otherwise reports it, and the caller goes on with the result that
/// it has for this case. The texts must live to the end of the process.
inline bool check_assertion(bool holds, const char* expression, const char* source,
                            int line) noexcept {
  if (!holds) assertion_failed(expression, source, line);
  return holds;
}

/// While one lives, this thread's failed assertions aren't told to anybody: for input of strangers,
/// whose faults are none of this program's. Nestable.
class UntoldAssertions {
 public:
  UntoldAssertions() noexcept;
  ~UntoldAssertions();
  UntoldAssertions(const UntoldAssertions&) = delete;
  UntoldAssertions& operator=(const UntoldAssertions&) = delete;
};

/// Forgets which expressions have been reported, for tests.
void forget_failed_assertions() noexcept;

}  // namespace ORLO
