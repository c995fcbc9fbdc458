#include <windows.h>

#include "platform/host_name.h"
#include "platform/utf16.h"

std::string host_name() {
  wchar_t name[256] = L"";
  DWORD length = 256;
  // The system's own name is cut to 15 characters, and in capitals.
  if (!GetComputerNameExW(ComputerNameDnsHostname, name, &length)) return {};
  return utf8_from_utf16({reinterpret_cast<const char16_t*>(name), length});
}
