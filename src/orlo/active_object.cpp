#include "orlo/active_object.h"

#include <exception>

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
  } catch (const std::exception& exception) {
    report_std_exception(exception, nullptr);
  }
  return false;
}

}  // namespace

bool wait_pumping(Waitable& item, uint32_t timeout) {
  Waitable* items[] = {&item};
  return wait_with_messages(items, 1, timeout) == 0;
}

ActiveObject::ActiveObject(const char* name, Event* finish_event)
    : name_(name), finish_event_(finish_event), thread_([this] { thread_main(); }) {}

void ActiveObject::thread_main() noexcept {
  if (!guarded([this] { Init(); })) {
    finished_ = true;
    return;
  }
  int result = -1;
  if (!guarded([&] { result = Run(); })) result = -1;
  guarded([&] { OnFinished(result); });
}

void ActiveObject::OnFinished(int exit_code) {
  exit_code_ = exit_code;
  finished_ = true;
  if (finish_event_ != nullptr) finish_event_->set();
}

bool ActiveObject::stop(WaitMode mode, uint32_t timeout) {
  ++stop_requested_;
  FlushThread();
  if (mode == WaitMode::none || thread_.is_current() || !thread_.resumed()) return finished();
  return mode == WaitMode::block ? wait_for(thread_, timeout) : wait_pumping(thread_, timeout);
}

}  // namespace ORLO
