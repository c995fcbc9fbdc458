// Which image of the list's image list shows which icon.
#pragma once

#include <cstdint>
#include <map>

#include "inventory/table.h"

/// From an icon specification, exactly as packages have it, to the image's index. -1: the image
/// isn't loaded yet; 0 is the default image.
using ImageIndexMap = std::map<String, int32_t, ByteOrder>;

inline constexpr int32_t kImageNotLoaded = -1;
inline constexpr int32_t kDefaultImage = 0;

/// A number that was kept by an earlier run may lead beyond the images: then the default one is
/// drawn.
inline int32_t drawn_index(int32_t image, int32_t count) noexcept {
  return image < count ? image : kDefaultImage;
}
