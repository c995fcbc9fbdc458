#include <windows.h>

#include <cstring>
#include <string>

#include "orlo/kernel_handles.h"
#include "platform/files.h"

namespace {

struct FindTraits {
  using Handle = HANDLE;
  static Handle invalid() noexcept { return INVALID_HANDLE_VALUE; }
  static void close(Handle handle) noexcept { FindClose(handle); }
};

// The system counts the bytes of a text's 16-bit form in 16 bits; what is longer comes out as
// anything.
constexpr size_t kLongestToExpand = 32000;

class SystemFiles final : public Files {
 public:
  bool is_file(const char* path) override {
    WIN32_FIND_DATAA found{};
    const ORLO::OwnedHandle<FindTraits> search(FindFirstFileA(path, &found));
    return search && (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
  }

  bool can_open(const char* path) override {
    const ORLO::OwnedFile file(CreateFileA(path, 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                           OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    return static_cast<bool>(file);
  }

  std::optional<String> search_path(const char* name, const char* extension) override {
    char path[MAX_PATH] = "";
    const DWORD length = SearchPathA(nullptr, name, extension, MAX_PATH, path, nullptr);
    if (length == 0 || length >= MAX_PATH) return std::nullopt;
    return String(path);
  }

  std::optional<String> expand_environment(const char* text, size_t limit) override {
    if (std::strlen(text) > kLongestToExpand) return std::nullopt;
    // Some systems want room for one character more than the text has; the promised limit is
    // looked at below.
    std::string buffer(limit + 2, '\0');
    const DWORD room = static_cast<DWORD>(buffer.size());
    const DWORD needed = ExpandEnvironmentStringsA(text, buffer.data(), room);
    if (needed == 0 || needed > room) return std::nullopt;
    String result(buffer.c_str());
    if (result.length() >= limit) return std::nullopt;
    return result;
  }

  std::optional<String> system_folder() override { return folder(&GetSystemDirectoryA); }

  std::optional<String> windows_folder() override { return folder(&GetWindowsDirectoryA); }

 private:
  static std::optional<String> folder(UINT(WINAPI* get)(LPSTR, UINT)) {
    char path[MAX_PATH] = "";
    const UINT length = get(path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return std::nullopt;
    return String(path);
  }
};

}  // namespace

std::unique_ptr<Files> make_system_files() {
  return std::make_unique<SystemFiles>();
}
