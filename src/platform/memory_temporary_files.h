// Temporary files in a folder of choice, for tests and for the build machine. The folder is a real
// one, as what stands in it is written by others.
#pragma once

#include <string>

#include "platform/temporary_files.h"

/// On the target, for names of ASCII characters only.
class FolderTemporaryFiles : public TemporaryFiles {
 public:
  /// The separator at its end may be missing. Nothing is created.
  explicit FolderTemporaryFiles(std::string folder);

  String folder() override { return String(folder_); }
  bool can_replace(const char* path) override;
  void remove(const char* path) override;

 private:
  std::string folder_;
};
