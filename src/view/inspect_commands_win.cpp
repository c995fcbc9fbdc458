#include "view/inspect_commands.h"

#include <algorithm>
#include <iterator>

#include "inspect/feature_dlg.h"
#include "inspect/msi_content_dlg.h"
#include "inspect/patch_dlg.h"
#include "platform/resource_ids.h"
#include "view/package_commands.h"

namespace {

/// Any product may be asked for its features, though the command is grey where it has none.
bool has_it(unsigned command, const UninstallEntry& entry) {
  return command == ID_FEATURES ? entry.MSI : can_run(command, {&entry});
}

}  // namespace

struct InspectCommands::Command {
  unsigned id;
  unsigned dialog;
  Opening open;
};

const InspectCommands::Command* InspectCommands::find(unsigned command) noexcept {
  static constexpr Command kCommands[] = {
      {ID_FEATURES, IDD_FEATURES, &InspectCommands::features},
      {ID_PATCHES, IDD_PATCHES, &InspectCommands::patches},
      {ID_MSI_CONTENT, IDD_MSI_CONTENT, &InspectCommands::content},
  };
  const auto* const end = std::end(kCommands);
  const auto* const found = std::find_if(std::begin(kCommands), end,
                                         [command](const auto& row) { return row.id == command; });
  return found != end ? found : nullptr;
}

bool InspectCommands::is_inspection(unsigned command) noexcept {
  return find(command) != nullptr;
}

bool InspectCommands::run(unsigned command, const UninstallEntry& entry) const {
  const Command* const found = find(command);
  if (found == nullptr) return false;
  if (!has_it(command, entry)) return true;
  const Resources& resources = parts_.resources;
  parts_.frame.show([&] {
    ORLO::Dialog::DoModal(resources.module(), resources.dialog(found->dialog),
                          static_cast<HWND>(parts_.frame.owner()),
                          [&](HWND window) { return (this->*found->open)(window, entry); });
  });
  return true;
}

std::unique_ptr<ORLO::DlgController> InspectCommands::features(HWND window,
                                                               const UninstallEntry& entry) const {
  return std::make_unique<FeatureDlg>(window, parts_.resources, entry, parts_.services.installer,
                                      parts_.registry);
}

std::unique_ptr<ORLO::DlgController> InspectCommands::patches(HWND window,
                                                              const UninstallEntry& entry) const {
  const PatchServices services{
      parts_.services.installer, parts_.registry, parts_.clock,
      [&resources = parts_.resources](unsigned id) { return resources.text(id); }};
  return std::make_unique<PatchDlg>(window, parts_.resources, entry, services);
}

std::unique_ptr<ORLO::DlgController> InspectCommands::content(HWND window,
                                                              const UninstallEntry& entry) const {
  return std::make_unique<MSIContentDlg>(window, parts_.resources, entry,
                                         parts_.services.databases);
}
