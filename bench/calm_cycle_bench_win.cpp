// A refresh cycle that finds nothing changed, 5,000 entries, beside the registry pass that it
// makes: what the thread, the table, the difference and the waiting cost on top.
#include <windows.h>

#include <cstdio>

#include "bench/interleaved.h"
#include "bench/uninstall_seed_win.h"
#include "inventory/refresh_cycle.h"

namespace {

constexpr char kPath[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
constexpr int kSubkeys = 5000;

class SilentView : public InventoryView, public RefreshFrame {
 public:
  void clear_marks() override {}
  void begin_batch() override {}
  void applyEntry(const UninstallEntry&) override { ++changes; }
  void removeEntry(const RowKey&) override { ++changes; }
  void end_batch() noexcept override {}
  void forget_entries() override {}
  void begin_wait() override {}
  void end_wait() noexcept override {}
  void show_counts() override {}
  void show_failure(const String& text) override { std::printf("%s\n", text.c_str()); }
  void writeHistory() override {}
  void refreshed() override {}
  int changes = 0;
};

void pass_alone(Registry& registry, Files& files) {
  RegistryKey key;
  registry.open(kCurrentUser, kPath, kKeyRead, key);
  UninstallSource source(registry, files, ORLO::system_clock());
  std::set<RowKey> unseen;
  int rows = 0;
  source.readUninstallKey(kCurrentUser, key, unseen, false, [&](const Row&) { ++rows; });
  if (rows != kSubkeys) std::printf("%d rows\n", rows);
}

}  // namespace

int main() {
  seed_uninstall(kPath, kSubkeys);
  const auto registry = make_system_registry();
  const auto files = make_system_files();
  SilentView view;
  Table current(packageSchema());
  ORLO::CriticalSection list_lock;
  UninstallReader reader({*registry, *files, ORLO::system_clock(), false, [] {}});
  HistoryMerge history;
  RefreshCycle cycle({reader, current, history, list_lock, view, view, ORLO::system_clock()});
  cycle.requestRefresh();
  const int first = view.changes;
  print_ratios("Cycle that finds nothing changed, 5,000 subkeys",
               {{"zolvane", [&] { cycle.requestRefresh(); }},
                {"registry pass alone", [&] { pass_alone(*registry, *files); }}});
  if (view.changes != first) std::printf("%d changes\n", view.changes - first);
  return 0;
}
