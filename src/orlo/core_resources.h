// Icons and dialogs of the optional module with the foundation's texts.
#pragma once

#include <memory>

#include "orlo/core_module.h"
#include "orlo/window_handles.h"

namespace ORLO {

/// Keeps the module loaded for its scope; empty where the program came without it.
class CoreResources {
 public:
  explicit operator bool() const noexcept { return module() != nullptr; }
  HINSTANCE module() const noexcept {
    return core_ != nullptr ? static_cast<HINSTANCE>(core_->native()) : nullptr;
  }
  /// A copy that outlives the module, of the system's size; empty if there is no such icon.
  OwnedIcon icon(unsigned id) const noexcept;
  /// Lives as long as this object; null if there is no such dialog.
  const DLGTEMPLATE* dialog(unsigned id) const noexcept;

 private:
  const std::unique_ptr<CoreModule> core_ = core_module();
};

/// A dialog of a module, in the language that the system chooses; null if there is none.
const DLGTEMPLATE* find_dialog(HINSTANCE module, unsigned id) noexcept;

/// Shows the foundation's own about box; nothing where the module is missing.
void show_library_about(HWND owner);

}  // namespace ORLO
