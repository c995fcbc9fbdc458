// The library's message box as a dialog template, worked out without a window.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ORLO {

/// What a dialog procedure ends with for a button; most answer with their id.
int box_answer(uint16_t button) noexcept;
/// The ids of a box's buttons from the left.
std::vector<uint16_t> box_buttons(uint32_t flags);
/// The place of the default button among them.
size_t default_button(uint32_t flags, size_t buttons) noexcept;
/// The system's icon for the flags; 0: none.
uint16_t box_icon(uint32_t flags) noexcept;
/// Whether the box has a button that cancels it.
bool has_cancel(uint32_t flags);
/// Whether Escape and the like end a box; they don't where there is nothing but OK to say.
bool obeys_cancel(uint32_t flags) noexcept;

struct PixelSize {
  int width;
  int height;
};

/// What was measured for a box, in pixels.
struct BoxMeasures {
  /// Average width and height of the characters that the system counts dialog units by.
  PixelSize dialog_unit;
  /// The same of the font that the texts appear in.
  PixelSize character;
  PixelSize text;
  PixelSize icon;
  /// Of the widest button's caption.
  int caption_width;
};

/// The average width of a font's characters, from the width of all letters, small and capital.
int average_width(int width_of_all_letters) noexcept;

/// The template; empty if the texts don't fit into its block. `captions` go with box_buttons().
std::vector<uint16_t> box_template(uint32_t flags, const std::u16string& caption,
                                   const std::u16string& text,
                                   const std::vector<std::u16string>& captions,
                                   const BoxMeasures& measures);

}  // namespace ORLO
