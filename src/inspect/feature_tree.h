// The features of an installed product as a tree.
#pragma once

#include <vector>

#include "orlo/rstring.h"
#include "platform/installer.h"
#include "platform/registry.h"

/// Images of the marks, as they stand side by side in their bitmap.
inline constexpr int kInstalledMark = 1;
inline constexpr int kMissingMark = 2;

struct FeatureNode {
  String name;
  int parent = -1;  ///< place of the parent in the list of nodes; -1 at the root
  int mark = kMissingMark;
};

/// In ascending order of their names, each after its parent: one whose parent sorts after it stands
/// at the root.
std::vector<FeatureNode> read_feature_tree(Installer& installer, Registry& registry,
                                           const String& product_code);
