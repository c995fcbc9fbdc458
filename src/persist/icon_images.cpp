#include "persist/icon_images.h"

#include "persist/entry_icon.h"

int32_t IconImages::ImageIndexOf(const UninstallEntry& entry) {
  if (entry.displayIcon.empty()) return kDefaultImage;
  int32_t& image = map_.try_emplace(entry.displayIcon, kImageNotLoaded).first->second;
  if (image >= kDefaultImage) return image;
  const auto icon = loadEntryIcon(entry, false, files_, extractor_);
  if (icon == nullptr) return image = kDefaultImage;
  const int32_t appended = images_.append(*icon);
  if (appended < kDefaultImage) return kDefaultImage;
  count_ = appended + 1;
  return image = appended;
}

int32_t IconImages::drawn_image(const UninstallEntry& entry) {
  const int32_t image = ImageIndexOf(entry);
  return drawn_index(image, count_);
}
