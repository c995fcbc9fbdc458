#include <chrono>
#include <thread>

#include "orlo/message_wait.h"

namespace ORLO {

int wait_with_messages(Waitable* const* items, size_t count, uint32_t timeout) {
  const int result = wait_any(items, count, timeout);
  return result == kWaitTimeout ? kWaitTimedOut : result;
}

int wait_for_all_with_messages(Waitable* const* items, size_t count, uint32_t timeout) {
  const auto start = std::chrono::steady_clock::now();
  for (size_t i = 0; i < count; ++i) {
    const auto passed = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - start);
    const bool over = passed.count() >= int64_t{timeout};
    const uint32_t left = timeout == kInfinite ? kInfinite
                          : over               ? 0
                                               : timeout - static_cast<uint32_t>(passed.count());
    const int result = wait_with_messages(items + i, 1, left);
    if (result != 0) return result;
  }
  return 0;
}

bool wait_through_quit(Waitable& item, uint32_t timeout) {
  return wait_for(item, timeout);
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
