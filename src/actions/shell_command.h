// A command line split into program and arguments for the shell.
#pragma once

#include "orlo/rstring.h"
#include "platform/files.h"
#include "platform/shell.h"

struct ShellCommand {
  String path;       ///< the program part, expanded; the full path where a search found it
  String arguments;  ///< the rest of the text
  String file;       ///< the program as the shell is to get it; empty if no file was found

  /// The text is split as ResolveCommandLine does.
  static ShellCommand parse(const String& text, Files& files);
  /// What is to be started.
  const String& target() const noexcept { return file.empty() ? path : file; }
  /// How the shell is asked for it; points into this command.
  ShellStart start(void* owner) const noexcept;
};
