// The end of the process, as the main thread's message loop meets it.
#pragma once

namespace ORLO {

class ComObjects;

/// Begins the shut-down: no report appears any more, and no COM object is handed out. False, and
/// taken back, if COM objects are still alive: the message loop has to go on. `main_window` is the
/// one that should have gone by now; that it hasn't, or that the shut-down has begun before, is
/// reported all the same.
bool prepare_shutdown(ComObjects& objects, const void* main_window);

}  // namespace ORLO
