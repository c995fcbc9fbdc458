// The platform's end of the exception filter.
#pragma once

#include "orlo/orlowin.h"

namespace ORLO {

/// Decides about an exception; `window`, or without one the thread's main window, owns the boxes.
/// One of EXCEPTION_CONTINUE_SEARCH, EXCEPTION_EXECUTE_HANDLER and EXCEPTION_CONTINUE_EXECUTION.
LONG exception_filter(EXCEPTION_POINTERS* pointers, HWND window) noexcept;

/// The process's filter for exceptions that nobody handles.
LONG WINAPI last_chance_filter(EXCEPTION_POINTERS* pointers);

}  // namespace ORLO
