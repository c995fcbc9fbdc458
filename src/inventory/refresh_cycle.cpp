#include "inventory/refresh_cycle.h"

#include <memory>
#include <utility>

namespace {

class Batch {
 public:
  explicit Batch(InventoryView& view) : view_(view) { view_.begin_batch(); }
  ~Batch() { view_.end_batch(); }
  Batch(const Batch&) = delete;
  Batch& operator=(const Batch&) = delete;

 private:
  InventoryView& view_;
};

class WaitShown {
 public:
  explicit WaitShown(RefreshFrame& frame) : frame_(frame) { frame_.begin_wait(); }
  ~WaitShown() { frame_.end_wait(); }
  WaitShown(const WaitShown&) = delete;
  WaitShown& operator=(const WaitShown&) = delete;

 private:
  RefreshFrame& frame_;
};

class Flagged {
 public:
  explicit Flagged(bool& flag) : flag_(flag) { flag_ = true; }
  ~Flagged() { flag_ = false; }
  Flagged(const Flagged&) = delete;
  Flagged& operator=(const Flagged&) = delete;

 private:
  bool& flag_;
};

}  // namespace

RefreshCycle::RefreshCycle(const Parts& parts, Wait wait) : parts_(parts), wait_(wait) {}

void RefreshCycle::requestRefresh() {
  note_request();
  run_noted();
}

void RefreshCycle::run_noted() {
  if (refreshing_ || ended_) return;
  const Flagged refreshing(refreshing_);
  afresh_due_ = false;
  abandoned_ = false;
  bool finished = run_whole();
  while (finished && !ended_ && std::exchange(afresh_due_, false)) {
    forget();
    finished = run_whole();
  }
  abandoned_ = !finished;
  if (finished) parts_.frame.refreshed();
}

void RefreshCycle::requestAfresh() {
  note_request();
  run_noted_afresh();
}

void RefreshCycle::run_noted_afresh() {
  // Who waits already to forget forgets this, too.
  if (forgetting_) return;
  // What is forgotten now wouldn't come again.
  if (!ended_) forget();
  afresh_due_ = true;
  run_noted();
}

/// Does nothing if the program is told to quit before the list is free.
void RefreshCycle::forget() {
  const Flagged forgetting(forgetting_);
  const ORLO::LockWithMessages held(parts_.listLock);
  if (!held) return;
  parts_.frame.forget_entries();
  parts_.history.forget();
  parts_.currentTable.clear_rows();
  parts_.reader.rows().clear();
}

/// A cycle and what it has to tell. False if it was abandoned.
bool RefreshCycle::run_whole() {
  if (!run()) return false;
  const String failure = parts_.reader.error_text();
  if (!failure.empty()) parts_.frame.show_failure(failure);
  keep_baseline();
  return true;
}

void RefreshCycle::keep_baseline() {
  // Rows have been forgotten meanwhile: what is left is no state of the machine.
  if (afresh_due_) return;
  if (parts_.history.end_cycle(parts_.currentTable)) parts_.frame.writeHistory();
}

/// False if the cycle was abandoned.
bool RefreshCycle::run() {
  const WaitShown shown(parts_.frame);
  const ORLO::LockWithMessages held(parts_.listLock);
  return static_cast<bool>(held) && run_locked();
}

bool RefreshCycle::run_locked() {
  UninstallReader& reader = parts_.reader;
  if (!revive_reader()) return false;
  reader.start_pass();
  parts_.view.clear_marks();
  parts_.history.begin_cycle();
  while (reader.pass_running() || reader.rows().changed()) {
    // Each pass ends in a signal. One that comes late, after the next pass was asked for, only
    // makes for a round more.
    if (!wait_for_pass() || reader.cut_short()) return false;
    if (const std::unique_ptr<Table> difference = reader.rows().hand_over(parts_.currentTable)) {
      apply(*difference);
    }
  }
  parts_.frame.show_counts();
  return true;
}

/// A reader that was lost may still be showing why. False if the wait for that was given up.
bool RefreshCycle::revive_reader() {
  if (!parts_.reader.lost()) return true;
  ORLO::Waitable* const items[] = {&parts_.reader.thread()};
  int result = ORLO::kWaitOvertaken;
  while (result == ORLO::kWaitOvertaken)
    result = wait_(items, 1, ORLO::kInfinite);
  if (result != 0) return false;
  parts_.reader.revive();
  return true;
}

/// False if the program is to quit.
bool RefreshCycle::wait_for_pass() {
  ORLO::Waitable* const items[] = {&parts_.reader.done_event(), &parts_.reader.thread()};
  const int result = wait_(items, 2, ORLO::kInfinite);
  if (result == 1) parts_.reader.accept_loss();
  return result != ORLO::kWaitQuit;
}

void RefreshCycle::apply(Table& difference) {
  if (difference.size() == 0) return;
  const Batch batch(parts_.view);
  for (auto& [key, row] : difference.rows) {
    if (row.marker == Row::kRemoved) {
      parts_.view.removeEntry(key);
    } else {
      parts_.history.mark(row);
      parts_.view.applyEntry(UninstallEntry::fromRow(row, parts_.clock));
    }
  }
}
