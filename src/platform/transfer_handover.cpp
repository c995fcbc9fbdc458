#include "platform/transfer_handover.h"

#include <utility>

void TransferHandover::announce(int length) noexcept {
  const ORLO::Lock lock(lock_);
  waiting_.length = length;
  news_ = true;
  for_caller_.set();
}

bool TransferHandover::give(const char* block, size_t size) {
  for (;;) {
    {
      const ORLO::Lock lock(lock_);
      if (left_) return false;
      if (waiting_.bytes.size() < kMostWaiting) {
        waiting_.bytes.append(block, size);
        if (!std::exchange(news_, true)) for_caller_.set();
        return true;
      }
    }
    ORLO::wait_for(for_fetcher_, ORLO::kInfinite);
  }
}

void TransferHandover::finish(End end) noexcept {
  const ORLO::Lock lock(lock_);
  waiting_.end = end;
  news_ = true;
  for_caller_.set();
}

std::optional<TransferHandover::Arrival> TransferHandover::take() {
  for (;;) {
    {
      const ORLO::Lock lock(lock_);
      if (left_) return std::nullopt;
      if (std::exchange(news_, false)) {
        for_fetcher_.set();
        return std::exchange(waiting_, {});
      }
    }
    ORLO::wait_for(for_caller_, ORLO::kInfinite);
  }
}

void TransferHandover::leave() noexcept {
  const ORLO::Lock lock(lock_);
  left_ = true;
  for_caller_.set();
  for_fetcher_.set();
}
