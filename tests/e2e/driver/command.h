// The commands, each group in a file of its own.
#pragma once

#include <span>

#include "json.h"
#include "words.h"

namespace driver {

struct Command {
  const char* name;
  /// Word 0 of `words` is the command's name. Writes exactly one value or throws Refusal.
  void (*run)(const Words& words, Json& answer);
};

std::span<const Command> window_commands();
std::span<const Command> control_commands();
std::span<const Command> list_commands();
std::span<const Command> process_commands();
std::span<const Command> registry_commands();
std::span<const Command> probe_commands();
std::span<const Command> clipboard_commands();
std::span<const Command> file_commands();

}  // namespace driver
