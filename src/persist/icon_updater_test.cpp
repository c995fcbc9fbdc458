#include "persist/icon_updater.h"

#include <gtest/gtest.h>

#include <chrono>
#include <new>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "orlo/exception.h"
#include "orlo/file_test_support.h"
#include "orlo/report.h"
#include "platform/memory_files.h"
#include "platform/memory_icons.h"
#include "platform/memory_image_list.h"

namespace {

using Calls = std::vector<std::string>;
using WaitMode = ORLO::ActiveObject::WaitMode;
constexpr uint32_t kLong = 20000;
constexpr uint32_t kShort = 30;

/// Throws at one of the calls that are counted.
class Fault {
 public:
  void at(int call, bool out_of_memory) {
    countdown_ = call;
    out_of_memory_ = out_of_memory;
  }
  /// True if the call has not come.
  bool pending() const { return countdown_ > 0; }
  void count() {
    if (countdown_ == 0 || --countdown_ != 0) return;
    if (out_of_memory_) throw std::bad_alloc();
    throw ORLO::SDKException(14);
  }

 private:
  int countdown_ = 0;
  bool out_of_memory_ = false;
};

struct Package {
  UninstallEntry entry{};
  int line = -1;
  int image = 0;
};

class Packages final : public IconRows {
 public:
  explicit Packages(Fault& fault) : fault_(fault) {}

  /// On line `line`.
  void add(const std::string& displayIcon, int line) {
    Package package;
    package.entry.displayIcon = displayIcon;
    package.line = line;
    packages.push_back(std::move(package));
  }
  void visit_icons(const Visitor& visitor) override {
    fault_.count();
    for (Package& package : packages) {
      Row row{package.entry, package.line, package.image};
      const bool more = visitor(row);
      package.image = row.image;
      if (!more) return;
    }
  }

  std::vector<Package> packages;

 private:
  Fault& fault_;
};

class Lines final : public IconLines {
 public:
  explicit Lines(Fault& fault) : fault_(fault) {}
  void set_image(int line, int image) override {
    fault_.count();
    calls.push_back(std::to_string(line) + " shows " + std::to_string(image));
  }
  Calls calls;

 private:
  Fault& fault_;
};

/// Stops a thread at a place until a test lets it on.
class Gate {
 public:
  void pass() {
    reached_.set();
    EXPECT_TRUE(ORLO::wait_for(open_, kLong));
  }
  bool reached() { return ORLO::wait_for(reached_, kLong); }
  void open() { open_.set(); }

 private:
  ORLO::Event reached_;
  ORLO::Event open_;
};

std::atomic<int> languages{0};

class IconUpdaterTest : public testing::Test {
 protected:
  IconUpdaterTest() {
    ORLO::set_report_sink([this](const String&, const String&) { ++reports_; });
    para_.imageListPath = folder_.path("Quillmere/list.dat");
    para_.imagePathsPath = folder_.path("Quillmere/paths.txt");
    icons_.on_extract = [this] { fault_.count(); };
    images_.on_call = [this](const char*) { fault_.count(); };
    for (int i = 0; i < 10; ++i)
      icons_.add_icon(name(i), 0, static_cast<uint32_t>(i));
    renew();
  }
  ~IconUpdaterTest() override {
    updater_.reset();
    ORLO::set_report_sink({});
  }

  static std::string name(int i) { return std::to_string(i) + ".exe"; }
  void renew() {
    updater_ = std::make_unique<IconUpdater>(IconUpdater::Parts{
        rows_, lock_, map_, images_, lines_, icons_, files_, para_, [] { ++languages; }});
  }
  bool pass() {
    updater_->start_pass();
    return ORLO::wait_for(updater_->done_event(), kLong);
  }
  bool ended() { return ORLO::wait_for(updater_->thread(), kLong); }
  /// Whether another thread could have the lock.
  bool lock_is_free() {
    const bool entered = lock_.try_enter();
    if (entered) lock_.leave();
    return entered;
  }
  /// False if the lock never became free.
  bool lock_becomes_free() {
    for (uint32_t waited = 0; waited < kLong && !lock_is_free(); ++waited)
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return lock_is_free();
  }
  std::string paths() const { return folder_.content("Quillmere/paths.txt"); }

