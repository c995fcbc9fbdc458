// The icons that are kept from run to run: an image file and a paths file.
#pragma once

#include <memory>

#include "persist/image_index_map.h"
#include "persist/uninstall_para.h"
#include "platform/image_list.h"

/// Whether the run reads and writes the two files.
bool keeps_icons(const UninstallPara& para) noexcept;

/// Fills the map from the paths file, and if there is one gives the list of the image file; else a
/// fresh list. The map may then have indices that the list hasn't; but where the images are of
/// another size than icons have now, all are to be loaded anew. Failures are silent.
std::unique_ptr<ImageList> read_icon_cache(const UninstallPara& para, ImageIndexMap& map,
                                           ImageLists& lists);

/// Writes both files, and makes the folders that are missing. What can't be written is passed over;
/// without memory for the images the paths file goes.
void write_icon_cache(const UninstallPara& para, const ImageIndexMap& map, const ImageList& images);
