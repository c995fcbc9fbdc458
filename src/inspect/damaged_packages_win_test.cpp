// Packages of real installers, cut off and overwritten: whatever the system makes of them, reading
// ends, with what there is or with an exception. See real_data_test.cpp for where they are.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "inspect/database_content.h"
#include "orlo/exception.h"
#include "platform/file_bytes_test_support.h"

namespace {

namespace fs = std::filesystem;

constexpr char kVariable[] = "ZOLVANE_REALDATA";
constexpr size_t kSector = 512;

/// The folder as the variable names it; a path of the host is reached through the drive Z.
fs::path real_packages() {
  const fs::path named = fs::path(std::getenv(kVariable)) / "msi";
  return fs::exists(named) ? named : fs::path("Z:") / named;
}

class DamagedPackages : public testing::Test {
 protected:
  void SetUp() override {
    if (std::getenv(kVariable) == nullptr) {
      GTEST_SKIP() << kVariable << " names no folder of real data";
    }
  }
  ~DamagedPackages() override { fs::remove(file_); }

  /// False if the system refuses the file.
  bool read(const std::string& bytes) {
    std::ofstream(file_, std::ios::binary) << bytes;
    DatabaseContent content;
    try {
      content.load(*databases_, String(file_.string().c_str()));
      return true;
    } catch (const ORLO::SDKException& exception) {
      EXPECT_STRNE(exception.what(), "");
      return false;
    }
  }
  const std::unique_ptr<InstallerDatabases> databases_ = make_system_installer_databases();
  const fs::path file_ = fs::temp_directory_path() / "zolvane-damaged.msi";
};

TEST_F(DamagedPackages, CutOffAtEachSectorAreReadOrRefused) {
  int refused = 0;
  for (const auto& entry : fs::directory_iterator(real_packages())) {
    const std::string whole = file_bytes(entry.path());
    for (size_t length = 0; length < whole.size(); length += kSector)
      refused += read(whole.substr(0, length)) ? 0 : 1;
  }
  EXPECT_GT(refused, 500);
}

TEST_F(DamagedPackages, OverwrittenInEachSectorAreReadOrRefused) {
  std::mt19937 random(1);
  int refused = 0;
  for (const auto& entry : fs::directory_iterator(real_packages())) {
    const std::string whole = file_bytes(entry.path());
    for (size_t at = 0; at < whole.size(); at += kSector) {
      std::string bytes = whole;
      for (int i = 0; i < 4; ++i)
        bytes[at + random() % std::min(kSector, whole.size() - at)] = static_cast<char>(random());
      refused += read(bytes) ? 0 : 1;
    }
  }
  EXPECT_GT(refused, 50);
}

}  // namespace
