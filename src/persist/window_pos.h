// The main window's place as a text: "left/top/right/bottom - show command".
#pragma once

#include <cstdint>
#include <optional>

#include "orlo/rstring.h"

/// Screen pixels of the window's normal, not minimised or maximised, state.
struct WindowPos {
  /// A window that is minimised has no place worth keeping.
  static constexpr int kMinimized = 2;

  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
  int show_command = 1;

  bool operator==(const WindowPos&) const = default;
};

/// None unless all five numbers are there.
std::optional<WindowPos> parse_window_pos(const String& text);

String window_pos_text(const WindowPos& pos);

/// Puts the place of a window that is not minimised into `windowPos`, if it differs.
void keep_window_pos(const WindowPos& pos, String& windowPos);
