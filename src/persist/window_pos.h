// The main window's place as a text: "left/top/right/bottom - show command".
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "orlo/dpi.h"
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

  /// 0 where the edges are the wrong way round, and not more than any window has.
  int width() const noexcept;
  int height() const noexcept;
  bool operator==(const WindowPos&) const = default;
};

/// None unless all five numbers are there.
std::optional<WindowPos> parse_window_pos(const String& text);

String window_pos_text(const WindowPos& pos);

/// Puts the place of a window that is not minimised into `windowPos`, if it differs.
void keep_window_pos(const WindowPos& pos, String& windowPos);

/// The least and the most that the system allows of a window's size.
struct SizeLimits {
  int min_width = 0;
  int min_height = 0;
  int max_width = 0;
  int max_height = 0;
};

/// Where the system would put a window that is moved to the place.
WindowPos as_placed(const WindowPos& pos, const SizeLimits& limits);

/// A part of the screens that a window may cover, in pixels; `right` and `bottom` lie outside.
struct ScreenArea {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
};

/// The place as it is if the title bar of a window there can be grasped on one of the areas; else
/// moved into the first one, and no larger than that. Without areas the place as it is. What can be
/// grasped depends on the resolution; places are pixels of the screen in any case.
WindowPos within_reach(const WindowPos& pos, const std::vector<ScreenArea>& areas,
                       int dpi = ORLO::kStandardDpi);
