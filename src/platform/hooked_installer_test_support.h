// An installer in front of another one, to change things between two calls.
#pragma once

#include <functional>
#include <utility>

#include "platform/installer.h"

class HookedInstaller final : public Installer {
 public:
  /// `hook` is called before each call.
  HookedInstaller(Installer& behind, std::function<void()> hook)
      : behind_(behind), hook_(std::move(hook)) {}

  void set_internal_ui(uint32_t level, void** owner) override {
    hook_();
    behind_.set_internal_ui(level, owner);
  }
  InstallerStatus product_at(uint32_t index, InstallerName& code) override {
    hook_();
    return behind_.product_at(index, code);
  }
  InstallerStatus feature_at(const char* product, uint32_t index, InstallerName& feature,
                             InstallerName& parent) override {
    hook_();
    return behind_.feature_at(product, index, feature, parent);
  }
  int32_t feature_state(const char* product, const char* feature) override {
    hook_();
    return behind_.feature_state(product, feature);
  }
  std::optional<String> product_info(const char* product, const char* property) override {
    hook_();
    return behind_.product_info(product, property);
  }

 private:
  Installer& behind_;
  const std::function<void()> hook_;
};
