#include "inventory/refresh_cycle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "inventory/hooked_registry_test_support.h"
#include "inventory/reader_test_support.h"
#include "inventory/uninstall_test_support.h"
#include "orlo/exception.h"
#include "orlo/report.h"
#include "platform/memory_registry.h"

namespace {

constexpr uint32_t kLong = 20000;
const std::string kMachine = "HKEY_LOCAL_MACHINE\\SOFTWARE\\";
const std::string kMachine32 = "HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\";
const std::string kUser = "HKEY_CURRENT_USER\\SOFTWARE\\";
const std::string kUninstall = "Microsoft\\Windows\\CurrentVersion\\Uninstall\\";

/// Writes down what a cycle brings.
class RecordingView : public InventoryView {
 public:
  void clear_marks() override {
    log.emplace_back("clear marks");
    if (at_clear) at_clear();
  }
  void begin_batch() override { log.emplace_back("begin"); }
  void applyEntry(const UninstallEntry& entry) override {
    log.push_back(std::string("apply ") + entry.name.c_str() + " " + entry.source.c_str() +
                  (entry.is64Bit != 0 ? " 64" : ""));
    marks.push_back(entry.changed);
  }
  void removeEntry(const RowKey& key) override {
    log.push_back(std::string("remove ") + key.texts.at(1).c_str());
  }
  void end_batch() noexcept override { log.emplace_back("end"); }
  std::vector<std::string> log;
  std::vector<int> marks;  ///< of the applied entries
  std::function<void()> at_clear;
};

/// Writes down what shows of a cycle.
class RecordingFrame : public RefreshFrame {
 public:
  void forget_entries() override {
    log.emplace_back("forget");
    if (at_forget) at_forget();
  }
  void begin_wait() override {
    log.emplace_back("begin wait");
    if (at_begin_wait) at_begin_wait();
  }
  void end_wait() noexcept override { log.emplace_back("end wait"); }
  void show_counts() override {
    log.emplace_back("counts");
    if (at_counts) at_counts();
  }
  void show_failure(const String& text) override {
    log.push_back(std::string("failure ") + text.c_str());
    if (at_failure) at_failure();
  }
  void writeHistory() override {
    ++histories;
    if (at_history) at_history();
  }
  void refreshed() override { log.emplace_back("refreshed"); }
  std::vector<std::string> log;
  std::function<void()> at_forget;
  std::function<void()> at_begin_wait;
  std::function<void()> at_counts;
  std::function<void()> at_failure;
  int histories = 0;  ///< how often a baseline was worth keeping
  std::function<void()> at_history;
};

/// Collects the reports of its scope instead of showing boxes; each may be held open.
class CollectedReports {
 public:
  CollectedReports() {
    ORLO::set_report_sink([this](const String&, const String& text) {
      {
        const ORLO::Lock hold(lock_);
        texts_.push_back(text);
      }
      shown.set();
      if (held) ORLO::wait_for(let_go, kLong);
    });
  }
  ~CollectedReports() { ORLO::set_report_sink({}); }
  std::vector<String> texts() {
    const ORLO::Lock hold(lock_);
    return texts_;
  }
  std::atomic<bool> held{false};
  ORLO::Event shown;
  ORLO::Event let_go;

 private:
  ORLO::CriticalSection lock_;
  std::vector<String> texts_;
};

/// What the next waits do before they wait; the last one stays.
std::function<int()> at_wait;
int scripted_wait(ORLO::Waitable* const* items, size_t count, uint32_t timeout) {
  if (at_wait) {
    const int result = at_wait();
    if (result != 0) return result;
  }
  return ORLO::wait_with_messages(items, count, timeout);
}

/// Knows nothing, and takes its time over it.
class SlowWmi : public Wmi {
 public:
  std::unique_ptr<WmiQuery> connect() override {
    reached.set();
    ORLO::wait_for(go, kLong);
    return nothing_.connect();
  }
  ORLO::Event reached, go;

 private:
  MemoryWmi nothing_;
};

class RefreshCycleTest : public testing::Test {
 protected:
  ~RefreshCycleTest() override { at_wait = {}; }
  void start(bool under_wow64 = true) { start(registry_, under_wow64); }
  void start(Registry& registry, bool under_wow64 = true,
             UninstallReader::TellChange tell_change = {}) {
    start(system_.over(registry, under_wow64), std::move(tell_change));
  }
  void start(const UninstallReader::Services& services,
             UninstallReader::TellChange tell_change = {}) {
    reader_ = std::make_unique<UninstallReader>(services, std::move(tell_change));
    cycle_ =
        std::make_unique<RefreshCycle>(RefreshCycle::Parts{*reader_, current_, history_, list_lock_,
                                                           view_, frame_, ORLO::system_clock()},
                                       &scripted_wait);
  }
  /// Returns when so many watchers are in their waits: earlier changes would be missed.
  void await_watchers(size_t count) const {
    while (registry_.awaited() != count)
      std::this_thread::yield();
  }
  /// Ends the reader. A watcher arms its key before it looks whether it is to stop, and is waited
  /// for: so each one that was made has left its call by now.
  std::ptrdiff_t watches_begun_by_the_end() {
    reader_.reset();
    const std::vector<std::string> calls = registry_.calls();
    return std::count(calls.begin(), calls.end(), "notify Uninstall");
  }
  std::vector<std::string> run() {
    view_.log.clear();
    frame_.log.clear();
    cycle_->requestRefresh();
    EXPECT_FALSE(cycle_->refreshing());
    return view_.log;
  }

