// A refresh cycle that finds nothing changed, 5,000 entries and 200 products, beside the calls of
// its sources: what the thread, the rows, the difference and the waiting cost on top.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <set>
#include <stdexcept>

#include "bench/interleaved.h"
#include "bench/uninstall_seed_win.h"
#include "inventory/refresh_cycle.h"
#include "inventory/wmi_hotfixes.h"
#include "platform/installer_seed_win.h"

namespace {

constexpr char kPath[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
constexpr int kSubkeys = 5000;
constexpr int kProducts = 200;

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

/// What the sources stand on, and what they have read before.
struct Machine {
  UninstallReader::Services services() const {
    return {*registry, *files, ORLO::system_clock(), *installer, *wmi, *accounts, system_version(),
            false,     [] {}};
  }

  const std::unique_ptr<Registry> registry = make_system_registry();
  const std::unique_ptr<Files> files = make_system_files();
  const std::unique_ptr<Installer> installer = make_system_installer();
  const std::unique_ptr<Wmi> wmi = make_system_wmi();
  const std::unique_ptr<Accounts> accounts = make_system_accounts();
};

void seed_products(InstallerSeed& seed) {
  try {
    for (int i = 0; i < kProducts; ++i) {
      seed.install({String::formatted("{5A0CE5ED-0000-4000-8000-%012d}", i).c_str(),
                    {{"ProductName", "Program"}, {"LocalPackage", "C:\\package.msi"}},
                    {{"Main", ""}, {"Help", "Main"}}});
    }
  } catch (const std::runtime_error& error) {
    std::printf("%s\n", error.what());
    std::exit(1);
  }
}

/// The sources that have something to tell here, their rows let go of. The others fail at their
/// first call.
void sources_alone(const Machine& machine, ReaderRows& rows) {
  const UninstallReader::Services services = machine.services();
  RegistryKey key;
  services.registry.open(kCurrentUser, kPath, kKeyRead, key);
  std::set<RowKey> unseen;
  int delivered = 0;
  const RowSink count = [&](const Row&) { ++delivered; };
  UninstallSource(services.registry, services.files, services.clock)
      .readUninstallKey(kCurrentUser, key, unseen, false, count);
  InstallerSource(services.registry, {services.installer, services.files, services.clock}, nullptr)
      .ReadMsiProducts(rows, unseen, count);
  ReadWmiHotfixes(services.wmi, services.clock, rows, unseen, count);
  if (delivered < kSubkeys + kProducts) std::printf("%d rows\n", delivered);
}

}  // namespace

int main() {
  seed_uninstall(kPath, kSubkeys);
  InstallerSeed seed;
  seed_products(seed);
  const Machine machine;
  SilentView view;
  Table current(packageSchema());
  ORLO::CriticalSection list_lock;
  UninstallReader reader(machine.services());
  HistoryMerge history;
  RefreshCycle cycle({reader, current, history, list_lock, view, view, ORLO::system_clock()});
  cycle.requestRefresh();
  const int first = view.changes;
  ReaderRows rows;
  print_ratios("Cycle that finds nothing changed, 5,000 subkeys and 200 products",
               {{"zolvane", [&] { cycle.requestRefresh(); }},
                {"calls of its sources alone", [&] { sources_alone(machine, rows); }}});
  if (view.changes != first) std::printf("%d changes\n", view.changes - first);
  return 0;
}
