// The one report that a failure ends in.
#pragma once

#include <atomic>
#include <cstdint>
#include <exception>
#include <functional>

#include "orlo/com_error.h"
#include "orlo/exception.h"

namespace ORLO {

/// The window that owns a report's box (an HWND on the target); null means none is known.
using ReportOwner = void*;

/// Shows what failed, during what and why, in a box; returns when the user has closed it. Without
/// an owner the calling thread's main window is it. A report that arrives during another one, on
/// whatever thread, is dropped, and so is every report during shut-down but those of the
/// shut-down itself. Nothing is ever thrown: a failure to tell what failed is shown instead.
void report_exception(const Exception& exception, ReportOwner owner) noexcept;
void report_std_exception(const std::exception& exception, ReportOwner owner) noexcept;
/// The box always belongs to the thread's main window, whatever `owner` is.
void report_com_error(const ComError& error, ReportOwner owner) noexcept;
/// False if the report was dropped.
bool report_assertion(const char* expression, const char* source, int line) noexcept;

/// Not 0 while the program shuts down: no report appears then.
extern std::atomic<int> InShutDown;
/// How often it has begun by now.
inline int begin_shutdown() noexcept {
  return ++InShutDown;
}
inline void take_back_shutdown() noexcept {
  --InShutDown;
}
inline bool in_shutdown() noexcept {
  return InShutDown != 0;
}

/// Replaces the box, for tests and for runs that nobody watches: gets caption and text. An empty
/// function brings the box back.
using ReportSink = std::function<void(const String& caption, const String& text)>;
void set_report_sink(ReportSink sink);

/// The main window of the calling thread; null if it has none. Chosen at link time.
ReportOwner thread_main_window() noexcept;

}  // namespace ORLO
