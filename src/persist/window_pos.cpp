#include "persist/window_pos.h"

#include <cstring>

#include "orlo/scan.h"

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
