#include "orlo/core_resources.h"

#include "orlo/about_dlg.h"

namespace ORLO {
namespace {

constexpr unsigned kAboutDialog = 1;

}  // namespace

OwnedIcon CoreResources::icon(unsigned id) const noexcept {
  if (!*this) return OwnedIcon();
  return OwnedIcon(static_cast<HICON>(
      LoadImageA(module(), MAKEINTRESOURCEA(id), IMAGE_ICON, 0, 0, LR_DEFAULTSIZE)));
}

const DLGTEMPLATE* CoreResources::dialog(unsigned id) const noexcept {
  return *this ? find_dialog(module(), id) : nullptr;
}

const DLGTEMPLATE* find_dialog(HINSTANCE module, unsigned id) noexcept {
  const HRSRC place = FindResourceA(module, MAKEINTRESOURCEA(id), RT_DIALOG);
  const HGLOBAL loaded = place != nullptr ? LoadResource(module, place) : nullptr;
  return loaded != nullptr ? static_cast<const DLGTEMPLATE*>(LockResource(loaded)) : nullptr;
}

void show_library_about(HWND owner) {
  const CoreResources core;
  const DLGTEMPLATE* const dialog = core.dialog(kAboutDialog);
  if (dialog == nullptr) return;
  Dialog::DoModal(core.module(), dialog, owner, [](HWND window) {
    return std::make_unique<AboutDlgController>(window, "ORLOCORE about");
  });
}

}  // namespace ORLO
