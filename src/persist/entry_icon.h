// The icon of a package.
#pragma once

#include <memory>

#include "inventory/entry.h"
#include "platform/files.h"
#include "platform/icons.h"

/// The icon that the package names, else the first one of its uninstall program, else of its modify
/// program; null if there is none. Any thread.
std::unique_ptr<Icon> loadEntryIcon(const UninstallEntry& entry, bool large, Files& files,
                                    IconExtractor& icons);
