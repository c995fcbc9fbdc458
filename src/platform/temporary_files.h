// The seam to the folder for temporary files. Paths are 8-bit, in the code page.
#pragma once

#include <memory>

#include "orlo/rstring.h"

class TemporaryFiles {
 public:
  virtual ~TemporaryFiles() = default;
  /// GetTempPathA: with a separator at its end; empty if it fails or doesn't fit into 260
  /// characters.
  virtual String folder() = 0;
  /// Whether a new file may take the place of what is at `path`: of a plain file, or of nothing.
  /// Not of a folder, a device or a link to something else.
  virtual bool can_replace(const char* path) = 0;
  /// Nothing happens if it can't be removed.
  virtual void remove(const char* path) = 0;
};

/// Those of this system.
std::unique_ptr<TemporaryFiles> make_system_temporary_files();
