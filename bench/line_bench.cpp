// Reading the lines of a text of 50 MB beside std::getline.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "bench/line_text.h"
#include "orlo/overlapped_file.h"
#include "orlo/read_line.h"
#include "orlo/sync_file.h"

namespace {

/// Made once, removed at the end.
class TextFile {
 public:
  TextFile() : path_((std::filesystem::temp_directory_path() / "zolvane-line-bench.txt").string()) {
    std::ofstream(path_, std::ios::binary) << text_of_lines(kLineBenchBytes, lines_);
  }
  ~TextFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;

  const char* path() const { return path_.c_str(); }
  size_t lines() const { return lines_; }

 private:
  const std::string path_;
  size_t lines_ = 0;
};

const TextFile& text_file() {
  static const TextFile file;
  return file;
}

template <typename File>
void BM_ReadLines(benchmark::State& state) {
  const TextFile& text = text_file();
  for (auto _ : state) {
    File file(text.path(), ORLO::kOpenExisting, ORLO::kShareReadWrite, ORLO::kSequentialScan);
    ORLO::LineBuffer line(1024);
    size_t lines = 0;
    while (ORLO::read_line(file, line) != -1)
      ++lines;
    if (lines != text.lines()) state.SkipWithError("wrong count of lines");
  }
}
BENCHMARK_TEMPLATE(BM_ReadLines, ORLO::OverlappedInFile)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_ReadLines, ORLO::SyncInFile)->Unit(benchmark::kMillisecond);

void BM_ReadLinesFloor(benchmark::State& state) {
  const TextFile& text = text_file();
  for (auto _ : state) {
    std::ifstream file(text.path(), std::ios::binary);
    std::string line;
    size_t lines = 0;
    while (std::getline(file, line))
      ++lines;
    if (lines != text.lines()) state.SkipWithError("wrong count of lines");
  }
}
BENCHMARK(BM_ReadLinesFloor)->Unit(benchmark::kMillisecond);

}  // namespace
