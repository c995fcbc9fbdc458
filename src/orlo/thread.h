// Thread primitives, chosen at link time: thread_win.cpp or thread_host.cpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

namespace ORLO {

inline constexpr uint32_t kInfinite = 0xFFFFFFFF;

/// A recursive lock.
class CriticalSection {
 public:
  CriticalSection();
  ~CriticalSection();
  CriticalSection(const CriticalSection&) = delete;
  CriticalSection& operator=(const CriticalSection&) = delete;

  void enter() noexcept;
  bool try_enter() noexcept;
  void leave() noexcept;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// Holds a CriticalSection for its scope.
class Lock {
 public:
  explicit Lock(CriticalSection& section) noexcept : section_(section) { section_.enter(); }
  ~Lock() { section_.leave(); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

 private:
  CriticalSection& section_;
};

/// Something that a thread can wait for: an event, or the end of a thread.
class Waitable {
 public:
  virtual ~Waitable() = default;
  /// The platform's handle; null on a build machine.
  virtual void* native() const noexcept = 0;

 protected:
  friend int wait_any(Waitable* const* items, size_t count, uint32_t timeout);
  /// True if it is signalled; takes the signal of an auto-reset event.
  virtual bool try_take() noexcept = 0;
};

/// An auto-reset event, not signalled at first.
class Event : public Waitable {
 public:
  Event();
  ~Event() override;
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;

  void set() noexcept;
  void reset() noexcept;
  void* native() const noexcept override;

 protected:
  bool try_take() noexcept override;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// A thread that is created suspended; what its body returns is its exit code. Joined by its
/// destructor if it was resumed; a thread that was never resumed never runs.
class Thread : public Waitable {
 public:
  explicit Thread(std::function<int()> body);
  ~Thread() override;
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;

  /// Starts the thread; does nothing the second time.
  void resume();
  bool resumed() const noexcept;
  /// True on the thread itself.
  bool is_current() const noexcept;
  void* native() const noexcept override;

 protected:
  bool try_take() noexcept override;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

inline constexpr int kWaitTimeout = -1;

/// Waits for any of `items` (at most 63): the index of the first one that is signalled, or
/// kWaitTimeout. An auto-reset event is reset by the wait that it ends.
int wait_any(Waitable* const* items, size_t count, uint32_t timeout);

/// True if `item` was signalled within the time.
inline bool wait_for(Waitable& item, uint32_t timeout) {
  Waitable* items[] = {&item};
  return wait_any(items, 1, timeout) == 0;
}

}  // namespace ORLO
