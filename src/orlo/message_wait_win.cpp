#include "orlo/message_wait.h"

#include <algorithm>

#include "orlo/exception.h"
#include "orlo/message_loop.h"
#include "orlo/thread_record.h"

namespace ORLO {
namespace {

constexpr uint32_t kRetryInterval = 100;
/// Messages dispatched between two looks at the handles, so that a queue that never runs empty
/// doesn't hide a signal.
constexpr int kBatch = 64;

/// A wait on the thread's stack. The outermost one puts a WM_QUIT that was met back on the queue.
class WaitScope {
 public:
  WaitScope() : record_(current_thread_record()), level_(record_.loop_level) {
    ++record_.wait_depth;
  }
  ~WaitScope() {
    if (--record_.wait_depth > 0 || !record_.quit_pending) return;
    record_.quit_pending = false;
    PostQuitMessage(record_.quit_code);
  }
  WaitScope(const WaitScope&) = delete;
  WaitScope& operator=(const WaitScope&) = delete;

  bool overtaken() const { return record_.loop_level != level_; }
  bool quitting() const { return record_.quit_pending; }
  void meet_quit(const MSG& message) {
    record_.quit_pending = true;
    record_.quit_code = static_cast<int>(message.wParam);
    ++record_.loop_level;
  }

 private:
  ThreadRecord& record_;
  const int level_;
};

class Deadline {
 public:
  explicit Deadline(uint32_t timeout) : timeout_(timeout), start_(GetTickCount64()) {}
  /// Milliseconds, or INFINITE.
  DWORD remaining() const {
    if (timeout_ == kInfinite) return INFINITE;
    const ULONGLONG passed = GetTickCount64() - start_;
    return passed < timeout_ ? static_cast<DWORD>(timeout_ - passed) : 0;
  }

 private:
  const uint32_t timeout_;
  const ULONGLONG start_;
};

enum class Drained { not_yet, empty, more, quit, overtaken };

Drained dispatch_batch(WaitScope& scope) {
  MSG message;
  for (int i = 0; i < kBatch; ++i) {
    if (!PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) return Drained::empty;
    if (message.message == WM_QUIT) {
      scope.meet_quit(message);
      return Drained::quit;
    }
    dispatch(message);
    if (scope.overtaken()) return scope.quitting() ? Drained::quit : Drained::overtaken;
  }
  return Drained::more;
}

enum class OnQuit { give_up, go_on };

/// A quit that has been met before the wait began, further out on the stack, counts for
/// OnQuit::give_up: no loop would end this wait any more. One that is met inside it always does.
int wait_pumping(Waitable* const* items, size_t count, uint32_t timeout, OnQuit on_quit) {
  HANDLE handles[MAXIMUM_WAIT_OBJECTS] = {};
  const auto used = static_cast<DWORD>(std::min<size_t>(count, MAXIMUM_WAIT_OBJECTS - 2));
  for (DWORD i = 0; i < used; ++i)
    handles[i] = items[i]->native();

  const Deadline deadline(timeout);
  WaitScope scope;
  // Messages that were there before the wait don't wake it, so they go first.
  Drained drained = Drained::not_yet;
  for (;;) {
    const DWORD patience = drained == Drained::empty ? deadline.remaining() : 0;
    const DWORD result = MsgWaitForMultipleObjects(used, handles, FALSE, patience, QS_ALLINPUT);
    if (result < WAIT_OBJECT_0 + used) return static_cast<int>(result - WAIT_OBJECT_0);
    if (result == WAIT_FAILED) throw LWE();
    if (on_quit == OnQuit::give_up && scope.quitting()) return kWaitQuit;
    if (drained != Drained::not_yet && deadline.remaining() == 0) return kWaitTimedOut;
    drained = dispatch_batch(scope);
    if (drained == Drained::quit) return kWaitQuit;
    if (drained == Drained::overtaken) return kWaitOvertaken;
  }
}

}  // namespace

int wait_with_messages(Waitable* const* items, size_t count, uint32_t timeout) {
  return wait_pumping(items, count, timeout, OnQuit::give_up);
}

int wait_for_all_with_messages(Waitable* const* items, size_t count, uint32_t timeout) {
  const Deadline deadline(timeout);
  for (size_t i = 0; i < count; ++i) {
    const int result = wait_with_messages(items + i, 1, deadline.remaining());
    if (result != 0) return result;
  }
  return 0;
}

bool wait_through_quit(Waitable& item, uint32_t timeout) {
  const Deadline deadline(timeout);
  // While this one stands, the waits inside it don't put the quit back.
  const WaitScope outermost;
  Waitable* const items[] = {&item};
  for (;;) {
    const int result = wait_pumping(items, 1, deadline.remaining(), OnQuit::go_on);
    if (result == 0 || result == kWaitTimedOut) return result == 0;
  }
}

bool sleep_with_messages(uint32_t milliseconds) {
  if (milliseconds == kInfinite) {
    run_message_loop();
    return false;
  }
  return wait_with_messages(nullptr, 0, milliseconds) == kWaitTimedOut;
}

bool try_enter_with_messages(CriticalSection& section) {
  while (!section.try_enter()) {
    if (!sleep_with_messages(kRetryInterval)) return false;
  }
  return true;
}

}  // namespace ORLO
