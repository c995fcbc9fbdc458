#include "inventory/source_rows.h"

#include <cstring>
#include <string>

#include "inventory/text_helpers.h"
#include "orlo/locale.h"

void deliver_row(const Row& row, const RowSink& deliver, std::set<RowKey>& unseenKeys) {
  deliver(row);
  unseenKeys.erase(packageSchema().key_of(row));
}

Row make_source_row(const String& source) {
  Row row = make_package_row();
  cell(row, PackageColumn::source).text = source;
  cell(row, PackageColumn::size).set_number(-1);
  return row;
}

bool icon_exists(const String& icon, Files& files) {
  if (icon.empty()) return false;
  const IconSpec spec = SplitIconSpec(icon, files);
  const char* path = spec.path.c_str();
  return files.can_open(String(path, path + std::strcspn(path, ",")).c_str());
}

bool is_subkey_name(const char* name, uint32_t length) {
  if (length == 0 || std::strlen(name) != length) return false;
  if (std::strchr(name, '\\') == nullptr) return true;
  // In some code pages it is the second byte of a character.
  return ORLO::system_locale().widen(name, length).find(u'\\') == std::u16string::npos;
}

std::optional<Registry::KeyInfo> info_of(Registry& registry, const RegistryKey& key) {
  Registry::KeyInfo info;
  if (registry.info(key, info) != kRegSuccess) return std::nullopt;
  return info;
}

DateTime local_date(ORLO::FileTime time, const ORLO::Clock& clock) {
  DateTime date;
  ORLO::FileTime local = 0;
  if (clock.to_local(time, local) && !ORLO::to_system_time(local, date.time)) date.clear();
  return date;
}
