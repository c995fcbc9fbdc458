#include <memory>

#include "platform/wmi_walk_win.h"

namespace {

class Apartment {
 public:
  Apartment() noexcept
      : status_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE)) {}
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
  ~Apartment() {
    if (SUCCEEDED(status_)) CoUninitialize();
  }

 private:
  const HRESULT status_;
};

/// Null if there is no WMI.
OwnedCom<IWbemLocator> make_locator() {
  void* found = nullptr;
  if (FAILED(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                              &found))) {
    return OwnedCom<IWbemLocator>();
  }
  return OwnedCom<IWbemLocator>(static_cast<IWbemLocator*>(found));
}

class SystemWmiQuery final : public WmiQuery {
 public:
  SystemWmiQuery() {
    // It fails for each but the first in the process, which is as good.
    CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                         RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
    locator_ = make_locator();
  }

  bool Execute(const char* query, const char* name_space, WmiInstances& results) override {
    results.clear();
    return locator_ && run_wmi_query(*locator_.get(), query, name_space, results);
  }

 private:
  const Apartment apartment_;  // outlives all that is made in it
  OwnedCom<IWbemLocator> locator_;
};

class SystemWmi final : public Wmi {
 public:
  std::unique_ptr<WmiQuery> connect() override { return std::make_unique<SystemWmiQuery>(); }
};

}  // namespace

std::unique_ptr<Wmi> make_system_wmi() {
  return std::make_unique<SystemWmi>();
}
