// The language of the user interface, for the platform's own texts.
#pragma once

#include <cstdint>

/// Fixes the locale id of the user interface. Before any other thread exists.
void set_ui_locale(uint32_t lcid) noexcept;
uint32_t ui_locale_id() noexcept;

/// Gives the calling thread the language of the user interface. Every thread that shows or formats
/// text calls it first.
void applyThreadLanguage();

/// Primary language id of the calling thread's locale.
uint16_t thread_language() noexcept;

/// The process runs as 32-bit on a 64-bit system, and so sees two views of the registry.
bool under_wow64() noexcept;