  const TempFolder folder_;
  Fault fault_;
  std::atomic<int> reports_{0};
  UninstallPara para_;
  ORLO::CriticalSection lock_;
  Packages rows_{fault_};
  Lines lines_{fault_};
  ImageIndexMap map_;
  MemoryImageList images_{16, {MemoryImageList::kDefaultColor}};
  MemoryIcons icons_;
  MemoryFiles files_;
  std::unique_ptr<IconUpdater> updater_;
};

TEST_F(IconUpdaterTest, APassShowsEachLineItsIconInTheOrderOfThePackages) {
  rows_.add("2.exe", 1);
  rows_.add("", 3);
  rows_.add("1.exe", 0);
  rows_.add("2.exe", 2);
  ASSERT_TRUE(pass());
  EXPECT_EQ(lines_.calls, (Calls{"1 shows 1", "0 shows 2", "2 shows 1"}));
  EXPECT_EQ(icons_.calls(), (Calls{"2.exe 0 small", "1.exe 0 small"}));
  EXPECT_EQ(rows_.packages[2].image, 2);
}

TEST_F(IconUpdaterTest, ALineThatShowsItsImageAlreadyGetsNoMessage) {
  rows_.add("1.exe", 0);
  rows_.add("none.exe", 1);
  rows_.add("2.exe", 2);
  rows_.packages[2].image = 2;
  ASSERT_TRUE(pass());
  EXPECT_EQ(lines_.calls, Calls{"0 shows 1"});
  ASSERT_TRUE(pass());
  EXPECT_EQ(lines_.calls, Calls{"0 shows 1"});
  rows_.packages[0].image = 0;
  ASSERT_TRUE(pass());
  EXPECT_EQ(lines_.calls, (Calls{"0 shows 1", "0 shows 1"}));
}

TEST_F(IconUpdaterTest, ALineWhoseIconHasGoneShowsTheDefaultImageAgain) {
  rows_.add("none.exe", 4);
  rows_.packages[0].image = 3;
  ASSERT_TRUE(pass());
  EXPECT_EQ(lines_.calls, Calls{"4 shows 0"});
}

TEST_F(IconUpdaterTest, APackageWithoutALineIsLoadedButNotShown) {
  rows_.add("1.exe", -1);
  ASSERT_TRUE(pass());
  EXPECT_EQ(map_.at("1.exe"), 1);
  EXPECT_EQ(lines_.calls, Calls());
  EXPECT_EQ(rows_.packages[0].image, 0);
  rows_.packages[0].line = 0;
  ASSERT_TRUE(pass());
  EXPECT_EQ(lines_.calls, Calls{"0 shows 1"});
}

TEST_F(IconUpdaterTest, AnIndexBeyondTheListIsDrawnAsTheDefaultImage) {
  map_["1.exe"] = 5;
  rows_.add("1.exe", 0);
  rows_.packages[0].image = 5;
  ASSERT_TRUE(pass());
  EXPECT_EQ(lines_.calls, Calls{"0 shows 0"});
  EXPECT_EQ(paths(), "5 1.exe\n");
}

TEST_F(IconUpdaterTest, EachPassWritesBothFilesThoughNothingIsNew) {
  rows_.add("1.exe", 0);
  for (int round = 0; round < 3; ++round) {
    ASSERT_TRUE(pass());
    EXPECT_EQ(paths(), "1 1.exe\n");
    EXPECT_EQ(folder_.content("Quillmere/list.dat"), "16 pixels, 2 images\n808080\n000001\n");
    std::filesystem::remove_all(folder_.path("Quillmere"));
  }
}

TEST_F(IconUpdaterTest, WithNoPersistPassesRunAndNothingIsWritten) {
  para_.noPersist = true;
  rows_.add("1.exe", 0);
  ASSERT_TRUE(pass());
  EXPECT_EQ(lines_.calls, Calls{"0 shows 1"});
  EXPECT_FALSE(std::filesystem::exists(folder_.path("Quillmere")));
}

TEST_F(IconUpdaterTest, WithoutAStreamThePathsFileGoesAndThePassIsOver) {
  rows_.add("1.exe", 0);
  ASSERT_TRUE(pass());
  images_.set_written(ImageList::Written::no_stream);
  ASSERT_TRUE(pass());
  EXPECT_FALSE(std::filesystem::exists(folder_.path("Quillmere/paths.txt")));
  EXPECT_TRUE(std::filesystem::exists(folder_.path("Quillmere/list.dat")));
}

TEST_F(IconUpdaterTest, IsBusyFromTheFirstPassToTheEndOfTheThread) {
  EXPECT_FALSE(updater_->is_busy());
  ASSERT_TRUE(pass());
  EXPECT_TRUE(updater_->is_busy());
  EXPECT_TRUE(updater_->stop());
  EXPECT_FALSE(updater_->is_busy());
  EXPECT_EQ(updater_->exit_code(), 0);
  updater_->start_pass();
  EXPECT_FALSE(updater_->is_busy()) << "a thread that has ended stays so";
}

TEST_F(IconUpdaterTest, AppliesTheLanguageOnceBeforeItsFirstPass) {
  const int before = languages;
  int at_extraction = 0;
  icons_.on_extract = [&] { at_extraction = languages; };
  rows_.add("1.exe", 0);
  ASSERT_TRUE(pass());
  ASSERT_TRUE(pass());
  EXPECT_EQ(at_extraction, before + 1);
  EXPECT_EQ(languages, before + 1);
}

TEST_F(IconUpdaterTest, APassThatIsAskedForForgetsTheEndOfTheLastOne) {
  Gate gate;
  rows_.add("1.exe", 0);
  updater_->start_pass();
  ASSERT_TRUE(ORLO::wait_for(updater_->done_event(), kLong));
  updater_->done_event().set();
  rows_.add("2.exe", 1);
  icons_.on_extract = [&] { gate.pass(); };
  updater_->start_pass();
  ASSERT_TRUE(gate.reached());
  EXPECT_FALSE(ORLO::wait_for(updater_->done_event(), 0));
  gate.open();
  EXPECT_TRUE(ORLO::wait_for(updater_->done_event(), kLong));
}

TEST_F(IconUpdaterTest, ManyRequestsDuringAPassBecomeOneMore) {
  Gate gate;
  Gate second;
  int writes = 0;
  icons_.on_extract = [&] { gate.pass(); };
  images_.on_call = [&](const char* operation) {
    // Two signals that come before anybody looks would be one.
    if (std::string(operation) == "write" && ++writes == 2) second.pass();
  };
  rows_.add("1.exe", 0);
  updater_->start_pass();
  ASSERT_TRUE(gate.reached());
  for (int i = 0; i < 100; ++i)
    updater_->start_pass();
  gate.open();
  ASSERT_TRUE(ORLO::wait_for(updater_->done_event(), kLong));
  second.open();
  ASSERT_TRUE(ORLO::wait_for(updater_->done_event(), kLong));
  EXPECT_FALSE(ORLO::wait_for(updater_->done_event(), kShort));
  EXPECT_TRUE(updater_->stop());
  EXPECT_EQ(writes, 2);
}

TEST_F(IconUpdaterTest, HoldsTheLockForTheWholeWalkAndNoLonger) {
  Gate walking;
  Gate writing;
  rows_.add("1.exe", 0);
  icons_.on_extract = [&] { walking.pass(); };
  images_.on_call = [&](const char* operation) {
    if (std::string(operation) == "write") writing.pass();
  };
  updater_->start_pass();
  ASSERT_TRUE(walking.reached());
  EXPECT_FALSE(lock_is_free());
  walking.open();
  ASSERT_TRUE(writing.reached());
  EXPECT_TRUE(lock_is_free());
  {
    const ORLO::Lock hold(lock_);
    map_["new"] = -1;
    map_["1.exe"] = 9;
  }
  writing.open();
  ASSERT_TRUE(ORLO::wait_for(updater_->done_event(), kLong));
  EXPECT_EQ(paths(), "1 1.exe\n") << "what the pass has left";
}

TEST_F(IconUpdaterTest, WaitsForTheLock) {
  rows_.add("1.exe", 0);
  {
    const ORLO::Lock hold(lock_);
    updater_->start_pass();
    EXPECT_FALSE(ORLO::wait_for(updater_->done_event(), kShort));
    EXPECT_EQ(lines_.calls, Calls());
  }
  EXPECT_TRUE(ORLO::wait_for(updater_->done_event(), kLong));
  EXPECT_EQ(lines_.calls, Calls{"0 shows 1"});
}

TEST_F(IconUpdaterTest, CanBeStoppedByTheHolderOfTheLock) {
  rows_.add("1.exe", 0);
  const ORLO::Lock hold(lock_);
  updater_->start_pass();
  std::this_thread::sleep_for(std::chrono::milliseconds(kShort));
  EXPECT_TRUE(updater_->stop(WaitMode::block, kLong));
  EXPECT_TRUE(ORLO::wait_for(updater_->done_event(), 0));
  EXPECT_EQ(lines_.calls, Calls());
  EXPECT_FALSE(std::filesystem::exists(folder_.path("Quillmere")));
}

TEST_F(IconUpdaterTest, AStopEndsAPassBetweenAnyTwoPackages) {
  constexpr int kPackages = 6;
  for (int i = 0; i < kPackages; ++i)
    rows_.add(name(i), i);
  for (int stop_at = 1; stop_at <= kPackages; ++stop_at) {
    SCOPED_TRACE(stop_at);
    Gate gate;
    int extractions = 0;
    map_.clear();
    lines_.calls.clear();
    icons_.on_extract = [&] {
      if (++extractions == stop_at) gate.pass();
    };
    renew();
    updater_->start_pass();
    ASSERT_TRUE(gate.reached());
    EXPECT_FALSE(updater_->stop(WaitMode::none));
    gate.open();
    ASSERT_TRUE(ended());
    EXPECT_EQ(extractions, stop_at);
    EXPECT_TRUE(ORLO::wait_for(updater_->done_event(), 0));
    EXPECT_FALSE(updater_->is_busy());
    EXPECT_TRUE(lock_is_free());
    EXPECT_FALSE(std::filesystem::exists(folder_.path("Quillmere")))
        << "an ended pass keeps nothing";
  }
}

TEST_F(IconUpdaterTest, AStopBeforeTheFirstPassLeavesAllAlone) {
  rows_.add("1.exe", 0);
  updater_->stop();
  updater_->start_pass();
  ASSERT_TRUE(ended());
  EXPECT_FALSE(updater_->is_busy());
  EXPECT_EQ(updater_->exit_code(), 0);
  EXPECT_EQ(icons_.calls(), Calls());
}

TEST_F(IconUpdaterTest, GoesWithoutEverHavingRun) {
  updater_.reset();
  EXPECT_EQ(icons_.calls(), Calls());
}

TEST_F(IconUpdaterTest, CanBeStoppedAtAnyMoment) {
  for (int i = 0; i < 10; ++i)
    rows_.add(name(i), i);
  std::mt19937 random(5);
  std::uniform_int_distribution<int> microseconds(0, 1500);
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    map_.clear();
    renew();
    updater_->start_pass();
    if (round % 3 == 0) updater_->start_pass();
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
    if (round % 2 == 0) {
      const ORLO::Lock hold(lock_);
      ASSERT_TRUE(updater_->stop(WaitMode::block, kLong));
    } else {
      ASSERT_TRUE(updater_->stop(WaitMode::pump, kLong));
    }
    ASSERT_FALSE(updater_->is_busy());
  }
  EXPECT_EQ(reports_, 0);
}

