#include "inspect/feature_tree.h"

#include <map>

#include "inventory/product_details.h"

namespace {

/// Places of the features that stand in the tree already.
using Places = std::map<String, int, ORLO::ByteOrder>;

/// Features and patches are read in one step; the patches aren't looked at here.
FeatureMap read_features(Installer& installer, Registry& registry, const String& product_code) {
  PatchMap details;
  ProductPatchMap applied;
  FeatureMap features;
  PatchSet patches;
  LoadInstallerPatches(registry, details, applied);
  ReadProductFeaturesAndPatches(installer, product_code, applied, features, patches);
  return features;
}

int mark_of(int32_t state) noexcept {
  return state < kFeatureLocal ? kMissingMark : kInstalledMark;
}

/// -1 for a feature at the top, and for one whose parent doesn't stand there yet.
int place_of(const String& parent, const Places& places) {
  if (parent.empty()) return -1;
  const auto found = places.find(parent);
  return found != places.end() ? found->second : -1;
}

}  // namespace

std::vector<FeatureNode> read_feature_tree(Installer& installer, Registry& registry,
                                           const String& product_code) {
  const FeatureMap features = read_features(installer, registry, product_code);
  std::vector<FeatureNode> nodes;
  nodes.reserve(features.size());
  Places places;
  for (const auto& [name, parent] : features) {
    const int32_t state = installer.feature_state(product_code.c_str(), name.c_str());
    nodes.push_back({name, place_of(parent, places), mark_of(state)});
    places.emplace(name, static_cast<int>(places.size()));
  }
  return nodes;
}