  using Log = std::vector<std::string>;
  static inline const Log kCalmCycle = {"begin wait", "counts", "end wait", "refreshed"};
  MemoryRegistry registry_;
  MemorySystem system_;
  /// As run(); what the applied entries are marked with.
  std::vector<int> run_marks() {
    view_.marks.clear();
    run();
    return view_.marks;
  }
  /// As if a history file had been read that holds what is there now.
  void load_history() {
    reader_->start_pass();
    while (reader_->pass_running())
      std::this_thread::yield();
    reader_->rows().hand_over(history_.lastEntries);
    history_.loaded();
    reader_->rows().clear();
  }
  using Marks = std::vector<int>;

  Table current_{packageSchema()};
  HistoryMerge history_;
  ORLO::CriticalSection list_lock_;
  RecordingView view_;
  RecordingFrame frame_;
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

TEST_F(RefreshCycleTest, PackageThatWasTheOnlyOneIsRemoved) {
  registry_.create(kUser + kUninstall + "App");
  start();
  run();
  registry_.remove(kUser + kUninstall + "App");
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "remove App", "end"}));
  EXPECT_EQ(current_.size(), 0u);
}

TEST_F(RefreshCycleTest, PassThatIsOverBeforeTheWaitIsHandedOver) {
  registry_.create(kUser + kUninstall + "App");
  start();
  view_.at_clear = [this] {
    while (reader_->pass_running())
      std::this_thread::yield();
  };
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "apply App HKCU Uninstall", "end"}));
}

TEST_F(RefreshCycleTest, EndOfAnEarlierPassIsNotTakenForThatOfTheNext) {
  ORLO::Event reading;
  ORLO::Event go_on;
  bool held = false;
  HookedRegistry hooked(registry_, [&](const std::string& operation, uint32_t) {
    if (operation != "subkey_at" || !held) return;
    reading.set();
    ORLO::wait_for(go_on, kLong);
  });
  registry_.create(kUser + kUninstall);
  start(hooked);
  reader_->start_pass();
  ASSERT_TRUE(ORLO::wait_for(reader_->done_event(), kLong));
  EXPECT_FALSE(reader_->rows().changed());
  // As if nobody had waited for it.
  reader_->done_event().set();
  held = true;
  reader_->start_pass();
  EXPECT_TRUE(ORLO::wait_for(reading, kLong));
  EXPECT_FALSE(ORLO::wait_for(reader_->done_event(), 0));
  held = false;
  go_on.set();
  EXPECT_TRUE(ORLO::wait_for(reader_->done_event(), kLong));
  reader_.reset();
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
  view_.log.clear();
  frame_.log.clear();
  cycle_->requestAfresh();
  EXPECT_EQ(view_.log, (Log{"clear marks", "begin", "apply App HKCU Uninstall", "end"}));
  EXPECT_EQ(frame_.log, (Log{"forget", "begin wait", "counts", "end wait", "refreshed"}));
}

TEST_F(RefreshCycleTest, ForgettingDuringACycleIsFollowedByOneMore) {
  for (const char* name : {"a", "b", "c"})
    registry_.create(kUser + kUninstall + name);
  start();
  bool forgotten = false;
  // The rows are read, and forgotten before they are handed over.
  at_wait = [&] {
    while (!reader_->rows().changed() || reader_->pass_running())
      std::this_thread::yield();
    if (!std::exchange(forgotten, true)) {
      cycle_->requestAfresh();
      EXPECT_EQ(frame_.log, (Log{"begin wait", "forget"}));
    }
    return 0;
  };
  run();
  EXPECT_EQ(current_.size(), 3u);
  EXPECT_EQ(frame_.log, (Log{"begin wait", "forget", "counts", "end wait", "forget", "begin wait",
                             "counts", "end wait", "refreshed"}));
  EXPECT_EQ(cycle_->refreshCount(), 2u);
}

