// The settings that outlive a run: window placement, language, row colours.
#pragma once

#include "persist/uninstall_para.h"

/// Both are for a run that may persist; the callers see to that. There is no file yet: what was
/// written reaches the programs that this process starts, and so a restart in another language.
/// Written when the main window closes and by a command that changes a setting.
void writeConfiguration(const UninstallPara& para);

/// Fills windowPos, langId and colorBackground. False, with nothing changed, if nothing was
/// written.
bool readConfiguration(UninstallPara& para);
