// The seam to the list of small images that the main list draws its icons from.
#pragma once

#include <memory>
#include <string>

#include "platform/icons.h"

class ImageList {
 public:
  enum class Written { yes, no, no_stream };

  virtual ~ImageList() = default;
  /// The icon as a new last image: its index, -1 if it can't be. The icon must come from the
  /// extractor of the same system.
  virtual int append(const Icon& icon) = 0;
  virtual int count() const = 0;
  /// The whole list as the bytes that ImageLists::read understands. no_stream: there was no memory
  /// to begin with.
  virtual Written write(std::string& bytes) const = 0;
};

/// Makes image lists of the system's small icon size.
class ImageLists {
 public:
  virtual ~ImageLists() = default;
  /// A list with the default image alone, index 0.
  virtual std::unique_ptr<ImageList> fresh() = 0;
  /// What write() has given, at whatever time; null for any other bytes, and where the images have
  /// another size than the system's small icons have now: `other_size` tells these two apart.
  virtual std::unique_ptr<ImageList> read(const std::string& bytes, bool& other_size) = 0;
};
