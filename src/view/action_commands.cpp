#include "view/action_commands.h"

#include <algorithm>
#include <iterator>

#include "view/addresses.h"
#include "view/resource_ids.h"

namespace {

using Action = void (PackageActions::*)(const UninstallEntry& entry);
using Tool = void (SystemTools::*)();

constexpr struct {
  unsigned command;
  Action run;
} kActions[] = {
    {IDC_UNINSTALL, &PackageActions::uninstall},
    {IDC_MODIFY, &PackageActions::modify},
    {IDC_REPAIR, &PackageActions::repair},
    {ID_REMOVE, &PackageActions::remove},
};

constexpr struct {
  unsigned command;
  Tool run;
} kTools[] = {
    {ID_MSI_CLEANUP, &SystemTools::msi_cleanup},
    {ID_MSINFO, &SystemTools::msinfo},
    {ID_MSCONFIG, &SystemTools::msconfig},
    {ID_SYSTEM_RESTORE, &SystemTools::system_restore},
    {ID_SOFTWARE_CONTROL_PANEL, &SystemTools::software_control_panel},
    {ID_ORCA, &SystemTools::orca},
};

template <typename Rows>
const auto* find_row(const Rows& rows, unsigned command) {
  const auto* const end = std::end(rows);
  const auto* const found = std::find_if(
      std::begin(rows), end, [command](const auto& row) { return row.command == command; });
  return found != end ? found : nullptr;
}

ActionTexts action_texts(const ActionCommands::TextOf& text_of) {
  return {text_of(IDS_ASK_UNINSTALL), text_of(IDS_ASK_REPAIR), text_of(IDS_ASK_REMOVE_ENTRY),
          text_of(IDS_EXCEPTION)};
}

ToolTexts tool_texts(const ActionCommands::TextOf& text_of) {
  return {text_of(IDS_PRODUCT), text_of(IDS_NO_RESTORE_POINTS), text_of(IDS_ASK_MSICUU_PAGE)};
}

}  // namespace

ActionCommands::ActionCommands(const Parts& parts, const TextOf& text_of)
    : actions_({parts.files, parts.shell, parts.registry, parts.frame}, action_texts(text_of)),
      tools_({parts.files, parts.shell, parts.registry, parts.frame}, tool_texts(text_of),
             ZOLVANE_CLEANUP_TOOL_PAGE) {}

bool ActionCommands::run(unsigned command, const CommandContext& at) {
  if (const auto* const action = find_row(kActions, command)) {
    // The record may go while the action runs.
    if (at.current != nullptr) (actions_.*action->run)(UninstallEntry(*at.current));
    return true;
  }
  if (const auto* const tool = find_row(kTools, command)) {
    if (can_run(command, at)) (tools_.*tool->run)();
    return true;
  }
  if (command != ID_OPEN_WITH_ORCA && command != ID_LAUNCH_URL && command != ID_OPEN_FOLDER) {
    return false;
  }
  if (!can_run(command, at)) return true;
  if (command == ID_OPEN_WITH_ORCA) {
    tools_.open_with_orca(UninstallEntry(*at.current));
  } else {
    tools_.open(command == ID_LAUNCH_URL ? at.url : String(at.current->installLocation));
  }
  return true;
}
