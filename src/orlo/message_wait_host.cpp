#include <chrono>
#include <thread>

#include "orlo/message_wait.h"

namespace ORLO {

int wait_with_messages(Waitable* const* items, size_t count, uint32_t timeout) {
  const int result = wait_any(items, count, timeout);
  return result == kWaitTimeout ? kWaitTimedOut : result;
}

bool sleep_with_messages(uint32_t milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  return true;
}

bool try_enter_with_messages(CriticalSection& section) {
  section.enter();
  return true;
}

}  // namespace ORLO
