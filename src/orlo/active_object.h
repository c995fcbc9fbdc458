// An object with a thread of its own.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "orlo/thread.h"
#include "orlo/thread_wake.h"

namespace ORLO {

/// Created suspended: the owner starts the thread with resume() once the derived constructor is
/// through, and must stop it before the derived class's members die. A failure of Run ends in one
/// report and the exit code -1.
class ActiveObject {
 public:
  enum class WaitMode { none = 0, block = 1, pump = 2 };

  /// `name` must live as long as the object. `finish_event`, if any, is set when the thread ends.
  explicit ActiveObject(const char* name, Event* finish_event = nullptr);
  virtual ~ActiveObject() = default;
  ActiveObject(const ActiveObject&) = delete;
  ActiveObject& operator=(const ActiveObject&) = delete;

  void resume() { thread_->resume(); }
  /// True from the start of the thread to its end.
  bool running() const noexcept { return thread_->resumed() && !finished(); }
  /// Asks the thread to finish; with a wait mode also waits for its end, unless called on the
  /// thread itself or the thread was never resumed. A pumping wait puts off a WM_QUIT until it is
  /// through. True if the thread is known to have ended.
  bool stop(WaitMode mode = WaitMode::block, uint32_t timeout = kInfinite);

  const char* name() const noexcept { return name_; }
  bool stop_requested() const noexcept { return stop_requested_ != 0; }
  bool finished() const noexcept { return finished_; }
  /// -1 until Run has ended, and if it failed.
  int exit_code() const noexcept { return exit_code_; }
  Thread& thread() noexcept { return *thread_; }

 protected:
  /// Runs first on the new thread. If it fails, Run isn't called.
  virtual void Init() {}
  virtual int Run() = 0;
  /// Gets the thread out of its wait.
  virtual void FlushThread() = 0;
  virtual void OnFinished(int exit_code);
  /// Puts a new suspended thread in the place of one that has ended.
  void renew();

 private:
  class Reachable;
  int thread_main() noexcept;
  void wake();

  const char* const name_;
  Event* const finish_event_;
  std::atomic<int> stop_requested_{0};
  std::atomic<bool> finished_{false};
  std::atomic<int> exit_code_{-1};
  ThreadWake* wake_ =
      nullptr;  ///< guarded by a lock that all objects share; null while not running
  std::unique_ptr<Thread> thread_;
};

/// Woken out of its wait by an event.
class ActiveFinisher : public ActiveObject {
 public:
  using ActiveObject::ActiveObject;

 protected:
  void FlushThread() override { finish_signal_.set(); }
  Event& finish_signal() noexcept { return finish_signal_; }

 private:
  Event finish_signal_;
};

}  // namespace ORLO
