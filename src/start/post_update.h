// The start that cleans up behind a self-update. The former run has left a marker in the temporary
// folder, a text whose one line names the setup program that it downloaded.
#pragma once

#include "orlo/rstring.h"

/// What the cleaning needs of the system.
class Leftovers {
 public:
  virtual ~Leftovers() = default;
  /// With a separator at its end.
  virtual String temporary_folder() = 0;
  virtual void remove(const char* path) = 0;
  /// The file may still be in use now.
  virtual void remove_at_next_start(const char* path) = 0;
};

/// Removes the marker now and what it names at the system's next start. Shows nothing. The
/// process's exit code: 1 if there was no marker, or nothing in it.
int clean_up_after_update(Leftovers& leftovers);

/// Likewise on this system.
int clean_up_after_update();
