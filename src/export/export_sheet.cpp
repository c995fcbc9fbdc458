#include "export/export_sheet.h"

#include <iterator>

#include "platform/resource_ids.h"

namespace {

using Entry = UninstallEntry;

constexpr const char16_t kGeneral[] = u"General";
constexpr const char16_t kText[] = u"@";
constexpr const char16_t kDate[] = u"M/D/YY h:mm";
constexpr const char16_t kNumber[] = u"0";
constexpr unsigned kRight = 3;

struct ColumnRule {
  unsigned title;  ///< id in the string table
  const char16_t* format;
  unsigned align;
  // What the cell shows; without either it tells what has changed.
  String Entry::*text;
  int32_t Entry::*number = nullptr;
};

constexpr ColumnRule kColumns[] = {
    {IDS_PROGRAM_NAME, kGeneral, 0, &Entry::displayName},
    {IDS_UNINSTALL_ENTRY, kGeneral, 0, &Entry::name},
    {IDS_SOURCE, kGeneral, 0, &Entry::source},
    {IDS_VERSION, kText, 0, &Entry::displayVersion},
    {IDS_PARENT_ENTRY, kGeneral, 0, &Entry::parent},
    {IDS_PARENT, kGeneral, 0, &Entry::parentName},
    {IDS_INSTALLATION_DATE, kDate, 0, &Entry::installDate},
    {IDS_UNINSTALL_DATE, kDate, 0, &Entry::uninstallDate},
    {IDS_SIZE, kText, kRight, &Entry::sizeText},
    {IDS_UNINSTALL_COMMAND, kGeneral, 0, &Entry::uninstallCmd},
    {IDS_MODIFY_COMMAND, kGeneral, 0, &Entry::modifyCmd},
    {IDS_ICON, kGeneral, 0, &Entry::displayIcon},
    // The title has always been that of the installer's path, though the cells tell the folder.
    {IDS_INSTALLER_PATH, kGeneral, 0, &Entry::installLocation},
    {IDS_LAST_USAGE, kDate, 0, &Entry::lastUseDate},
    {IDS_PACKAGE_PATH, kGeneral, 0, &Entry::packagePath},
    {IDS_FEATURES, kNumber, kRight, nullptr, &Entry::features},
    {IDS_PATCHES, kNumber, kRight, nullptr, &Entry::patches},
    {IDS_64_BIT, kGeneral, 0, &Entry::is64BitText},
    {IDS_SYSTEM_COMPONENT, kGeneral, 0, &Entry::systemComponentText},
    {IDS_USAGE_FREQUENCY, kNumber, kRight, &Entry::frequencyText},
    {IDS_COMMENT, kGeneral, 0, &Entry::comments},
    {IDS_USER, kGeneral, 0, &Entry::user},
    {IDS_PUBLISHER, kGeneral, 0, &Entry::publisher},
    {IDS_CONTACT, kGeneral, 0, &Entry::contact},
    {IDS_HELP_URL, kGeneral, 0, &Entry::helpURL},
    {IDS_HELP_PHONE, kGeneral, 0, &Entry::helpPhone},
    {IDS_ABOUT_URL, kGeneral, 0, &Entry::aboutURL},
    {IDS_UPDATE_URL, kGeneral, 0, &Entry::updateURL},
    {IDS_CHANGES, kGeneral, 0, nullptr},
};

}  // namespace

ExportSheetBuilder::ExportSheetBuilder(const TextOf& text_of, const ExportFilter& filter)
    : filter_(filter), changed_(text_of(IDS_CHANGED)), new_(text_of(IDS_NEW)) {
  sheet_.columns.reserve(std::size(kColumns));
  for (const ColumnRule& rule : kColumns) {
    sheet_.columns.push_back({text_of(rule.title), rule.format, rule.align});
  }
}

String ExportSheetBuilder::change_text(const Entry& entry) const {
  if (entry.changed == 0) return empty_;
  return entry.changed == -1 ? new_ : changed_;
}

const String& ExportSheetBuilder::number_text(int32_t number) {
  const auto [place, is_new] = numbers_.try_emplace(number);
  if (is_new) place->second.printf("%d", number);
  return place->second;
}

void ExportSheetBuilder::add(const Entry& entry) {
  if (!filter_.accepts(entry)) return;
  std::vector<String>& row = sheet_.rows.emplace_back();
  row.reserve(std::size(kColumns));
  for (const ColumnRule& rule : kColumns) {
    if (rule.text != nullptr) {
      row.push_back(shared(entry.*rule.text));
    } else if (rule.number != nullptr) {
      row.push_back(number_text(entry.*rule.number));
    } else {
      row.push_back(change_text(entry));
    }
  }
}
