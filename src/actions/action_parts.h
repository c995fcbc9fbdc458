// What actions and tools stand on.
#pragma once

#include "actions/action_frame.h"
#include "platform/files.h"
#include "platform/registry.h"
#include "platform/shell.h"

/// All must outlive who is given them.
struct ActionParts {
  Files& files;
  Shell& shell;
  Registry& registry;
  ActionFrame& frame;
};
