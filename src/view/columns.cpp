#include "view/columns.h"

#include <iterator>

#include "view/resource_ids.h"

namespace {

using Entry = UninstallEntry;

constexpr ListControl::Align kLeft = ListControl::Align::left;
constexpr ListControl::Align kRight = ListControl::Align::right;
constexpr int kProgramNameColumn = 2;
constexpr int kParentColumn = 5;
constexpr int kFeaturesColumn = 17;
constexpr int kPatchesColumn = 18;

constexpr ListColumn kColumns[] = {
    {IDS_UNINSTALL_ENTRY, 20, kLeft, &Entry::name},
    {IDS_SOURCE, 0, kLeft, &Entry::source},
    {IDS_PROGRAM_NAME, 220, kLeft, nullptr},
    {IDS_VERSION, 90, kRight, &Entry::displayVersion},
    {IDS_PARENT_ENTRY, 0, kLeft, &Entry::parent},
    {IDS_PARENT, 120, kLeft, nullptr},
    {IDS_INSTALLATION_DATE, 114, kLeft, &Entry::installDate},
    {IDS_UNINSTALL_DATE, 0, kLeft, &Entry::uninstallDate},
    {IDS_SIZE, 70, kRight, &Entry::sizeText},
    {IDS_UNINSTALL_COMMAND, 200, kLeft, &Entry::uninstallCmd},
    {IDS_MODIFY_COMMAND, 200, kLeft, &Entry::modifyCmd},
    {IDS_INSTALLER_PATH, 0, kLeft, &Entry::installerPath},
    {IDS_CHECK, 30, kLeft, &Entry::okText},
    {IDS_ICON, 200, kLeft, &Entry::displayIcon},
    {IDS_INSTALL_LOCATION, 200, kLeft, &Entry::installLocation},
    {IDS_LAST_USAGE, 120, kLeft, &Entry::lastUseDate},
    {IDS_PACKAGE_PATH, 200, kLeft, &Entry::packagePath},
    {IDS_FEATURES, 50, kRight, nullptr},
    {IDS_PATCHES, 50, kRight, nullptr},
    {IDS_64_BIT, 50, kLeft, &Entry::is64BitText},
    {IDS_SYSTEM_COMPONENT, 50, kLeft, &Entry::systemComponentText},
    {IDS_USAGE_FREQUENCY, 50, kLeft, &Entry::frequencyText},
    {IDS_COMMENT, 200, kLeft, &Entry::comments},
    {IDS_USER, 150, kLeft, &Entry::user},
    {IDS_PUBLISHER, 150, kLeft, &Entry::publisher},
    {IDS_CONTACT, 120, kLeft, &Entry::contact},
    {IDS_HELP_URL, 150, kLeft, &Entry::helpURL},
    {IDS_HELP_PHONE, 100, kLeft, &Entry::helpPhone},
    {IDS_ABOUT_URL, 150, kLeft, &Entry::aboutURL},
    {IDS_UPDATE_URL, 150, kLeft, &Entry::updateURL},
    {IDS_CHANGES, 50, kLeft, nullptr},
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
