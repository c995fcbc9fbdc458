// The seam to files, the search path and the environment. Paths are 8-bit, in the code page.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>

#include "orlo/rstring.h"

class Files {
 public:
  virtual ~Files() = default;
  /// FindFirstFileA finds something at `path` and it is no directory.
  virtual bool is_file(const char* path) = 0;
  /// Whatever stands at `path`, file or directory, can be opened (CreateFileA without access,
  /// sharing read and write, with backup semantics).
  virtual bool can_open(const char* path) = 0;
  /// SearchPathA with the default search path, `extension` and a buffer of 260 characters: the
  /// full path; none if nothing is found or the path doesn't fit.
  virtual std::optional<String> search_path(const char* name, const char* extension) = 0;
  /// ExpandEnvironmentStringsA into a buffer of `limit` characters, the terminator counted; none
  /// if it fails or doesn't fit, as a text of more than 32,000 characters always does.
  virtual std::optional<String> expand_environment(const char* text, size_t limit) = 0;
  /// GetSystemDirectoryA into a buffer of 260 characters: no separator at the end; none if it fails
  /// or doesn't fit.
  virtual std::optional<String> system_folder() = 0;
  /// GetWindowsDirectoryA, likewise.
  virtual std::optional<String> windows_folder() = 0;
};

/// The files of this system.
std::unique_ptr<Files> make_system_files();
