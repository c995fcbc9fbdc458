// The last line of defence against processor exceptions: asks whether to go on, remembers the
// answer, and gives up in silence when the reporting itself keeps failing.
#pragma once

#include <cstdint>

#include "orlo/rstring.h"

namespace ORLO {

inline constexpr uint32_t kExceptionAccessViolation = 0xC0000005;
/// What this program raises for a C++ exception that nobody has caught.
inline constexpr uint32_t kExceptionCpp = 0xE06D7363;

/// Flags of an exception.
inline constexpr uint32_t kNonContinuable = 1;
/// Says that it came by the unhandled-exception filter.
inline constexpr uint32_t kLastChance = 0x2000;

/// What the decision needs to know of an exception.
struct ProcessorException {
  uint32_t code = 0;
  uint32_t flags = 0;
  /// Of the instruction that failed.
  uintptr_t address = 0;
  uint32_t parameter_count = 0;
  /// Of an access violation: 0 for reading, otherwise writing, and where.
  uintptr_t parameters[2] = {};
};

enum class FilterResult : int { continue_search = 0, execute_handler = 1, continue_execution = -1 };

/// What the decision can do. None of these is called under a lock.
class FilterServices {
 public:
  virtual ~FilterServices() = default;
  /// Shows a box with these flags: the id of the button.
  virtual int ask(const String& text, uint32_t flags) = 0;
  /// How many bytes the instruction is long; 0 or less if it can't be skipped.
  virtual int instruction_length(uintptr_t address) = 0;
  virtual void skip(int length) = 0;
  /// Takes the exceptions out of the saved state of the floating-point unit.
  virtual void clear_float_exceptions() = 0;
  virtual void wait(uint32_t milliseconds) = 0;
  /// Ends the process: doesn't return.
  virtual void exit_process(int exit_code) = 0;
};

FilterResult filter_exception(const ProcessorException& exception,
                              FilterServices& services) noexcept;

/// The number of the string of the module ORLOCORE that tells of an exception.
unsigned exception_string(const ProcessorException& exception) noexcept;

/// How often the calling thread may still meet a failure inside the reports of failures before that
/// ends the process, and how often it has.
struct FilterRetries {
  int retries_left = 0;
  int retries_done = 0;
};
FilterRetries& filter_retries() noexcept;

/// For tests.
void forget_answered_addresses() noexcept;

}  // namespace ORLO
