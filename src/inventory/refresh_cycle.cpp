#include "inventory/refresh_cycle.h"

#include <memory>

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

}  // namespace

RefreshCycle::RefreshCycle(UninstallReader& reader, Table& currentTable, InventoryView& view,
                           const ORLO::Clock& clock, Wait wait)
    : reader_(reader), current_table_(currentTable), view_(view), clock_(clock), wait_(wait) {}

bool RefreshCycle::run() {
  reader_.start_pass();
  view_.clear_marks();
  while (reader_.pass_running() || reader_.data_changed()) {
    // Each pass ends in a signal. One that comes late, after the next pass was asked for, only
    // makes for a round more.
    if (!wait_(reader_.done_event(), ORLO::kInfinite)) return false;
    if (const std::unique_ptr<const Table> difference = reader_.hand_over(current_table_)) {
      apply(*difference);
    }
  }
  return true;
}

void RefreshCycle::apply(const Table& difference) {
  if (difference.size() == 0) return;
  const Batch batch(view_);
  for (const auto& [key, row] : difference.rows) {
    if (row.marker == Row::kRemoved) {
      view_.removeEntry(key);
    } else {
      view_.applyEntry(UninstallEntry::fromRow(row, clock_));
    }
  }
}
