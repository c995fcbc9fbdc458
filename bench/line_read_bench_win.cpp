// Reading the lines of a text of 50 MB beside a floor that reads the same blocks in the same
// way, overlapped into two buffers, and looks at none.
#include <windows.h>

#include <cstdio>
#include <string>

#include "bench/interleaved.h"
#include "bench/line_text.h"
#include "orlo/overlapped_file.h"
#include "orlo/owned_handle.h"
#include "orlo/read_line.h"

namespace {

constexpr size_t kBlock = 4096;

struct FileTraits {
  using Handle = HANDLE;
  static Handle invalid() noexcept { return INVALID_HANDLE_VALUE; }
  static void close(Handle handle) noexcept { CloseHandle(handle); }
};
using OwnedFile = ORLO::OwnedHandle<FileTraits>;

std::string path;
size_t lines = 0;
size_t bytes = 0;

void write_text() {
  char folder[MAX_PATH] = "";
  GetTempPathA(MAX_PATH, folder);
  path = std::string(folder) + "zolvane-line-bench.txt";
  const std::string text = text_of_lines(kLineBenchBytes, lines);
  bytes = text.size();
  const OwnedFile file(
      CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  DWORD written = 0;
  WriteFile(file.get(), text.data(), static_cast<DWORD>(bytes), &written, nullptr);
  if (written != bytes) std::printf("can't write the text\n");
}

void product_lines() {
  ORLO::OverlappedInFile file(path.c_str(), ORLO::kOpenExisting, ORLO::kShareReadWrite,
                              ORLO::kSequentialScan);
  ORLO::LineBuffer line(1024);
  size_t count = 0;
  while (ORLO::read_line(file, line) != -1)
    ++count;
  if (count != lines) std::printf("%u lines\n", static_cast<unsigned>(count));
}

OwnedFile open_text(DWORD flags) {
  return OwnedFile(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                               nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN | flags, nullptr));
}

DWORD arrived = 0;
bool pending = false;

void CALLBACK completed(DWORD, DWORD count, OVERLAPPED*) {
  arrived = count;
  pending = false;
}

void overlapped_floor() {
  const OwnedFile file = open_text(FILE_FLAG_OVERLAPPED);
  static char buffers[2][kBlock];
  OVERLAPPED request = {};
  size_t total = 0;
  for (int current = 0;; current = 1 - current) {
    pending = true;
    if (!ReadFileEx(file.get(), buffers[current], kBlock, &request, &completed)) break;
    while (pending)
      SleepEx(INFINITE, TRUE);
    if (arrived == 0) break;
    total += arrived;
    request.Offset += arrived;
  }
  if (total != bytes) std::printf("%u bytes\n", static_cast<unsigned>(total));
}

}  // namespace

int main() {
  write_text();
  print_ratios("Lines of 50 MB",
               {{"zolvane", &product_lines}, {"floor: the same blocks", &overlapped_floor}});
  DeleteFileA(path.c_str());
  return 0;
}
