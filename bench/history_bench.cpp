// What the memory of the last run costs a start with 10,000 packages: its file, and the comparison.
#include <benchmark/benchmark.h>

#include <filesystem>

#include "bench/inventory_rows.h"
#include "inventory/history_merge.h"
#include "persist/history.h"

namespace {

constexpr int kRows = 10'000;

/// One row in a hundred is another one where `changed` is set.
void fill_inventory(Table& table, bool changed) {
  std::vector<Texts> all;
  all.reserve(kRows);
  for (int i = 0; i < kRows; ++i)
    all.push_back(texts_of(i, changed && i % 100 == 0));
  fill(table, all);
}

/// A file in the temporary folder for the scope of a bench.
class TemporaryFile {
 public:
  explicit TemporaryFile(const char* name)
      : path_(std::filesystem::temp_directory_path() / name), text_(path_.string()) {}
  ~TemporaryFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  const String& path() const { return text_; }

 private:
  const std::filesystem::path path_;
  const String text_;
};

void BM_WriteHistory(benchmark::State& state) {
  Table table(packageSchema());
  fill_inventory(table, false);
  const TemporaryFile file("zolvane-write-history-bench.xml");
  for (auto _ : state)
    write_history(table, file.path());
}
BENCHMARK(BM_WriteHistory)->Unit(benchmark::kMillisecond);

void BM_ReadHistory(benchmark::State& state) {
  Table table(packageSchema());
  fill_inventory(table, false);
  const TemporaryFile file("zolvane-read-history-bench.xml");
  write_history(table, file.path());
  for (auto _ : state) {
    Table read_again(packageSchema());
    if (!read_history(file.path(), read_again) || read_again.size() != kRows)
      state.SkipWithError("not all was read");
  }
}
BENCHMARK(BM_ReadHistory)->Unit(benchmark::kMillisecond);

/// As in the first cycle of a run, where every row is in the difference.
void mark_all(benchmark::State& state, HistoryMerge& history, Table& difference) {
  int marked = 0;
  for (auto& [key, row] : difference.rows) {
    row.cells.back() = Cell();
    history.mark(row);
    marked += row.cells.back().value != 0 ? 1 : 0;
  }
  if (marked != kRows / 100) state.SkipWithError("wrong marks");
}

void BM_DifferenceAndMarks(benchmark::State& state) {
  Table inventory(packageSchema());
  const Table& nothing = packageSchema();
  HistoryMerge history;
  fill_inventory(history.lastEntries, false);
  fill_inventory(inventory, true);
  history.loaded();
  for (auto _ : state) {
    Table difference(inventory, nothing);
    mark_all(state, history, difference);
  }
}
BENCHMARK(BM_DifferenceAndMarks)->Unit(benchmark::kMillisecond);

void BM_Marks(benchmark::State& state) {
  Table inventory(packageSchema());
  HistoryMerge history;
  fill_inventory(history.lastEntries, false);
  fill_inventory(inventory, true);
  history.loaded();
  for (auto _ : state)
    mark_all(state, history, inventory);
}
BENCHMARK(BM_Marks)->Unit(benchmark::kMillisecond);

}  // namespace
