// Stands in for the system's viewer of help files: each call becomes a line "caller file command
// data" in the file that the environment variable ZOLVANE_VIEWER names.
#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" __declspec(dllexport) HWND WINAPI
    HtmlHelpA(HWND caller, LPCSTR file, UINT command, DWORD_PTR data) {
  const char* const path = std::getenv("ZOLVANE_VIEWER");
  if (path == nullptr) return nullptr;
  if (std::FILE* const calls = std::fopen(path, "a")) {
    std::fprintf(calls, "%ld %s %u %lu\n", static_cast<long>(reinterpret_cast<intptr_t>(caller)),
                 file, command, static_cast<unsigned long>(data));
    std::fclose(calls);
  }
  return nullptr;
}
