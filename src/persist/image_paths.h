// The file that keeps which image shows which icon: a line for each, the image's index, a blank and
// the icon's specification. Only LF ends a line.
#pragma once

#include "orlo/in_file.h"
#include "orlo/out_file.h"
#include "persist/image_index_map.h"

/// Sets the map's entries to what the file has. A line without a specification is passed over, as
/// is one whose number isn't decimal, or is neither -1 nor an index. False if the file isn't open.
bool LoadImagePaths(ImageIndexMap& map, ORLO::InFile& file);

/// Writes all of the map in its order, but for a specification with a line end in it, which no line
/// can hold. Always true: what is lost by a failure is only loaded anew.
bool SaveImagePaths(const ImageIndexMap& map, ORLO::OutFile& file);
