#include "view/action_commands.h"

#include <algorithm>
#include <iterator>

#include "platform/resource_ids.h"
#include "view/addresses.h"

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

using Opening = void (*)(SystemTools& tools, const CommandContext& at);

// For the chosen package, or the cell that was clicked.
constexpr struct {
  unsigned command;
  Opening run;
} kOpenings[] = {
    {ID_OPEN_WITH_ORCA,
     [](SystemTools& tools, const CommandContext& at) { tools.open_with_orca(*at.current); }},
    {ID_LAUNCH_URL, [](SystemTools& tools, const CommandContext& at) { tools.open(at.url); }},
    {ID_OPEN_FOLDER,
     [](SystemTools& tools, const CommandContext& at) { tools.open(at.current->installLocation); }},
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

ActionCommands::ActionCommands(const ActionParts& parts, const TextOf& text_of)
    : actions_(parts, action_texts(text_of)),
      tools_(parts, tool_texts(text_of), ZOLVANE_CLEANUP_TOOL_PAGE) {}

bool ActionCommands::is_package_action(unsigned command) noexcept {
  return find_row(kActions, command) != nullptr;
}

bool ActionCommands::run(unsigned command, const CommandContext& at) {
  if (const auto* const action = find_row(kActions, command)) {
    if (at.current != nullptr) (actions_.*action->run)(*at.current);
    return true;
  }
  const auto* const tool = find_row(kTools, command);
  const auto* const opening = find_row(kOpenings, command);
  if (tool == nullptr && opening == nullptr) return false;
  if (!can_run(command, at)) return true;
  if (tool != nullptr) {
    (tools_.*tool->run)();
  } else {
    opening->run(tools_, at);
  }
  return true;
}