TEST_F(RefreshCycleTest, ForgettingDuringACycleThatIsTheLastIsNotFollowed) {
  registry_.create(kUser + kUninstall + "App");
  start();
  at_wait = [&] {
    cycle_->requestAfresh();
    cycle_->end();
    return 0;
  };
  run();
  EXPECT_EQ(std::count(frame_.log.begin(), frame_.log.end(), "counts"), 1);
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

TEST_F(RefreshCycleTest, CalmCycleShowsTheCountsUnderTheWait) {
  registry_.create(kUser + kUninstall + "App");
  start();
  run();
  EXPECT_EQ(frame_.log, kCalmCycle);
  // Nothing has changed; the counts are written all the same.
  run();
  EXPECT_EQ(frame_.log, kCalmCycle);
}

TEST_F(RefreshCycleTest, FailureIsShownOnceTheWaitIsOver) {
  HookedRegistry hooked(registry_, [](const std::string& operation, uint32_t) {
    if (operation == "subkey_at") throw ORLO::UserException("broken");
  });
  registry_.create(kUser + kUninstall + "App");
  start(hooked);
  run();
  EXPECT_EQ(frame_.log, (Log{"begin wait", "counts", "end wait", "failure broken", "refreshed"}));
  reader_.reset();
}

TEST_F(RefreshCycleTest, RequestsDuringACycleAreCountedAndStartNone) {
  registry_.create(kUser + kUninstall + "App");
  start();
  at_wait = [this] {
    EXPECT_TRUE(cycle_->refreshing());
    cycle_->requestRefresh();
    return 0;
  };
  frame_.at_counts = [this] { cycle_->requestRefresh(); };
  run();
  EXPECT_EQ(frame_.log, kCalmCycle);
  EXPECT_GE(cycle_->refreshCount(), 3u);
}

TEST_F(RefreshCycleTest, RequestsWhileAFailureIsShownStartNone) {
  HookedRegistry hooked(registry_, [](const std::string& operation, uint32_t) {
    if (operation == "subkey_at") throw ORLO::UserException("broken");
  });
  registry_.create(kUser + kUninstall + "App");
  start(hooked);
  frame_.at_failure = [this] { cycle_->requestRefresh(); };
  run();
  EXPECT_EQ(frame_.log.size(), 5u);
  EXPECT_EQ(cycle_->refreshCount(), 2u);
  reader_.reset();
}

TEST_F(RefreshCycleTest, NotedRequestsAreCountedAndTheirRunIsNone) {
  start();
  cycle_->note_request();
  cycle_->note_request();
  EXPECT_EQ(cycle_->refreshCount(), 2u);
  EXPECT_TRUE(frame_.log.empty());
  cycle_->run_noted();
  EXPECT_EQ(cycle_->refreshCount(), 2u);
  EXPECT_EQ(std::count(frame_.log.begin(), frame_.log.end(), "counts"), 1);
  cycle_->note_request();
  cycle_->run_noted_afresh();
  EXPECT_EQ(cycle_->refreshCount(), 3u);
  EXPECT_EQ(std::count(frame_.log.begin(), frame_.log.end(), "forget"), 1);
}

TEST_F(RefreshCycleTest, RequestAfterTheEndIsOnlyCounted) {
  start();
  cycle_->end();
  EXPECT_EQ(run(), Log{});
  EXPECT_EQ(frame_.log, Log{});
  EXPECT_EQ(cycle_->refreshCount(), 1u);
}

TEST_F(RefreshCycleTest, ForgettingAfterTheEndIsOnlyCounted) {
  registry_.create(kUser + kUninstall + "App");
  start();
  run();
  cycle_->end();
  view_.log.clear();
  frame_.log.clear();
  cycle_->requestAfresh();
  EXPECT_EQ(view_.log, Log{});
  EXPECT_EQ(frame_.log, Log{});
  EXPECT_EQ(current_.size(), 1u);
  EXPECT_EQ(cycle_->refreshCount(), 2u);
}

TEST_F(RefreshCycleTest, ForgettingBetweenTheEndAndTheLastHandOverLosesNothing) {
  registry_.create(kUser + kUninstall + "App");
  start();
  at_wait = [this] {
    while (reader_->pass_running())
      std::this_thread::yield();
    cycle_->end();
    cycle_->requestAfresh();
    return 0;
  };
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "apply App HKCU Uninstall", "end"}));
  EXPECT_EQ(frame_.log, kCalmCycle);
}

TEST_F(RefreshCycleTest, CycleThatRunsWhenTheEndComesIsFinished) {
  registry_.create(kUser + kUninstall + "App");
  start();
  at_wait = [this] {
    cycle_->end();
    return 0;
  };
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "apply App HKCU Uninstall", "end"}));
  EXPECT_EQ(frame_.log, kCalmCycle);
}

TEST_F(RefreshCycleTest, QuitAbandonsTheCycleWithNothingHandedOver) {
  registry_.create(kUser + kUninstall + "App");
  start();
  at_wait = [] { return ORLO::kWaitQuit; };
  EXPECT_EQ(run(), (Log{"clear marks"}));
  EXPECT_EQ(frame_.log, (Log{"begin wait", "end wait"}));
  EXPECT_EQ(current_.size(), 0u);
  EXPECT_TRUE(cycle_->abandoned());
}

