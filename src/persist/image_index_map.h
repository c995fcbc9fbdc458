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
