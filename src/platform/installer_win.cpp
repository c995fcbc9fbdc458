#include "platform/installer.h"

#include <windows.h>

#include <msi.h>

#include <algorithm>
#include <iterator>

#include "platform/enumeration_end.h"
#include "platform/system_installer.h"

namespace {

constexpr char kModule[] = "msi.dll";

/// Null where the system lacks one.
struct MsiFunctions {
  explicit MsiFunctions(ORLO::ModuleFunctions& functions) {
    find(functions, "MsiSetInternalUI", set_internal_ui);
    find(functions, "MsiEnumProductsA", enum_products);
    find(functions, "MsiEnumFeaturesA", enum_features);
    find(functions, "MsiQueryFeatureStateA", query_feature_state);
    find(functions, "MsiGetProductInfoA", get_product_info);
  }

  decltype(&MsiSetInternalUI) set_internal_ui;
  decltype(&MsiEnumProductsA) enum_products;
  decltype(&MsiEnumFeaturesA) enum_features;
  decltype(&MsiQueryFeatureStateA) query_feature_state;
  decltype(&MsiGetProductInfoA) get_product_info;

 private:
  template <typename Type>
  static void find(ORLO::ModuleFunctions& functions, const char* name, Type& function) {
    function = reinterpret_cast<Type>(functions.find(kModule, name));
  }
};

/// Clears the buffer, which some systems leave as it is, and others without a terminator.
void clear(InstallerName& name) {
  std::fill(std::begin(name), std::end(name), '\0');
}

void terminate(InstallerName& name) {
  name[kInstallerNameRoom - 1] = '\0';
}

class SystemInstaller final : public Installer {
 public:
  explicit SystemInstaller(ORLO::ModuleFunctions& functions) : functions_(functions) {}

  void set_internal_ui(uint32_t level, void** owner) override {
    if (msi().set_internal_ui == nullptr) return;
    msi().set_internal_ui(static_cast<INSTALLUILEVEL>(level), reinterpret_cast<HWND*>(owner));
  }

  InstallerStatus product_at(uint32_t index, InstallerName& code) override {
    if (msi().enum_products == nullptr) return kInstallerNoMoreItems;
    const InstallerStatus status = msi().enum_products(index, code);
    terminate(code);
    return end_.judge(index, status);
  }

  InstallerStatus feature_at(const char* product, uint32_t index, InstallerName& feature,
                             InstallerName& parent) override {
    clear(feature);
    clear(parent);
    if (msi().enum_features == nullptr) return kInstallerNoMoreItems;
    const InstallerStatus status = msi().enum_features(product, index, feature, parent);
    terminate(feature);
    terminate(parent);
    return status;
  }

  int32_t feature_state(const char* product, const char* feature) override {
    if (msi().query_feature_state == nullptr) return kFeatureUnknown;
    return msi().query_feature_state(product, feature);
  }

  std::optional<String> product_info(const char* product, const char* property) override {
    if (msi().get_product_info == nullptr) return std::nullopt;
    char value[kInstallerValueRoom] = "";
    DWORD length = sizeof value;
    if (msi().get_product_info(product, property, value, &length) != ERROR_SUCCESS) {
      return std::nullopt;
    }
    value[sizeof value - 1] = '\0';
    return String(value);
  }

 private:
  const MsiFunctions& msi() {
    if (!msi_) msi_.emplace(functions_);
    return *msi_;
  }

  ORLO::ModuleFunctions& functions_;
  std::optional<MsiFunctions> msi_;
  EnumerationEnd end_;
};

}  // namespace

std::unique_ptr<Installer> make_installer(ORLO::ModuleFunctions& functions) {
  return std::make_unique<SystemInstaller>(functions);
}

std::unique_ptr<Installer> make_system_installer() {
  return make_installer(ORLO::system_functions());
}
