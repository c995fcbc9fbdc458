#include "persist/window_pos.h"

#include <algorithm>
#include <cstring>

#include "orlo/scan.h"

namespace {

// What it takes to grasp a title bar, in pixels of a screen of 96 dots per inch.
constexpr int kGripWidth = 48;
constexpr int kTitleHeight = 24;
// No system has larger windows, or windows further out: messages tell of places in 16 bits.
constexpr int kLargest = 32767;
constexpr int kFarthest = -32768;

/// Length that two spans have in common; negative or 0 if they don't meet.
int64_t overlap(int64_t begin, int64_t end, int64_t other_begin, int64_t other_end) {
  return std::min(end, other_end) - std::max(begin, other_begin);
}

int size(int begin, int end) noexcept {
  return static_cast<int>(std::clamp<int64_t>(int64_t{end} - begin, 0, kLargest));
}

/// Where both can't be had, a window is larger than the most rather than smaller than the least.
int limited(int length, int least, int most) noexcept {
  return std::clamp(std::max(std::min(length, most), least), 0, kLargest);
}

bool in_reach(const WindowPos& pos, const ScreenArea& area, int dpi) {
  const int64_t title_height = ORLO::scale_up(kTitleHeight, dpi);
  return overlap(pos.left, pos.right, area.left, area.right) >= ORLO::scale_up(kGripWidth, dpi) &&
         overlap(pos.top, pos.top + title_height, area.top, area.bottom) >= title_height / 2;
}

/// Moves a span into another one, shortened if it is longer.
void move_into(int& begin, int& end, int area_begin, int area_end) {
  const int length = std::min(size(begin, end), size(area_begin, area_end));
  begin = std::clamp(begin, area_begin, area_end - length);
  end = begin + length;
}

}  // namespace

int WindowPos::width() const noexcept {
  return size(left, right);
}

int WindowPos::height() const noexcept {
  return size(top, bottom);
}

std::optional<WindowPos> parse_window_pos(const String& text) {
  WindowPos pos;
  const int count = ORLO::scan(text.c_str(), "%d/%d/%d/%d - %d",
                               {pos.left, pos.top, pos.right, pos.bottom, pos.show_command});
  if (count != 5) return {};
  return pos;
}

String window_pos_text(const WindowPos& pos) {
  return String::formatted("%d/%d/%d/%d - %d", pos.left, pos.top, pos.right, pos.bottom,
                           pos.show_command);
}

void keep_window_pos(const WindowPos& pos, String& windowPos) {
  if (pos.show_command == WindowPos::kMinimized) return;
  const String text = window_pos_text(pos);
  if (std::strcmp(text.c_str(), windowPos.c_str()) != 0) windowPos = text;
}

WindowPos as_placed(const WindowPos& pos, const SizeLimits& limits) {
  WindowPos placed = pos;
  placed.left = std::clamp(pos.left, kFarthest, kLargest);
  placed.top = std::clamp(pos.top, kFarthest, kLargest);
  placed.right = placed.left + limited(pos.width(), limits.min_width, limits.max_width);
  placed.bottom = placed.top + limited(pos.height(), limits.min_height, limits.max_height);
  return placed;
}

WindowPos within_reach(const WindowPos& pos, const std::vector<ScreenArea>& areas, int dpi) {
  const auto reaches = [&](const ScreenArea& area) { return in_reach(pos, area, dpi); };
  if (areas.empty() || std::any_of(areas.begin(), areas.end(), reaches)) return pos;
  WindowPos moved = pos;
  move_into(moved.left, moved.right, areas.front().left, areas.front().right);
  move_into(moved.top, moved.bottom, areas.front().top, areas.front().bottom);
  return moved;
}
