#include "orlo/message_wait.h"

#include <gtest/gtest.h>

#include <thread>

namespace ORLO {
namespace {

constexpr uint32_t kLong = 20000;

TEST(WaitWithMessages, GivesTheSignalledItem) {
  Event first;
  Event second;
  Waitable* const items[] = {&first, &second};
  second.set();
  EXPECT_EQ(wait_with_messages(items, 2, kLong), 1);
}

TEST(WaitWithMessages, TimesOutWithoutASignal) {
  Event never;
  Waitable* const items[] = {&never};
  EXPECT_EQ(wait_with_messages(items, 1, 0), kWaitTimedOut);
  EXPECT_EQ(wait_with_messages(items, 1, 20), kWaitTimedOut);
}

TEST(WaitWithMessages, SeesASignalFromAnotherThread) {
  Event done;
  std::thread other([&] { done.set(); });
  Waitable* const items[] = {&done};
  EXPECT_EQ(wait_with_messages(items, 1, kLong), 0);
  other.join();
}

TEST(WaitForAllWithMessages, WaitsForEach) {
  Event first;
  Event second;
  Waitable* const items[] = {&first, &second};
  first.set();
  EXPECT_EQ(wait_for_all_with_messages(items, 2, 20), kWaitTimedOut);
  std::thread other([&] {
    second.set();
    first.set();
  });
  EXPECT_EQ(wait_for_all_with_messages(items, 2, kLong), 0);
  other.join();
  EXPECT_EQ(wait_for_all_with_messages(items, 0, kLong), 0);
}

TEST(WaitThroughQuit, TellsTheSignalFromTheTimeOut) {
  Event done;
  EXPECT_FALSE(wait_through_quit(done, 10));
  done.set();
  EXPECT_TRUE(wait_through_quit(done, kLong));
}

TEST(SleepWithMessages, SleepsItsTime) {
  EXPECT_TRUE(sleep_with_messages(5));
}

TEST(TryEnterWithMessages, EntersAFreeSectionAtOnce) {
  CriticalSection section;
  ASSERT_TRUE(try_enter_with_messages(section));
  section.leave();
}

TEST(TryEnterWithMessages, IsRecursiveLikeTheSection) {
  CriticalSection section;
  const Lock lock(section);
  ASSERT_TRUE(try_enter_with_messages(section));
  section.leave();
}

}  // namespace
}  // namespace ORLO
