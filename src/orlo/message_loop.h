// What happens to each message before a window gets it.
#pragma once

#include "orlo/orlowin.h"

namespace ORLO {

/// No failure passes it, each one is reported. Hands a message to the thread's hooks, then to a
/// window that claims it as a key of its own, then to the keyboard handling of the dialog it
/// belongs to, and last to its window.
void dispatch(MSG& message);

/// Offers a key to its window and, upwards, to its parents, up to a modal dialog. True if one of
/// them has claimed it.
bool translate(MSG& message);

/// Lets the dialogs of this thread claim keys (see translate) while the system's own loop for
/// modal dialogs runs. Does nothing the second time.
void filter_dialog_keys();

/// Dispatches messages until the thread is told to quit; returns the exit code it was told. On the
/// main thread that begins the process's shut-down, unless COM objects keep the loop going.
int run_message_loop();

/// What the main thread does when its last message loop or dialog has ended; see shutdown.h.
bool prepare_shutdown();

}  // namespace ORLO
