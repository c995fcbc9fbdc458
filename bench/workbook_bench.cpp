// Workbooks of 10,000 rows beside the least that their bytes ask for.
#include <benchmark/benchmark.h>

#include <functional>
#include <string_view>

#include "bench/export_rows.h"
#include "export/yexcel/document.h"

namespace {

using bench::CountingStorage;
using bench::inventory;

constexpr int kRows = 10'000;

/// The same cells as a document has them.
void fill(YExcel::Document& document, const ExportSheet& sheet) {
  document.New(1);
  YExcel::Sheet& to = *document.SheetAt(0);
  for (size_t row = 0; row < sheet.rows.size(); ++row) {
    for (size_t column = 0; column < sheet.rows[row].size(); ++column)
      to.CellAt(row, column)->SetText(sheet.rows[row][column]);
  }
}

void BM_WorkbookStream(benchmark::State& state) {
  const ExportSheet sheet = inventory(kRows);
  CountingStorage storage;
  YExcel::Document document(storage);
  fill(document, sheet);
  size_t size = 0;
  for (auto _ : state)
    size = document.stream().size();
  state.counters["bytes"] = static_cast<double>(size);
}
BENCHMARK(BM_WorkbookStream)->Unit(benchmark::kMillisecond);

/// All from the sheet of texts on.
void BM_WriteWorkbook(benchmark::State& state) {
  const ExportSheet sheet = inventory(kRows);
  CountingStorage storage;
  for (auto _ : state) {
    if (writeWorkbook(sheet, "a.xls", storage) != 0) state.SkipWithError("not written");
  }
}
BENCHMARK(BM_WriteWorkbook)->Unit(benchmark::kMillisecond);

/// The same bytes, record by record, and a hash of each text.
void BM_WorkbookFloor(benchmark::State& state) {
  const ExportSheet sheet = inventory(kRows);
  CountingStorage storage;
  YExcel::Document document(storage);
  fill(document, sheet);
  const std::string whole = document.stream();
  for (auto _ : state) {
    size_t hashes = 0;
    for (const auto& row : sheet.rows) {
      for (const String& text : row)
        hashes += std::hash<std::string_view>()({text.c_str(), text.length()});
    }
    benchmark::DoNotOptimize(hashes);
    std::string buffer;
    buffer.reserve(whole.size());
    for (size_t at = 0; at < whole.size();) {
      const size_t length = static_cast<uint8_t>(whole[at + 2]) +
                            size_t{256} * static_cast<uint8_t>(whole[at + 3]) + 4;
      buffer.append(whole, at, length);
      at += length;
    }
    benchmark::DoNotOptimize(buffer);
  }
}
BENCHMARK(BM_WorkbookFloor)->Unit(benchmark::kMillisecond);

}  // namespace
