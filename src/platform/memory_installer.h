// Windows Installer in memory, for tests and for the build machine: products in a fixed order, any
// failure on demand, a log of the calls.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/enumeration_end.h"

/// Answers as the platform's 8-bit functions do: codes compare without case; names of properties
/// with it. Belongs to one thread.
class MemoryInstaller : public Installer {
 public:
  struct Product {
    std::string code;
    std::map<std::string, std::string> properties;
    std::vector<std::pair<std::string, std::string>> features;  ///< each with its parent
    /// Of features that aren't kFeatureLocal.
    std::map<std::string, int32_t> states = {};
  };

  /// Adds a product after the others. The reference holds until the next one is added.
  Product& add(const std::string& code);
  /// Takes the products of a .reg text over, with their names, versions, icons and features, as
  /// the keys Installer\Products and Installer\Features of a user or of the machine hold them.
  /// False if the text isn't understood.
  bool load(std::string_view reg_text);

  /// The next `times` calls that read `call` in calls() answer `status`; times -1 is for ever. A
  /// bare operation ("product_at", "feature_at", "product_info") stands for all its calls.
  void fail(const std::string& call, InstallerStatus status, int times = 1);
  /// From now on a product_at() that fails on demand leaves this text, cut to what there is room
  /// for, as its code.
  void leave_after_failure(const std::string& code) { left_code_ = code; }
  /// The calls so far: "product_at 0", "feature_at {CODE} 0", "product_info {CODE} LocalPackage",
  /// "set_internal_ui 2".
  const std::vector<std::string>& calls() const noexcept { return calls_; }
  void forget_calls() noexcept { calls_.clear(); }
  const std::vector<Product>& products() const noexcept { return products_; }
  /// The window of the last set_internal_ui().
  void* ui_owner() const noexcept { return ui_owner_; }

  void set_internal_ui(uint32_t level, void** owner) override;
  InstallerStatus product_at(uint32_t index, InstallerName& code) override;
  InstallerStatus feature_at(const char* product, uint32_t index, InstallerName& feature,
                             InstallerName& parent) override;
  int32_t feature_state(const char* product, const char* feature) override;
  std::optional<String> product_info(const char* product, const char* property) override;

 private:
  struct Failure {
    std::string call;
    InstallerStatus status;
    int times;
  };

  InstallerStatus enter(const std::string& call);
  InstallerStatus find_product(uint32_t index, InstallerName& code);
  const Product* product(std::string_view code) const;

  std::vector<Product> products_;
  std::vector<Failure> failures_;
  std::vector<std::string> calls_;
  std::optional<std::string> left_code_;
  EnumerationEnd end_;
  void* ui_owner_ = nullptr;
};

/// The registry's form of a product code, "{" and "}" and "-" taken out and each group of digits
/// reversed, and back. Both texts must be whole codes.
std::string packed_product_key(std::string_view code);
std::string product_code_of(std::string_view packed_key);
