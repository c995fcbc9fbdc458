// What the contract of the registry is tested on: a registry with a way to fill it.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/memory_registry.h"
#include "platform/registry.h"

/// A registry that a test may change below three keys: kOwnUserKey, kOwnClassesKey, and
/// kOwnMachineKey with its twin in the other view. Paths are whole and UTF-8; text data is UTF-16
/// bytes. Those of HKEY_LOCAL_MACHINE name the native view, so the 32-bit one lies below
/// WOW6432Node.
class RegistryBed {
 public:
  virtual ~RegistryBed() = default;
  virtual Registry& registry() = 0;
  virtual MemoryRegistry::View view() const = 0;
  virtual void create(const std::string& path) = 0;
  virtual void set(const std::string& path, const std::string& name, uint32_t type,
                   const std::string& data) = 0;
  virtual void remove_value(const std::string& path, const std::string& name) = 0;
  /// Removes a key with all below it.
  virtual void remove(const std::string& path) = 0;
  /// Why this registry doesn't tell of the removal of a watched key itself; null if it does.
  virtual const char* silent_about_own_removal() const { return nullptr; }
  /// Why this registry doesn't ask for the right to query before it answers info(); likewise.
  virtual const char* lax_about_info() const { return nullptr; }
};

inline constexpr char kOwnUserKey[] = "HKEY_CURRENT_USER\\Software\\ZolvaneTest";
inline constexpr char kOwnMachineKey[] = "HKEY_LOCAL_MACHINE\\SOFTWARE\\ZolvaneTest";
inline constexpr char kOwnMachineKey32[] = "HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\ZolvaneTest";
inline constexpr char kOwnClassesKey[] = "HKEY_CLASSES_ROOT\\ZolvaneTest";

struct RegistryBedMaker {
  const char* name;
  std::function<std::unique_ptr<RegistryBed>()> make;
};

inline void PrintTo(const RegistryBedMaker& maker, std::ostream* out) {
  *out << maker.name;
}

/// The text's UTF-16 bytes with a terminator.
std::string text_data(std::u16string_view text);

/// The promises of Registry that every implementation keeps.
class RegistryContract : public ::testing::TestWithParam<RegistryBedMaker> {
 protected:
  RegistryContract();

  Registry& registry() { return bed_->registry(); }
  RegistryBed& bed() { return *bed_; }
  /// Opens a key below kOwnUserKey.
  RegistryKey open(const std::string& below = std::string(), uint32_t access = kKeyRead);
  void set(const std::string& name, uint32_t type, const std::string& data);
  void set(const std::string& name, std::u16string_view text);
  /// The names of all subkeys in their order.
  std::vector<std::string> subkeys_of(const RegistryKey& key);

 private:
  std::unique_ptr<RegistryBed> bed_;
};
