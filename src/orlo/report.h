// The one report that a failure ends in.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>

#include "orlo/exception.h"

namespace ORLO {

/// The window that owns a report's box (an HWND on the target); null means none is known.
using ReportOwner = void*;

/// Shows what failed, during what and why, in a box; returns when the user has closed it. A report
/// that arrives during another one, on whatever thread, is dropped, and so is every report during
/// shut-down.
void report_exception(const Exception& exception, ReportOwner owner);
void report_std_exception(const std::exception& exception, ReportOwner owner);

/// From here on no report appears.
void begin_shutdown() noexcept;
bool in_shutdown() noexcept;

/// Replaces the box, for tests: gets caption and text. An empty function brings the box back.
using ReportSink = std::function<void(const String& caption, const String& text)>;
void set_report_sink(ReportSink sink);

/// A box with an OK button and an exclamation mark, modal to the calling thread's windows.
/// Chosen at link time.
void show_report_box(const String& text, const char* caption, ReportOwner owner);

}  // namespace ORLO
