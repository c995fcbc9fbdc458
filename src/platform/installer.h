// The seam to Windows Installer: what it knows of its products.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "orlo/rstring.h"

/// A system error code; 0 is success.
using InstallerStatus = uint32_t;

inline constexpr InstallerStatus kInstallerSuccess = 0;
inline constexpr InstallerStatus kInstallerMoreData = 234;
inline constexpr InstallerStatus kInstallerNoMoreItems = 259;
inline constexpr InstallerStatus kInstallerUnknownProduct = 1605;
inline constexpr InstallerStatus kInstallerBadConfiguration = 1610;

/// MsiSetInternalUI's level without any user interface.
inline constexpr uint32_t kInstallerUiNone = 2;

/// Room for a product code or a feature's name, NUL included.
inline constexpr size_t kInstallerNameRoom = 39;
using InstallerName = char[kInstallerNameRoom];
/// Room for a property's value, likewise.
inline constexpr size_t kInstallerValueRoom = 1024;

/// States of a feature (INSTALLSTATE). Failures are negative.
inline constexpr int32_t kFeatureInvalidArgument = -2;
inline constexpr int32_t kFeatureUnknown = -1;
inline constexpr int32_t kFeatureAdvertised = 1;
inline constexpr int32_t kFeatureAbsent = 2;
inline constexpr int32_t kFeatureLocal = 3;

/// Belongs to one thread at a time.
class Installer {
 public:
  virtual ~Installer() = default;
  /// MsiSetInternalUI: `*owner` is a window's handle (HWND); the system writes the former owner's
  /// over it. The variable must live while the installer is in use: nothing says that the system
  /// doesn't keep its address and write there later.
  virtual void set_internal_ui(uint32_t level, void** owner) = 0;
  /// MsiEnumProductsA. `code` goes in as it is, and what the system leaves there comes out, with a
  /// terminator, after a failure too: mostly that is what went in. A failure that comes the
  /// hundredth time in a row is told as kInstallerNoMoreItems (see EnumerationEnd).
  virtual InstallerStatus product_at(uint32_t index, InstallerName& code) = 0;
  /// MsiEnumFeaturesA. Both names are empty where the system writes none.
  virtual InstallerStatus feature_at(const char* product, uint32_t index, InstallerName& feature,
                                     InstallerName& parent) = 0;
  /// MsiQueryFeatureStateA: INSTALLSTATE; what is below kFeatureLocal isn't installed.
  virtual int32_t feature_state(const char* product, const char* feature) = 0;
  /// MsiGetProductInfoA into a buffer of kInstallerValueRoom characters; none on failure and where
  /// the value doesn't fit.
  virtual std::optional<String> product_info(const char* product, const char* property) = 0;
};

/// The installer of this system; one without products where there is none.
std::unique_ptr<Installer> make_system_installer();
