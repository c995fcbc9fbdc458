// The program's texts, dialogs and menus, in one explicit language.
#pragma once

#include <cstdint>

#include "orlo/rstring.h"
#include "orlo/window_handles.h"

/// Looks into one module for one language, whatever language the system would choose for the
/// thread. A plain value.
class Resources {
 public:
  /// `language`: 2057 (English) or 1031 (German).
  Resources(HINSTANCE module, uint16_t language) noexcept : module_(module), language_(language) {}

  /// In the code page; empty if there is no such text.
  String text(unsigned id) const;
  /// Lives as long as the module; null if there is no such dialog. The system itself takes the menu
  /// that the template names in a language of its own choice; see load_menu.
  const DLGTEMPLATE* dialog(unsigned id) const noexcept;
  /// Throws LWE if there is no such menu. The main dialog puts its own in with ORLO::replace_menu.
  ORLO::OwnedMenu load_menu(unsigned id) const;
  /// Throws LWE if there is no such table.
  ORLO::OwnedAccelerators accelerators(unsigned id) const;

  HINSTANCE module() const noexcept { return module_; }
  uint16_t language() const noexcept { return language_; }

 private:
  struct Block {
    const void* data;
    size_t size;
  };
  Block find(LPCSTR type, unsigned id) const noexcept;

  HINSTANCE module_;
  uint16_t language_;
};
