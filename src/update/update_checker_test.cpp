#include "update/update_checker.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <vector>

#include "orlo/exception.h"
#include "orlo/report_test_support.h"
#include "platform/memory_internet.h"
#include "platform/memory_own_key.h"
#include "platform/memory_shell.h"
#include "platform/memory_temporary_files.h"

namespace {

using ORLO::ActiveObject;

constexpr char kDescription[] = "http://updates.example/pad.xml";
constexpr char kNothingNew[] =
    "<?xml version=\"1.0\"?><XML_DIZ_INFO><Program_Info><Program_Version>5.3</Program_Version>"
    "</Program_Info></XML_DIZ_INFO>";

/// Counts what the user would see.
class CountingFrame final : public UpdateFrame {
 public:
  void* window() override { return nullptr; }
  void tell(const String&, const String&) override { ++boxes; }
  bool ask(const String&, const String&) override {
    ++boxes;
    return false;
  }
  void hide() override {}
  std::unique_ptr<ShownDownload> show_download(const String&) override { return nullptr; }
  void end_process() override {}

  std::atomic<int> boxes{0};
};

std::atomic<int> languages{0};
void apply_language() {
  ++languages;
}

class UpdateCheckerTest : public testing::Test {
 protected:
  UpdateCheckerTest() {
    languages = 0;
    settings_.descriptionUrl = kDescription;
    settings_.currentVersion = "5.3";
    settings_.limitToDaily = false;
    for (MemoryInternet* internet : {&background_, &manual_})
      internet->answers[kDescription] = {kNothingNew, std::nullopt};
  }
  UpdateChecker::Parts parts() {
    return {settings_,         services(background_), background_frame_,
            services(manual_), manual_frame_,         &apply_language};
  }
  UpdateServices services(Internet& internet) {
    return {
        internet, key_, files_, shell_, ORLO::system_clock(), [](unsigned) { return String(); }};
  }

  UpdateSettings settings_;
  MemoryInternet background_;
  MemoryInternet manual_;
  MemoryOwnKey key_;
  FolderTemporaryFiles files_{"nowhere"};
  MemoryShell shell_;
  CountingFrame background_frame_;
  CountingFrame manual_frame_;
};

TEST_F(UpdateCheckerTest, ChecksOnceOnItsThreadWithTheThreadsLanguageSetBefore) {
  int languages_at_fetch = 0;
  background_.on_fetch = [&languages_at_fetch] { languages_at_fetch = languages; };
  UpdateChecker checker(parts());
  EXPECT_STREQ(checker.name(), "UpdateChecker");
  checker.resume();
  EXPECT_TRUE(ORLO::wait_for(checker.thread(), 20000));
  EXPECT_EQ(checker.exit_code(), 0);
  EXPECT_EQ(languages_at_fetch, 1);
  EXPECT_EQ(background_.requests.size(), 1u);
  EXPECT_EQ(manual_.requests.size(), 0u);
}

TEST_F(UpdateCheckerTest, EndsItsThreadWithMinus1WhereTheSystemDoesNotTellWhetherItIsOffline) {
  background_.offline = std::nullopt;
  UpdateChecker checker(parts());
  checker.resume();
  EXPECT_TRUE(ORLO::wait_for(checker.thread(), 20000));
  EXPECT_EQ(checker.exit_code(), -1);
  EXPECT_TRUE(background_.requests.empty());
}

TEST_F(UpdateCheckerTest, IsSilentWhereTheFetchFails) {
  ORLO::TestReports reports;
  background_.answers.clear();
  UpdateChecker checker(parts());
  checker.resume();
  EXPECT_TRUE(ORLO::wait_for(checker.thread(), 20000));
  EXPECT_EQ(background_.requests.size(), 1u);
  EXPECT_EQ(background_frame_.boxes, 0);
  EXPECT_TRUE(reports.shown.empty());
}

TEST_F(UpdateCheckerTest, NeverRunsUntilItIsResumed) {
  { const UpdateChecker checker(parts()); }
  EXPECT_EQ(languages, 0);
  EXPECT_TRUE(background_.requests.empty());
}

TEST_F(UpdateCheckerTest, ChecksNothingAnyMoreOnceItIsCancelled) {
  UpdateChecker checker(parts());
  checker.cancel();
  checker.resume();
  EXPECT_TRUE(ORLO::wait_for(checker.thread(), 20000));
  EXPECT_TRUE(background_.requests.empty());
  EXPECT_TRUE(key_.calls.empty());
}

TEST_F(UpdateCheckerTest, ACancelEndsTheFetchUnderWayAndShowsNothingAfterIt) {
  ORLO::Event fetching;
  ORLO::Event go;
  background_.answers[kDescription].body = "no description";
  background_.on_fetch = [&] {
    fetching.set();
    EXPECT_TRUE(ORLO::wait_for(go, 20000));
  };
  UpdateChecker checker(parts());
  checker.resume();
  ASSERT_TRUE(ORLO::wait_for(fetching, 20000));
  checker.cancel();
  EXPECT_FALSE(checker.finished());
  go.set();
  EXPECT_TRUE(checker.stop(ActiveObject::WaitMode::block, 20000));
  EXPECT_TRUE(background_.cancelled());
  EXPECT_EQ(background_frame_.boxes, 0);
}

TEST_F(UpdateCheckerTest, ChecksOnDemandOnTheCallersThreadBesideTheCheckInTheBackground) {
  ORLO::Event fetching;
  ORLO::Event go;
  background_.on_fetch = [&] {
    fetching.set();
    EXPECT_TRUE(ORLO::wait_for(go, 20000));
  };
  UpdateChecker checker(parts());
  checker.resume();
  ASSERT_TRUE(ORLO::wait_for(fetching, 20000));
  checker.checkNow();
  EXPECT_EQ(manual_.requests.size(), 1u);
  EXPECT_EQ(manual_frame_.boxes, 1);
  EXPECT_EQ(background_frame_.boxes, 0);
  go.set();
}

TEST_F(UpdateCheckerTest, ACheckOnDemandThrowsWhatItsFetchThrows) {
  manual_.answers.clear();
  UpdateChecker checker(parts());
  EXPECT_THROW(checker.checkNow(), ORLO::INetException);
  EXPECT_EQ(manual_frame_.boxes, 0);
}

}  // namespace
