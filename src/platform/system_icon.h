// Icons as the window system has them. Only for the target.
#pragma once

#include <utility>

#include "orlo/window_handles.h"
#include "platform/icons.h"

class SystemIcon final : public Icon {
 public:
  explicit SystemIcon(ORLO::OwnedIcon icon) noexcept : icon_(std::move(icon)) {}

  HICON handle() const noexcept { return icon_.get(); }

 private:
  ORLO::OwnedIcon icon_;
};

/// The handle of an icon that this system's extractor gave, for as long as the icon lives; null for
/// any other.
inline HICON handle(const Icon& icon) noexcept {
  const auto* const own = dynamic_cast<const SystemIcon*>(&icon);
  return own != nullptr ? own->handle() : nullptr;
}
