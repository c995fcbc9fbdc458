#include "inventory/reg_watcher.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>

#include "platform/memory_registry.h"

namespace {

constexpr uint32_t kLong = 20000;
constexpr uint32_t kAllChanges =
    kRegNotifyName | kRegNotifyAttributes | kRegNotifyLastSet | kRegNotifySecurity;
const std::string kPath = "HKEY_CURRENT_USER\\Software\\Watched";

class RegWatcherTest : public testing::Test {
 protected:
  RegWatcherTest() {
    registry_.create(kPath);
    registry_.open(kCurrentUser, "Software\\Watched", kKeyRead, key_);
  }
  void watch() {
    watcher_ = std::make_unique<RegWatcherThread>(
        key_, change_,
        [this] {
          ++times_;
          told_.set();
        },
        true, kAllChanges);
    settle();
  }
  /// Returns when the watcher is in its wait, or has ended: earlier changes would be missed.
  void settle() const {
    while (registry_.awaited() == 0 && !watcher_->finished())
      std::this_thread::yield();
  }

  MemoryRegistry registry_;
  ORLO::Event change_;
  RegistryKey key_;
  ORLO::Event told_;
  std::atomic<int> times_{0};
  std::unique_ptr<RegWatcherThread> watcher_;
};

TEST_F(RegWatcherTest, TellsOfEachChangeThatComesAfterTheOther) {
  watch();
  for (int i = 1; i <= 5; ++i) {
    registry_.create(kPath + "\\" + std::to_string(i));
    ASSERT_TRUE(ORLO::wait_for(told_, kLong));
    settle();
    EXPECT_EQ(times_, i);
  }
}

TEST_F(RegWatcherTest, TellsOfValuesOfSubkeys) {
  registry_.create(kPath + "\\App\\Deep");
  watch();
  registry_.set_text(kPath + "\\App\\Deep", "DisplayName", u"now");
  EXPECT_TRUE(ORLO::wait_for(told_, kLong));
}

TEST_F(RegWatcherTest, QuickChangesAreToldAtLeastOnce) {
  watch();
  for (int i = 0; i < 100; ++i)
    registry_.create(kPath + "\\" + std::to_string(i));
  ASSERT_TRUE(ORLO::wait_for(told_, kLong));
  settle();
  EXPECT_GE(times_, 1);
  EXPECT_LE(times_, 100);
}

TEST_F(RegWatcherTest, KeyThatVanishesIsToldOnceAndEndsTheThread) {
  watch();
  registry_.remove(kPath);
  ASSERT_TRUE(ORLO::wait_for(watcher_->thread(), kLong));
  EXPECT_EQ(times_, 1);
  EXPECT_EQ(watcher_->exit_code(), -1);
}

TEST_F(RegWatcherTest, KeyThatCanNotBeWatchedEndsTheThreadWithoutAWord) {
  registry_.remove(kPath);
  watch();
  ASSERT_TRUE(ORLO::wait_for(watcher_->thread(), kLong));
  EXPECT_EQ(times_, 0);
  EXPECT_EQ(watcher_->exit_code(), -1);
}

TEST_F(RegWatcherTest, StopDuringTheWaitEndsItWithoutAWord) {
  watch();
  EXPECT_TRUE(watcher_->stop());
  EXPECT_EQ(watcher_->exit_code(), 0);
  EXPECT_EQ(times_, 0);
}

TEST_F(RegWatcherTest, ChangeAfterTheStopIsNotTold) {
  watch();
  watcher_->stop();
  registry_.create(kPath + "\\late");
  watcher_.reset();
  EXPECT_EQ(times_, 0);
}

TEST_F(RegWatcherTest, StopsWhileItTells) {
  ORLO::Event telling;
  ORLO::Event go_on;
  watcher_ = std::make_unique<RegWatcherThread>(
      key_, change_,
      [&] {
        telling.set();
        ORLO::wait_for(go_on, kLong);
      },
      true, kAllChanges);
  settle();
  registry_.create(kPath + "\\App");
  ASSERT_TRUE(ORLO::wait_for(telling, kLong));
  EXPECT_FALSE(watcher_->stop(ORLO::ActiveObject::WaitMode::block, 1));
  go_on.set();
  EXPECT_TRUE(watcher_->stop());
  EXPECT_EQ(watcher_->exit_code(), 0);
}

}  // namespace
