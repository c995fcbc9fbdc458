#include "orlo/internet_response.h"

#include "orlo/orlowin.h"

namespace ORLO {
namespace {

using GetLastResponseInfo = BOOL(WINAPI*)(DWORD* error, char* buffer, DWORD* size);

}  // namespace

uint32_t read_internet_response(char* buffer, uint32_t& size) {
  // Whoever made the failed call has the library loaded; nobody else needs it for a report.
  const HMODULE library = GetModuleHandleA("wininet");
  if (library == nullptr) return GetLastError();
  const auto read = reinterpret_cast<GetLastResponseInfo>(
      reinterpret_cast<void*>(GetProcAddress(library, "InternetGetLastResponseInfoA")));
  if (read == nullptr) return GetLastError();
  DWORD server_error = 0;
  DWORD room = size;
  const bool done = read(&server_error, buffer, &room) != FALSE;
  const DWORD error = done ? ERROR_SUCCESS : GetLastError();
  size = room;
  return error;
}

}  // namespace ORLO
