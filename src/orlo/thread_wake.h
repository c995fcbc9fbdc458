// How whoever stops a thread reaches it, whatever it is waiting for.
#pragma once

#include <atomic>

#include "orlo/thread.h"

namespace ORLO {

/// One for each thread of an active object, and one for all others together. Its fields are the
/// thread's own; others reach it only through the object whose thread it is.
struct ThreadWake {
  /// Set by each stop of the thread's object.
  Event wake_event;
  std::atomic<int> wake_count{0};
  /// Called by each stop, on the stopping thread, if there is one. Set before the thread's work
  /// begins, or not at all.
  void (*wake_function)(void* context) = nullptr;
  void* wake_context = nullptr;
};

ThreadWake& current_thread_wake();

}  // namespace ORLO
