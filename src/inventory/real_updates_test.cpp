// What real systems told of their hotfixes, and the names of their servicing packages. They are no
// part of the project; the folder that holds them is named by the environment variable
// ZOLVANE_REALDATA.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "inventory/servicing_packages.h"
#include "inventory/wmi_hotfixes.h"
#include "orlo/fixed_clock.h"
#include "platform/file_bytes_test_support.h"
#include "platform/memory_accounts.h"
#include "platform/memory_registry.h"
#include "platform/memory_wmi.h"

namespace {

namespace fs = std::filesystem;
using Field = PackageColumn;

constexpr char kVariable[] = "ZOLVANE_REALDATA";

/// The file as the variable names it; a path of the host is reached through the drive Z.
fs::path real_data(const char* below) {
  const fs::path named = fs::path(std::getenv(kVariable)) / below;
  return fs::exists(named) ? named : fs::path("Z:") / named;
}

std::string text_of(const Row& row, Field column) {
  return cell(row, column).text.c_str();
}

class RealUpdates : public testing::Test {
 protected:
  void SetUp() override {
    if (std::getenv(kVariable) == nullptr) {
      GTEST_SKIP() << kVariable << " names no folder of real data";
    }
  }

  const ORLO::FixedClock clock_{{2026, 11, 5, 20, 12}};
  std::set<RowKey> unseen_;
  std::vector<Row> rows_;
};

TEST_F(RealUpdates, OfWmiBecomeARowEach) {
  MemoryWmi wmi;
  const std::string printed = file_bytes(real_data("names/glpi_xp-Win32_QuickFixEngineering.wmi"));
  ASSERT_TRUE(wmi.load("SELECT * FROM Win32_QuickFixEngineering", "ROOT/CIMV2", printed));
  const ReaderRows known;
  ReadWmiHotfixes(wmi, clock_, known, unseen_, [this](const Row& row) { rows_.push_back(row); });
  ASSERT_EQ(rows_.size(), 16u);
  DateTime installed;
  installed.time = {2011, 1, 0, 15};
  const std::string date = installed.format("%D", clock_).c_str();
  int service_packs = 0;
  for (const Row& row : rows_) {
    const std::string name = text_of(row, Field::name);
    SCOPED_TRACE(name);
    EXPECT_EQ(text_of(row, Field::source), "WMI QFE");
    EXPECT_FALSE(name.empty());
    EXPECT_FALSE(name.starts_with("File"));
    // Those without a description have nothing else but the name.
    const bool bare = text_of(row, Field::displayName) == name;
    service_packs += bare ? 1 : 0;
    EXPECT_EQ(text_of(row, Field::installDate).empty(), bare || name == "XpsEPSC") << date;
    if (!text_of(row, Field::installDate).empty()) {
      EXPECT_EQ(text_of(row, Field::installDate), date);
      EXPECT_EQ(text_of(row, Field::displayVersion), "SP4");
    }
  }
  EXPECT_EQ(service_packs, 5);
}

/// The first column of a table of texts, without its heading.
std::vector<std::string> first_column(const std::string& table) {
  std::istringstream lines(table);
  std::vector<std::string> result;
  std::string line;
  std::getline(lines, line);
  while (std::getline(lines, line))
    result.push_back(line.substr(0, line.find('\t')));
  return result;
}

TEST_F(RealUpdates, OfServicingPackagesAreShownByTheirKeys) {
  const std::string packages =
      "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Component Based "
      "Servicing\\Packages\\";
  std::vector<std::string> names =
      first_column(file_bytes(real_data("names/package_key_names.tsv")));
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
  ASSERT_GT(names.size(), 50u);
  MemoryRegistry registry;
  for (const std::string& name : names)
    registry.set_text(packages + name, "InstallName", u"update.mum");
  MemoryAccounts accounts;
  ServicingPackagesSource source(registry, accounts, clock_);
  EXPECT_TRUE(
      source.ReadServicingPackages(unseen_, [this](const Row& row) { rows_.push_back(row); }));
  std::vector<std::string> found;
  for (const Row& row : rows_) {
    std::string shown = text_of(row, Field::name).append(" - update.mum");
    std::replace(shown.begin(), shown.end(), '~', ' ');
    EXPECT_EQ(text_of(row, Field::displayName), shown);
    found.push_back(text_of(row, Field::name));
  }
  std::sort(found.begin(), found.end());
  EXPECT_EQ(found, names);
}

}  // namespace
