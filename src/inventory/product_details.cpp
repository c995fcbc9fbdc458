#include "inventory/product_details.h"

#include <optional>

#include "inventory/source_rows.h"

namespace {

using Field = PackageColumn;

/// Fills one row with what the installer has of one product.
class DetailsReader {
 public:
  DetailsReader(const ProductServices& services, const String& code, Row& entry)
      : services_(services), code_(code), entry_(entry) {}

  void count(const ProductPatchMap& product_patches) {
    FeatureMap features;
    PatchSet patches;
    ReadProductFeaturesAndPatches(services_.installer, code_, product_patches, features, patches);
    cell(entry_, Field::features).set_number(static_cast<int32_t>(features.size()));
    cell(entry_, Field::patches).set_number(static_cast<int32_t>(patches.size()));
  }

  /// An empty path is an answer, too: it takes away what was there.
  void take_package() {
    if (const auto path = property("LocalPackage")) text(Field::packagePath) = *path;
  }

  void fill_icon() {
    if (!icon_exists(text(Field::displayIcon), services_.files)) {
      take_filled(Field::displayIcon, "ProductIcon");
    }
  }

  void fill_if_empty(Field column, const char* name) {
    if (text(column).empty()) take_filled(column, name);
  }

  void fill_date() {
    String& shown = text(Field::installDate);
    if (!shown.empty()) return;
    const auto value = property("InstallDate");
    if (!value || value->empty()) return;
    DateTime date;
    date.parse(value->c_str(), services_.clock);
    shown = date.display(services_.clock);
  }

 private:
  String& text(Field column) { return cell(entry_, column).text; }
  std::optional<String> property(const char* name) {
    return services_.installer.product_info(code_.c_str(), name);
  }
  void take_filled(Field column, const char* name) {
    const auto value = property(name);
    if (value && !value->empty()) text(column) = *value;
  }

  const ProductServices& services_;
  const String& code_;
  Row& entry_;
};

}  // namespace

void ReadProductFeaturesAndPatches(Installer& installer, const String& productCode,
                                   const ProductPatchMap& productPatchMap, FeatureMap& featureMap,
                                   PatchSet& patchSet) {
  InstallerName feature = "";
  InstallerName parent = "";
  for (uint32_t index = 0;
       installer.feature_at(productCode.c_str(), index, feature, parent) == kInstallerSuccess;
       ++index) {
    featureMap.emplace(String(feature), String(parent));
  }
  const auto patches = productPatchMap.find(PackProductCode(productCode));
  if (patches != productPatchMap.end()) {
    patchSet.insert(patches->second.begin(), patches->second.end());
  }
}

void ReadProductDetails(const ProductServices& services, const String& productCode,
                        const ProductPatchMap& productPatchMap, Row& entry) {
  cell(entry, Field::MSI).set_number(1);
  DetailsReader details(services, productCode, entry);
  details.count(productPatchMap);
  details.take_package();
  details.fill_icon();
  details.fill_if_empty(Field::displayName, "ProductName");
  details.fill_if_empty(Field::displayVersion, "VersionString");
  details.fill_date();
}