TEST_F(RefreshCycleTest, CycleAfterAnAbandonedOneBringsAll) {
  registry_.create(kUser + kUninstall + "App");
  start();
  at_wait = [] { return ORLO::kWaitQuit; };
  run();
  at_wait = {};
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "apply App HKCU Uninstall", "end"}));
  EXPECT_FALSE(cycle_->abandoned());
}

TEST_F(RefreshCycleTest, CycleThatFailsAfterAnAbandonedOneIsNotAbandoned) {
  start();
  at_wait = [] { return ORLO::kWaitQuit; };
  run();
  at_wait = {};
  frame_.at_counts = [] { throw ORLO::UserException("no room"); };
  EXPECT_THROW(cycle_->requestRefresh(), ORLO::UserException);
  EXPECT_FALSE(cycle_->abandoned());
}

TEST_F(RefreshCycleTest, OvertakenWaitGoesOn) {
  registry_.create(kUser + kUninstall + "App");
  start();
  int overtaken = 3;
  at_wait = [&] { return overtaken-- > 0 ? ORLO::kWaitOvertaken : 0; };
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "apply App HKCU Uninstall", "end"}));
  EXPECT_EQ(frame_.log, kCalmCycle);
}

TEST_F(RefreshCycleTest, WaitsForTheListToBeFree) {
  start();
  ORLO::Event held;
  ORLO::Event asked;
  ORLO::Event counted;
  bool overtaken = true;
  frame_.at_begin_wait = [&] { asked.set(); };
  frame_.at_counts = [&] { counted.set(); };
  std::thread other([&] {
    const ORLO::Lock hold(list_lock_);
    held.set();
    ORLO::wait_for(asked, kLong);
    // Long enough for a cycle that doesn't wait.
    overtaken = ORLO::wait_for(counted, 200);
  });
  ASSERT_TRUE(ORLO::wait_for(held, kLong));
  run();
  other.join();
  EXPECT_FALSE(overtaken);
  EXPECT_EQ(frame_.log, kCalmCycle);
}

TEST_F(RefreshCycleTest, ForgettingWaitsForTheListToBeFree) {
  start();
  ORLO::Event held;
  ORLO::Event forgotten;
  bool overtaken = true;
  frame_.at_forget = [&] { forgotten.set(); };
  std::thread other([&] {
    const ORLO::Lock hold(list_lock_);
    held.set();
    // Long enough for one who doesn't wait.
    overtaken = ORLO::wait_for(forgotten, 200);
  });
  ASSERT_TRUE(ORLO::wait_for(held, kLong));
  cycle_->requestAfresh();
  other.join();
  EXPECT_FALSE(overtaken);
}

TEST_F(RefreshCycleTest, ForgettingAgainAndAgainWhileTheListIsHeldIsOneForgettingAndBringsAll) {
  registry_.create(kUser + kUninstall + "App");
  start();
  run();
  view_.log.clear();
  frame_.log.clear();
  ORLO::Event held;
  ORLO::Event let_go;
  std::thread other([&] {
    const ORLO::Lock hold(list_lock_);
    held.set();
    ORLO::wait_for(let_go, 50);
  });
  ASSERT_TRUE(ORLO::wait_for(held, kLong));
  // As requests that come while the first one is still about to forget.
  frame_.at_forget = [this] {
    for (int i = 0; i < 100; ++i)
      cycle_->requestAfresh();
  };
  cycle_->requestAfresh();
  other.join();
  EXPECT_EQ(frame_.log, (Log{"forget", "begin wait", "counts", "end wait", "refreshed"}));
  EXPECT_EQ(view_.log, (Log{"clear marks", "begin", "apply App HKCU Uninstall", "end"}));
  EXPECT_EQ(cycle_->refreshCount(), 102u);
  EXPECT_EQ(current_.size(), 1u);
}

TEST_F(RefreshCycleTest, FailureWhileForgettingLeavesTheNextOneToBeDone) {
  registry_.create(kUser + kUninstall + "App");
  start();
  frame_.at_forget = [] { throw ORLO::UserException("no room"); };
  EXPECT_THROW(cycle_->requestAfresh(), ORLO::UserException);
  ASSERT_TRUE(list_lock_.try_enter());
  list_lock_.leave();
  frame_.at_forget = {};
  frame_.log.clear();
  cycle_->requestAfresh();
  EXPECT_EQ(frame_.log, (Log{"forget", "begin wait", "counts", "end wait", "refreshed"}));
}

TEST_F(RefreshCycleTest, FailureOfTheHandOverPassesOnAndLeavesACycleToStart) {
  registry_.create(kUser + kUninstall + "App");
  start();
  frame_.at_counts = [] { throw ORLO::UserException("no room"); };
  EXPECT_THROW(cycle_->requestRefresh(), ORLO::UserException);
  EXPECT_FALSE(cycle_->refreshing());
  EXPECT_EQ(frame_.log.back(), "end wait");
  ASSERT_TRUE(list_lock_.try_enter());
  list_lock_.leave();
  frame_.at_counts = {};
  run();
  EXPECT_EQ(frame_.log, kCalmCycle);
}

