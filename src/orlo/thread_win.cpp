#include "orlo/thread.h"

#include <windows.h>

#include <atomic>
#include <utility>

#include "orlo/exception.h"
#include "orlo/kernel_handles.h"

namespace ORLO {

struct CriticalSection::Impl {
  CRITICAL_SECTION section;
};

CriticalSection::CriticalSection() : impl_(std::make_unique<Impl>()) {
  InitializeCriticalSection(&impl_->section);
}
CriticalSection::~CriticalSection() {
  DeleteCriticalSection(&impl_->section);
}
void CriticalSection::enter() noexcept {
  EnterCriticalSection(&impl_->section);
}
bool CriticalSection::try_enter() noexcept {
  return TryEnterCriticalSection(&impl_->section) != FALSE;
}
void CriticalSection::leave() noexcept {
  LeaveCriticalSection(&impl_->section);
}

struct Event::Impl {
  OwnedKernelHandle handle{CreateEventA(nullptr, FALSE, FALSE, nullptr)};
};

Event::Event() : impl_(std::make_unique<Impl>()) {
  if (!impl_->handle) throw LWE();
}
Event::~Event() = default;
void Event::set() noexcept {
  SetEvent(impl_->handle.get());
}
void Event::reset() noexcept {
  ResetEvent(impl_->handle.get());
}
void* Event::native() const noexcept {
  return impl_->handle.get();
}
bool Event::try_take() noexcept {
  return WaitForSingleObject(impl_->handle.get(), 0) == WAIT_OBJECT_0;
}

struct Thread::Impl {
  std::function<int()> body;
  OwnedKernelHandle handle;
  DWORD id = 0;
  std::atomic<bool> resumed{false};
  std::atomic<bool> abandoned{false};

  static DWORD WINAPI enter(void* parameter) {
    auto* impl = static_cast<Impl*>(parameter);
    return impl->abandoned ? 0 : static_cast<DWORD>(impl->body());
  }
};

Thread::Thread(std::function<int()> body) : impl_(std::make_unique<Impl>()) {
  impl_->body = std::move(body);
  impl_->handle.reset(
      CreateThread(nullptr, 0, &Impl::enter, impl_.get(), CREATE_SUSPENDED, &impl_->id));
  if (!impl_->handle) throw LWE();
}

Thread::~Thread() {
  // A thread that never ran is let through without its body, so that it leaves nothing behind.
  if (!impl_->resumed) {
    impl_->abandoned = true;
    ResumeThread(impl_->handle.get());
  }
  WaitForSingleObject(impl_->handle.get(), INFINITE);
}

void Thread::resume() {
  if (impl_->resumed.exchange(true)) return;
  ResumeThread(impl_->handle.get());
}

bool Thread::resumed() const noexcept {
  return impl_->resumed;
}
bool Thread::is_current() const noexcept {
  return GetCurrentThreadId() == impl_->id;
}
void* Thread::native() const noexcept {
  return impl_->handle.get();
}
bool Thread::try_take() noexcept {
  return WaitForSingleObject(impl_->handle.get(), 0) == WAIT_OBJECT_0;
}

int wait_any(Waitable* const* items, size_t count, uint32_t timeout) {
  HANDLE handles[MAXIMUM_WAIT_OBJECTS] = {};
  const size_t used = count < MAXIMUM_WAIT_OBJECTS ? count : MAXIMUM_WAIT_OBJECTS;
  for (size_t i = 0; i < used; ++i)
    handles[i] = items[i]->native();
  const DWORD result = WaitForMultipleObjects(static_cast<DWORD>(used), handles, FALSE, timeout);
  if (result < WAIT_OBJECT_0 + used) return static_cast<int>(result - WAIT_OBJECT_0);
  if (result == WAIT_FAILED) throw LWE();
  return kWaitTimeout;
}

}  // namespace ORLO
