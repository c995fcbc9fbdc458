// Which version of the operating system the program runs on.
#pragma once

#include <cstdint>

struct SystemVersion {
  static constexpr uint32_t kWindowsNt = 2;

  uint32_t platform = 0;  ///< 0 if the system doesn't tell
  uint32_t major = 0;
  uint32_t minor = 0;
  uint32_t build = 0;

  /// From version 6 on the system keeps its updates as servicing packages, and its user interface
  /// can have a language of its own for each thread.
  bool at_least_nt6() const noexcept { return platform == kWindowsNt && major >= 6; }
};

/// As GetVersionExA tells, which is at most 6.2 without a manifest that says more.
SystemVersion system_version() noexcept;
