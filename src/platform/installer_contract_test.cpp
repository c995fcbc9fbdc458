// What Installer promises, tested on the installer in memory here and on the system's own in
// installer_contract_win_test.cpp.
#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/installer_test_support.h"

namespace {

const std::string kFirst = own_code("00000000000A");
const std::string kSecond = own_code("00000000000B");
const std::string kAbsent = own_code("0000000000FF");

class MemoryInstallerBed final : public InstallerBed {
 public:
  Installer& installer() override { return installer_; }
  void install(const MemoryInstaller::Product& product) override {
    installer_.add(product.code) = product;
  }

 private:
  MemoryInstaller installer_;
};

std::vector<std::string> all_products(Installer& installer) {
  std::vector<std::string> codes;
  InstallerName code = "";
  for (uint32_t index = 0; installer.product_at(index, code) == kInstallerSuccess; ++index)
    codes.emplace_back(code);
  return codes;
}

/// Features with their parents.
std::map<std::string, std::string> feature_tree(Installer& installer, const std::string& product) {
  std::map<std::string, std::string> features;
  InstallerName feature = "";
  InstallerName parent = "";
  for (uint32_t index = 0;
       installer.feature_at(product.c_str(), index, feature, parent) == kInstallerSuccess;
       ++index) {
    features[feature] = parent;
  }
  return features;
}

std::vector<std::string> all_features(Installer& installer, const std::string& product) {
  std::vector<std::string> names;
  for (const auto& [name, parent] : feature_tree(installer, product))
    names.push_back(name);
  return names;
}

std::string info(Installer& installer, const std::string& product, const char* property) {
  const auto value = installer.product_info(product.c_str(), property);
  return value ? value->c_str() : "-";
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Memory, InstallerContract,
                         ::testing::Values(InstallerBedMaker{
                             "Own", [] { return std::make_unique<MemoryInstallerBed>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(InstallerContract, EnumeratesEachProductOnce) {
  const size_t others = all_products(installer()).size();
  bed().install({kFirst, {{"ProductName", "First"}}, {}});
  bed().install({kSecond, {{"ProductName", "Second"}}, {}});
  const std::vector<std::string> codes = all_products(installer());
  EXPECT_EQ(codes.size(), others + 2);
  for (const std::string& code : {kFirst, kSecond})
    EXPECT_EQ(std::count(codes.begin(), codes.end(), code), 1) << code;
}

TEST_P(InstallerContract, EndsTheProductsWithTheStatusForNoMore) {
  bed().install({kFirst, {}, {}});
  const auto count = static_cast<uint32_t>(all_products(installer()).size());
  InstallerName code = "";
  EXPECT_EQ(installer().product_at(count, code), kInstallerNoMoreItems);
}

TEST_P(InstallerContract, EndsTheCodeOfACallThatFails) {
  const auto count = static_cast<uint32_t>(all_products(installer()).size());
  InstallerName code;
  std::memset(code, 'x', sizeof code);
  EXPECT_EQ(installer().product_at(count, code), kInstallerNoMoreItems);
  EXPECT_NE(std::memchr(code, '\0', sizeof code), nullptr);
}

TEST_P(InstallerContract, GivesTheProperties) {
  bed().install({kFirst,
                 {{"ProductName", "A name"},
                  {"VersionString", "1.2.3"},
                  {"InstallDate", "20240115"},
                  {"LocalPackage", "C:\\Windows\\Installer\\1a2b.msi"},
                  {"ProductIcon", "C:\\a.ico"}},
                 {}});
  EXPECT_EQ(info(installer(), kFirst, "ProductName"), "A name");
  EXPECT_EQ(info(installer(), kFirst, "VersionString"), "1.2.3");
  EXPECT_EQ(info(installer(), kFirst, "InstallDate"), "20240115");
  EXPECT_EQ(info(installer(), kFirst, "LocalPackage"), "C:\\Windows\\Installer\\1a2b.msi");
  EXPECT_EQ(info(installer(), kFirst, "ProductIcon"), "C:\\a.ico");
}

TEST_P(InstallerContract, TellsAnEmptyPropertyFromNone) {
  bed().install({kFirst, {{"ProductName", "A name"}, {"LocalPackage", ""}}, {}});
  EXPECT_EQ(info(installer(), kFirst, "LocalPackage"), "");
  EXPECT_EQ(info(installer(), kFirst, "NoSuchProperty"), "-");
}

TEST_P(InstallerContract, GivesAPropertyOfUpTo1023CharactersAndNoLongerOne) {
  for (const size_t length : {size_t{1022}, size_t{1023}, size_t{1024}, size_t{1025}}) {
    SCOPED_TRACE(length);
    const std::string value(length, 'x');
    const std::string code = own_code(("00000000" + std::to_string(length)).c_str());
    bed().install({code, {{"ProductName", value}}, {}});
    EXPECT_EQ(info(installer(), code, "ProductName"), length < 1024 ? value : "-");
  }
}

TEST_P(InstallerContract, KnowsAProductInAnyCase) {
  bed().install({kFirst, {{"ProductName", "A name"}}, {{"One", ""}}});
  std::string lower = kFirst;
  std::replace(lower.begin(), lower.end(), 'A', 'a');
  std::replace(lower.begin(), lower.end(), 'C', 'c');
  ASSERT_NE(lower, kFirst);
  EXPECT_EQ(info(installer(), lower, "ProductName"), "A name");
  EXPECT_EQ(all_features(installer(), lower), std::vector<std::string>{"One"});
}

TEST_P(InstallerContract, HasNothingOfAProductThatIsNotThere) {
  for (const std::string& code :
       {kAbsent, std::string(), std::string("no code"), std::string("{}"), std::string(38, 'x'),
        std::string(39, 'x'), kFirst.substr(1), std::string(5000, '{')}) {
    SCOPED_TRACE(code);
    EXPECT_EQ(info(installer(), code, "ProductName"), "-");
    EXPECT_TRUE(all_features(installer(), code).empty());
  }
}

TEST_P(InstallerContract, EnumeratesTheFeaturesOfAProduct) {
  bed().install({kFirst, {}, {{"Main", ""}, {"Other", ""}}});
  bed().install({kSecond, {}, {{"Third", ""}}});
  EXPECT_EQ(all_features(installer(), kFirst), (std::vector<std::string>{"Main", "Other"}));
  EXPECT_EQ(all_features(installer(), kSecond), std::vector<std::string>{"Third"});
}

TEST_P(InstallerContract, TellsWhichFeatureAnotherIsPartOf) {
  if (bed().silent_about_parents() != nullptr) GTEST_SKIP() << bed().silent_about_parents();
  bed().install({kFirst, {}, {{"Main", ""}, {"Part", "Main"}}});
  EXPECT_EQ(feature_tree(installer(), kFirst),
            (std::map<std::string, std::string>{{"Main", ""}, {"Part", "Main"}}));
}

TEST_P(InstallerContract, WritesBothNamesOfAFeatureAnew) {
  bed().install({kFirst, {}, {{"A", ""}}});
  InstallerName feature = "feature of before";
  InstallerName parent = "parent of before";
  EXPECT_EQ(installer().feature_at(kFirst.c_str(), 0, feature, parent), kInstallerSuccess);
  EXPECT_STREQ(feature, "A");
  if (bed().silent_about_parents() == nullptr) {
    EXPECT_STREQ(parent, "");
  }
  std::strcpy(parent, "parent of before");
  EXPECT_NE(installer().feature_at(kFirst.c_str(), 1, feature, parent), kInstallerSuccess);
  EXPECT_STREQ(feature, "");
  EXPECT_STREQ(parent, "");
}

TEST_P(InstallerContract, GivesAFeatureOfUpTo38CharactersAndNoLongerOne) {
  const std::string longest(38, 'f');
  bed().install({kFirst, {}, {{longest, ""}}});
  EXPECT_EQ(all_features(installer(), kFirst), std::vector<std::string>{longest});
  bed().install({kSecond, {}, {{longest + 'f', ""}}});
  EXPECT_TRUE(all_features(installer(), kSecond).empty());
}

TEST_P(InstallerContract, TellsTheStateOfEachFeature) {
  bed().install({kFirst,
                 {},
                 {{"Main", ""}, {"Part", "Main"}, {"Offer", ""}, {"None", ""}},
                 {{"Offer", kFeatureAdvertised}, {"None", kFeatureAbsent}}});
  EXPECT_EQ(installer().feature_state(kFirst.c_str(), "Main"), kFeatureLocal);
  EXPECT_EQ(installer().feature_state(kFirst.c_str(), "Part"), kFeatureLocal);
  EXPECT_EQ(installer().feature_state(kFirst.c_str(), "Offer"), kFeatureAdvertised);
  EXPECT_EQ(installer().feature_state(kFirst.c_str(), "None"), kFeatureAbsent);
}

TEST_P(InstallerContract, KnowsNoStateOfAFeatureThatIsNotThere) {
  bed().install({kFirst, {}, {{"Main", ""}}});
  for (const char* const feature : {"Other", "MAIN2"})
    EXPECT_EQ(installer().feature_state(kFirst.c_str(), feature), kFeatureUnknown) << feature;
  EXPECT_EQ(installer().feature_state(kAbsent.c_str(), "Main"), kFeatureUnknown);
}

TEST_P(InstallerContract, HasNoFeatureInstalledOfWhatIsNoProductCode) {
  for (const char* const code : {"", "no code", "{}"})
    EXPECT_LT(installer().feature_state(code, "Main"), kFeatureLocal) << code;
}

TEST_P(InstallerContract, ExchangesTheOwnersOfItsWindows) {
  int first = 0;
  int second = 0;
  static void* owner;
  owner = &first;
  installer().set_internal_ui(kInstallerUiNone, &owner);
  owner = &second;
  installer().set_internal_ui(kInstallerUiNone, &owner);
  EXPECT_EQ(owner, &first);
  owner = nullptr;
  installer().set_internal_ui(kInstallerUiNone, &owner);
  EXPECT_EQ(owner, &second);
}
