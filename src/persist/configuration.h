// The settings that outlive a run: window placement, language, row colours.
#pragma once

#include "persist/uninstall_para.h"

/// Writes `cfgPath`, an XML document, with the folders that are missing; what fails is lost without
/// a word. For a run that may persist, which the callers see to, as for the reading. Written when
/// the main window closes and by a command that changes a setting.
void writeConfiguration(const UninstallPara& para);

/// Fills windowPos, langId and colorBackground from `cfgPath`. False, with nothing changed, if the
/// file can't be read or is of a newer version; a file without settings changes nothing either.
bool readConfiguration(UninstallPara& para);