TEST_F(IconUpdaterTest, AFailureOfAnyCallEndsThatPassAloneAndSilently) {
  for (int i = 0; i < 3; ++i)
    rows_.add(name(i), i);
  for (const bool out_of_memory : {false, true}) {
    bool failed = true;
    int calls = 0;
    for (int call = 1; failed; ++call) {
      SCOPED_TRACE(testing::Message() << "call " << call << (out_of_memory ? ", memory" : ""));
      map_.clear();
      for (Package& package : rows_.packages)
        package.image = 0;
      std::filesystem::remove_all(folder_.path("Quillmere"));
      fault_.at(call, out_of_memory);
      ASSERT_TRUE(pass());
      failed = !fault_.pending();
      fault_.at(0, false);
      EXPECT_EQ(std::filesystem::exists(folder_.path("Quillmere")), !failed);
      EXPECT_TRUE(lock_is_free());
      EXPECT_TRUE(updater_->is_busy());
      ASSERT_TRUE(pass()) << "the next pass makes up for it";
      for (int i = 0; i < 3; ++i) {
        EXPECT_GT(map_.at(String(name(i))), 0);
        EXPECT_EQ(rows_.packages[static_cast<size_t>(i)].image, map_.at(String(name(i))));
      }
      ASSERT_LT(call, 100);
      calls = call - 1;
    }
    // Visit, count and write; extraction, append and message of each package.
    EXPECT_EQ(calls, 3 + 3 * 3);
  }
  EXPECT_EQ(reports_, 0);
}

