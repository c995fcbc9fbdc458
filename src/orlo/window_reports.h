// Reports on behalf of windows. A failing paint is validated before and after its report, or it
// would come again forever behind the box.
#pragma once

#include "orlo/orlowin.h"
#include "orlo/report.h"

namespace ORLO {

/// For window procedures: `message` is the message that failed.
void report_in_window(const Exception& exception, HWND window, UINT message) noexcept;
void report_in_window(const ComError& error, HWND window, UINT message) noexcept;
void report_in_window(const std::exception& exception, HWND window, UINT message) noexcept;

/// The same for message loops.
void report_in_message(const Exception& exception, const MSG& message) noexcept;
void report_in_message(const ComError& error, const MSG& message) noexcept;
void report_in_message(const std::exception& exception, const MSG& message) noexcept;

}  // namespace ORLO
