// An export without a window over 2,000 entries, beside the pass of the reader alone.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "bench/interleaved.h"
#include "bench/uninstall_seed_win.h"
#include "start/windowless_export.h"

namespace {

constexpr char kPath[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
constexpr int kSubkeys = 2000;

/// What the sources stand on.
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

void pass_alone(const UninstallReader::Services& services) {
  UninstallReader reader(services);
  reader.start_pass();
  ORLO::wait_for(reader.done_event(), ORLO::kInfinite);
}

void export_to(const char* name, const UninstallReader::Services& services) {
  const WindowlessServices parts{.reader = services,
                                 .text_of = [](unsigned) { return String("Title"); },
                                 .host_name = "desk",
                                 .program_version = "5.3",
                                 .write_workbook = {},
                                 .open_output = {}};
  const String failure = export_without_window(name, parts);
  if (failure.empty()) return;
  std::printf("%s\n", failure.c_str());
  std::exit(1);
}

}  // namespace

int main() {
  seed_uninstall(kPath, kSubkeys);
  const Machine machine;
  const UninstallReader::Services services = machine.services();
  print_ratios("Export of 2,000 entries", {{"json", [&] { export_to("C:\\list.json", services); }},
                                           {"csv", [&] { export_to("C:\\list.csv", services); }},
                                           {"the pass alone", [&] { pass_alone(services); }}});
  return 0;
}
