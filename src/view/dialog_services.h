// What the main dialog stands on.
#pragma once

#include "inspect/inspect_services.h"
#include "inventory/reader.h"
#include "platform/compound_storage.h"
#include "platform/icons.h"
#include "platform/shell.h"
#include "update/update_services.h"

/// All must outlive the dialog.
struct DialogServices {
  UninstallReader::Services reader;
  Shell& shell;
  IconExtractor& icons;
  CompoundStorage& storage;
  InspectServices inspection;
  UpdateSystem update;
  UpdateSettings update_settings;
  bool check_for_updates = true;  ///< once, in the background
};
