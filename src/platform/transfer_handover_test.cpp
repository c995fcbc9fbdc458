#include "platform/transfer_handover.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <iterator>
#include <thread>

namespace {

class TransferHandoverTest : public testing::Test {
 protected:
  /// Takes until the end.
  std::string take_all() {
    std::string all;
    for (;;) {
      auto arrival = handover_.take();
      if (!arrival) return all + " left";
      all += arrival->bytes;
      if (arrival->end) return all;
    }
  }
  TransferHandover handover_;
};

TEST_F(TransferHandoverTest, HandsOverAllBytesInTheirOrder) {
  std::string sent;
  for (int i = 0; i < 100'000; ++i)
    sent += std::to_string(i);
  std::thread fetcher([&] {
    for (size_t at = 0; at < sent.size(); at += 1000) {
      const size_t size = std::min<size_t>(1000, sent.size() - at);
      EXPECT_TRUE(handover_.give(sent.data() + at, size));
    }
    handover_.finish({});
  });
  EXPECT_TRUE(take_all() == sent);
  fetcher.join();
}

TEST_F(TransferHandoverTest, HandsOverTheLengthAtOnce) {
  handover_.announce(17);
  const auto arrival = handover_.take();
  ASSERT_TRUE(arrival.has_value());
  EXPECT_EQ(arrival->length, 17);
  EXPECT_EQ(arrival->bytes, "");
  EXPECT_FALSE(arrival->end.has_value());
}

TEST_F(TransferHandoverTest, HandsOverTheLengthOnlyOnce) {
  handover_.announce(17);
  handover_.take();
  handover_.give("x", 1);
  const auto arrival = handover_.take();
  ASSERT_TRUE(arrival.has_value());
  EXPECT_FALSE(arrival->length.has_value());
  EXPECT_EQ(arrival->bytes, "x");
}

TEST_F(TransferHandoverTest, HandsOverTheErrorAfterWhatCameBefore) {
  handover_.give("abc", 3);
  handover_.finish({12002});
  const auto arrival = handover_.take();
  ASSERT_TRUE(arrival.has_value());
  EXPECT_EQ(arrival->bytes, "abc");
  ASSERT_TRUE(arrival->end.has_value());
  EXPECT_EQ(arrival->end->error, 12002u);
}

TEST_F(TransferHandoverTest, HasNoErrorAtAGoodEnd) {
  handover_.finish({});
  const auto arrival = handover_.take();
  ASSERT_TRUE(arrival.has_value());
  ASSERT_TRUE(arrival->end.has_value());
  EXPECT_FALSE(arrival->end->error.has_value());
}

TEST_F(TransferHandoverTest, WakesAWaitingCallerForWhateverComes) {
  const std::function<void()> events[] = {
      [this] { handover_.announce(17); },
      [this] { handover_.give("x", 1); },
      [this] { handover_.finish({}); },
      [this] { handover_.leave(); },
  };
  for (const auto& happen : events) {
    std::thread other([&happen] {
      std::this_thread::sleep_for(std::chrono::milliseconds(30));  // the caller waits by then
      happen();
    });
    const bool left = !handover_.take().has_value();
    EXPECT_EQ(left, &happen == std::end(events) - 1);
    other.join();
  }
}

TEST_F(TransferHandoverTest, WakesAFetcherThatIsHeld) {
  const std::string much(size_t{64} * 1024, 'x');
  for (const bool leaves : {false, true}) {
    EXPECT_TRUE(handover_.give(much.data(), much.size()));
    std::thread other([this, leaves] {
      std::this_thread::sleep_for(std::chrono::milliseconds(30));
      if (leaves) {
        handover_.leave();
      } else {
        EXPECT_TRUE(handover_.take().has_value());
      }
    });
    EXPECT_EQ(handover_.give("y", 1), !leaves);
    other.join();
    if (leaves) return;
    const auto rest = handover_.take();
    ASSERT_TRUE(rest.has_value());
    EXPECT_EQ(rest->bytes, "y");
  }
}

TEST_F(TransferHandoverTest, TakesNothingMoreOnceTheCallerHasLeft) {
  EXPECT_TRUE(handover_.give("x", 1));
  handover_.leave();
  handover_.leave();
  EXPECT_FALSE(handover_.give("x", 1));
  EXPECT_FALSE(handover_.take().has_value());
}

TEST_F(TransferHandoverTest, LetsAWaitingCallerLeave) {
  std::thread other([this] { handover_.leave(); });
  EXPECT_EQ(take_all(), " left");
  other.join();
}

TEST_F(TransferHandoverTest, HoldsTheFetcherWhileMuchIsWaiting) {
  std::atomic<size_t> given{0};
  const std::string block(1024, 'x');
  std::thread fetcher([&] {
    while (handover_.give(block.data(), block.size()))
      given += block.size();
  });
  const auto arrival = handover_.take();
  ASSERT_TRUE(arrival.has_value());
  EXPECT_LE(arrival->bytes.size(), size_t{65} * 1024);
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EXPECT_LE(given, size_t{130} * 1024);
  handover_.leave();
  fetcher.join();
}

}  // namespace
