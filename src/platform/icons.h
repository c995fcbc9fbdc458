// The seam to icons that stand in files.
#pragma once

#include <cstdint>
#include <memory>

/// An icon that was extracted; it goes with its owner.
class Icon {
 public:
  virtual ~Icon() = default;
};

class IconExtractor {
 public:
  virtual ~IconExtractor() = default;
  /// ExtractIconExA, asked for one icon of the system's large or small size: null unless exactly
  /// one came. `index` counts from 0, a negative one is a resource's id. `file` is taken as it is,
  /// whatever it is. Any thread.
  virtual std::unique_ptr<Icon> extract(const char* file, int32_t index, bool large) = 0;
};

/// The icons of this system.
std::unique_ptr<IconExtractor> make_system_icon_extractor();
