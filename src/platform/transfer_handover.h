// A transfer between two threads: one waits for the server for as long as the system lets it, the
// other gives what comes to the caller and can leave at any time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "orlo/thread.h"

/// Shared by both threads, and owned by both, as either may be the last.
class TransferHandover {
 public:
  /// How a transfer has ended, with an error if it has failed.
  struct End {
    std::optional<uint32_t> error;
  };
  /// What has come since the last time.
  struct Arrival {
    std::optional<int> length;  ///< what the server has told; never after the first bytes
    std::string bytes;
    std::optional<End> end;  ///< nothing comes after it
  };

  // The fetching thread's side.

  void announce(int length) noexcept;
  /// Waits while there is much that hasn't been taken. False once the other side has left: nothing
  /// more is wanted.
  bool give(const char* block, size_t size);
  void finish(End end) noexcept;

  // The caller's side.

  /// Waits for something; none once someone has left.
  std::optional<Arrival> take();
  /// Safe on any thread, and more than once. A take() that waits comes back.
  void leave() noexcept;

 private:
  static constexpr size_t kMostWaiting = size_t{64} * 1024;

  ORLO::CriticalSection lock_;
  // Under lock_:
  Arrival waiting_;
  bool news_ = false;
  bool left_ = false;
  // Each wakes one side, which then looks at the above.
  ORLO::Event for_caller_;
  ORLO::Event for_fetcher_;
};