TEST_F(RefreshCycleTest, UnknownFailureIsReportedOnceAndTheCycleEndsWithWhatThereIs) {
  for (const char* name : {"a", "b"})
    registry_.create(kUser + kUninstall + name);
  CollectedReports reports;
  HookedRegistry hooked(registry_, [](const std::string& operation, uint32_t index) {
    if (operation == "subkey_at" && index == 1) throw std::runtime_error("unheard of");
  });
  start(hooked);
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "apply a HKCU Uninstall", "end"}));
  EXPECT_EQ(frame_.log, kCalmCycle);
  EXPECT_TRUE(reader_->error_text().empty());
  reader_.reset();
  ASSERT_EQ(reports.texts().size(), 1u);
  EXPECT_STREQ(reports.texts()[0].c_str(), "An exception occured:\nunheard of\n");
}

TEST_F(RefreshCycleTest, CycleAfterAnUnknownFailureHasANewThread) {
  for (const char* name : {"a", "b"})
    registry_.create(kUser + kUninstall + name);
  CollectedReports reports;
  std::atomic<bool> failing{true};
  HookedRegistry hooked(registry_, [&](const std::string& operation, uint32_t index) {
    if (failing && operation == "subkey_at" && index == 1) throw 42;
  });
  start(hooked);
  for (int round = 0; round < 3; ++round) {
    failing = true;
    run();
    failing = false;
    run();
    EXPECT_EQ(current_.size(), 2u) << round;
    EXPECT_EQ(reports.texts().size(), static_cast<size_t>(round + 1));
  }
  reader_.reset();
}

TEST_F(RefreshCycleTest, CycleWaitsForTheReportOfTheThreadThatWasLost) {
  registry_.create(kUser + kUninstall + "a");
  CollectedReports reports;
  reports.held = true;
  std::atomic<bool> failing{true};
  HookedRegistry hooked(registry_, [&](const std::string& operation, uint32_t) {
    if (operation == "subkey_at" && failing.exchange(false)) throw 42;
  });
  start(hooked);
  run();
  ASSERT_TRUE(ORLO::wait_for(reports.shown, kLong));
  bool waited = false;
  at_wait = [&] {
    if (!std::exchange(waited, true)) {
      EXPECT_FALSE(reader_->finished());
    }
    reports.let_go.set();
    return 0;
  };
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "apply a HKCU Uninstall", "end"}));
  EXPECT_TRUE(waited);
  reader_.reset();
}

/// A failure whose text can't be had.
struct Untellable : ORLO::Exception {
  const char* what() const override { throw ORLO::UserException("no words"); }
};

TEST_F(RefreshCycleTest, FailureThatCannotBeToldIsOneOfAnUnknownKind) {
  registry_.create(kUser + kUninstall + "a");
  CollectedReports reports;
  reports.held = true;
  std::atomic<bool> failing{true};
  HookedRegistry hooked(registry_, [&](const std::string& operation, uint32_t) {
    if (operation == "subkey_at" && failing.exchange(false)) throw Untellable();
  });
  start(hooked);
  run();
  ASSERT_TRUE(ORLO::wait_for(reports.shown, kLong));
  at_wait = [&] {
    reports.let_go.set();
    return 0;
  };
  // The thread is still showing why; its end is waited for.
  EXPECT_EQ(run(), (Log{"clear marks", "begin", "apply a HKCU Uninstall", "end"}));
  ASSERT_EQ(reports.texts().size(), 1u);
  EXPECT_STREQ(reports.texts()[0].c_str(),
               "Ein Fehler trat auf w\xe4hrend -NO-CONTEXT-:\nno words");
  reader_.reset();
}

TEST_F(RefreshCycleTest, QuitDuringThatReportAbandonsTheCycle) {
  registry_.create(kUser + kUninstall + "a");
  CollectedReports reports;
  reports.held = true;
  HookedRegistry hooked(registry_, [](const std::string& operation, uint32_t) {
    if (operation == "subkey_at") throw 42;
  });
  start(hooked);
  run();
  ASSERT_TRUE(ORLO::wait_for(reports.shown, kLong));
  at_wait = [] { return ORLO::kWaitQuit; };
  EXPECT_EQ(run(), Log{});
  EXPECT_EQ(frame_.log, (Log{"begin wait", "end wait"}));
  reports.let_go.set();
  reader_.reset();
}

TEST_F(RefreshCycleTest, ThreadThatFailsBeforeItsFirstPassEndsTheWait) {
  CollectedReports reports;
  UninstallReader::Services services = system_.over(registry_);
  services.apply_thread_language = [] { throw ORLO::UserException("no language"); };
  reader_ = std::make_unique<UninstallReader>(services);
  cycle_ = std::make_unique<RefreshCycle>(RefreshCycle::Parts{
      *reader_, current_, history_, list_lock_, view_, frame_, ORLO::system_clock()});
  run();
  EXPECT_EQ(frame_.log, kCalmCycle);
  EXPECT_EQ(reports.texts().size(), 1u);
  reader_.reset();
}

