// The clipboard.
#pragma once

#include "orlo/orlowin.h"
#include "orlo/rstring.h"

/// Puts a text there on behalf of a window; false if another program has the clipboard open. An
/// empty text changes nothing.
bool copy_to_clipboard(HWND owner, const String& text);
