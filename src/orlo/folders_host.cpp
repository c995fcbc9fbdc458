// The stand-in of build machines.
#include <sys/stat.h>

#include "orlo/folders.h"

namespace ORLO {

void create_folder(const char* path) noexcept {
  static_cast<void>(::mkdir(path, 0777));
}

bool is_folder_separator(char c) noexcept {
  return c == '/';
}

}  // namespace ORLO
