#include "inventory/product_details.h"

#include <string>

#include "inventory/installer_bed_test_support.h"
#include "inventory/source_rows.h"
#include "orlo/locale.h"

namespace {

using Field = PackageColumn;

class ProductDetails : public InstallerBedTest {
 protected:
  ProductDetails() {
    installer_.add(kProduct).properties = {{"ProductName", "A name"},
                                           {"VersionString", "1.2.3"},
                                           {"InstallDate", "20240115"},
                                           {"LocalPackage", "C:\\Windows\\Installer\\1.msi"},
                                           {"ProductIcon", "C:\\product.ico"}};
  }

  void set(Field column, const char* text) { cell(row_, column).text = text; }
  void set_property(const char* name, const std::string& value) {
    MemoryInstaller::Product product = installer_.products().front();
    product.properties[name] = value;
    replace(product);
  }
  void remove_property(const char* name) {
    MemoryInstaller::Product product = installer_.products().front();
    product.properties.erase(name);
    replace(product);
  }
  void replace(const MemoryInstaller::Product& product) {
    installer_ = MemoryInstaller();
    installer_.add(product.code) = product;
  }
  std::string read(Field column, const char* code = kProduct) {
    ReadProductDetails(services(), code, patches_, row_);
    return cell(row_, column).text.c_str();
  }
  std::string shown(const char* date) const {
    DateTime parsed;
    parsed.parse(date, clock_);
    return parsed.display(clock_).c_str();
  }

