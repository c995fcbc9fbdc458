// The memory that the largest workbook takes while it is written, by the size of its file. A
// program of its own: the system tells a process's peak only.
#include <sys/resource.h>

#include <cstdio>

#include "bench/export_rows.h"

namespace {

double peak_bytes() {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return 1024.0 * static_cast<double>(usage.ru_maxrss);
}

}  // namespace

int main() {
  const ExportSheet sheet = bench::inventory(static_cast<int>(kMostWorkbookRows));
  bench::CountingStorage storage;
  const double before = peak_bytes();
  if (writeWorkbook(sheet, "a.xls", storage) != 0) return 1;
  const double taken = peak_bytes() - before;
  const auto file = static_cast<double>(storage.written);
  constexpr double kMostByFile = 4;
  std::printf(
      "workbook of 65,535 rows: file %.1f MB, memory to write it %.1f MB, ratio %.2f, bar %.1f "
      "%s\n",
      file / 1e6, taken / 1e6, taken / file, kMostByFile,
      taken <= kMostByFile * file ? "holds" : "MISSED");
  return 0;
}
