// Small rules on the texts that installers leave in the registry.
#pragma once

#include <cstdint>

#include "orlo/datetime.h"
#include "orlo/rstring.h"
#include "platform/files.h"

struct IconSpec {
  String path;  ///< environment variables expanded
  String args;
};

/// Splits an icon specification or command line: a quoted path and what stands behind it, or the
/// whole text as path.
IconSpec SplitIconSpec(const String& text, Files& files);

struct CommandLine {
  String path;  ///< full path of the executable where one was found, else the text's path part
  String args;
  String command;  ///< the program as it stood in the text; empty if no file was found
};

/// Finds the executable of a command line that may lack quotes: the whole path part if it is a
/// file, else the shortest blank-delimited prefix that the search path resolves.
CommandLine ResolveCommandLine(const String& text, Files& files);

/// Text of a date cell from a date read as text and a date taken from a file time, whichever tells
/// more. `text` stands as it is if neither is a date.
String MergeDateText(const String& text, DateTime date,
                     const ORLO::Clock& clock = ORLO::system_clock());

/// Order of two version texts, numbers by parts, suffixes by bytes: negative, 0, positive.
int compareVersions(const String& a, const String& b) noexcept;

/// As the runtime's atoi, with a defined result (modulo 2^32) for numbers of any length.
int32_t leading_number(const char* text) noexcept;
