#include "view/columns.h"

#include <iterator>

#include "platform/resource_ids.h"

namespace {

using Entry = UninstallEntry;

constexpr ListControl::Align kLeft = ListControl::Align::left;
constexpr ListControl::Align kRight = ListControl::Align::right;
constexpr int kParentColumn = 5;
constexpr int kFeaturesColumn = 17;
constexpr int kPatchesColumn = 18;

constexpr ListColumn kColumns[] = {
    {IDS_UNINSTALL_ENTRY, 20, kLeft, &Entry::name, 0x1},
    {IDS_SOURCE, 0, kLeft, &Entry::source, 0x2},
    {IDS_PROGRAM_NAME, 220, kLeft, nullptr, 0x4},
    {IDS_VERSION, 90, kRight, &Entry::displayVersion, 0x8},
    {IDS_PARENT_ENTRY, 0, kLeft, &Entry::parent, 0x10},
    {IDS_PARENT, 120, kLeft, nullptr, 0x20},
    {IDS_INSTALLATION_DATE, 114, kLeft, &Entry::installDate, 0x100},
    {IDS_UNINSTALL_DATE, 0, kLeft, &Entry::uninstallDate, 0x200},
    {IDS_SIZE, 70, kRight, &Entry::sizeText, 0x10000},
    {IDS_UNINSTALL_COMMAND, 200, kLeft, &Entry::uninstallCmd, 0x400},
    {IDS_MODIFY_COMMAND, 200, kLeft, &Entry::modifyCmd, 0x800},
    {IDS_INSTALLER_PATH, 0, kLeft, &Entry::installerPath, 0x200000},
    {IDS_CHECK, 30, kLeft, &Entry::okText, 0x1000000},
    {IDS_ICON, 200, kLeft, &Entry::displayIcon, 0x40},
    {IDS_INSTALL_LOCATION, 200, kLeft, &Entry::installLocation, 0x80},
    {IDS_LAST_USAGE, 120, kLeft, &Entry::lastUseDate, 0x20000},
    {IDS_PACKAGE_PATH, 200, kLeft, &Entry::packagePath, 0x400000},
    {IDS_FEATURES, 50, kRight, nullptr, 0x40000},
    {IDS_PATCHES, 50, kRight, nullptr, 0x80000},
    {IDS_64_BIT, 50, kLeft, &Entry::is64BitText, 0x2000000},
    {IDS_SYSTEM_COMPONENT, 50, kLeft, &Entry::systemComponentText, 0x4000000},
    {IDS_USAGE_FREQUENCY, 50, kLeft, &Entry::frequencyText, 0x4000},
    {IDS_COMMENT, 200, kLeft, &Entry::comments, 0x100000},
    {IDS_USER, 150, kLeft, &Entry::user, 0x8000},
    {IDS_PUBLISHER, 150, kLeft, &Entry::publisher, 0x8000000},
    {IDS_CONTACT, 120, kLeft, &Entry::contact, 0x10000000},
    {IDS_HELP_URL, 150, kLeft, &Entry::helpURL, 0x20000000},
    {IDS_HELP_PHONE, 100, kLeft, &Entry::helpPhone, 0x40000000},
    {IDS_ABOUT_URL, 150, kLeft, &Entry::aboutURL, 0x80000000},
    {IDS_UPDATE_URL, 150, kLeft, &Entry::updateURL, 0},
    {IDS_CHANGES, 50, kLeft, nullptr, 0},
};
static_assert(std::size(kColumns) == kListColumns);

String program_name(const Entry& entry) {
  const String& name = entry.displayName.empty() ? entry.name : entry.displayName;
  return entry.parent.empty() ? name : String::formatted("   %#s", name);
}

String change_text(const Entry& entry, const CellTexts& texts) {
  if (entry.changed == 0) return String();
  return entry.changed == -1 ? texts.is_new : texts.changed;
}

}  // namespace

const ListColumn& list_column(int index) {
  return kColumns[static_cast<size_t>(index)];
}

String cell_text(const UninstallEntry& entry, int column, const CellTexts& texts) {
  if (column < 0 || column >= kListColumns) return String();
  if (String Entry::*const field = list_column(column).text) return entry.*field;
  switch (column) {
    case kProgramNameColumn:
      return program_name(entry);
    case kParentColumn:
      return entry.parentName.empty() ? entry.parent : entry.parentName;
    case kFeaturesColumn:
      return String::formatted("%d", entry.features);
    case kPatchesColumn:
      return String::formatted("%d", entry.patches);
    default:
      return change_text(entry, texts);
  }
}
