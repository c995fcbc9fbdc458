#include <windows.h>

#include <cstring>

#include "platform/temporary_files.h"

namespace {

// More than any path that a file can be opened by; not every system bears to be asked for less.
constexpr DWORD kPathRoom = 1024;

/// Whether the system takes a path for the name of a device, as it does for "C:\x\NUL" or "COM1",
/// whatever stands in the folder. Asked without opening it: that alone acts on some devices.
bool names_device(const char* path) {
  char whole[kPathRoom] = "";
  const DWORD length = GetFullPathNameA(path, kPathRoom, whole, nullptr);
  return length == 0 || length >= kPathRoom || std::strncmp(whole, R"(\\.\)", 4) == 0;
}

class SystemTemporaryFiles final : public TemporaryFiles {
 public:
  String folder() override {
    char path[MAX_PATH] = "";
    const DWORD length = GetTempPathA(MAX_PATH, path);
    return length < MAX_PATH ? String(path) : String();
  }

  bool can_replace(const char* path) override {
    constexpr DWORD kOther =
        FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DEVICE;
    if (names_device(path)) return false;
    const DWORD attributes = GetFileAttributesA(path);
    if (attributes != INVALID_FILE_ATTRIBUTES) return (attributes & kOther) == 0;
    const DWORD error = GetLastError();
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
  }

  void remove(const char* path) override { DeleteFileA(path); }
};

}  // namespace

std::unique_ptr<TemporaryFiles> make_system_temporary_files() {
  return std::make_unique<SystemTemporaryFiles>();
}
