// Asking the user for a file's name.
#pragma once

#include <cstdint>

#include "orlo/module_functions.h"
#include "orlo/rstring.h"

namespace ORLO {

/// The window that owns a dialog (an HWND on the target).
using DialogOwner = void*;

class SaveFileDialog {
 public:
  String title;
  /// What the name's box holds at first.
  String file_name;
  /// Appended to a name without an extension; empty for none.
  String default_extension;
  /// Descriptions and patterns in turn, each followed by "|".
  String filter;
  /// The system's flags of file dialogs.
  uint32_t flags = 0;

  /// The name chosen, or empty if the user has cancelled. Throws ORLOException where the system has
  /// no such dialog.
  String ask(DialogOwner owner, ModuleFunctions& functions = system_functions()) const;
};

/// The filter as the system wants it: each "|" a NUL, and two NULs at the end.
String system_filter(const String& filter);

}  // namespace ORLO
