#include "inventory/product_details.h"

#include "inventory/source_rows.h"

namespace {

using Field = PackageColumn;

/// What the installer has under this name, unless that is empty.
std::optional<String> filled_property(Installer& installer, const String& code, const char* name) {
  auto value = installer.product_info(code.c_str(), name);
  if (value && value->empty()) value.reset();
  return value;
}

struct Fallback {
  Field column;
  const char* property;
};

constexpr Fallback kFallbacks[] = {{Field::displayName, "ProductName"},
                                   {Field::displayVersion, "VersionString"}};

void fill_if_empty(Installer& installer, const String& code, const Fallback& fallback, Row& entry) {
  String& text = cell(entry, fallback.column).text;
  if (!text.empty()) return;
  if (const auto value = filled_property(installer, code, fallback.property)) text = *value;
}

void fill_icon(const ProductServices& services, const String& code, Row& entry) {
  String& icon = cell(entry, Field::displayIcon).text;
  if (icon_exists(icon, services.files)) return;
  if (const auto value = filled_property(services.installer, code, "ProductIcon")) icon = *value;
}

void fill_date(const ProductServices& services, const String& code, Row& entry) {
  String& text = cell(entry, Field::installDate).text;
  if (!text.empty()) return;
  const auto value = filled_property(services.installer, code, "InstallDate");
  if (!value) return;
  DateTime date;
  date.parse(value->c_str(), services.clock);
  text = date.display(services.clock);
}

}  // namespace

void ReadProductFeaturesAndPatches(Installer& installer, const String& productCode,
                                   const ProductPatchMap& productPatchMap, FeatureMap& featureMap,
                                   PatchSet& patchSet) {
  InstallerName feature = "";
  InstallerName parent = "";
  for (uint32_t index = 0;
       installer.feature_at(productCode.c_str(), index, feature, parent) == kInstallerSuccess;
       ++index) {
    featureMap.insert_or_assign(String(feature), String(parent));
  }
  const auto patches = productPatchMap.find(PackProductCode(productCode));
  if (patches != productPatchMap.end()) {
    patchSet.insert(patches->second.begin(), patches->second.end());
  }
}

void ReadProductDetails(const ProductServices& services, const String& productCode,
                        const ProductPatchMap& productPatchMap, Row& entry) {
  cell(entry, Field::MSI).set_number(1);
  FeatureMap features;
  PatchSet patches;
  ReadProductFeaturesAndPatches(services.installer, productCode, productPatchMap, features,
                                patches);
  cell(entry, Field::features).set_number(static_cast<int32_t>(features.size()));
  cell(entry, Field::patches).set_number(static_cast<int32_t>(patches.size()));
  // An empty path is an answer, too: it takes away what was there.
  if (const auto package = services.installer.product_info(productCode.c_str(), "LocalPackage")) {
    cell(entry, Field::packagePath).text = *package;
  }
  fill_icon(services, productCode, entry);
  for (const Fallback& fallback : kFallbacks)
    fill_if_empty(services.installer, productCode, fallback, entry);
  fill_date(services, productCode, entry);
}
