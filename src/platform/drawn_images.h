// The images that a bitmap of the resources holds side by side, at the size that is asked for. Only
// for the target.
#pragma once

#include "orlo/window_handles.h"

/// Side of each image as it is drawn.
inline constexpr int kDrawnSide = 16;

/// Images in the bitmap with this id; 0 if there is no such bitmap.
int count_drawn_images(HINSTANCE module, unsigned id) noexcept;

/// The first `count` images, each of that size, with edges as hard as they were drawn. Of 24 bits
/// to a pixel, which leave no room for an alpha channel; a mask is of 1. Null on failure.
ORLO::OwnedBitmap load_drawn_images(HINSTANCE module, unsigned id, int count, const SIZE& size,
                                    bool mask) noexcept;

/// Makes black what is white in the mask, as drawing through a mask wants it.
bool blacken_see_through(HBITMAP images, HBITMAP mask, const SIZE& size) noexcept;
