// The images of packages, each loaded once.
#pragma once

#include "inventory/entry.h"
#include "persist/image_index_map.h"
#include "platform/files.h"
#include "platform/icons.h"
#include "platform/image_list.h"

/// Nobody else may append to the list while this lives. All must outlive it.
class IconImages {
 public:
  IconImages(ImageIndexMap& map, ImageList& images, IconExtractor& extractor, Files& files)
      : map_(map), images_(images), extractor_(extractor), files_(files), count_(images.count()) {}

  /// The image that the map has for the package's icon, which is loaded if it isn't there yet. An
  /// icon that can't be had gets the default image, for good; one that the list has no room for
  /// only for now.
  int32_t ImageIndexOf(const UninstallEntry& entry);
  /// Likewise, with the default image in the place of one that the list doesn't have.
  int32_t drawn_image(const UninstallEntry& entry);

 private:
  ImageIndexMap& map_;
  ImageList& images_;
  IconExtractor& extractor_;
  Files& files_;
  /// Of the images, which nobody else appends to.
  int32_t count_;
};