TEST_F(RefreshCycleTest, ForgettingDuringAPassIsSafe) {
  for (int i = 0; i < 200; ++i)
    registry_.create(kUser + kUninstall + std::to_string(i));
  start();
  at_wait = [this] {
    reader_->rows().clear();
    current_.clear_rows();
    return 0;
  };
  for (int round = 0; round < 20; ++round)
    run();
  at_wait = {};
  run();
  EXPECT_EQ(current_.size(), 200u);
}

TEST_F(RefreshCycleTest, EachChangeBelowAWatchedKeyIsTold) {
  for (const std::string& place : {kMachine, kMachine32, kUser})
    registry_.create(place + kUninstall + "App");
  ORLO::Event told;
  start(registry_, true, [&] { told.set(); });
  run();
  for (const std::string& place : {kMachine, kMachine32, kUser}) {
    SCOPED_TRACE(place);
    await_watchers(3);
    registry_.create(place + kUninstall + "New");
    EXPECT_TRUE(ORLO::wait_for(told, kLong));
    await_watchers(3);
    registry_.set_text(place + kUninstall + "New", "DisplayName", u"new");
    EXPECT_TRUE(ORLO::wait_for(told, kLong));
    await_watchers(3);
    registry_.remove(place + kUninstall + "New");
    EXPECT_TRUE(ORLO::wait_for(told, kLong));
  }
}

TEST_F(RefreshCycleTest, KeyThatDoesNotOpenIsNotWatched) {
  registry_.create(kUser + kUninstall + "App");
  start(registry_, true, [] {});
  run();
  EXPECT_EQ(watches_begun_by_the_end(), 1);
}

/// Writes down what is asked of it to watch.
class WatchedRegistry : public HookedRegistry {
 public:
  explicit WatchedRegistry(Registry& behind)
      : HookedRegistry(behind, [](const std::string&, uint32_t) {}) {}
  RegStatus notify(const RegistryKey& key, bool subtree, uint32_t filter,
                   ORLO::Event& event) override {
    {
      const ORLO::Lock hold(lock_);
      watched.emplace_back(subtree, filter);
    }
    return HookedRegistry::notify(key, subtree, filter, event);
  }
  std::vector<std::pair<bool, uint32_t>> watched;

 private:
  ORLO::CriticalSection lock_;
};

TEST_F(RefreshCycleTest, EachPlaceIsWatchedWithItsSubkeysForAllKindsOfChanges) {
  for (const std::string& place : {kMachine, kMachine32, kUser})
    registry_.create(place + kUninstall);
  WatchedRegistry watched(registry_);
  start(watched, true, [] {});
  run();
  await_watchers(3);
  reader_.reset();
  const std::pair<bool, uint32_t> all_below{true, 15};
  EXPECT_EQ(watched.watched, std::vector(3, all_below));
}

TEST_F(RefreshCycleTest, LaterPassesMakeNoFurtherWatchers) {
  registry_.create(kUser + kUninstall + "App");
  start(registry_, true, [] {});
  for (int round = 0; round < 3; ++round)
    run();
  EXPECT_EQ(watches_begun_by_the_end(), 1);
}

TEST_F(RefreshCycleTest, NothingIsWatchedBeforeTheFirstPass) {
  registry_.create(kUser + kUninstall + "App");
  start(registry_, true, [] {});
  EXPECT_EQ(watches_begun_by_the_end(), 0);
}

TEST_F(RefreshCycleTest, NoPlaceIsWatchedBeforeItsFirstReadHasEnded) {
  for (const std::string& place : {kMachine, kMachine32, kUser})
    registry_.create(place + kUninstall + "App");
  for (const int good_places : {0, 1, 2, 3}) {
    SCOPED_TRACE(good_places);
    registry_.clear_calls();
    // Behind its one subkey each place has nothing more to read.
    int ends = 0;
    HookedRegistry hooked(registry_, [&](const std::string& operation, uint32_t index) {
      if (operation != "subkey_at" || index != 1) return;
      if (ends++ == good_places) throw ORLO::UserException("broken");
    });
    start(hooked, true, [] {});
    run();
    EXPECT_EQ(watches_begun_by_the_end(), good_places);
  }
}

TEST_F(RefreshCycleTest, AfterABurstOneLaterChangeBringsAll) {
  registry_.create(kUser + kUninstall + "App");
  ORLO::Event told;
  start(registry_, true, [&] { told.set(); });
  run();
  await_watchers(1);
  for (int i = 0; i < 1000; ++i)
    registry_.create(kUser + kUninstall + std::to_string(i));
  ASSERT_TRUE(ORLO::wait_for(told, kLong));
  run();
  await_watchers(1);
  registry_.create(kUser + kUninstall + "last");
  ASSERT_TRUE(ORLO::wait_for(told, kLong));
  run();
  EXPECT_EQ(current_.size(), 1002u);
}