/// A pass that is held in the extraction of the second of four icons.
class PausedIconUpdaterTest : public IconUpdaterTest {
 protected:
  PausedIconUpdaterTest() {
    for (int i = 0; i < 4; ++i)
      rows_.add(name(i), i);
    icons_.on_extract = [this] {
      if (++extractions_ == 2) gate_.pass();
    };
    images_.on_call = [this](const char* operation) {
      writes_ += std::string(operation) == "write" ? 1 : 0;
    };
    updater_->start_pass();
    EXPECT_TRUE(gate_.reached());
  }
  ~PausedIconUpdaterTest() override { updater_.reset(); }
  /// Lets the thread on to where it looks for pauses.
  void break_off() {
    gate_.open();
    EXPECT_TRUE(lock_becomes_free());
  }
  bool done(uint32_t timeout) { return ORLO::wait_for(updater_->done_event(), timeout); }

  static inline const Calls kFirstTwo = {"0.exe 0 small", "1.exe 0 small"};
  static inline const Calls kEachOnce = {"0.exe 0 small", "1.exe 0 small", "2.exe 0 small",
                                         "3.exe 0 small"};
  Gate gate_;
  std::atomic<int> extractions_{0};
  std::atomic<int> writes_{0};
};

TEST_F(PausedIconUpdaterTest, APauseBreaksThePassOffAtTheNextPackageAndTheLockIsFree) {
  const IconUpdater::Pause pause(*updater_);
  break_off();
  EXPECT_FALSE(done(kShort));
  EXPECT_TRUE(lock_is_free());
  EXPECT_EQ(icons_.calls(), kFirstTwo);
  EXPECT_EQ(writes_, 0);
  EXPECT_FALSE(std::filesystem::exists(folder_.path("Quillmere")));
}

