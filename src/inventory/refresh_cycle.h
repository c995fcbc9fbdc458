// One refresh of the list: a pass of the reader, then the differences, row by row.
#pragma once

#include "inventory/entry.h"
#include "inventory/history_merge.h"
#include "inventory/reader.h"
#include "inventory/table.h"
#include "orlo/message_wait.h"

/// Takes what a refresh brings, on the main thread.
class InventoryView {
 public:
  virtual ~InventoryView() = default;
  /// The change marks of the last cycle are gone.
  virtual void clear_marks() = 0;
  /// The next changes, up to end_batch, are one batch for the eye.
  virtual void begin_batch() = 0;
  virtual void applyEntry(const UninstallEntry& entry) = 0;
  virtual void removeEntry(const RowKey& key) = 0;
  virtual void end_batch() noexcept = 0;
};

/// What shows, around the list, that a refresh goes on and how it ended.
class RefreshFrame {
 public:
  virtual ~RefreshFrame() = default;
  /// Every entry goes.
  virtual void forget_entries() = 0;
  virtual void begin_wait() = 0;
  virtual void end_wait() noexcept = 0;
  virtual void show_counts() = 0;
  /// Returns when the user has read it.
  virtual void show_failure(const String& text) = 0;
  /// The baseline has moved on and is worth keeping for the next run.
  virtual void writeHistory() = 0;
  /// The list is up to date.
  virtual void refreshed() = 0;
};

/// Lives on the main thread.
class RefreshCycle {
 public:
  /// Waits while windows stay alive; as ORLO::wait_with_messages.
  using Wait = int (*)(ORLO::Waitable* const* items, size_t count, uint32_t timeout);
  struct Parts {
    UninstallReader& reader;
    Table& currentTable;
    HistoryMerge& history;
    ORLO::CriticalSection& listLock;  ///< held while a cycle runs
    InventoryView& view;
    RefreshFrame& frame;
    const ORLO::Clock& clock;
  };

  /// All parts must outlive the cycle.
  explicit RefreshCycle(const Parts& parts, Wait wait = &ORLO::wait_with_messages);

  /// Runs a cycle, and returns when the reader is idle again and the view up to date. While one is
  /// running, and after end(), the request is only counted. If the program is told to quit
  /// meanwhile, the cycle is abandoned with nothing handed over.
  void requestRefresh();
  /// Forgets all that is known, the baseline too, and runs a cycle; while one is running, another
  /// one follows it, as the rows that it has read by now are forgotten too. Only that one has all
  /// rows and makes a baseline of them. After end() only counted.
  void requestAfresh();
  /// Counts a request that can't run yet. Its run, when the time has come, is one of the two below,
  /// which count nothing: several requests may have become one by then.
  void note_request() noexcept { ++refresh_count_; }
  void run_noted();
  void run_noted_afresh();
  bool refreshing() const noexcept { return refreshing_; }
  /// The last cycle was given up, as the program is to go.
  bool abandoned() const noexcept { return abandoned_; }
  unsigned refreshCount() const noexcept { return refresh_count_; }
  /// From here on no cycle starts; one that runs goes on to its end.
  void end() noexcept { ended_ = true; }

 private:
  void forget();
  bool run_whole();
  bool run();
  bool run_locked();
  bool revive_reader();
  bool wait_for_pass();
  void apply(Table& difference);
  void keep_baseline();

  const Parts parts_;
  const Wait wait_;
  unsigned refresh_count_ = 0;
  bool refreshing_ = false;
  bool abandoned_ = false;
  bool ended_ = false;
  bool afresh_due_ = false;
  bool forgetting_ = false;  ///< somebody waits for the list, to forget what it has
};
