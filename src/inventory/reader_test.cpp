#include "inventory/reader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "inventory/hooked_registry_test_support.h"
#include "inventory/reader_test_support.h"
#include "orlo/com_error.h"
#include "orlo/file_test_support.h"
#include "platform/memory_registry.h"

namespace {

using Field = PackageColumn;

const std::string kUninstall =
    "HKEY_CURRENT_USER\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";
const std::string kUpdate = "HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Microsoft\\Updates\\KB2";
const std::string kPackage =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Component Based "
    "Servicing\\Packages\\Package_for_KB4";
constexpr char kProduct[] = "{12345678-ABCD-EF01-2345-6789ABCDEF01}";

/// Has one product, and tells when it is asked.
class OneProduct : public Installer {
 public:
  void set_internal_ui(uint32_t, void** owner) override {
    if (at_call) at_call();
    window = *owner;
    *owner = nullptr;  // As the system writes the former owner there.
  }
  InstallerStatus product_at(uint32_t index, InstallerName& code) override {
    if (index != 0) return kInstallerNoMoreItems;
    std::strcpy(code, kProduct);
    return kInstallerSuccess;
  }
  InstallerStatus feature_at(const char*, uint32_t, InstallerName&, InstallerName&) override {
    return kInstallerNoMoreItems;
  }
  std::optional<String> product_info(const char*, const char* property) override {
    if (std::strcmp(property, "ProductName") != 0) return std::nullopt;
    return String("Product 1");
  }
  int32_t feature_state(const char*, const char*) override { return kFeatureUnknown; }
  std::function<void()> at_call;
  void* window = nullptr;
};

/// A WMI whose enumeration ends as the test says.
class OneHotfix : public Wmi {
 public:
  std::unique_ptr<WmiQuery> connect() override {
    class Query : public WmiQuery {
     public:
      explicit Query(OneHotfix& owner) : owner_(owner) {}
      bool Execute(const char*, const char*, WmiInstances& results) override {
        if (owner_.at_execute) owner_.at_execute();
        results.push_back({{"HotFixID", "KB5"}, {"Description", "Update"}});
        return true;
      }

     private:
      OneHotfix& owner_;
    };
    return std::make_unique<Query>(*this);
  }
  std::function<void()> at_execute;
};

/// A machine on which each source has one row.
class ReaderTest : public testing::Test {
 protected:
  ReaderTest() {
    registry_.set_text(kUninstall + "Key", "DisplayName", u"Key 0");
    registry_.set_text(kUpdate, "PackageName", u"Update 2");
    folder_.make(log_name().c_str(),
                 "2009-01-05\t10:11:12:123\t1 2\tInstallation Successful: Log 3 (KB3)\n");
    system_.files.set_windows_folder(folder_.path(""));
    registry_.set_text(kPackage, "InstallName", u"Package 4");
  }

  /// On the build machine a backslash is part of a file's name.
  std::string log_name() const {
    const std::string folder = folder_.path("");
    return folder.find('\\') == std::string::npos ? "\\WindowsUpdate.log" : "WindowsUpdate.log";
  }

  void start(Registry& registry) {
    reader_ = std::make_unique<UninstallReader>(system_.over(registry, installer_, wmi_),
                                                tell_change_, &window_);
  }
  void start() { start(registry_); }
  void pass() {
    reader_->start_pass();
    while (reader_->pass_running() && !reader_->finished())
      std::this_thread::yield();
  }
  /// The display names of what a pass has read, in the order of their keys.
  std::vector<std::string> names() {
    pass();
    reader_->rows().hand_over(current_);
    std::vector<std::string> result;
    for (const auto& [key, row] : current_.rows)
      result.emplace_back(cell(row, Field::displayName).text.c_str());
    return result;
  }
  using Names = std::vector<std::string>;

