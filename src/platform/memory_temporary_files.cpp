#include "platform/memory_temporary_files.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "orlo/folders.h"

namespace fs = std::filesystem;

FolderTemporaryFiles::FolderTemporaryFiles(std::string folder) : folder_(std::move(folder)) {
  if (folder_.empty() || ORLO::is_folder_separator(folder_.back())) return;
  folder_ += static_cast<char>(fs::path::preferred_separator);
}

bool FolderTemporaryFiles::can_replace(const char* path) {
  if (*path == '\0') return false;
  std::error_code error;
  const fs::file_type type = fs::symlink_status(path, error).type();
  return type == fs::file_type::not_found || type == fs::file_type::regular;
}

void FolderTemporaryFiles::remove(const char* path) {
  std::error_code error;
  if (!fs::is_directory(fs::symlink_status(path, error))) fs::remove(path, error);
}
