#include <windows.h>

#include "orlo/folders.h"

namespace ORLO {

void create_folder(const char* path) noexcept {
  CreateDirectoryA(path, nullptr);
}

bool is_folder_separator(char c) noexcept {
  return c == '\\' || c == '/';
}

}  // namespace ORLO
