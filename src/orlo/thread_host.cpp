#include "orlo/thread.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace ORLO {
namespace {

// One lock and one condition serve every event and thread end: waits for several items at once
// need no registration, and a build machine has few of them.
std::mutex& wait_mutex() {
  static std::mutex mutex;
  return mutex;
}

std::condition_variable& wait_condition() {
  static std::condition_variable condition;
  return condition;
}

}  // namespace

struct CriticalSection::Impl {
  std::recursive_mutex mutex;
};

CriticalSection::CriticalSection() : impl_(std::make_unique<Impl>()) {}
CriticalSection::~CriticalSection() = default;
void CriticalSection::enter() noexcept {
  impl_->mutex.lock();
}
bool CriticalSection::try_enter() noexcept {
  return impl_->mutex.try_lock();
}
void CriticalSection::leave() noexcept {
  impl_->mutex.unlock();
}

/// Guarded by wait_mutex().
struct Event::Impl {
  bool signalled = false;
};

Event::Event() : impl_(std::make_unique<Impl>()) {}
Event::~Event() = default;

void Event::set() noexcept {
  const std::lock_guard<std::mutex> hold(wait_mutex());
  impl_->signalled = true;
  wait_condition().notify_all();
}

void Event::reset() noexcept {
  const std::lock_guard<std::mutex> hold(wait_mutex());
  impl_->signalled = false;
}

void* Event::native() const noexcept {
  return nullptr;
}

bool Event::try_take() noexcept {
  return std::exchange(impl_->signalled, false);
}

struct Thread::Impl {
  std::function<int()> body;
  std::thread thread;
  std::atomic<bool> resumed{false};
  std::atomic<std::thread::id> id{};  ///< set by the thread itself
  bool ended = false;                 ///< guarded by wait_mutex()
};

Thread::Thread(std::function<int()> body) : impl_(std::make_unique<Impl>()) {
  impl_->body = std::move(body);
}

Thread::~Thread() {
  if (impl_->thread.joinable()) impl_->thread.join();
}

void Thread::resume() {
  if (impl_->resumed.exchange(true)) return;
  impl_->thread = std::thread([impl = impl_.get()] {
    impl->id = std::this_thread::get_id();
    impl->body();
    const std::lock_guard<std::mutex> hold(wait_mutex());
    impl->ended = true;
    wait_condition().notify_all();
  });
}

bool Thread::resumed() const noexcept {
  return impl_->resumed;
}

bool Thread::is_current() const noexcept {
  return impl_->id.load() == std::this_thread::get_id();
}

void* Thread::native() const noexcept {
  return nullptr;
}

bool Thread::try_take() noexcept {
  return impl_->ended;
}

int wait_any(Waitable* const* items, size_t count, uint32_t timeout) {
  std::unique_lock<std::mutex> hold(wait_mutex());
  int taken = kWaitTimeout;
  const auto take_first = [&] {
    for (size_t i = 0; i < count; ++i) {
      if (items[i]->try_take()) {
        taken = static_cast<int>(i);
        return true;
      }
    }
    return false;
  };
  if (timeout == kInfinite) {
    wait_condition().wait(hold, take_first);
  } else {
    wait_condition().wait_for(hold, std::chrono::milliseconds(timeout), take_first);
  }
  return taken;
}

}  // namespace ORLO
