// The commands that look into the chosen package.
#pragma once

#include "inspect/inspect_services.h"
#include "inventory/entry.h"
#include "orlo/clock.h"
#include "orlo/dlg_controller.h"
#include "platform/registry.h"
#include "platform/resources.h"
#include "view/dialog_frame.h"

/// Lives on the main thread.
class InspectCommands {
 public:
  /// What is referred to must outlive it.
  struct Parts {
    const Resources& resources;
    DialogFrame& frame;
    InspectServices services;
    Registry& registry;
    const ORLO::Clock& clock;
  };

  explicit InspectCommands(const Parts& parts) : parts_(parts) {}

  static bool is_inspection(unsigned command) noexcept;
  /// Opens the command's dialog for the package, if it has what that shows, and returns when it has
  /// been closed. False if the command is none of these.
  bool run(unsigned command, const UninstallEntry& entry) const;

 private:
  using Opening = std::unique_ptr<ORLO::DlgController> (InspectCommands::*)(
      HWND window, const UninstallEntry& entry) const;
  struct Command;
  static const Command* find(unsigned command) noexcept;

  std::unique_ptr<ORLO::DlgController> features(HWND window, const UninstallEntry& entry) const;
  std::unique_ptr<ORLO::DlgController> patches(HWND window, const UninstallEntry& entry) const;
  std::unique_ptr<ORLO::DlgController> content(HWND window, const UninstallEntry& entry) const;

  const Parts parts_;
};