  MemoryRegistry registry_;
  MemorySystem system_;
  OneProduct installer_;
  OneHotfix wmi_;
  TempFolder folder_;
  Table current_{packageSchema()};
  int window_ = 0;
  UninstallReader::TellChange tell_change_;
  std::unique_ptr<UninstallReader> reader_;
};

TEST_F(ReaderTest, TheLastRowWithoutAnUninstallKeyStandsForAll) {
  start();
  EXPECT_EQ(names(), (Names{"Update KB5", "Key 0"}));
  EXPECT_EQ(names(), (Names{"Update KB5", "Key 0"}));
}

TEST_F(ReaderTest, SourcesAreReadInTheOrderOfTheirPrecedence) {
  wmi_.at_execute = [] { throw ORLO::UserException("off"); };
  start();
  EXPECT_EQ(names(), (Names{"Package 4", "Key 0"}));
  registry_.remove(kPackage);
  EXPECT_EQ(names(), (Names{"Log 3 (KB3)", "Key 0"}));
  system_.files.set_windows_folder("C:\\Nowhere");
  EXPECT_EQ(names(), (Names{"Update 2", "Key 0"}));
  registry_.remove(kUpdate);
  EXPECT_EQ(names(), (Names{"Product 1", "Key 0"}));
}

TEST_F(ReaderTest, OlderSystemsAreAskedForNeitherServicingPackagesNorHotfixes) {
  system_.version.major = 5;
  start();
  EXPECT_EQ(names(), (Names{"Log 3 (KB3)", "Key 0"}));
  system_.version = {1, 6};
  start();
  EXPECT_EQ(names(), (Names{"Log 3 (KB3)", "Key 0"})) << "another platform";
  system_.version = {SystemVersion::kWindowsNt, 10};
  start();
  EXPECT_EQ(names(), (Names{"Update KB5", "Key 0"}));
}

TEST_F(ReaderTest, WithoutUninstallKeysTheOtherSourcesAreReadAndNothingIsWatched) {
  registry_.remove("HKEY_CURRENT_USER\\SOFTWARE\\Microsoft");
  tell_change_ = [] {};
  start();
  EXPECT_EQ(names(), Names{"Update KB5"});
  reader_->stop();
  EXPECT_EQ(registry_.awaited(), 0u);
}

TEST_F(ReaderTest, WithoutAWindowsFolderThereIsNoLog) {
  system_.files.fail("windows_folder");
  system_.version.major = 5;
  start();
  EXPECT_EQ(names(), (Names{"Update 2", "Key 0"}));
}

TEST_F(ReaderTest, RowOfAFormerPassGoesWithItsSource) {
  start();
  EXPECT_EQ(names(), (Names{"Update KB5", "Key 0"}));
  registry_.remove(kPackage);
  registry_.remove(kUpdate);
  system_.files.fail("windows_folder");
  installer_.at_call = [] { throw ORLO::UserException("off"); };
  EXPECT_EQ(names(), Names{"Key 0"});
}

TEST_F(ReaderTest, ProductWithAnUninstallKeyEnrichesItsRow) {
  registry_.remove(kUninstall + "Key");
  registry_.set_text(kUninstall + "{12345678-abcd-ef01-2345-6789abcdef01}", "DisplayName", u"Mine");
  start();
  EXPECT_EQ(names(), (Names{"Update KB5", "Mine"}));
  EXPECT_EQ(cell(current_.rows.rbegin()->second, Field::MSI).integer(), 1);
}

TEST_F(ReaderTest, InstallerIsGivenTheMainWindow) {
  start();
  for (int i = 0; i < 2; ++i) {
    installer_.window = nullptr;
    pass();
    EXPECT_EQ(installer_.window, &window_);
  }
}

TEST_F(ReaderTest, FailedConversionOfWmiEndsThePassWithItsText) {
  wmi_.at_execute = [] {
    throw ORLO::ComError(static_cast<int32_t>(0x80020005), "wmi", "no text");
  };
  start();
  EXPECT_EQ(names(), (Names{"Package 4", "Key 0"}));
  EXPECT_NE(std::strstr(reader_->error_text().c_str(), "no text"), nullptr);
  wmi_.at_execute = {};
  EXPECT_EQ(names(), (Names{"Update KB5", "Key 0"})) << "the thread lives";
  EXPECT_STREQ(reader_->error_text().c_str(), "");
}

TEST_F(ReaderTest, ReaderThatIsToStopReadsItsSourceToTheEndAndNoFurther) {
  installer_.at_call = [this] { reader_->stop(ORLO::ActiveObject::WaitMode::none); };
  bool asked = false;
  wmi_.at_execute = [&] { asked = true; };
  start();
  registry_.clear_calls();
  EXPECT_EQ(names(), (Names{"Product 1", "Key 0"}));
  EXPECT_TRUE(reader_->cut_short());
  EXPECT_FALSE(asked);
  for (const std::string& call : registry_.calls())
    EXPECT_EQ(call.find("Updates"), std::string::npos) << call;
}

TEST_F(ReaderTest, PassThatHadComeToItsEndIsNotCutShort) {
  start();
  pass();
  reader_->stop();
  EXPECT_FALSE(reader_->cut_short());
}

TEST_F(ReaderTest, PassIsNotCutShortBeforeItIsOver) {
  bool cut_short = true;
  installer_.at_call = [&] {
    reader_->stop(ORLO::ActiveObject::WaitMode::none);
    cut_short = reader_->cut_short();
  };
  start();
  pass();
  EXPECT_FALSE(cut_short);
  EXPECT_TRUE(reader_->cut_short());
}

TEST_F(ReaderTest, PassAfterAWholeOneMayBeCutShort) {
  start();
  pass();
  installer_.at_call = [this] { reader_->stop(ORLO::ActiveObject::WaitMode::none); };
  pass();
  EXPECT_TRUE(reader_->cut_short());
}

TEST_F(ReaderTest, PassThatFailsOnceTheReaderIsToStopIsCutShort) {
  installer_.at_call = [this] {
    reader_->stop(ORLO::ActiveObject::WaitMode::none);
    throw ORLO::UserException("off");
  };
  start();
  pass();
  EXPECT_TRUE(reader_->cut_short());
}

TEST_F(ReaderTest, PassThatFailsByItselfIsNotCutShort) {
  installer_.at_call = [] { throw ORLO::UserException("off"); };
  start();
  pass();
  EXPECT_FALSE(reader_->cut_short());
}

TEST_F(ReaderTest, RefreshInAnySourceLeavesAWholePassBehindIt) {
  // The rows are forgotten at each call of the registry in turn.
  int calls = 0;
  for (int moment = 0; moment <= calls; ++moment) {
    SCOPED_TRACE(moment);
    calls = 0;
    bool first_pass = false;
    HookedRegistry hooked(registry_, [&](const std::string&, uint32_t) {
      if (first_pass && calls++ == moment) reader_->rows().clear();
    });
    start(hooked);
    first_pass = true;
    pass();
    first_pass = false;
    EXPECT_EQ(names(), (Names{"Update KB5", "Key 0"}));
    reader_.reset();
    current_.clear_rows();
  }
  EXPECT_GT(calls, 20);
}

TEST_F(ReaderTest, RefreshFromAnotherThreadMayComeAtAnyMoment) {
  for (int i = 0; i < 30; ++i)
    registry_.set_text(kUninstall + std::to_string(i), "DisplayName", u"x");
  registry_.set_text(kUninstall + kProduct, "DisplayName", u"Mine");
  start();
  for (int round = 0; round < 30; ++round) {
    reader_->start_pass();
    while (reader_->pass_running()) {
      reader_->rows().clear();
      reader_->rows().hand_over(current_);
    }
  }
  EXPECT_EQ(names().size(), 33u);
}

}  // namespace
