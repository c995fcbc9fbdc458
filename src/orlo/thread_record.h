// What the window system's part of the foundation remembers per thread.
#pragma once

#include <type_traits>

#include "orlo/orlowin.h"

namespace ORLO {

/// Sees each message before it is dispatched; a true result ends the matter. Links are owned by
/// whoever puts them in, and taken out before they die.
struct MessageHook {
  MessageHook* next;
  void* context;
  bool (*function)(void* context, MSG& message);
};

/// Needs no destructor: the target's runtime frees a thread's variables before it would run it.
struct ThreadRecord {
  /// The window whose end ends the thread's message loop.
  HWND _hmainwnd = nullptr;
  /// Grows whenever a message loop or a wait has met WM_QUIT; the waits around it notice by it
  /// that they were overtaken.
  int loop_level = 0;
  /// Shown over all of the thread's windows while it is set.
  HCURSOR cursor = nullptr;
  MessageHook* message_hooks = nullptr;
  /// The message that dispatch() has in hand.
  const MSG* dispatched = nullptr;
  /// Pumping waits on the stack since the innermost modal dialog began.
  int wait_depth = 0;
  /// A WM_QUIT that a wait took off the queue and that its outermost one puts back.
  bool quit_pending = false;
  int quit_code = 0;
  /// The system takes it out when the thread ends.
  HHOOK key_filter = nullptr;
};
static_assert(std::is_trivially_destructible_v<ThreadRecord>);

/// The calling thread's record.
ThreadRecord& current_thread_record() noexcept;

}  // namespace ORLO