  Row row_ = make_source_row("MSI");
  ProductPatchMap patches_;
};

TEST_F(ProductDetails, FillAnEmptyRow) {
  MemoryInstaller::Product product = installer_.products().front();
  product.features = {{"Main", ""}, {"Part", "Main"}, {"Other", ""}};
  replace(product);
  patches_[kPackedProduct] = {"P1", "P2"};
  patches_["another"] = {"P3"};
  EXPECT_EQ(read(Field::displayName), "A name");
  EXPECT_STREQ(cell(row_, Field::displayVersion).text.c_str(), "1.2.3");
  EXPECT_STREQ(cell(row_, Field::installDate).text.c_str(), shown("20240115").c_str());
  EXPECT_STREQ(cell(row_, Field::packagePath).text.c_str(), "C:\\Windows\\Installer\\1.msi");
  EXPECT_STREQ(cell(row_, Field::displayIcon).text.c_str(), "C:\\product.ico");
  const std::pair<Field, int32_t> numbers[] = {
      {Field::MSI, 1}, {Field::features, 3}, {Field::patches, 2}};
  for (const auto& [column, number] : numbers) {
    EXPECT_EQ(cell(row_, column).integer(), number);
    EXPECT_STREQ(cell(row_, column).text.c_str(), std::to_string(number).c_str());
  }
}

TEST_F(ProductDetails, WriteNothingElse) {
  read(Field::MSI);
  const Row untouched = make_source_row("MSI");
  for (int32_t i = 0; i < static_cast<int32_t>(kPackageColumns); ++i) {
    const auto column = static_cast<Field>(i);
    switch (column) {
      case Field::MSI:
      case Field::features:
      case Field::patches:
      case Field::packagePath:
      case Field::displayIcon:
      case Field::displayName:
      case Field::displayVersion:
      case Field::installDate:
        EXPECT_FALSE(cell(row_, column).text.empty()) << i;
        break;
      default:
        EXPECT_STREQ(cell(row_, column).text.c_str(), cell(untouched, column).text.c_str()) << i;
        EXPECT_EQ(cell(row_, column).value, cell(untouched, column).value) << i;
    }
  }
}

TEST_F(ProductDetails, KeepWhatTheUninstallKeyGave) {
  files_.add_file("C:\\there.ico");
  const std::pair<Field, const char*> kept[] = {{Field::displayName, "Registered name"},
                                                {Field::displayVersion, "9"},
                                                {Field::installDate, "not a date"},
                                                {Field::displayIcon, "C:\\there.ico"},
                                                {Field::publisher, "Maker"}};
  for (const auto& [column, text] : kept)
    set(column, text);
  set(Field::packagePath, "old");
  cell(row_, Field::features).set_number(77);
  cell(row_, Field::patches).set_number(77);
  cell(row_, Field::MSI).set_number(0);
  read(Field::MSI);
  for (const auto& [column, text] : kept)
    EXPECT_STREQ(cell(row_, column).text.c_str(), text);
  EXPECT_STREQ(cell(row_, Field::packagePath).text.c_str(), "C:\\Windows\\Installer\\1.msi");
  EXPECT_EQ(cell(row_, Field::features).integer(), 0);
  EXPECT_EQ(cell(row_, Field::patches).integer(), 0);
  EXPECT_EQ(cell(row_, Field::MSI).integer(), 1);
}

TEST_F(ProductDetails, ReplaceAnIconWhoseFileIsGone) {
  set(Field::displayIcon, "C:\\gone.ico,0");
  EXPECT_EQ(read(Field::displayIcon), "C:\\product.ico");
}

TEST_F(ProductDetails, KeepAnIconThatIsGoneWhereTheProductHasNone) {
  set(Field::displayIcon, "C:\\gone.ico,0");
  set_property("ProductIcon", "");
  EXPECT_EQ(read(Field::displayIcon), "C:\\gone.ico,0");
  remove_property("ProductIcon");
  EXPECT_EQ(read(Field::displayIcon), "C:\\gone.ico,0");
}

TEST_F(ProductDetails, TestTheExpandedPathOfTheIconWithoutItsIndex) {
  files_.set_variable("SystemRoot", "C:\\Windows");
  files_.add_file("C:\\Windows\\x.ico");
  set(Field::displayIcon, "%SystemRoot%\\x.ico,2");
  EXPECT_EQ(read(Field::displayIcon), "%SystemRoot%\\x.ico,2");
  EXPECT_EQ(files_.calls().back(), "can_open C:\\Windows\\x.ico");
  set(Field::displayIcon, "%SystemRoot%\\x.ico,nonsense");
  EXPECT_EQ(read(Field::displayIcon), "%SystemRoot%\\x.ico,nonsense");
  set(Field::displayIcon, "%SystemRoot%\\y.ico,2");
  EXPECT_EQ(read(Field::displayIcon), "C:\\product.ico");
}

TEST_F(ProductDetails, TestAQuotedIconWithoutItsArguments) {
  files_.add_file("C:\\a b\\x.exe");
  set(Field::displayIcon, "\"C:\\a b\\x.exe\" /icon 1");
  EXPECT_EQ(read(Field::displayIcon), "\"C:\\a b\\x.exe\" /icon 1");
  EXPECT_EQ(files_.calls().back(), "can_open C:\\a b\\x.exe");
}

TEST_F(ProductDetails, TakeAFolderForAnIconThatIsThere) {
  files_.add_folder("C:\\folder");
  set(Field::displayIcon, "C:\\folder");
  EXPECT_EQ(read(Field::displayIcon), "C:\\folder");
}

TEST_F(ProductDetails, TestNoFileWithoutAnIcon) {
  read(Field::displayIcon);
  EXPECT_TRUE(files_.calls().empty());
}

TEST_F(ProductDetails, AskForNoPropertyThatTheRowHas) {
  files_.add_file("C:\\there.ico");
  set(Field::displayName, "x");
  set(Field::displayVersion, "x");
  set(Field::installDate, "x");
  set(Field::displayIcon, "C:\\there.ico");
  read(Field::MSI);
  const std::string code = kProduct;
  EXPECT_EQ(installer_.calls(),
            (std::vector<std::string>{"feature_at " + code + " 0",
                                      "product_info " + code + " LocalPackage"}));
}

TEST_F(ProductDetails, AreReadInTheirOrder) {
  read(Field::MSI);
  const std::string code = kProduct;
  EXPECT_EQ(
      installer_.calls(),
      (std::vector<std::string>{
          "feature_at " + code + " 0", "product_info " + code + " LocalPackage",
          "product_info " + code + " ProductIcon", "product_info " + code + " ProductName",
          "product_info " + code + " VersionString", "product_info " + code + " InstallDate"}));
}

TEST_F(ProductDetails, BlankThePackageWithAnEmptyOne) {
  set(Field::packagePath, "C:\\old.msi");
  set_property("LocalPackage", "");
  EXPECT_EQ(read(Field::packagePath), "");
}

TEST_F(ProductDetails, KeepThePackageThatTheInstallerDoesNotTell) {
  set(Field::packagePath, "C:\\old.msi");
  installer_.fail("product_info", kInstallerUnknownProduct, -1);
  EXPECT_EQ(read(Field::packagePath), "C:\\old.msi");
}

TEST_F(ProductDetails, LeaveWhatTheInstallerDoesNotTellAsItIs) {
  installer_.fail("product_info", kInstallerUnknownProduct, -1);
  read(Field::MSI);
  for (const Field column : {Field::displayName, Field::displayVersion, Field::installDate,
                             Field::packagePath, Field::displayIcon}) {
    EXPECT_TRUE(cell(row_, column).text.empty());
  }
  EXPECT_EQ(cell(row_, Field::MSI).integer(), 1);
}

TEST_F(ProductDetails, TakePropertiesOfUpTo1023Characters) {
  for (const char* property : {"ProductName", "VersionString", "LocalPackage", "ProductIcon"})
    set_property(property, std::string(1023, 'x'));
  const Field columns[] = {Field::displayName, Field::displayVersion, Field::packagePath,
                           Field::displayIcon};
  read(Field::MSI);
  for (const Field column : columns)
    EXPECT_EQ(cell(row_, column).text.length(), 1023u);
  for (const size_t length : {size_t{1024}, size_t{1025}}) {
    SCOPED_TRACE(length);
    row_ = make_source_row("MSI");
    set(Field::packagePath, "C:\\old.msi");
    for (const char* property : {"ProductName", "VersionString", "LocalPackage", "ProductIcon"})
      set_property(property, std::string(length, 'x'));
    EXPECT_EQ(read(Field::displayName), "");
    EXPECT_TRUE(cell(row_, Field::displayVersion).text.empty());
    EXPECT_STREQ(cell(row_, Field::packagePath).text.c_str(), "C:\\old.msi");
    EXPECT_TRUE(cell(row_, Field::displayIcon).text.empty());
  }
}

TEST_F(ProductDetails, ShowTheDateAsDatesAreShown) {
  const std::string day = ORLO::system_locale().date_text({2024, 1, 1, 15}, nullptr).value();
  const std::pair<const char*, std::string> cases[] = {
      {"20240115", day},
      {"15.01.2024", day},
      {"2024-01-15 13:45:00", day + " 13:45"},
  };
  for (const auto& [date, text] : cases) {
    SCOPED_TRACE(date);
    set(Field::installDate, "");
    set_property("InstallDate", date);
    EXPECT_EQ(read(Field::installDate), text);
  }
  for (const char* date : {"", "nonsense", "20241399"}) {
    SCOPED_TRACE(date);
    set(Field::installDate, "");
    set_property("InstallDate", date);
    EXPECT_EQ(read(Field::installDate), "");
  }
}

TEST_F(ProductDetails, FindNoPatchesOfACodeThatIsNone) {
  patches_[kPackedProduct] = {"P1"};
  for (const std::string& code :
       {std::string(), std::string("no code"), std::string(38, 'x'), std::string(39, 'x'),
        std::string("{}"), std::string(kProduct, 37), std::string(kProduct) + "0"}) {
    SCOPED_TRACE(code);
    const bool only_a_brace_is_missing = code.size() == 37;
    EXPECT_EQ(read(Field::patches, code.c_str()), only_a_brace_is_missing ? "1" : "0");
  }
  EXPECT_EQ(read(Field::patches, "{12345678-abcd-ef01-2345-6789abcdef01}"), "0")
      << "keys of patches compare with case";
}

TEST_F(ProductDetails, FeaturesEndWithAnyFailure) {
  MemoryInstaller::Product product = installer_.products().front();
  product.features = {{"A", ""}, {"B", "A"}, {"C", ""}};
  replace(product);
  installer_.fail(std::string("feature_at ") + kProduct + " 1", kInstallerBadConfiguration);
  EXPECT_EQ(read(Field::features), "1");
  EXPECT_EQ(read(Field::features), "3");
}

TEST_F(ProductDetails, FeaturesHaveTheirParents) {
  MemoryInstaller::Product product = installer_.products().front();
  product.features = {{"B", "A"}, {"A", ""}, {"a", "B"}};
  replace(product);
  FeatureMap features;
  PatchSet patches{"P0"};
  patches_[kPackedProduct] = {"P2", "P1"};
  ReadProductFeaturesAndPatches(installer_, kProduct, patches_, features, patches);
  const FeatureMap expected = {{"A", ""}, {"B", "A"}, {"a", "B"}};
  ASSERT_EQ(features.size(), expected.size());
  for (const auto& [name, parent] : expected)
    EXPECT_STREQ(features[name].c_str(), parent.c_str()) << name.c_str();
  EXPECT_EQ(patches.size(), 3u);
}

TEST_F(ProductDetails, CountAFeatureThatIsToldTwiceOnce) {
  MemoryInstaller::Product product = installer_.products().front();
  product.features = {{"A", ""}, {"A", "B"}};
  replace(product);
  EXPECT_EQ(read(Field::features), "1");
  FeatureMap features;
  PatchSet patches;
  ReadProductFeaturesAndPatches(installer_, kProduct, patches_, features, patches);
  ASSERT_EQ(features.size(), 1u);
  EXPECT_STREQ(features["A"].c_str(), "") << "its first parent stands";
}

}  // namespace
