// What the process sets up at its start, before anything can fail.
#pragma once

namespace ORLO {

/// Puts the filter for processor exceptions in place, which also gets the C++ exceptions that
/// nobody catches, and makes tolerated failures throw. With `handle_out_of_memory` an allocation
/// that fails throws SDKException(14).
void install_exception_handling(bool handle_out_of_memory);

/// Leaves the console's events to the system and makes the standard streams binary.
void prepare_console();

/// The filter's part of it. Chosen at link time; does nothing the second time.
void install_exception_filter();

}  // namespace ORLO
