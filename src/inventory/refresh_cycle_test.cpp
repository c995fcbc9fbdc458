#include "inventory/refresh_cycle.h"

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "inventory/hooked_registry_test_support.h"
#include "inventory/uninstall_test_support.h"
#include "orlo/exception.h"
#include "platform/memory_files.h"
#include "platform/memory_registry.h"

namespace {

const std::string kMachine = "HKEY_LOCAL_MACHINE\\SOFTWARE\\";
const std::string kMachine32 = "HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\";
const std::string kUser = "HKEY_CURRENT_USER\\SOFTWARE\\";
const std::string kUninstall = "Microsoft\\Windows\\CurrentVersion\\Uninstall\\";

/// Writes down what a cycle brings.
class RecordingView : public InventoryView {
 public:
  void clear_marks() override { log.emplace_back("clear marks"); }
  void begin_batch() override { log.emplace_back("begin"); }
  void applyEntry(const UninstallEntry& entry) override {
    log.push_back(std::string("apply ") + entry.name.c_str() + " " + entry.source.c_str() +
                  (entry.is64Bit != 0 ? " 64" : ""));
  }
  void removeEntry(const RowKey& key) override {
    log.push_back(std::string("remove ") + key.texts.at(1).c_str());
  }
  void end_batch() noexcept override { log.emplace_back("end"); }
  std::vector<std::string> log;
};

class RefreshCycleTest : public testing::Test {
 protected:
  void start(bool under_wow64 = true) { start(registry_, under_wow64); }
  void start(Registry& registry, bool under_wow64 = true) {
    reader_ = std::make_unique<UninstallReader>(
        UninstallReader::Services{registry, files_, ORLO::system_clock(), under_wow64, [] {}});
    cycle_ = std::make_unique<RefreshCycle>(*reader_, current_, view_, ORLO::system_clock());
  }
  std::vector<std::string> run() {
    view_.log.clear();
    EXPECT_TRUE(cycle_->run());
    return view_.log;
  }

  using Log = std::vector<std::string>;
  MemoryRegistry registry_;
  MemoryFiles files_;
  Table current_{packageSchema()};
  RecordingView view_;
  std::unique_ptr<UninstallReader> reader_;
  std::unique_ptr<RefreshCycle> cycle_;
};

TEST_F(RefreshCycleTest, FirstCycleBringsAllRowsOfAllPlaces) {
  registry_.create(kMachine32 + kUninstall + "b32");
  registry_.create(kMachine + kUninstall + "c64");
  registry_.create(kUser + kUninstall + "a");
  start();
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "apply b32 HKLM Uninstall",
                        "apply c64 HKLM Uninstall 64", "apply a HKCU Uninstall", "end"}));
  EXPECT_EQ(current_.size(), 3u);
}

TEST_F(RefreshCycleTest, NameInBothViewsIsOneRowOfThe64BitView) {
  registry_.create(kMachine32 + kUninstall + "App");
  registry_.create(kMachine + kUninstall + "App");
  start();
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "apply App HKLM Uninstall 64", "end"}));
}

TEST_F(RefreshCycleTest, NameInBothViewsHasTheUsageDataOfTheOneCacheKeyThatBothShare) {
  registry_.set_number(kMachine32 + kUninstall + "App", "EstimatedSize", 1);
  registry_.set_number(kMachine + kUninstall + "App", "EstimatedSize", 2);
  UsageBytes record;
  record.installed = 10240;
  record.last_used = 128763036000000000;  // 13 January 2009, 07:00 UTC
  registry_.set_raw(std::string(kUsageCacheKey) + "\\App", "SlowInfoCache", kRegBinary,
                    record.bytes());
  start();
  run();
  ASSERT_EQ(current_.size(), 1u);
  const Row& row = current_.rows.begin()->second;
  EXPECT_STREQ(cell(row, PackageColumn::is64Bit).text.c_str(), "1");
  EXPECT_STREQ(cell(row, PackageColumn::size).text.c_str(), "10");
  EXPECT_STREQ(cell(row, PackageColumn::lastUseDate).text.c_str(), "13.01.2009 08:00:00");
}

TEST_F(RefreshCycleTest, NameThatLeavesThe64BitViewIsThatOfThe32BitViewAgain) {
  registry_.create(kMachine32 + kUninstall + "App");
  registry_.create(kMachine + kUninstall + "App");
  start();
  run();
  registry_.remove(kMachine + kUninstall + "App");
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "apply App HKLM Uninstall", "end"}));
}

