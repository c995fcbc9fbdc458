// The patches that are applied to a product, as rows of texts in the order of their dates.
#pragma once

#include <array>
#include <functional>
#include <vector>

#include "inventory/installer_patches.h"
#include "orlo/clock.h"
#include "orlo/rstring.h"
#include "platform/installer.h"
#include "platform/registry.h"

inline constexpr int kPatchColumns = 6;

struct PatchColumn {
  unsigned title;  ///< id of the text
  int width;       ///< pixels at 96 dots per inch
};

const PatchColumn& patch_column(int index);

using PatchRow = std::array<String, kPatchColumns>;

/// What patches are read from; all must outlive the call.
struct PatchServices {
  Installer& installer;
  Registry& registry;
  const ORLO::Clock& clock;
  /// The text with this id.
  std::function<String(unsigned id)> text_of;
};

/// Patches without a date come first; those of one date stand in the order of their keys.
std::vector<PatchRow> read_patch_rows(const PatchServices& services, const String& product_code);

/// The rows of these patches alone; one that isn't in `details` shows its key only.
std::vector<PatchRow> make_patch_rows(const PatchSet& patches, const PatchMap& details,
                                      const PatchServices& services);
