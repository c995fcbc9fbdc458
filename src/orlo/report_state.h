// What all kinds of reports share: one is shown at a time.
#pragma once

#include "orlo/thread.h"

namespace ORLO {

/// Guards the state of reports: their depth and the lists beside it. Innermost of all locks; never
/// held while a box is open or while anything waits.
CriticalSection& report_lock() noexcept;

/// Counts a report for its scope.
class ReportScope {
 public:
  ReportScope() noexcept;
  ~ReportScope();
  ReportScope(const ReportScope&) = delete;
  ReportScope& operator=(const ReportScope&) = delete;
  /// How many reports were in progress, on all threads, when this one began.
  int depth() const noexcept { return depth_; }

 private:
  int depth_;
};

/// Lets the reports of its thread through for its scope, though the program shuts down.
class ReportsDespiteShutDown {
 public:
  ReportsDespiteShutDown() noexcept;
  ~ReportsDespiteShutDown();
  ReportsDespiteShutDown(const ReportsDespiteShutDown&) = delete;
  ReportsDespiteShutDown& operator=(const ReportsDespiteShutDown&) = delete;
};

}  // namespace ORLO
