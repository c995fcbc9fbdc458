#include "orlo/active_object.h"

#include <exception>

#include "orlo/com_error.h"
#include "orlo/message_wait.h"
#include "orlo/report.h"

namespace ORLO {
namespace {

/// Runs one step of a thread's life; every failure ends here, in one report. False if it failed.
template <typename Step>
bool guarded(const Step& step) noexcept {
  try {
    step();
    return true;
  } catch (const BreakException&) {
    return false;
  } catch (const Exception& exception) {
    report_exception(exception, nullptr);
  } catch (const ComError& error) {
    report_com_error(error, nullptr);
  } catch (const std::exception& exception) {
    report_std_exception(exception, nullptr);
  } catch (...) {
    // Not left to the last-chance filter, after which the process ends: the owner of the object
    // may go on without its thread.
    report_exception(Exception(), nullptr);
  }
  return false;
}

// A plain pointer: the target's runtime frees a thread's variables before it runs their
// destructors.
thread_local ThreadWake* own_wake = nullptr;

CriticalSection& reach_lock() {
  static CriticalSection section;
  return section;
}

}  // namespace

ThreadWake& current_thread_wake() {
  static ThreadWake of_the_rest;
  return own_wake != nullptr ? *own_wake : of_the_rest;
}

/// Lets stop() reach the running thread for a scope.
class ActiveObject::Reachable {
 public:
  explicit Reachable(ActiveObject& object) : object_(object) {
    own_wake = &wake_;
    set(&wake_);
  }
  ~Reachable() {
    set(nullptr);
    own_wake = nullptr;
  }
  Reachable(const Reachable&) = delete;
  Reachable& operator=(const Reachable&) = delete;

 private:
  void set(ThreadWake* wake) noexcept {
    const Lock hold(reach_lock());
    object_.wake_ = wake;
  }
  ActiveObject& object_;
  ThreadWake wake_;
};

ActiveObject::ActiveObject(const char* name, Event* finish_event)
    : name_(name), finish_event_(finish_event) {
  renew();
}

void ActiveObject::renew() {
  thread_ = std::make_unique<Thread>([this] { return thread_main(); });
  exit_code_ = -1;
  finished_ = false;
}

int ActiveObject::thread_main() noexcept {
  const Reachable reachable(*this);
  int result = -1;
  if (guarded([this] { Init(); })) {
    if (!guarded([&] { result = Run(); })) result = -1;
    guarded([&] { OnFinished(result); });
  }
  finished_ = true;
  return result;
}

void ActiveObject::OnFinished(int exit_code) {
  exit_code_ = exit_code;
  finished_ = true;
  if (finish_event_ != nullptr) finish_event_->set();
}

void ActiveObject::wake() {
  const Lock hold(reach_lock());
  if (wake_ == nullptr) return;
  ++wake_->wake_count;
  wake_->wake_event.set();
  if (wake_->wake_function != nullptr) wake_->wake_function(wake_->wake_context);
}

bool ActiveObject::stop(WaitMode mode, uint32_t timeout) {
  ++stop_requested_;
  wake();
  FlushThread();
  if (mode == WaitMode::none || thread_->is_current() || !thread_->resumed()) return finished();
  return mode == WaitMode::block ? wait_for(*thread_, timeout)
                                 : wait_through_quit(*thread_, timeout);
}

}  // namespace ORLO
