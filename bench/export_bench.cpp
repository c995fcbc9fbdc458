// 10,000 packages as CSV and as JSON lines, each beside a bare copy of its bytes through the same
// class of files.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "bench/inventory_rows.h"
#include "export/csv.h"
#include "export/json_lines.h"
#include "orlo/overlapped_file.h"

namespace {

constexpr int kRows = 10'000;

/// A file in the temporary folder for the scope of a bench.
class TargetFile {
 public:
  explicit TargetFile(const char* name)
      : path_(std::filesystem::temp_directory_path() / name), text_(path_.string()) {}
  ~TargetFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  TargetFile(const TargetFile&) = delete;
  TargetFile& operator=(const TargetFile&) = delete;
  const String& path() const { return text_; }
  std::string content() const {
    std::ostringstream bytes;
    bytes << std::ifstream(path_, std::ios::binary).rdbuf();
    return bytes.str();
  }

 private:
  const std::filesystem::path path_;
  const String text_;
};

std::vector<UninstallEntry> make_entries() {
  Table table(packageSchema());
  std::vector<Texts> all;
  all.reserve(kRows);
  for (int i = 0; i < kRows; ++i) {
    all.push_back(texts_of(i, false));
    // Not all is ASCII, and few texts have something to escape but the paths.
    if (i % 10 == 0) all.back()[27] = "M\xFCller & S\xF6hne";
    if (i % 20 == 0) all.back()[15] = "Says \"hello\"; and more";
  }
  fill(table, all);
  std::vector<UninstallEntry> entries;
  entries.reserve(kRows);
  for (const auto& [key, row] : table.rows)
    entries.push_back(UninstallEntry::fromRow(row));
  return entries;
}

ExportSheet make_sheet() {
  ExportSheetBuilder builder([](unsigned) { return String("Title"); }, ExportFilter());
  for (const UninstallEntry& entry : make_entries())
    builder.add(entry);
  return builder.take();
}

void write_json(const std::vector<UninstallEntry>& entries, const String& path) {
  ORLO::OverlappedOutFile file(path.c_str(), ORLO::kCreateAlways, ORLO::kShareRead, 0);
  JsonLines lines({"desk", {2026, 11, 0, 22, 9, 57, 8}, "5.3"}, ORLO::system_locale(), file);
  for (const UninstallEntry& entry : entries)
    lines.write(entry);
  lines.finish();
}

void copy_bytes(benchmark::State& state, const std::string& bytes, const String& path) {
  for (auto _ : state) {
    ORLO::OverlappedOutFile file(path.c_str(), ORLO::kCreateAlways, ORLO::kShareRead, 0);
    file.write(bytes.data(), bytes.size());
    if (!file.flush()) state.SkipWithError("not written");
  }
  state.counters["bytes"] = static_cast<double>(bytes.size());
}

void BM_WriteCsv(benchmark::State& state) {
  const ExportSheet sheet = make_sheet();
  const TargetFile file("zolvane-csv-bench.csv");
  for (auto _ : state)
    writeCsv(sheet, file.path());
}
// By the clock, as most of both is the writing.
BENCHMARK(BM_WriteCsv)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_CsvBytes(benchmark::State& state) {
  const TargetFile file("zolvane-csv-floor.csv");
  writeCsv(make_sheet(), file.path());
  copy_bytes(state, file.content(), file.path());
}
BENCHMARK(BM_CsvBytes)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_WriteJsonLines(benchmark::State& state) {
  const std::vector<UninstallEntry> entries = make_entries();
  const TargetFile file("zolvane-json-bench.json");
  for (auto _ : state)
    write_json(entries, file.path());
}
BENCHMARK(BM_WriteJsonLines)->Unit(benchmark::kMillisecond);

void BM_JsonBytes(benchmark::State& state) {
  const TargetFile file("zolvane-json-floor.json");
  write_json(make_entries(), file.path());
  copy_bytes(state, file.content(), file.path());
}
BENCHMARK(BM_JsonBytes)->Unit(benchmark::kMillisecond);

}  // namespace
