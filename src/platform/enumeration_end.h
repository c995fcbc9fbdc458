// The end of an enumeration that has no end of its own.
#pragma once

#include "platform/installer.h"

/// Counts the failures of an enumeration of products. Only kInstallerNoMoreItems ends one, and a
/// damaged machine answers the same failure to every index.
class EnumerationEnd {
 public:
  static constexpr int kMostFailures = 100;

  /// What is to be told of the system's answer for `index`: kInstallerNoMoreItems if it is the
  /// hundredth failure in a row and all were the same, else the answer itself. Index 0 begins a new
  /// enumeration.
  InstallerStatus judge(uint32_t index, InstallerStatus status) noexcept;

 private:
  InstallerStatus last_ = kInstallerSuccess;
  int times_ = 0;  ///< how often `last_` has come in a row
};
