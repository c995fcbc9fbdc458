#include <filesystem>
#include <system_error>

#include "platform/memory_temporary_files.h"

std::unique_ptr<TemporaryFiles> make_system_temporary_files() {
  std::error_code error;  // leaves an empty path
  return std::make_unique<FolderTemporaryFiles>(
      std::filesystem::temp_directory_path(error).string());
}
