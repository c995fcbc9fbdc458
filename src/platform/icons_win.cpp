#include "platform/icons.h"

#include "platform/system_icon.h"
// This needs what orlowin.h brings.
#include <shellapi.h>

namespace {

class SystemIcons final : public IconExtractor {
 public:
  std::unique_ptr<Icon> extract(const char* file, int32_t index, bool large) override {
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
