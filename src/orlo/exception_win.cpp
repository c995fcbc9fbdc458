#include "orlo/exception.h"

#include <windows.h>

namespace ORLO {

String system_error_text(uint32_t code) {
  char* text = nullptr;
  const DWORD length = FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM,
                                      nullptr, code, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
                                      reinterpret_cast<char*>(&text), 0, nullptr);
  if (length == 0 || text == nullptr) return String::formatted("unknown error 0x%08X", code);
  const struct Freed {
    char* block;
    ~Freed() { LocalFree(block); }
  } freed{text};
  return String(text, text + length);
}

uint32_t last_error() noexcept {
  return GetLastError();
}

}  // namespace ORLO
