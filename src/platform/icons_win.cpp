#include "platform/icons.h"

#include <cstring>

#include "orlo/file_modes.h"
#include "platform/icon_file_check.h"
#include "platform/system_icon.h"
// This needs what orlowin.h brings.
#include <shellapi.h>

namespace {

constexpr uint32_t kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// False if the tables of a file lead astray. The file is the one that the platform is going to
/// find; what can't be looked at is the platform's to judge.
bool is_sound(const char* name, int32_t index) {
  char found[MAX_PATH] = "";
  const char* path = name;
  if (std::strpbrk(name, "\\/:") == nullptr) {
    const DWORD length = SearchPathA(nullptr, name, nullptr, MAX_PATH, found, nullptr);
    if (length == 0 || length >= MAX_PATH) return true;
    path = found;
  }
  const auto file =
      ORLO::open_raw_file(path, ORLO::FileAccess::read, ORLO::kOpenExisting, kShareAll, 0);
  return file == nullptr || check_icon_file(*file, index);
}

class SystemIcons final : public IconExtractor {
 public:
  std::unique_ptr<Icon> extract(const char* file, int32_t index, bool large) override {
    if (!is_sound(file, index)) return nullptr;
    HICON handle = nullptr;
    const UINT count =
        ExtractIconExA(file, index, large ? &handle : nullptr, large ? nullptr : &handle, 1);
    ORLO::OwnedIcon icon(handle);
    // The count alone says nothing: for some indices it is that of the icons in the file.
    if (count != 1 || !icon) return nullptr;
    return std::make_unique<SystemIcon>(std::move(icon));
  }
};

}  // namespace

std::unique_ptr<IconExtractor> make_system_icon_extractor() {
  return std::make_unique<SystemIcons>();
}
