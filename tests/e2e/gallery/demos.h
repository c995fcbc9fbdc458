// The dialogs of the gallery. Each opens on behalf of the main window and logs what it is told.
#pragma once

#include "log.h"

namespace gallery {

/// Modal: resizing, owner drawing, colours, parameters, keys, frame commands.
void show_note(HWND owner, const Log& log);
/// Modeless and open once: hyperlinks and flat buttons.
void show_links(HWND owner, const Log& log);
/// Modal: rows that are filled when they are shown, sorting.
void show_list(HWND owner, const Log& log);
/// Modal: controls of the system with much in them.
void show_crowd(HWND owner, const Log& log);

}  // namespace gallery
