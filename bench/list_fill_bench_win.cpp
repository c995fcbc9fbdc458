// From the start of the process to the filled list, split into its parts, over 2,000 entries; the
// filling beside a bare list view that is filled with its drawing frozen.
// Usage: list_fill_bench PROGRAM, in a prefix of its own: it writes 2,000 Uninstall keys.
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "bench/bare_list_win.h"
#include "bench/interleaved.h"
#include "bench/uninstall_seed_win.h"
#include "inventory/reader.h"
#include "inventory/reader_test_support.h"
#include "orlo/orlowin.h"
#include "view/list_model.h"
#include "view/sys_list.h"

namespace {

constexpr char kUninstall[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
constexpr int kEntries = 2000;

void seed() {
  for (int i = 0; i < kEntries; ++i) {
    const std::string number = std::to_string(i);
    const std::string path = std::string(kUninstall) + "\\Bench" + number;
    HKEY key = nullptr;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                        &key, nullptr) != 0) {
      continue;
    }
    set_text(key, "DisplayName", "Program " + number);
    set_text(key, "DisplayVersion", "1.0." + number);
    set_text(key, "Publisher", "Vendor " + std::to_string(i % 50));
    set_text(key, "InstallDate", std::to_string(20000101 + (i * 37) % 200000));
    set_text(key, "UninstallString", "\"C:\\windows\\system32\\msiexec.exe\" /x " + number);
    RegCloseKey(key);
  }
}

void fill_model(ListModel& model, HWND list, const Table& difference) {
  {
    model.begin_batch();
    model.clear();
    for (const auto& [key, row] : difference.rows)
      model.applyEntry(UninstallEntry::fromRow(row));
    model.end_batch();
  }
  UpdateWindow(list);
}

BOOL CALLBACK find_list(HWND window, LPARAM result) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  auto* wanted = reinterpret_cast<std::pair<DWORD, HWND>*>(result);
  if (process != wanted->first) return TRUE;
  if (const HWND list = GetDlgItem(window, 1001)) wanted->second = list;
  return wanted->second == nullptr;
}

/// Milliseconds from the creation of the process to a list with all entries.
double start_to_filled(const char* program) {
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process = {};
  std::string command = std::string(program) + " -eng -nopersist -noupdate";
  const auto start = std::chrono::steady_clock::now();
  if (CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                     &startup, &process) == FALSE) {
    std::printf("can't start %s\n", program);
    std::exit(1);
  }
  std::pair<DWORD, HWND> found(process.dwProcessId, nullptr);
  std::chrono::duration<double, std::milli> took{};
  do {
    if (found.second == nullptr) EnumWindows(&find_list, reinterpret_cast<LPARAM>(&found));
    if (WaitForSingleObject(process.hProcess, 1) == WAIT_OBJECT_0) std::exit(1);
    took = std::chrono::steady_clock::now() - start;
  } while (took.count() < 60000 && (found.second == nullptr ||
                                    SendMessageA(found.second, LVM_GETITEMCOUNT, 0, 0) < kEntries));
  PostMessageA(GetParent(found.second), WM_CLOSE, 0, 0);
  WaitForSingleObject(process.hProcess, 60000);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return took.count();
}

double median_of(const std::function<double()>& measure) {
  std::vector<double> times;
  times.reserve(kRuns);
  for (int i = 0; i < kRuns; ++i)
    times.push_back(measure());
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

double timed(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
      .count();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  seed();
  InitCommonControls();
  const HWND parent =
      CreateWindowExA(0, "STATIC", "bench", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 640, 480,
                      nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
  const HWND product_list = make_list(parent);
  const HWND bare_list = make_list(parent);
  SysListControl control(product_list);
  ListModel model(control, CellTexts());
  const auto registry = make_system_registry();
  // The Uninstall keys alone: the other sources have nothing to tell.
  MemorySystem system;
  UninstallReader reader(system.over(*registry, false));

  std::unique_ptr<const Table> difference;
  double difference_time = 0;
  const double pass = median_of([&] {
    reader.rows().clear();
    Table current(packageSchema());
    const double took = timed([&] {
      reader.start_pass();
      ORLO::wait_for(reader.done_event(), ORLO::kInfinite);
    });
    difference_time = timed([&] { difference = reader.rows().hand_over(current); });
    return took;
  });
  print_ratios("Filling the list with 2,000 entries",
               {{"zolvane", [&] { fill_model(model, product_list, *difference); }},
                {"floor: bare list view, frozen", [&] { fill_bare(bare_list, kEntries); }}});
  const double filling = timed([&] { fill_model(model, product_list, *difference); });
  const double total = median_of([&] { return start_to_filled(argv[1]); });
  std::printf("Process start to filled list, 2,000 entries: %.0f ms\n", total);
  std::printf("  pass %.0f ms, difference %.1f ms, filling %.1f ms, start (the rest) %.0f ms\n",
              pass, difference_time, filling, total - pass - difference_time - filling);
  return 0;
}
