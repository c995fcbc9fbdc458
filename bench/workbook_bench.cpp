// Workbooks of 10,000 rows beside the least that their bytes ask for.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>

#include "bench/export_rows.h"
#include "export/yexcel/document.h"

namespace {

using bench::CountingStorage;
using bench::inventory;

constexpr int kRows = 10'000;

/// A file that goes with the program.
class ScratchFile {
 public:
  ~ScratchFile() { std::remove(path_.c_str()); }

  /// Writes it, or replaces it, in one call.
  bool write(std::string_view bytes) const {
    const std::unique_ptr<std::FILE, decltype(&std::fclose)> file(std::fopen(path_.c_str(), "wb"),
                                                                  &std::fclose);
    if (file == nullptr || std::setvbuf(file.get(), nullptr, _IONBF, 0) != 0) return false;
    return std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
  }

 private:
  const std::string path_ =
      std::filesystem::temp_directory_path() / ("zolvane_bench." + std::to_string(getpid()));
};

bool write_file(std::string_view bytes) {
  static const ScratchFile file;
  return file.write(bytes);
}

/// Its stream is the file.
class FileStorage final : public CompoundStorage {
 public:
  std::unique_ptr<CompoundFile> create(const char16_t* /*path*/, StorageStatus& status) override {
    status = 0;
    return std::make_unique<File>();
  }

 private:
  struct Stream final : StorageStream {
    StorageStatus write(const void* data, size_t size) override {
      return write_file({static_cast<const char*>(data), size}) ? 0 : -1;
    }
  };
  struct File final : CompoundFile {
    StorageStatus create_stream(const char16_t* /*name*/) override { return 0; }
    StorageStatus commit() override { return 0; }
    std::unique_ptr<StorageStream> open_stream(const char16_t* /*name*/,
                                               StorageStatus& status) override {
      status = 0;
      return std::make_unique<Stream>();
    }
  };
};

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

/// All from the sheet of texts to a closed file.
void BM_WriteWorkbook(benchmark::State& state) {
  const ExportSheet sheet = inventory(kRows);
  FileStorage storage;
  for (auto _ : state) {
    if (writeWorkbook(sheet, "a.xls", storage) != 0) state.SkipWithError("not written");
  }
}
BENCHMARK(BM_WriteWorkbook)->Unit(benchmark::kMillisecond);

std::string stream_of(const ExportSheet& sheet) {
  CountingStorage storage;
  YExcel::Document document(storage);
  fill(document, sheet);
  return document.stream();
}

std::string_view view(const String& text) {
  return {text.c_str(), text.length()};
}

/// The same bytes, record by record.
std::string copied_by_records(const std::string& whole) {
  std::string buffer;
  buffer.reserve(whole.size());
  for (size_t at = 0; at < whole.size();) {
    const size_t length =
        static_cast<uint8_t>(whole[at + 2]) + size_t{256} * static_cast<uint8_t>(whole[at + 3]) + 4;
    buffer.append(whole, at, length);
    at += length;
  }
  return buffer;
}

/// What a workbook can't do without: each text is hashed once to find those that repeat, and the
/// same bytes are put together record by record and go to a file in one call.
void BM_WorkbookFloor(benchmark::State& state) {
  const ExportSheet sheet = inventory(kRows);
  const std::string whole = stream_of(sheet);
  for (auto _ : state) {
    std::unordered_set<std::string_view> texts;
    for (const auto& row : sheet.rows) {
      for (const String& text : row)
        if (!text.empty()) texts.insert(view(text));
    }
    benchmark::DoNotOptimize(texts);
    if (!write_file(copied_by_records(whole))) state.SkipWithError("not written");
  }
}
BENCHMARK(BM_WorkbookFloor)->Unit(benchmark::kMillisecond);

/// Barer still: hashes that find nothing, and no file.
void BM_WorkbookHashesAndBytes(benchmark::State& state) {
  const ExportSheet sheet = inventory(kRows);
  const std::string whole = stream_of(sheet);
  for (auto _ : state) {
    size_t hashes = 0;
    for (const auto& row : sheet.rows) {
      for (const String& text : row)
        hashes += std::hash<std::string_view>()(view(text));
    }
    benchmark::DoNotOptimize(hashes);
    benchmark::DoNotOptimize(copied_by_records(whole));
  }
}
BENCHMARK(BM_WorkbookHashesAndBytes)->Unit(benchmark::kMillisecond);

}  // namespace
