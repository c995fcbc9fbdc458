#include "inventory/wmi_hotfixes.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <vector>

#include "orlo/datetime.h"

namespace {

using Field = PackageColumn;

constexpr char kQuery[] = "SELECT * FROM Win32_QuickFixEngineering";
constexpr char kNamespace[] = "ROOT/CIMV2";

struct Property {
  const char* name;
  String QfeRecord::*field;
};

constexpr Property kProperties[] = {
    {"Caption", &QfeRecord::Caption},
    {"Description", &QfeRecord::Description},
    {"FixComments", &QfeRecord::FixComments},
    {"HotFixID", &QfeRecord::HotFixID},
    {"InstallDate", &QfeRecord::InstallDate},
    {"InstalledBy", &QfeRecord::InstalledBy},
    {"InstalledOn", &QfeRecord::InstalledOn},
    {"Name", &QfeRecord::Name},
    {"ServicePackInEffect", &QfeRecord::ServicePackInEffect},
    {"Status", &QfeRecord::Status},
};

QfeRecord record_of(const WmiInstance& instance) {
  QfeRecord record;
  for (const Property& property : kProperties) {
    const auto found = instance.find(property.name);
    if (found != instance.end()) record.*property.field = found->second;
  }
  return record;
}

/// None if the query fails, even where it does so after some instances.
std::vector<QfeRecord> read_records(Wmi& wmi) {
  WmiInstances instances;
  const auto query = wmi.connect();
  if (!query->Execute(kQuery, kNamespace, instances)) return {};
  std::vector<QfeRecord> records;
  records.reserve(instances.size());
  std::transform(instances.begin(), instances.end(), std::back_inserter(records), &record_of);
  return records;
}

/// What a row shows of a record.
struct Hotfix {
  String name;
  String title;
  String version;
  String date;
};

String date_text(const String& told, const ORLO::Clock& clock) {
  DateTime date;
  date.parse(told.c_str(), clock);
  return date.empty() ? told : date.format("%D", clock);
}

/// A record without a description names no hotfix but a state of the system.
Hotfix hotfix_of(const QfeRecord& record, const ORLO::Clock& clock) {
  Hotfix hotfix;
  if (record.Description.empty()) {
    hotfix.name = hotfix.title = record.ServicePackInEffect;
  } else {
    hotfix = {record.HotFixID, record.Description, record.ServicePackInEffect,
              date_text(record.InstalledOn, clock)};
  }
  const char* const title = hotfix.title.c_str();
  const bool says_nothing =
      std::strcmp(title, "Update") == 0 || std::strcmp(title, "Security Update") == 0;
  if (says_nothing && !hotfix.name.empty()) hotfix.title.appendf(" %s", hotfix.name);
  return hotfix;
}

Row row_of(const QfeRecord& record, const ORLO::Clock& clock) {
  const Hotfix hotfix = hotfix_of(record, clock);
  Row row = make_source_row("WMI QFE");
  cell(row, Field::name).text = hotfix.name;
  cell(row, Field::displayName).text = hotfix.title;
  cell(row, Field::displayVersion).text = hotfix.version;
  cell(row, Field::installDate).text = hotfix.date;
  cell(row, Field::user).text = record.InstalledBy;
  cell(row, Field::helpURL).text = record.Caption;
  return row;
}

}  // namespace

void ReadWmiHotfixes(Wmi& wmi, const ORLO::Clock& clock, const ReaderRows& rows,
                     std::set<RowKey>& unseenKeys, const RowSink& deliver) {
  for (const QfeRecord& record : read_records(wmi)) {
    // Not the hotfix: most systems leave Name empty.
    if (!rows.has(record.Name)) deliver_row(row_of(record, clock), deliver, unseenKeys);
  }
}
