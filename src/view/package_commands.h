// Which commands can do something for the package that is chosen.
#pragma once

#include "actions/package_actions.h"
#include "inventory/entry.h"

/// What commands depend on.
struct CommandContext {
  const UninstallEntry* current = nullptr;  ///< the chosen package, if there is one
  String url = String();                    ///< where the cell leads that was clicked last, if so
  bool has_orca = false;                    ///< there is an editor for MSI files
  bool under_wow64 = false;
};

/// Whether a command of the main window can do anything; where it can't, it is grey.
bool can_run(unsigned command, const CommandContext& context) noexcept;

/// Lines that stand for no package have no actions.
bool has_actions(const UninstallEntry& entry) noexcept;

/// The command that a double click on the package gives; 0 if there is none.
unsigned default_command(const UninstallEntry& entry) noexcept;

/// What counts of a cell's text: its first 259 characters.
String shown_part(const String& text);

/// What the shown part of a cell's text leads to: a web or mail address; empty if it is none.
String cell_url(const String& text);
