#include "orlo/folders.h"

#include <string>

namespace ORLO {

void create_folder_of(std::string_view path) {
  for (size_t length = 1; length < path.size(); ++length) {
    if (is_folder_separator(path[length])) create_folder(std::string(path, 0, length).c_str());
  }
}

}  // namespace ORLO
