// What the contract of the installer is tested on: an installer with a way to give it products.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include "platform/memory_installer.h"

class InstallerBed {
 public:
  virtual ~InstallerBed() = default;
  virtual Installer& installer() = 0;
  /// Installs a product, whose code begins with kOwnCode; it goes with the bed. There may be others
  /// besides.
  virtual void install(const MemoryInstaller::Product& product) = 0;
  /// Why what this installer gives as a feature's parent means nothing; null if it does.
  virtual const char* silent_about_parents() const { return nullptr; }
};

inline constexpr char kOwnCode[] = "{5A0CE5ED-0000-4000-8000-";

/// A code of our own that ends in these twelve digits.
inline std::string own_code(const char* digits) {
  return kOwnCode + (digits + std::string("}"));
}

struct InstallerBedMaker {
  const char* name;
  std::function<std::unique_ptr<InstallerBed>()> make;
};

inline void PrintTo(const InstallerBedMaker& maker, std::ostream* out) {
  *out << maker.name;
}

/// The promises of Installer that every implementation keeps.
class InstallerContract : public ::testing::TestWithParam<InstallerBedMaker> {
 protected:
  InstallerContract() : bed_(GetParam().make()) {}

  InstallerBed& bed() { return *bed_; }
  Installer& installer() { return bed_->installer(); }

 private:
  std::unique_ptr<InstallerBed> bed_;
};