TEST_F(RefreshCycleTest, ReaderStopsDuringAPass) {
  for (int i = 0; i < 200; ++i)
    registry_.create(kUser + kUninstall + std::to_string(i));
  start();
  reader_->start_pass();
  reader_.reset();
  EXPECT_EQ(registry_.open_keys(), 0u);
}

TEST_F(RefreshCycleTest, FirstCycleWithoutHistoryMarksNothingAndKeepsTheBaseline) {
  registry_.create(kUser + kUninstall + "App");
  start();
  frame_.at_history = [this] { EXPECT_EQ(history_.lastEntries.size(), 1u); };
  EXPECT_EQ(run_marks(), (Marks{0}));
  EXPECT_EQ(frame_.histories, 1);
}

TEST_F(RefreshCycleTest, FirstCycleMarksWhatIsNewOrChangedSinceTheHistory) {
  for (const char* name : {"changed", "gone", "same"})
    registry_.create(kUser + kUninstall + name);
  start();
  load_history();
  registry_.set_text(kUser + kUninstall + "changed", "Comments", u"now");
  registry_.remove(kUser + kUninstall + "gone");
  registry_.create(kUser + kUninstall + "new");
  EXPECT_EQ(run_marks(), (Marks{1 << static_cast<int>(PackageColumn::comments), -1, 0}));
  EXPECT_EQ(frame_.histories, 1);
}

TEST_F(RefreshCycleTest, CycleThatMarksNothingKeepsNothing) {
  registry_.create(kUser + kUninstall + "App");
  registry_.create(kUser + kUninstall + "gone");
  start();
  load_history();
  registry_.remove(kUser + kUninstall + "gone");
  EXPECT_EQ(run_marks(), (Marks{0}));
  EXPECT_EQ(frame_.histories, 0);
  EXPECT_EQ(history_.lastEntries.size(), 1u);
}

TEST_F(RefreshCycleTest, PackageThatArrivesIsNewUntilTheNextCycle) {
  registry_.create(kUser + kUninstall + "Other");
  start();
  run();
  registry_.create(kUser + kUninstall + "App");
  EXPECT_EQ(run_marks(), (Marks{-1}));
  EXPECT_EQ(frame_.histories, 2);
  registry_.set_text(kUser + kUninstall + "App", "Comments", u"now");
  EXPECT_EQ(run_marks(), (Marks{1 << static_cast<int>(PackageColumn::comments)}));
  EXPECT_EQ(run_marks(), (Marks{}));
  EXPECT_EQ(frame_.histories, 3);
}

TEST_F(RefreshCycleTest, RemovedPackageLeavesNoMarkAndIsNewWhenItComesAgain) {
  registry_.create(kUser + kUninstall + "App");
  start();
  run();
  registry_.remove(kUser + kUninstall + "App");
  EXPECT_EQ(run_marks(), (Marks{}));
  EXPECT_EQ(frame_.histories, 1);
  registry_.create(kUser + kUninstall + "App");
  EXPECT_EQ(run_marks(), (Marks{-1}));
}

TEST_F(RefreshCycleTest, MarksStayOutOfTheTables) {
  registry_.create(kUser + kUninstall + "App");
  start();
  run();
  registry_.create(kUser + kUninstall + "new");
  run();
  for (const Table* table : {&current_, &history_.lastEntries}) {
    for (const auto& [key, row] : table->rows)
      EXPECT_STREQ(cell(row, PackageColumn::changed).text.c_str(), "");
  }
}

TEST_F(RefreshCycleTest, ReadingAfreshAcceptsThePresentState) {
  registry_.create(kUser + kUninstall + "App");
  start();
  run();
  registry_.create(kUser + kUninstall + "new");
  view_.marks.clear();
  cycle_->requestAfresh();
  EXPECT_EQ(view_.marks, (Marks{0, 0}));
  EXPECT_EQ(frame_.histories, 2);
  EXPECT_EQ(history_.lastEntries.size(), 2u);
}

TEST_F(RefreshCycleTest, ReadingAfreshForgetsWhatAFailingPassDoesNotReadAgain) {
  for (const char* name : {"a", "b"})
    registry_.create(kUser + kUninstall + name);
  bool failing = false;
  HookedRegistry hooked(registry_, [&](const std::string& operation, uint32_t index) {
    if (failing && operation == "subkey_at" && index == 1) throw ORLO::UserException("broken");
  });
  start(hooked);
  run();
  failing = true;
  view_.marks.clear();
  cycle_->requestAfresh();
  EXPECT_EQ(view_.marks, (Marks{0}));
  EXPECT_EQ(current_.size(), 1u);
  reader_.reset();
}

