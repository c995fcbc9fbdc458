// What all groups of commands need to know about windows.
#pragma once

#include <windows.h>

#include <string>

#include "json.h"
#include "words.h"

namespace driver {

/// The window whose handle stands in a word; throws Refusal if there is none.
HWND window_at(const Words& words, size_t index);
/// The control of the dialog in word 1 with the id in word 2; throws Refusal if there is none.
HWND control_of(const Words& words);
int64_t handle_number(HWND window);
/// WM_GETTEXT, which also works on controls of other processes.
std::string window_text(HWND window);
std::string window_class(HWND window);
/// Writes [left, top, right, bottom].
void write_rect(Json& answer, const char* name, const RECT& rect);

}  // namespace driver