TEST_F(PausedIconUpdaterTest, TheRestOfAPassIsMadeUpForOnceAfterItsPause) {
  {
    const IconUpdater::Pause pause(*updater_);
    break_off();
  }
  ASSERT_TRUE(done(kLong));
  EXPECT_EQ(icons_.calls(), kEachOnce);
  EXPECT_EQ(lines_.calls, (Calls{"0 shows 1", "1 shows 2", "2 shows 3", "3 shows 4"}));
  EXPECT_EQ(paths(), "1 0.exe\n2 1.exe\n3 2.exe\n4 3.exe\n");
  EXPECT_EQ(folder_.content("Quillmere/list.dat"),
            "16 pixels, 5 images\n808080\n000000\n000001\n000002\n000003\n");
  EXPECT_FALSE(done(kShort));
  EXPECT_EQ(writes_, 1);
}

TEST_F(PausedIconUpdaterTest, APassThatGoesOnSeesThePackagesAsTheyAreThen) {
  {
    const IconUpdater::Pause pause(*updater_);
    break_off();
    const ORLO::Lock hold(lock_);
    rows_.packages.pop_back();
    rows_.packages[0].image = 0;
    rows_.add("7.exe", 3);
  }
  ASSERT_TRUE(done(kLong));
  EXPECT_EQ(lines_.calls, (Calls{"0 shows 1", "1 shows 2", "0 shows 1", "2 shows 3", "3 shows 4"}));
  EXPECT_EQ(paths(), "1 0.exe\n2 1.exe\n3 2.exe\n4 7.exe\n");
}

