// The contract of wmi_contract_test.cpp on the system's own WMI. A run of the tests has it switched
// off as a whole or switched on, which CMakeLists.txt does for these tests in a run of their own.
#include <windows.h>

#include <objbase.h>

#include <cstdlib>
#include <string>
#include <thread>

#include "orlo/owned_handle.h"
#include "platform/wmi_test_support.h"

namespace {

/// Whether the system loads the module that gives access to WMI.
bool module_loads() {
  char folder[MAX_PATH] = "";
  const UINT length = GetSystemDirectoryA(folder, MAX_PATH);
  const std::string path = std::string(folder, length).append("\\wbem\\wbemprox.dll");
  const HMODULE module = LoadLibraryA(path.c_str());
  if (module != nullptr) FreeLibrary(module);
  return module != nullptr;
}

class SystemWmiBed final : public WmiBed {
 public:
  Wmi& wmi() override { return *wmi_; }
  bool has_wmi() const override { return module_loads(); }

 private:
  const std::unique_ptr<Wmi> wmi_ = make_system_wmi();
};

/// S_OK if COM isn't initialised on this thread, S_FALSE if it is; leaves it as it was.
HRESULT apartment_state() {
  const HRESULT status = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
  if (SUCCEEDED(status)) CoUninitialize();
  return status;
}

TEST(SystemWmi, IsThereWhereARunWantsIt) {
  const bool wanted = std::getenv("ZOLVANE_WITH_WMI") != nullptr;
  EXPECT_TRUE(!wanted || module_loads());
}

TEST(SystemWmi, InitialisesComOnTheThreadForAsLongAsAConnectionLives) {
  std::thread([] {
    const auto wmi = make_system_wmi();
    EXPECT_EQ(apartment_state(), S_OK);
    auto query = wmi->connect();
    EXPECT_EQ(apartment_state(), S_FALSE);
    WmiInstances results;
    query->Execute(kHotfixQuery, kRootNamespace, results);
    query.reset();
    EXPECT_EQ(apartment_state(), S_OK);
  }).join();
}

TEST(SystemWmi, LeavesTheComOfItsThreadInitialisedAsItWas) {
  std::thread([] {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    make_system_wmi()->connect();
    // Another kind of apartment is refused for as long as that one is there.
    EXPECT_EQ(apartment_state(), RPC_E_CHANGED_MODE);
    CoUninitialize();
    EXPECT_EQ(apartment_state(), S_OK);
  }).join();
}

TEST(SystemWmi, KeepsNothingOfAConnection) {
  const int before = ORLO::live_handles();
  const auto wmi = make_system_wmi();
  WmiInstances results;
  for (const char* query : {kHotfixQuery, "SELECT * FROM Zolvane_NoClass", "no query"})
    wmi->connect()->Execute(query, kRootNamespace, results);
  EXPECT_EQ(ORLO::live_handles(), before);
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(System, WmiContract,
                         ::testing::Values(WmiBedMaker{
                             "Own", [] { return std::make_unique<SystemWmiBed>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });
