#include "actions/shell_command.h"

#include "inventory/text_helpers.h"

ShellCommand ShellCommand::parse(const String& text, Files& files) {
  const CommandLine line = ResolveCommandLine(text, files);
  return {line.path, line.args, line.command};
}

ShellStart ShellCommand::start(void* owner) const noexcept {
  ShellStart start;
  start.owner = owner;
  start.file = target().c_str();
  start.arguments = arguments.c_str();
  return start;
}
