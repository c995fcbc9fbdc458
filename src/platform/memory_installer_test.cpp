#include "platform/memory_installer.h"

#include <gtest/gtest.h>

#include "platform/utf16.h"

namespace {

constexpr char kCode[] = "{12345678-ABCD-EF01-2345-6789ABCDEF01}";
constexpr char kPacked[] = "87654321DCBA10FE32547698BADCFE10";

TEST(MemoryInstaller, PacksProductCodesAndUnpacksThem) {
  EXPECT_EQ(packed_product_key(kCode), kPacked);
  EXPECT_EQ(product_code_of(kPacked), kCode);
}

TEST(MemoryInstaller, TakesANulForADigit) {
  EXPECT_EQ(packed_product_key(std::string(32, '\0')), std::string(32, '\0'));
}

TEST(MemoryInstaller, GivesProductsInTheOrderOfTheirCall) {
  MemoryInstaller installer;
  installer.add("b");
  installer.add("a");
  InstallerName code = "";
  EXPECT_EQ(installer.product_at(1, code), kInstallerSuccess);
  EXPECT_STREQ(code, "a");
}

TEST(MemoryInstaller, HasNoRoomForACodeOf39Characters) {
  MemoryInstaller installer;
  installer.add(std::string(38, 'x'));
  installer.add(std::string(39, 'y'));
  InstallerName code = "";
  EXPECT_EQ(installer.product_at(0, code), kInstallerSuccess);
  EXPECT_EQ(installer.product_at(1, code), kInstallerMoreData);
  EXPECT_EQ(code, std::string(38, 'x'));
}

TEST(MemoryInstaller, FailsOneCallOrAllOfAnOperation) {
  MemoryInstaller installer;
  installer.add("p") = {"p", {{"A", "a"}, {"B", "b"}}, {{"f", ""}}};
  installer.fail("product_info p A", 5);
  EXPECT_TRUE(installer.product_info("p", "B").has_value());
  EXPECT_FALSE(installer.product_info("p", "A").has_value());
  EXPECT_TRUE(installer.product_info("p", "A").has_value());
  installer.fail("feature_at", 5, -1);
  InstallerName feature = "";
  InstallerName parent = "";
  EXPECT_EQ(installer.feature_at("p", 0, feature, parent), 5u);
  EXPECT_EQ(installer.feature_at("p", 0, feature, parent), 5u);
  installer.fail("product_at 0", 1610, 2);
  InstallerName code = "kept";
  EXPECT_EQ(installer.product_at(0, code), 1610u);
  EXPECT_EQ(installer.product_at(0, code), 1610u);
  EXPECT_STREQ(code, "kept");
  EXPECT_EQ(installer.product_at(0, code), kInstallerSuccess);
}

TEST(MemoryInstaller, LeavesACodeAfterAFailureOnDemand) {
  MemoryInstaller installer;
  installer.add("p");
  installer.fail("product_at", kInstallerBadConfiguration, 2);
  installer.leave_after_failure("left");
  InstallerName code = "kept";
  EXPECT_EQ(installer.product_at(0, code), kInstallerBadConfiguration);
  EXPECT_STREQ(code, "left");
  installer.leave_after_failure(std::string(50, 'x'));
  EXPECT_EQ(installer.product_at(0, code), kInstallerBadConfiguration);
  EXPECT_EQ(code, std::string(38, 'x'));
  EXPECT_EQ(installer.product_at(0, code), kInstallerSuccess);
  EXPECT_STREQ(code, "p");
  EXPECT_EQ(installer.product_at(1, code), kInstallerNoMoreItems);
  EXPECT_STREQ(code, "p") << "the end is no failure";
}

TEST(MemoryInstaller, EndsAnEnumerationThatOnlyFails) {
  MemoryInstaller installer;
  installer.fail("product_at", kInstallerBadConfiguration, -1);
  InstallerName code = "";
  uint32_t index = 0;
  while (installer.product_at(index, code) == kInstallerBadConfiguration)
    ++index;
  EXPECT_EQ(index, 99u);
}

TEST(MemoryInstaller, LogsItsCalls) {
  MemoryInstaller installer;
  void* owner = &installer;
  InstallerName name = "";
  InstallerName parent = "";
  installer.set_internal_ui(2, &owner);
  installer.product_at(3, name);
  installer.feature_at("p", 4, name, parent);
  installer.product_info("p", "A");
  EXPECT_EQ(installer.calls(), (std::vector<std::string>{"set_internal_ui 2", "product_at 3",
                                                         "feature_at p 4", "product_info p A"}));
  EXPECT_EQ(installer.ui_owner(), &installer);
  installer.forget_calls();
  EXPECT_TRUE(installer.calls().empty());
}

TEST(MemoryInstaller, LoadsTheProductsOfARegistryText) {
  MemoryInstaller installer;
  const std::string text = std::string("REGEDIT4\n") +                                         //
                           "[HKEY_CURRENT_USER\\Software\\Microsoft\\Installer\\Features\\" +  //
                           kPacked + "]\n\"Main\"=\"\"\n\"Part\"=\"Main\"\n" +
                           "[HKEY_CURRENT_USER\\Software\\Microsoft\\Installer\\Products\\" +  //
                           kPacked + "]\n\"ProductName\"=\"A name\"\n" +
                           "\"Version\"=dword:0A020003\n\"ProductIcon\"=\"a.ico\"\n" +
                           "[HKEY_CURRENT_USER\\Software\\Microsoft\\Installer\\Products\\" +  //
                           kPacked + "\\SourceList]\n\"ProductName\"=\"not this\"\n" +
                           "[HKEY_CURRENT_USER\\Software\\Microsoft\\Installer\\Products\\short]\n";
  ASSERT_TRUE(installer.load(text));
  ASSERT_EQ(installer.products().size(), 1u);
  const MemoryInstaller::Product& product = installer.products().front();
  EXPECT_EQ(product.code, kCode);
  EXPECT_EQ(product.properties,
            (std::map<std::string, std::string>{
                {"ProductIcon", "a.ico"}, {"ProductName", "A name"}, {"VersionString", "10.2.3"}}));
  EXPECT_EQ(product.features,
            (std::vector<std::pair<std::string, std::string>>{{"Main", ""}, {"Part", "Main"}}));
}

TEST(MemoryInstaller, TellsATextThatItDoesNotUnderstand) {
  MemoryInstaller installer;
  EXPECT_FALSE(installer.load("nonsense"));
  EXPECT_TRUE(installer.products().empty());
}

}  // namespace
