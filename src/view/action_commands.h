// The commands that start something: the actions on a package, the tools of the system.
#pragma once

#include <functional>

#include "actions/package_actions.h"
#include "actions/system_tools.h"
#include "view/package_commands.h"

/// Lives on the main thread. Commands may be nested, as an installer is waited for with messages
/// flowing.
class ActionCommands {
 public:
  /// The text with this id.
  using TextOf = std::function<String(unsigned id)>;

  ActionCommands(const ActionParts& parts, const TextOf& text_of);

  /// Does what the command is for, and returns when that is over. Does nothing if there is nothing
  /// to do it for. False if the command is none of these. The package must stay while the command
  /// runs.
  bool run(unsigned command, const CommandContext& at);
  /// Whether it waits for what it starts, and changes what a refresh reads.
  static bool is_package_action(unsigned command) noexcept;
  bool has_orca() const noexcept { return tools_.has_orca(); }
  /// Ends every wait for an installer, now and from now on.
  void close() noexcept { actions_.close(); }

 private:
  PackageActions actions_;
  SystemTools tools_;
};
