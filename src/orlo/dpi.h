// Lengths of a layout that are told in pixels. They are meant for a screen of 96 dots per inch; on
// any other they are scaled, as the system scales fonts and dialogs.
#pragma once

namespace ORLO {

inline constexpr int kStandardDpi = 96;

/// The length in pixels of a screen of this resolution. Rounded as MulDiv does, halves away from 0.
int scale_up(int length, int dpi) noexcept;
/// The other way round. What scale_up() made of a length gives that length again from 96 dots per
/// inch on. Only 0 becomes 0.
int scale_down(int pixels, int dpi) noexcept;

/// The resolution that the system tells this process, the same through all its life.
int screen_dpi() noexcept;

}  // namespace ORLO
