// The tools of the system that help with software which can't be uninstalled.
#pragma once

#include "actions/action_parts.h"
#include "inventory/entry.h"

struct ToolTexts {
  String product;  ///< the title of a plain box
  String no_restore_points;
  String ask_cleanup_page;
};

/// Lives on the main thread. A start that fails is not reported.
class SystemTools {
 public:
  /// Looks for the editor of MSI files. `cleanup_page`: where the cleanup tool can be downloaded.
  SystemTools(const ActionParts& parts, ToolTexts texts, String cleanup_page);

  void msi_cleanup();
  void msinfo();
  void msconfig();
  void system_restore();
  void software_control_panel();
  /// Without a file.
  void orca();
  void open_with_orca(const UninstallEntry& entry);
  bool has_orca() const noexcept { return !orcaCommand.empty(); }

  /// Has the shell open whatever the text names, an address, a folder or a command.
  void open(const String& text);

 private:
  void open_busy(const String& text);
  String cleanup_command();

  const ActionParts parts_;
  const ToolTexts texts_;
  const String cleanup_page_;
  const String orcaCommand;
};
