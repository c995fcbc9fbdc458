// The command line and what follows from it.
#pragma once

#include <cstdint>

#include "persist/uninstall_para.h"

struct Switches {
  bool postUpdate = false;
  bool noPersist = false;
  bool noUpdate = false;
  bool german = false;
  bool english = false;
  bool doExport = false;
  String exportFile;  ///< empty if "-export" is the last word
};

/// A switch counts wherever it stands in the command line, inside a longer argument too. Only
/// "-export" is a word of its own, and the word after it, in quotes where it has blanks, is the
/// file, in which no switch is looked for.
Switches read_switches(const char* command_line);

/// Locale id of the user interface for a primary language id: German or English (UK).
uint32_t ui_locale(uint16_t langId);

/// Applies the language switches to `para`; German wins. Returns the user interface's locale id.
uint32_t choose_language(const Switches& switches, UninstallPara& para);

/// Fills the four paths below the per-user folder.
void set_paths(const String& folder, UninstallPara& para);
