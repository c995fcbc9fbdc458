// Reading the update service's log of 50 MB, in which one line of a hundred tells of a success,
// beside a floor that reads its lines and looks at none.
#include <windows.h>

#include <cstdio>
#include <set>
#include <string>

#include "bench/interleaved.h"
#include "bench/line_text.h"
#include "inventory/update_log.h"
#include "orlo/owned_handle.h"
#include "orlo/read_line.h"
#include "orlo/sync_file.h"

namespace {

constexpr size_t kLinesOfSuccess = 100;
constexpr char kMoment[] = "2011-09-09\t07:00:31:000\t 992\ta4\t";
constexpr char kSuccess[] =
    "Report\tREPORT EVENT: {00000000-0000-0000-0000-000000000000}\t2011-09-09 "
    "07:00:31:000+0000\t1\t183\t101\t{00000000-0000-0000-0000-000000000000}\t200\t0\t"
    "AutomaticUpdates\tSuccess\tContent Install\tInstallation Successful: Windows successfully "
    "installed the following update: Security Update for some product (KB";
constexpr char kOther[] =
    "Agent\t  * Title = what else a log has to tell, such as \"Installation Failure: Windows "
    "failed "
    "to install the following update with error\" and the like, in many words and in few of them.";

struct FileTraits {
  using Handle = HANDLE;
  static Handle invalid() noexcept { return INVALID_HANDLE_VALUE; }
  static void close(Handle handle) noexcept { CloseHandle(handle); }
};
using OwnedFile = ORLO::OwnedHandle<FileTraits>;

std::string path;
size_t lines = 0;
size_t successes = 0;

std::string log_text() {
  std::string text;
  text.reserve(kLineBenchBytes + sizeof kMoment + sizeof kSuccess);
  for (lines = 0; text.size() < kLineBenchBytes; ++lines) {
    text += kMoment;
    if (lines % kLinesOfSuccess == 0) {
      text.append(kSuccess).append(std::to_string(lines)).append(")");
      ++successes;
    } else {
      text.append(kOther, 20 + lines * 7919 % 140);
    }
    text += "\r\n";
  }
  return text;
}

void write_log() {
  char folder[MAX_PATH] = "";
  GetTempPathA(MAX_PATH, folder);
  path = std::string(folder) + "zolvane-update-log-bench.log";
  const std::string text = log_text();
  const OwnedFile file(
      CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  DWORD written = 0;
  WriteFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
  if (written != text.size()) std::printf("can't write the log\n");
}

void product_log() {
  std::set<RowKey> unseen;
  size_t rows = 0;
  ReadUpdateLog(path, ORLO::system_clock(), unseen, [&rows](const Row&) { ++rows; });
  if (rows != successes) std::printf("%u rows\n", static_cast<unsigned>(rows));
}

void lines_alone() {
  ORLO::SyncInFile file(path.c_str(), ORLO::kOpenExisting, ORLO::kShareReadWrite,
                        ORLO::kSequentialScan);
  ORLO::LineBuffer line(1024);
  size_t count = 0;
  while (ORLO::read_line(file, line) != -1)
    ++count;
  if (count != lines) std::printf("%u lines\n", static_cast<unsigned>(count));
}

}  // namespace

int main() {
  write_log();
  print_ratios("Update log of 50 MB, 1 % successes",
               {{"zolvane", &product_log}, {"floor: its lines alone", &lines_alone}});
  DeleteFileA(path.c_str());
  return 0;
}
