// What Windows Installer's registry says about the patches of its products.
#pragma once

#include <cstdint>
#include <map>
#include <set>

#include "inventory/table.h"
#include "platform/registry.h"

struct PatchInfo {
  String displayName;
  String localPackage;
  String installed;  ///< a date, as the installer wrote it
  uint32_t state = 0;
  uint32_t uninstallable = 0;
};

/// Keys are codes in the packed form.
using PatchSet = std::set<String, ByteOrder>;
using PatchMap = std::map<String, PatchInfo, ByteOrder>;
using ProductPatchMap = std::map<String, PatchSet, ByteOrder>;

/// The installer's registry form of a GUID: without braces and dashes, each group of digits in
/// reverse order, from the fourth group on each pair. A text that has other than 32 characters
/// without them is only stripped of them.
String PackProductCode(const String& code);

/// Reads all patches of all products, for every user. Clears `patchMap` first and adds to
/// `productPatchMap`. The status of opening the root key; nothing is added where that fails.
RegStatus LoadInstallerPatches(Registry& registry, PatchMap& patchMap,
                               ProductPatchMap& productPatchMap);
