#include "persist/icon_cache.h"

#include <exception>
#include <string>

#include "orlo/exception.h"
#include "orlo/folders.h"
#include "orlo/raw_file.h"
#include "orlo/sync_file.h"
#include "persist/image_paths.h"

namespace {

constexpr size_t kBlockSize = size_t{1} << 18;
/// More than any image list has; so that a file of gigabytes doesn't take all memory.
constexpr size_t kLargestImageFile = size_t{128} << 20;
constexpr uint32_t kExclusive = 0;

/// Empty if not all of it can be had.
std::string read_image_file(const char* path) {
  const auto file = ORLO::open_raw_file(path, ORLO::FileAccess::read, ORLO::kOpenExisting,
                                        ORLO::kShareRead, ORLO::kSequentialScan);
  std::string bytes;
  while (file != nullptr && bytes.size() <= kLargestImageFile) {
    const size_t done = bytes.size();
    bytes.resize(done + kBlockSize);
    const ORLO::Transfer block = file->read(done, bytes.data() + done, kBlockSize);
    bytes.resize(done + block.count);
    if (block.error != 0) break;
    if (block.count == 0) return bytes;
  }
  return {};
}

/// In one piece.
void write_image_file(const char* path, const std::string& bytes) {
  const auto file =
      ORLO::open_raw_file(path, ORLO::FileAccess::write, ORLO::kCreateAlways, kExclusive, 0);
  if (file != nullptr) file->write(0, bytes.data(), bytes.size());
}

void forget_images(ImageIndexMap& map) noexcept {
  for (auto& [spec, image] : map) {
    if (image > kDefaultImage) image = kImageNotLoaded;
  }
}

std::unique_ptr<ImageList> read_list(const UninstallPara& para, ImageIndexMap& map,
                                     ImageLists& lists) {
  ORLO::SyncInFile paths(para.imagePathsPath.c_str(), ORLO::kOpenExisting, ORLO::kShareReadWrite,
                         ORLO::kSequentialScan);
  if (!LoadImagePaths(map, paths)) return nullptr;
  const std::string bytes = read_image_file(para.imageListPath.c_str());
  bool other_size = false;
  auto list = bytes.empty() ? nullptr : lists.read(bytes, other_size);
  if (other_size) forget_images(map);
  return list;
}

}  // namespace

bool keeps_icons(const UninstallPara& para) noexcept {
  return !para.noPersist && !para.imageListPath.empty() && !para.imagePathsPath.empty();
}

std::unique_ptr<ImageList> read_icon_cache(const UninstallPara& para, ImageIndexMap& map,
                                           ImageLists& lists) {
  std::unique_ptr<ImageList> list;
  try {
    if (keeps_icons(para)) list = read_list(para, map, lists);
  } catch (const ORLO::Exception&) {
    // A file that is larger than the memory, as the new-handler tells that.
  } catch (const std::exception&) {
    // Likewise without the handler.
  }
  return list != nullptr ? std::move(list) : lists.fresh();
}

void write_icon_cache(const UninstallPara& para, const ImageIndexMap& map,
                      const ImageList& images) {
  if (!keeps_icons(para)) return;
  std::string bytes;
  const ImageList::Written written = images.write(bytes);
  if (written == ImageList::Written::no_stream) {
    ORLO::delete_file(para.imagePathsPath.c_str());
    return;
  }
  ORLO::create_folder_of(para.imageListPath.c_str());
  ORLO::create_folder_of(para.imagePathsPath.c_str());
  if (written == ImageList::Written::yes) write_image_file(para.imageListPath.c_str(), bytes);
  ORLO::SyncOutFile paths(para.imagePathsPath.c_str(), ORLO::kCreateAlways, ORLO::kShareRead, 0);
  SaveImagePaths(map, paths);
}
