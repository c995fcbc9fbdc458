// Waits that keep the calling thread's windows alive. On a build machine, which has no windows,
// they only wait. Chosen at link time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "orlo/thread.h"

namespace ORLO {

/// The wait was given up because the program is to quit.
inline constexpr int kWaitQuit = -1;
inline constexpr int kWaitTimedOut = 0x102;

/// Waits for any of `items` (at most 62): the index of the first one that is signalled,
/// kWaitTimedOut or kWaitQuit. When the program is to quit, all waits on the stack are given up,
/// and the message loop around the outermost one learns of it when that one has returned.
int wait_with_messages(Waitable* const* items, size_t count, uint32_t timeout);

/// False if the sleep was given up because the program is to quit.
bool sleep_with_messages(uint32_t milliseconds);

/// Enters the section, trying again and again while messages flow; false, and not entered, if the
/// program is to quit meanwhile.
bool try_enter_with_messages(CriticalSection& section);

}  // namespace ORLO
