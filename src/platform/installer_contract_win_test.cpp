// The contract of installer_contract_test.cpp on the system's own installer, and what the adapter
// makes of answers that a sound system doesn't give.
#include <windows.h>

#include <msi.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "orlo/owned_handle.h"
#include "platform/fake_functions_test_support.h"
#include "platform/installer_seed_win.h"
#include "platform/installer_test_support.h"
#include "platform/system_installer.h"

namespace {

class SystemInstallerBed final : public InstallerBed {
 public:
  SystemInstallerBed() : installer_(make_system_installer()) {}
  ~SystemInstallerBed() override {
    // The next one begins without an owner.
    static void* none;
    none = nullptr;
    installer_->set_internal_ui(kInstallerUiNone, &none);
  }

  Installer& installer() override { return *installer_; }
  void install(const MemoryInstaller::Product& product) override { seed_.install(product); }
  const char* silent_about_parents() const override {
    return runs_on_wine() ? "Wine gives whatever bytes for the feature that another is part of"
                          : nullptr;
  }

 private:
  static bool runs_on_wine() {
    return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
  }

  const std::unique_ptr<Installer> installer_;
  InstallerSeed seed_;
};

// Answers of a damaged system.
UINT WINAPI bad_configuration(DWORD, LPSTR code) {
  std::memcpy(code, "junk", 5);
  return ERROR_BAD_CONFIGURATION;
}
UINT WINAPI silent_failure(DWORD, LPSTR) {
  return ERROR_BAD_CONFIGURATION;
}
UINT WINAPI appended_code(DWORD, LPSTR code) {
  std::strcat(code, " and more");
  return ERROR_BAD_CONFIGURATION;
}
UINT WINAPI endless_code(DWORD index, LPSTR code) {
  std::memset(code, 'x', kInstallerNameRoom);
  return index == 0 ? ERROR_SUCCESS : ERROR_BAD_CONFIGURATION;
}
UINT WINAPI endless_feature(LPCSTR, DWORD, LPSTR feature, LPSTR parent) {
  std::memset(feature, 'f', kInstallerNameRoom);
  std::memset(parent, 'p', kInstallerNameRoom);
  return ERROR_SUCCESS;
}
UINT WINAPI silent_feature(LPCSTR, DWORD, LPSTR, LPSTR) {
  return ERROR_SUCCESS;
}
UINT WINAPI endless_value(LPCSTR, LPCSTR, LPSTR value, DWORD* length) {
  std::memset(value, 'v', *length);
  return ERROR_SUCCESS;
}
UINT WINAPI silent_value(LPCSTR, LPCSTR, LPSTR, DWORD*) {
  return ERROR_SUCCESS;
}

/// What the last MsiSetInternalUI was given.
struct UiCall {
  INSTALLUILEVEL level;
  HWND* owner;
};
UiCall last_ui_call;
INSTALLUILEVEL WINAPI record_ui(INSTALLUILEVEL level, HWND* owner) {
  last_ui_call = {level, owner};
  return INSTALLUILEVEL_DEFAULT;
}
/// Source for codes longer than the feature, else a failure.
INSTALLSTATE WINAPI state_of_letters(LPCSTR product, LPCSTR feature) {
  return std::strlen(product) > std::strlen(feature) ? INSTALLSTATE_SOURCE
                                                     : INSTALLSTATE_INVALIDARG;
}
/// Gives the room that it was given as the value.
UINT WINAPI room_of_value(LPCSTR, LPCSTR, LPSTR value, DWORD* length) {
  std::strcpy(value, std::to_string(*length).c_str());
  return ERROR_SUCCESS;
}

class OddInstaller : public testing::Test {
 protected:
  FakeFunctions functions_;
  const std::unique_ptr<Installer> installer_ = make_installer(functions_);
  InstallerName name_ = "kept";
  InstallerName parent_ = "kept";
};

TEST_F(OddInstaller, IsLookedUpWithTheFirstCallAndOnlyOnce) {
  EXPECT_TRUE(functions_.asked().empty());
  installer_->product_at(0, name_);
  const std::vector<std::string> asked = functions_.asked();
  EXPECT_EQ(asked,
            (std::vector<std::string>{"msi.dll MsiSetInternalUI", "msi.dll MsiEnumProductsA",
                                      "msi.dll MsiEnumFeaturesA", "msi.dll MsiQueryFeatureStateA",
                                      "msi.dll MsiGetProductInfoA"}));
  installer_->product_at(0, name_);
  installer_->product_info("p", "ProductName");
  EXPECT_EQ(functions_.asked(), asked);
}

TEST_F(OddInstaller, HasNothingWithoutTheModule) {
  void* owner = this;
  installer_->set_internal_ui(kInstallerUiNone, &owner);
  EXPECT_EQ(owner, this);
  EXPECT_EQ(installer_->product_at(0, name_), kInstallerNoMoreItems);
  EXPECT_STREQ(name_, "kept");
  EXPECT_EQ(installer_->feature_at("p", 0, name_, parent_), kInstallerNoMoreItems);
  EXPECT_STREQ(name_, "");
  EXPECT_STREQ(parent_, "");
  EXPECT_EQ(installer_->feature_state("p", "Main"), kFeatureUnknown);
  EXPECT_FALSE(installer_->product_info("p", "ProductName").has_value());
}

TEST_F(OddInstaller, GivesWhateverStateTheSystemTells) {
  functions_.set("MsiQueryFeatureStateA", &state_of_letters);
  EXPECT_EQ(installer_->feature_state("abcd", "ab"), 4);
  EXPECT_EQ(installer_->feature_state("a", "abc"), -2);
}

TEST_F(OddInstaller, HandsTheSystemTheLevelAndTheAddressOfTheOwner) {
  functions_.set("MsiSetInternalUI", &record_ui);
  last_ui_call = {};
  void* owner = this;
  installer_->set_internal_ui(kInstallerUiNone, &owner);
  EXPECT_EQ(last_ui_call.level, 2);
  EXPECT_EQ(static_cast<void*>(last_ui_call.owner), static_cast<void*>(&owner));
  EXPECT_EQ(owner, this);
}

TEST_F(OddInstaller, HasRoomFor1024CharactersOfAProperty) {
  functions_.set("MsiGetProductInfoA", &room_of_value);
  EXPECT_STREQ(installer_->product_info("p", "ProductName").value_or("-").c_str(), "1024");
}

TEST_F(OddInstaller, EndsAnEnumerationThatOnlyFails) {
  functions_.set("MsiEnumProductsA", &bad_configuration);
  for (uint32_t index = 0; index < 99; ++index)
    ASSERT_EQ(installer_->product_at(index, name_), kInstallerBadConfiguration) << index;
  EXPECT_EQ(installer_->product_at(99, name_), kInstallerNoMoreItems);
}

TEST_F(OddInstaller, GivesTheCodeThatAFailureLeaves) {
  functions_.set("MsiEnumProductsA", &bad_configuration);
  EXPECT_EQ(installer_->product_at(0, name_), kInstallerBadConfiguration);
  EXPECT_STREQ(name_, "junk");
}

TEST_F(OddInstaller, KeepsTheCodeThatAFailureDoesNotTouch) {
  functions_.set("MsiEnumProductsA", &silent_failure);
  EXPECT_EQ(installer_->product_at(0, name_), kInstallerBadConfiguration);
  EXPECT_STREQ(name_, "kept");
}

TEST_F(OddInstaller, ShowsTheCallTheCodeOfBefore) {
  functions_.set("MsiEnumProductsA", &appended_code);
  EXPECT_EQ(installer_->product_at(0, name_), kInstallerBadConfiguration);
  EXPECT_STREQ(name_, "kept and more");
}

TEST_F(OddInstaller, EndsNamesThatHaveNoEnd) {
  functions_.set("MsiEnumProductsA", &endless_code);
  functions_.set("MsiEnumFeaturesA", &endless_feature);
  functions_.set("MsiGetProductInfoA", &endless_value);
  EXPECT_EQ(installer_->product_at(0, name_), kInstallerSuccess);
  EXPECT_EQ(name_, std::string(38, 'x'));
  EXPECT_EQ(installer_->product_at(1, name_), kInstallerBadConfiguration);
  EXPECT_EQ(name_, std::string(38, 'x'));
  EXPECT_EQ(installer_->feature_at("p", 0, name_, parent_), kInstallerSuccess);
  EXPECT_EQ(name_, std::string(38, 'f'));
  EXPECT_EQ(parent_, std::string(38, 'p'));
  EXPECT_EQ(installer_->product_info("p", "ProductName").value_or("-").length(), 1023u);
}

TEST_F(OddInstaller, GivesNothingWhereTheSystemWritesNothing) {
  functions_.set("MsiEnumFeaturesA", &silent_feature);
  functions_.set("MsiGetProductInfoA", &silent_value);
  EXPECT_EQ(installer_->feature_at("p", 0, name_, parent_), kInstallerSuccess);
  EXPECT_STREQ(name_, "");
  EXPECT_STREQ(parent_, "");
  EXPECT_STREQ(installer_->product_info("p", "ProductName").value_or("-").c_str(), "");
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(System, InstallerContract,
                         ::testing::Values(InstallerBedMaker{
                             "Own", [] { return std::make_unique<SystemInstallerBed>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });
