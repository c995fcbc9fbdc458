#include "inventory/history_merge.h"

#include "inventory/package_schema.h"

namespace {

constexpr uint32_t kNew = 0xFFFFFFFF;

}  // namespace

HistoryMerge::HistoryMerge()
    : lastEntries(packageSchema()), tracked_(trackedColumns(lastEntries)) {}

void HistoryMerge::forget() {
  historyLoaded_ = false;
  lastEntries.clear_rows();
}

void HistoryMerge::mark(Row& row) {
  if (!historyLoaded_) return;
  const auto known = lastEntries.rows.find(lastEntries.key_of(row));
  const uint32_t changed =
      known == lastEntries.rows.end() ? kNew : changeMask(row, known->second, tracked_);
  if (changed == 0) return;
  cell(row, PackageColumn::changed).set_number(static_cast<int32_t>(changed));
  anyChange_ = true;
}

bool HistoryMerge::end_cycle(const Table& inventory) {
  lastEntries.assign(inventory);
  const bool worth_keeping = anyChange_ || !historyLoaded_;
  historyLoaded_ = true;
  return worth_keeping;
}
