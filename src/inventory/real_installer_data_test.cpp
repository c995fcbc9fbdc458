// What the installers of real systems left behind; see real_data_test.cpp.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>

#include "inventory/installer_bed_test_support.h"
#include "platform/file_bytes_test_support.h"

namespace {

namespace fs = std::filesystem;

constexpr char kVariable[] = "ZOLVANE_REALDATA";

/// The folder as the variable names it; a path of the host is reached through the drive Z.
fs::path real_installer_data() {
  const fs::path named = fs::path(std::getenv(kVariable)) / "installer";
  return fs::exists(named) ? named : fs::path("Z:") / named;
}

TEST(RealProductCodes, PackToTheKeysThatStandInTheRegistry) {
  if (std::getenv(kVariable) == nullptr) {
    GTEST_SKIP() << kVariable << " names no folder of real data";
  }
  std::istringstream lines(file_bytes(real_installer_data() / "packed_code_pairs.tsv"));
  size_t pairs = 0;
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    const size_t tab = line.find('\t');
    if (!line.starts_with('{') || tab == line.npos) continue;
    EXPECT_EQ(PackProductCode(line.substr(0, tab)).c_str(), line.substr(tab + 1));
    ++pairs;
  }
  EXPECT_GT(pairs, 0u);
}

TEST(RealInstallerTrees, BecomeARowForEachProduct) {
  if (std::getenv(kVariable) == nullptr) {
    GTEST_SKIP() << kVariable << " names no folder of real data";
  }
  const ORLO::FixedClock clock({2026, 11, 5, 20, 12});
  size_t products = 0;
  for (const auto& entry : fs::directory_iterator(real_installer_data())) {
    if (entry.path().extension() != ".reg") continue;
    SCOPED_TRACE(entry.path().string());
    MemoryInstaller installer;
    ASSERT_TRUE(installer.load(file_bytes(entry.path())));
    MemoryRegistry registry;
    MemoryFiles files;
    ReaderRows rows;
    std::set<RowKey> unseen;
    size_t index = 0;
    InstallerSource source(registry, {installer, files, clock}, nullptr);
    source.ReadMsiProducts(rows, unseen, [&](const Row& row) {
      const MemoryInstaller::Product& product = installer.products().at(index++);
      EXPECT_EQ(cell(row, PackageColumn::name).text.c_str(), product.code);
      EXPECT_EQ(cell(row, PackageColumn::displayName).text.c_str(),
                product.properties.at("ProductName"));
      EXPECT_EQ(cell(row, PackageColumn::displayVersion).text.c_str(),
                product.properties.at("VersionString"));
      EXPECT_EQ(cell(row, PackageColumn::features).integer(),
                static_cast<int32_t>(product.features.size()));
      EXPECT_FALSE(cell(row, PackageColumn::displayName).text.empty());
      EXPECT_FALSE(product.features.empty());
    });
    EXPECT_EQ(index, installer.products().size());
    products += index;
  }
  EXPECT_GT(products, 0u);
}

}  // namespace
