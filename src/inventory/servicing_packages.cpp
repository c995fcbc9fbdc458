#include "inventory/servicing_packages.h"

#include <cstring>
#include <optional>
#include <vector>

#include "inventory/text_helpers.h"

namespace {

using Field = PackageColumn;

constexpr char kPackagesPath[] =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Component Based Servicing\\Packages";
/// What a package is named after that was given no name of its own.
constexpr char kAnonymous[] = "update.mum";

String display_name(const String& install_name, const char* key_name) {
  String name = install_name;
  if (std::strcmp(install_name.c_str(), kAnonymous) == 0)
    name.printf("%s - %#s", key_name, install_name);
  name.replace("~", " ");
  return name;
}

/// `info` is the package's.
String install_date(const ValueSet& values, const std::optional<Registry::KeyInfo>& info,
                    const ORLO::Clock& clock) {
  DateTime date;
  uint32_t low = 0;
  uint32_t high = 0;
  if (values.dword("InstallTimeLow", low) && values.dword("InstallTimeHigh", high)) {
    date = local_date(ORLO::FileTime{high} << 32 | low, clock);
  }
  if (date.empty() && info) date = local_date(info->last_write, clock);
  return MergeDateText(String(), date, clock);
}

}  // namespace

ServicingPackagesSource::ServicingPackagesSource(Registry& registry, Accounts& accounts,
                                                 const ORLO::Clock& clock)
    : registry_(registry), clock_(clock), sid_names_(accounts) {}

bool ServicingPackagesSource::ReadServicingPackages(std::set<RowKey>& unseenKeys,
                                                    const RowSink& deliver) {
  RegistryKey packages;
  if (registry_.open(kLocalMachine, kPackagesPath, kKeyRead | kKeyWow64_64, packages) !=
      kRegSuccess) {
    return false;
  }
  const auto info = info_of(registry_, packages);
  if (!info) return true;
  std::vector<char> name(size_t{info->longest_subkey_name} + 1);
  // One row for all packages: each writes the same cells.
  Row row = make_source_row(String());
  for (uint32_t index = 0;; ++index) {
    auto length = static_cast<uint32_t>(name.size());
    if (registry_.subkey_at(packages, index, name.data(), length) != kRegSuccess) return true;
    if (!is_subkey_name(name.data(), length)) continue;
    RegistryKey package;
    if (registry_.open(packages, name.data(), kKeyQueryValue, package) != kRegSuccess) continue;
    read_package(package, name.data(), row);
    package.close();
    deliver_row(row, deliver, unseenKeys);
  }
}

void ServicingPackagesSource::read_package(const RegistryKey& package, const char* name, Row& row) {
  const auto info = info_of(registry_, package);
  values_.read(package, info ? &*info : nullptr);
  cell(row, Field::source).text = values_.text("InstallClient");
  cell(row, Field::name).text = name;
  cell(row, Field::displayName).text = display_name(values_.text("InstallName"), name);
  cell(row, Field::installLocation).text = values_.text("InstallLocation");
  cell(row, Field::user).text = sid_names_.SidToUserName(values_.text("InstallUser"));
  cell(row, Field::installDate).text = install_date(values_, info, clock_);
}
