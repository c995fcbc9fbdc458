// What Windows Installer knows of one product.
#pragma once

#include <map>

#include "inventory/installer_patches.h"
#include "inventory/package_schema.h"
#include "orlo/clock.h"
#include "platform/files.h"
#include "platform/installer.h"

/// Features with the feature that each is part of, empty for one at the top.
using FeatureMap = std::map<String, String, ByteOrder>;

/// Adds all features of the product, and the packed codes of its patches.
void ReadProductFeaturesAndPatches(Installer& installer, const String& productCode,
                                   const ProductPatchMap& productPatchMap, FeatureMap& featureMap,
                                   PatchSet& patchSet);

/// What product details are read from; all must outlive their user.
struct ProductServices {
  Installer& installer;
  Files& files;
  const ORLO::Clock& clock;
};

/// Fills a row of packageSchema() with what the installer knows: numbers of features and patches
/// and the package always, name, version, date and icon where the row has none (or, for the icon,
/// one whose file is gone).
void ReadProductDetails(const ProductServices& services, const String& productCode,
                        const ProductPatchMap& productPatchMap, Row& entry);
