// What the contract of WMI is tested on: a WMI with what it tells of the hotfixes of its system.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/wmi.h"

inline constexpr char kHotfixQuery[] = "SELECT * FROM Win32_QuickFixEngineering";
inline constexpr char kRootNamespace[] = "ROOT/CIMV2";

/// Of the one hotfix that each bed with hotfixes tells of.
inline constexpr char kBedHotfix[] = "KB1234567";
inline constexpr char kBedDescription[] = "Update";

class WmiBed {
 public:
  virtual ~WmiBed() = default;
  virtual Wmi& wmi() = 0;
  /// False where WMI is switched off.
  virtual bool has_wmi() const = 0;
};

struct WmiBedMaker {
  const char* name;
  std::function<std::unique_ptr<WmiBed>()> make;
};

inline void PrintTo(const WmiBedMaker& maker, std::ostream* out) {
  *out << maker.name;
}

/// The promises of Wmi that every implementation keeps.
class WmiContract : public ::testing::TestWithParam<WmiBedMaker> {
 protected:
  WmiContract() : bed_(GetParam().make()) {}

  bool has_wmi() const { return bed_->has_wmi(); }
  std::unique_ptr<WmiQuery> connect() { return bed_->wmi().connect(); }

  /// Looks at the result of kHotfixQuery: the hotfix where there is WMI, a failure where not.
  void expect_hotfix(WmiQuery& query);

 private:
  const std::unique_ptr<WmiBed> bed_;
};
