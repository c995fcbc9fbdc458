// The run that is all an export is, on this system.
#pragma once

#include "inventory/reader.h"
#include "orlo/window_handles.h"
#include "start/switches.h"

/// Writes the file that the switches name. Shows nothing, whatever happens: the process's exit
/// code, and after a failure one line on the standard error.
int run_export(HINSTANCE instance, const Switches& switches,
               const UninstallReader::Services& reader);
