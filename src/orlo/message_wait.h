// Waits that keep the calling thread's windows alive. On a build machine, which has no windows,
// they only wait. Chosen at link time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "orlo/thread.h"

namespace ORLO {

/// The wait was given up because the program is to quit.
inline constexpr int kWaitQuit = -1;
/// The wait was given up because a message loop inside it has ended.
inline constexpr int kWaitOvertaken = -2;
inline constexpr int kWaitTimedOut = 0x102;

/// Waits for any of `items` (at most 62): the index of the first one that is signalled,
/// kWaitTimedOut, kWaitQuit or kWaitOvertaken. When the program is to quit, all waits on the stack
/// are given up, as is each one that begins before the outermost one has returned, unless its item
/// is signalled already. The message loop around that one learns of it then.
int wait_with_messages(Waitable* const* items, size_t count, uint32_t timeout);

/// Waits until each of `items` has been signalled, not necessarily at one time: 0, kWaitTimedOut,
/// kWaitQuit or kWaitOvertaken.
int wait_for_all_with_messages(Waitable* const* items, size_t count, uint32_t timeout);

/// As wait_with_messages for what has to be waited for in any case, as the end of a thread: a quit
/// met on the way is put off until then. False on time-out.
bool wait_through_quit(Waitable& item, uint32_t timeout);

/// False if the sleep was given up. Without end (kInfinite) it is a message loop of its own.
bool sleep_with_messages(uint32_t milliseconds);

/// Enters the section, trying again and again while messages flow; false, and not entered, if the
/// wait for that was given up.
bool try_enter_with_messages(CriticalSection& section);

/// Holds a section for a scope; messages flow while it is waited for.
class LockWithMessages {
 public:
  explicit LockWithMessages(CriticalSection& section)
      : section_(section), held_(try_enter_with_messages(section)) {}
  ~LockWithMessages() {
    if (held_) section_.leave();
  }
  LockWithMessages(const LockWithMessages&) = delete;
  LockWithMessages& operator=(const LockWithMessages&) = delete;

  /// False, with nothing held, if the wait was given up.
  explicit operator bool() const noexcept { return held_; }

 private:
  CriticalSection& section_;
  const bool held_;
};

}  // namespace ORLO