TEST_F(PausedIconUpdaterTest, NothingGoesOnUntilTheLastOfNestedPausesHasEnded) {
  {
    const IconUpdater::Pause outer(*updater_);
    {
      const IconUpdater::Pause inner(*updater_);
      break_off();
    }
    EXPECT_FALSE(done(kShort));
    EXPECT_EQ(icons_.calls(), kFirstTwo);
    EXPECT_TRUE(lock_is_free());
  }
  ASSERT_TRUE(done(kLong));
  EXPECT_EQ(icons_.calls(), kEachOnce);
}

TEST_F(PausedIconUpdaterTest, PauseAfterPauseLosesNothingAndExtractsNothingTwice) {
  gate_.open();
  for (int round = 0; round < 20; ++round) {
    const IconUpdater::Pause pause(*updater_);
    ASSERT_TRUE(lock_becomes_free());
  }
  ASSERT_TRUE(done(kLong));
  EXPECT_EQ(icons_.calls(), kEachOnce);
  EXPECT_EQ(writes_, 1);
}

TEST_F(PausedIconUpdaterTest, APausedPassIsEndedByAStopAndKeepsNothing) {
  const IconUpdater::Pause pause(*updater_);
  break_off();
  EXPECT_TRUE(updater_->stop(WaitMode::block, kLong));
  EXPECT_TRUE(done(0));
  EXPECT_EQ(icons_.calls(), kFirstTwo);
  EXPECT_EQ(writes_, 0);
}

TEST_F(IconUpdaterTest, APassThatIsAskedForDuringAPauseBeginsAfterIt) {
  rows_.add("1.exe", 0);
  {
    const IconUpdater::Pause pause(*updater_);
    updater_->start_pass();
    EXPECT_FALSE(ORLO::wait_for(updater_->done_event(), kShort));
    EXPECT_EQ(icons_.calls(), Calls());
  }
  ASSERT_TRUE(ORLO::wait_for(updater_->done_event(), kLong));
  EXPECT_EQ(lines_.calls, Calls{"0 shows 1"});
}

TEST_F(IconUpdaterTest, AnUnknownFailureEndsTheThreadInOneReport) {
  icons_.on_extract = [] { throw 42; };
  rows_.add("1.exe", 0);
  ASSERT_TRUE(pass());
  ASSERT_TRUE(ended());
  EXPECT_FALSE(updater_->is_busy());
  EXPECT_TRUE(lock_is_free());
  EXPECT_EQ(reports_, 1);
}

TEST_F(IconUpdaterTest, NoIconOutlastsAPass) {
  const int before = MemoryIcon::live();
  for (int i = 0; i < 10; ++i)
    rows_.add(name(i), i);
  ASSERT_TRUE(pass());
  EXPECT_EQ(MemoryIcon::live(), before);
}

TEST_F(IconUpdaterTest, TenThousandSpecificationsAreEachLoadedOnce) {
  constexpr int kCount = 10000;
  for (int i = 0; i < kCount; ++i) {
    const std::string file = "C:\\Program Files\\" + std::to_string(i) + ".exe";
    icons_.add_icon(file, 0, static_cast<uint32_t>(i));
    rows_.add(file + ",0", i);
    rows_.add(file + ",0", -1);
  }
  ASSERT_TRUE(pass());
  EXPECT_EQ(icons_.calls().size(), size_t{kCount});
  EXPECT_EQ(lines_.calls.size(), size_t{kCount});
  EXPECT_EQ(images_.colors().size(), size_t{kCount} + 1);
  ASSERT_TRUE(pass());
  EXPECT_EQ(icons_.calls().size(), size_t{kCount});
  EXPECT_EQ(lines_.calls.size(), size_t{kCount});
}

}  // namespace
