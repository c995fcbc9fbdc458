// An installer, its registry and files in memory, and what the inventory makes of them.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "inventory/installer_source.h"
#include "orlo/fixed_clock.h"
#include "platform/memory_files.h"
#include "platform/memory_installer.h"
#include "platform/memory_registry.h"

inline constexpr char kProduct[] = "{12345678-ABCD-EF01-2345-6789ABCDEF01}";
inline constexpr char kPackedProduct[] = "87654321DCBA10FE32547698BADCFE10";
inline constexpr char kMachineSid[] = "S-1-5-18";

class InstallerBedTest : public testing::Test {
 protected:
  /// A key of the installer's registry as this process, a 32-bit one, sees it.
  static std::string user_data(const std::string& below = {}) {
    const std::string root =
        "HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Microsoft\\Windows\\CurrentVersion\\"
        "Installer\\UserData";
    return below.empty() ? root : root + "\\" + below;
  }
  static std::string patch_key(const std::string& patch, const std::string& sid = kMachineSid) {
    return user_data(sid + "\\Patches\\" + patch);
  }
  static std::string product_key(const std::string& product, const std::string& sid = kMachineSid) {
    return user_data(sid + "\\Products\\" + product);
  }
  static std::string product_patch_key(const std::string& patch,
                                       const std::string& product = kPackedProduct,
                                       const std::string& sid = kMachineSid) {
    return product_key(product, sid) + "\\Patches\\" + patch;
  }

  ProductServices services() { return {installer_, files_, clock_}; }

  const ORLO::FixedClock clock_{{2026, 11, 5, 20, 12}};
  MemoryInstaller installer_;
  MemoryRegistry registry_;
  MemoryFiles files_;
};
