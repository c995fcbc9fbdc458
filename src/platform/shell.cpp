#include "platform/shell.h"

#include <cstring>

bool can_ask_shell(const char* file) noexcept {
  if (file == nullptr || file[std::strspn(file, " \t\n\v\f\r")] == '\0') return false;
  return std::strlen(file) <= kLongestShellFile;
}
