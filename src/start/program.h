// What the process does behind its entry point.
#pragma once

#include "inspect/inspect_services.h"
#include "orlo/clock.h"
#include "orlo/orlowin.h"
#include "platform/accounts.h"
#include "platform/compound_storage.h"
#include "platform/files.h"
#include "platform/icons.h"
#include "platform/installer.h"
#include "platform/registry.h"
#include "platform/shell.h"
#include "platform/wmi.h"
#include "update/update_services.h"

/// What the program stands on; all must outlive it.
struct ProgramServices {
  Registry& registry;
  Files& files;
  const ORLO::Clock& clock;
  Shell& shell;
  IconExtractor& icons;
  Installer& installer;
  Wmi& wmi;
  Accounts& accounts;
  CompoundStorage& storage;
  InspectServices inspection;
  UpdateSystem update;
};

/// Runs from the marks of the process to the end of the main dialog: the process's exit code, 0
/// after a normal end. A failure has been reported when it returns 1, or 2 for an export.
int run_program(HINSTANCE instance, const char* command_line, const ProgramServices& services);
