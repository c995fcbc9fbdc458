#include "inventory/uninstall_source.h"

#include <cstring>
#include <iterator>
#include <vector>

#include "inventory/text_helpers.h"
#include "inventory/usage_cache.h"
#include "orlo/datetime.h"

namespace {

using Field = PackageColumn;

constexpr char kUsageCachePath[] =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Management\\ARPCache\\%s";

struct TextValue {
  const char* value;
  Field column;
};

constexpr TextValue kTextValues[] = {
    {"DisplayName", Field::displayName},
    {"DisplayVersion", Field::displayVersion},
    {"InstallLocation", Field::installLocation},
    {"ModifyPath", Field::modifyCmd},
    {"Comments", Field::comments},
    {"Publisher", Field::publisher},
    {"Contact", Field::contact},
    {"HelpLink", Field::helpURL},
    {"HelpTelephone", Field::helpPhone},
    {"URLInfoAbout", Field::aboutURL},
    {"URLUpdateInfo", Field::updateURL},
};

const char* source_name(int32_t root) {
  switch (root) {
    case kLocalMachine:
      return "HKLM Uninstall";
    case kCurrentUser:
      return "HKCU Uninstall";
    default:
      return "???";
  }
}

/// A package that hangs under another one is registered as "{GUID}.rest".
void split_subkey_name(const String& name, String& key_name, String& parent) {
  key_name = name;
  const char* text = name.c_str();
  if (*text != '{') return;
  const char* end = std::strstr(text, "}.");
  if (end == nullptr) return;
  parent.assign(text + 1, static_cast<size_t>(end - text - 1));
  key_name = end + 2;
}

/// In the runtime's asctime form, which the date parser reads back as local time.
String unix_time_text(uint32_t seconds, const ORLO::Clock& clock) {
  static constexpr const char* kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  static constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                            "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  ORLO::SystemTime utc;
  ORLO::to_system_time(ORLO::kUnixEpoch + ORLO::kFileTimePerSecond * seconds, utc);
  ORLO::SystemTime local = utc;
  clock.to_local(nullptr, utc, local);
  return String::formatted("%s %s %02d %02d:%02d:%02d %04d\n", kDays[local.wDayOfWeek % 7],
                           kMonths[(local.wMonth + 11) % 12], local.wDay, local.wHour,
                           local.wMinute, local.wSecond, local.wYear);
}

int32_t check_state(const String& installer_path, bool msi, bool no_remove,
                    const String& uninstall) {
  if (installer_path.empty() && !msi) return 0;
  if (no_remove) return -2;
  // Such a command would only open the installer's modify dialog.
  const bool needs_fixing = uninstall.empty() || std::strstr(uninstall.c_str(), " /I{") != nullptr;
  return msi && needs_fixing ? -1 : 1;
}

}  // namespace

/// What one subkey says and later steps may still change.
struct UninstallSource::Facts {
  String icon;
  String uninstall;
  int32_t size = -1;
};

UninstallSource::UninstallSource(Registry& registry, Files& files, const ORLO::Clock& clock)
    : registry_(registry), files_(files), clock_(clock) {}

