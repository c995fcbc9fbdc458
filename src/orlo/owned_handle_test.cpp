#include "orlo/owned_handle.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace ORLO {
namespace {

std::vector<int> closed;

struct NumberTraits {
  using Handle = int;
  static int invalid() noexcept { return -1; }
  static void close(int handle) noexcept { closed.push_back(handle); }
};
using OwnedNumber = OwnedHandle<NumberTraits>;

class OwnedHandleTest : public testing::Test {
 protected:
  void SetUp() override { closed.clear(); }
  void TearDown() override { EXPECT_EQ(OwnedNumber::live(), 0); }
};

TEST_F(OwnedHandleTest, ClosesOnceAtTheEndOfItsLife) {
  {
    const OwnedNumber handle(7);
    EXPECT_EQ(OwnedNumber::live(), 1);
  }
  EXPECT_EQ(closed, std::vector<int>{7});
}

TEST_F(OwnedHandleTest, NullIsAHandleWhereAnotherValueMeansNone) {
  { const OwnedNumber handle(0); }
  EXPECT_EQ(closed, std::vector<int>{0});
}

TEST_F(OwnedHandleTest, TheInvalidHandleIsNeverClosed) {
  {
    const OwnedNumber handle(-1);
    EXPECT_FALSE(handle);
    EXPECT_EQ(OwnedNumber::live(), 0);
  }
  EXPECT_TRUE(closed.empty());
}

TEST_F(OwnedHandleTest, MovingLeavesNothingBehind) {
  OwnedNumber first(1);
  OwnedNumber second(std::move(first));
  EXPECT_FALSE(first);  // NOLINT(bugprone-use-after-move): that's what is tested.
  EXPECT_EQ(second.get(), 1);
  EXPECT_TRUE(closed.empty());
}

TEST_F(OwnedHandleTest, MoveAssignmentClosesWhatWasThere) {
  OwnedNumber target(1);
  target = OwnedNumber(2);
  EXPECT_EQ(closed, std::vector<int>{1});
  EXPECT_EQ(target.get(), 2);
}

TEST_F(OwnedHandleTest, AssignmentToItselfKeepsTheHandle) {
  OwnedNumber handle(1);
  OwnedNumber& same = handle;
  handle = std::move(same);
  EXPECT_EQ(handle.get(), 1);
  EXPECT_TRUE(closed.empty());
}

TEST_F(OwnedHandleTest, ReleaseGivesTheHandleAwayUnclosed) {
  OwnedNumber handle(3);
  EXPECT_EQ(handle.release(), 3);
  EXPECT_FALSE(handle);
  EXPECT_EQ(OwnedNumber::live(), 0);
  EXPECT_TRUE(closed.empty());
}

TEST_F(OwnedHandleTest, ResetReplacesTheHandle) {
  OwnedNumber handle(3);
  handle.reset(4);
  EXPECT_EQ(closed, std::vector<int>{3});
  EXPECT_EQ(OwnedNumber::live(), 1);
}

}  // namespace
}  // namespace ORLO