TEST_F(RefreshCycleTest, CycleWhoseRowsWereForgottenIsNoBaseline) {
  registry_.create(kUser + kUninstall + "App");
  start();
  std::vector<size_t> kept;
  frame_.at_history = [&] { kept.push_back(history_.lastEntries.size()); };
  frame_.at_counts = [this] {
    frame_.at_counts = {};
    cycle_->requestAfresh();
  };
  run();
  EXPECT_EQ(kept, (std::vector<size_t>{1}));
}

TEST_F(RefreshCycleTest, EndAfterForgettingKeepsTheOldHistory) {
  registry_.create(kUser + kUninstall + "App");
  start();
  frame_.at_counts = [this] {
    cycle_->requestAfresh();
    cycle_->end();
  };
  run();
  EXPECT_EQ(frame_.histories, 0);
}

TEST_F(RefreshCycleTest, CycleThatRunsWhenTheEndComesKeepsItsBaseline) {
  registry_.create(kUser + kUninstall + "App");
  start();
  view_.at_clear = [this] { cycle_->end(); };
  run();
  EXPECT_EQ(frame_.histories, 1);
}

TEST_F(RefreshCycleTest, PassThatIsCutShortBringsNothingAndMovesNoBaseline) {
  registry_.create(kUser + kUninstall + "a");
  int subkeys = 0;
  HookedRegistry hooked(registry_, [&](const std::string& operation, uint32_t) {
    if (operation == "subkey_at" && ++subkeys == 1) {
      cycle_->end();
      reader_->stop(ORLO::ActiveObject::WaitMode::none);
    }
  });
  start(hooked);
  EXPECT_EQ(run(), Log{"clear marks"});
  EXPECT_EQ(frame_.log, (Log{"begin wait", "end wait"}));
  EXPECT_EQ(frame_.histories, 0);
  EXPECT_EQ(current_.size(), 0u);
  reader_.reset();
}

TEST_F(RefreshCycleTest, CloseInALaterPassKeepsTheBaselineOfTheOneBefore) {
  registry_.create(kUser + kUninstall + "a");
  bool closing = false;
  HookedRegistry hooked(registry_, [&](const std::string& operation, uint32_t) {
    if (closing && operation == "subkey_at") {
      cycle_->end();
      reader_->stop(ORLO::ActiveObject::WaitMode::none);
    }
  });
  start(hooked);
  run();
  registry_.create(kUser + kUninstall + "b");
  closing = true;
  EXPECT_EQ(run(), Log{"clear marks"});
  EXPECT_EQ(frame_.histories, 1);
  EXPECT_EQ(history_.lastEntries.size(), 1u);
  reader_.reset();
}

TEST_F(RefreshCycleTest, WaitThatEndsInMidPassDoesNotTakeAClosingPassForCutShort) {
  registry_.create(kUser + kUninstall + "a");
  SlowWmi wmi;
  start(system_.over(registry_, system_.installer, wmi));
  // As when the close ends a box with a wait of its own: the pass is in its last source by then.
  int waits = 0;
  at_wait = [&] {
    if (++waits > 1) return 0;
    ORLO::wait_for(wmi.reached, kLong);
    reader_->stop(ORLO::ActiveObject::WaitMode::none);
    cycle_->end();
    wmi.go.set();
    return ORLO::kWaitOvertaken;
  };
  run();
  EXPECT_EQ(frame_.histories, 1);
  EXPECT_EQ(current_.size(), 1u);
  reader_.reset();
}

TEST_F(RefreshCycleTest, CalmCycleTouchesNoRowOfAnySource) {
  const std::string product = "{12345678-ABCD-EF01-2345-6789ABCDEF01}";
  registry_.create(kUser + kUninstall + product);
  system_.installer.add(product).features.emplace_back("Main", "");
  system_.installer.add("{22345678-ABCD-EF01-2345-6789ABCDEF01}");
  registry_.set_text(kMachine32 + "Microsoft\\Updates\\KB1", "PackageName", u"Update 1");
  start();
  run();
  EXPECT_EQ(current_.size(), 2u);
  const int histories = frame_.histories;
  EXPECT_EQ(run(), Log{"clear marks"});
  EXPECT_EQ(frame_.histories, histories);
}

TEST_F(RefreshCycleTest, AbandonedCycleMovesNoBaseline) {
  registry_.create(kUser + kUninstall + "App");
  start();
  at_wait = [] { return ORLO::kWaitQuit; };
  run();
  EXPECT_EQ(frame_.histories, 0);
  EXPECT_FALSE(history_.historyLoaded());
}

TEST_F(RefreshCycleTest, BaselineMovesOnceTheFailureHasBeenRead) {
  registry_.create(kUser + kUninstall + "App");
  HookedRegistry hooked(registry_, [](const std::string& operation, uint32_t) {
    if (operation == "subkey_at") throw ORLO::UserException("broken");
  });
  start(hooked);
  int before = -1;
  frame_.at_failure = [&] { before = frame_.histories; };
  run();
  EXPECT_EQ(before, 0);
  EXPECT_EQ(frame_.histories, 1);
  reader_.reset();
}

}  // namespace
