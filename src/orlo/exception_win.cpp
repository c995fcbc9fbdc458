#include "orlo/exception.h"

#include "orlo/message_table.h"

namespace ORLO {

bool message_text(HMODULE module, uint32_t code, String& text) {
  const DWORD source = module == nullptr ? FORMAT_MESSAGE_FROM_SYSTEM : FORMAT_MESSAGE_FROM_HMODULE;
  char* made = nullptr;
  const DWORD length = FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | source, module, code,
                                      MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
                                      reinterpret_cast<char*>(&made), 0, nullptr);
  if (length == 0 || made == nullptr) return false;
  const struct Freed {
    char* block;
    ~Freed() { LocalFree(block); }
  } freed{made};
  text.assign(made, length);
  return true;
}

bool system_message(uint32_t code, String& text) {
  return message_text(nullptr, code, text);
}

uint32_t last_error() noexcept {
  return GetLastError();
}

}  // namespace ORLO