void UninstallSource::readUninstallKey(int32_t root, const RegistryKey& key,
                                       std::set<RowKey>& unseenKeys, bool is64BitView,
                                       const RowSink& deliver) {
  const auto info = info_of(registry_, key);
  if (!info) return;
  std::vector<char> name(static_cast<size_t>(info->longest_subkey_name) + 1);
  // One row for all subkeys: what a subkey doesn't write stays from the one before it. Usage data
  // carry over that way.
  Row row = make_package_row();
  cell(row, Field::HKEY_ROOT).set_number(root);
  cell(row, Field::source).text = source_name(root);
  cell(row, Field::uninstallDate).text = "31.12.2099";
  cell(row, Field::is64Bit).set_number(is64BitView ? 1 : 0);
  for (uint32_t index = 0;; ++index) {
    auto length = static_cast<uint32_t>(name.size());
    if (registry_.subkey_at(key, index, name.data(), length) != kRegSuccess) return;
    if (!is_subkey_name(name.data(), length)) continue;
    const String subkey_name(name.data());
    RegistryKey subkey;
    if (registry_.open(key, name.data(), kKeyQueryValue, subkey) != kRegSuccess) continue;
    Facts facts;
    read_subkey(subkey, subkey_name, facts, row);
    subkey.close();
    read_usage_cache(subkey_name, facts, row);
    cell(row, Field::size).set_number(facts.size);
    cell(row, Field::uninstallCmd).text = facts.uninstall;
    cell(row, Field::displayIcon).text = facts.icon;
    const String path = installer_path(facts, cell(row, Field::modifyCmd).text);
    cell(row, Field::installerPath).text = path;
    cell(row, Field::OK)
        .set_number(check_state(path, cell(row, Field::MSI).integer() != 0,
                                cell(row, Field::noRemove).integer() != 0, facts.uninstall));
    deliver_row(row, deliver, unseenKeys);
  }
}

void UninstallSource::read_subkey(const RegistryKey& subkey, const String& name, Facts& facts,
                                  Row& row) {
  const auto info = info_of(registry_, subkey);
  values_.read(subkey, info ? &*info : nullptr);
  String parent = values_.text("ParentKeyName");
  split_subkey_name(name, cell(row, Field::keyName).text, parent);
  cell(row, Field::name).text = name;
  cell(row, Field::parent).text = parent;
  cell(row, Field::parentName).text = values_.text("ParentDisplayName");
  for (const TextValue& text : kTextValues)
    cell(row, text.column).text = values_.text(text.value);
  facts.icon = values_.text("DisplayIcon");
  facts.uninstall = values_.text("UninstallString");
  facts.size = values_.number_or("EstimatedSize", -1);
  cell(row, Field::MSI).set_number(values_.number_or("WindowsInstaller", 0));
  cell(row, Field::noRemove).set_number(values_.number_or("NoRemove", 0));
  cell(row, Field::noModify).set_number(values_.number_or("NoModify", 0));
  cell(row, Field::systemComponent).set_number(values_.number_or("SystemComponent", 0));
  cell(row, Field::installDate).text = install_date(info);
}

String UninstallSource::install_date(const std::optional<Registry::KeyInfo>& info) const {
  DateTime date;
  String raw;
  uint32_t seconds = 0;
  if (values_.dword("InstallDate", seconds)) {
    date.parse(unix_time_text(seconds, clock_).c_str(), clock_);
  } else {
    raw = values_.text("InstallDate");
  }
  if (date.empty() && info) date = local_date(info->last_write, clock_);
  return MergeDateText(raw, date, clock_);
}

void UninstallSource::read_usage_cache(const String& name, Facts& facts, Row& row) {
  RegistryKey key;
  const String path = String::formatted(kUsageCachePath, name);
  if (registry_.open(kLocalMachine, path.c_str(), kKeyRead, key) != kRegSuccess) return;
  char data[kUsageRecordSize] = {};
  auto size = static_cast<uint32_t>(sizeof data);
  uint32_t type = 0;
  if (registry_.value(key, "SlowInfoCache", type, data, size) != kRegSuccess) return;
  const auto record = decode_usage_record(data, size, clock_);
  if (!record) return;
  if (record->size_kb) facts.size = *record->size_kb;
  if (record->main_file && !icon_exists(facts.icon, files_)) facts.icon = *record->main_file;
  if (record->last_use) cell(row, Field::lastUseDate).text = *record->last_use;
  if (record->frequency) cell(row, Field::frequency).set_number(*record->frequency);
}

String UninstallSource::installer_path(const Facts& facts, const String& modify) {
  String path;
  if (!facts.uninstall.empty()) path = ResolveCommandLine(facts.uninstall, files_).path;
  if (path.empty() && !modify.empty()) path = ResolveCommandLine(modify, files_).path;
  return path;
}