TEST_F(RefreshCycleTest, NamesThatDifferInCaseAreOneRowForEachSpelling) {
  registry_.create(kMachine32 + kUninstall + "App");
  registry_.create(kMachine + kUninstall + "APP");
  start();
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "apply APP HKLM Uninstall 64",
                        "apply App HKLM Uninstall", "end"}));
}

TEST_F(RefreshCycleTest, PackageUnderAnotherReplacesTheOneThatHasItsPartAsAWholeName) {
  registry_.create(kUser + kUninstall + "KB5");
  registry_.create(kUser + kUninstall + "{1}.KB5");
  start();
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "apply {1}.KB5 HKCU Uninstall", "end"}));
}

TEST_F(RefreshCycleTest, WithoutWow64ThereIsNo64BitView) {
  registry_.create(kMachine32 + kUninstall + "App");
  registry_.create(kMachine + kUninstall + "Other");
  start(false);
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "apply App HKLM Uninstall", "end"}));
}

TEST_F(RefreshCycleTest, CycleWithoutChangeTouchesNothing) {
  registry_.create(kUser + kUninstall + "App");
  start();
  run();
  EXPECT_EQ(run(), (Log{"clear marks"}));
}

TEST_F(RefreshCycleTest, OnlyDifferencesAreHandedOver) {
  registry_.create(kUser + kUninstall + "changed");
  registry_.create(kUser + kUninstall + "gone");
  registry_.create(kUser + kUninstall + "same");
  start();
  run();
  registry_.set_text(kUser + kUninstall + "changed", "Comments", u"now");
  registry_.remove(kUser + kUninstall + "gone");
  registry_.create(kUser + kUninstall + "new");
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "apply changed HKCU Uninstall", "remove gone",
                        "apply new HKCU Uninstall", "end"}));
}

TEST_F(RefreshCycleTest, NoKeyAtAllGivesAnEmptyInventory) {
  start();
  EXPECT_EQ(run(), (Log{"clear marks"}));
  EXPECT_EQ(current_.size(), 0u);
  EXPECT_TRUE(reader_->error_text().empty());
}

TEST_F(RefreshCycleTest, ForgottenRowsComeAgain) {
  registry_.create(kUser + kUninstall + "App");
  start();
  run();
  reader_->clear();
  current_.clear_rows();
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "apply App HKCU Uninstall", "end"}));
}

TEST_F(RefreshCycleTest, FailedPassTellsItsTextAndLeavesWhatItHasRead) {
  for (const char* name : {"a", "b", "c"})
    registry_.create(kUser + kUninstall + name);
  bool failing = true;
  HookedRegistry hooked(registry_, [&failing](const std::string& operation, uint32_t index) {
    if (failing && operation == "subkey_at" && index == 1) throw ORLO::UserException("broken");
  });
  start(hooked);
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "apply a HKCU Uninstall", "end"}));
  EXPECT_STREQ(reader_->error_text().c_str(), "broken");
  failing = false;
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "apply b HKCU Uninstall", "apply c HKCU Uninstall",
                        "end"}));
  EXPECT_TRUE(reader_->error_text().empty());
  reader_.reset();
}

TEST_F(RefreshCycleTest, PassThatRunsOutOfMemoryEndsInAText) {
  registry_.create(kUser + kUninstall + "a");
  bool failing = true;
  HookedRegistry hooked(registry_, [&failing](const std::string& operation, uint32_t) {
    if (failing && operation == "subkey_at") throw std::bad_alloc();
  });
  start(hooked);
  EXPECT_EQ(run(), (Log{"clear marks"}));
  EXPECT_STREQ(reader_->error_text().c_str(), ORLO::SDKException(14).what());
  failing = false;
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "apply a HKCU Uninstall", "end"}));
  reader_.reset();
}

TEST_F(RefreshCycleTest, AbandonedWaitHandsNothingOver) {
  registry_.create(kUser + kUninstall + "App");
  start();
  RefreshCycle abandoned(*reader_, current_, view_, ORLO::system_clock(),
                         [](ORLO::Waitable&, uint32_t) { return false; });
  EXPECT_FALSE(abandoned.run());
  EXPECT_EQ(view_.log, (Log{"clear marks"}));
}

TEST_F(RefreshCycleTest, ReaderStopsDuringAPass) {
  for (int i = 0; i < 200; ++i)
    registry_.create(kUser + kUninstall + std::to_string(i));
  start();
  reader_->start_pass();
  reader_.reset();
  EXPECT_EQ(registry_.open_keys(), 0u);
}

}  // namespace
