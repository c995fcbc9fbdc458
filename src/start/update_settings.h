// What the check for updates is told of this program and this machine.
#pragma once

#include "platform/system_version.h"
#include "update/update_services.h"

/// A run that keeps nothing doesn't know when it has checked last: it checks each time.
UpdateSettings update_settings(const char* description_url, const SystemVersion& system,
                               bool no_persist);
