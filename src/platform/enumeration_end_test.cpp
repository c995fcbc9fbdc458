#include "platform/enumeration_end.h"

#include <gtest/gtest.h>

namespace {

constexpr InstallerStatus kOtherFailure = 1603;

/// Judges `times` answers of the same status, from `index` on; the last of them is the result.
InstallerStatus judge_many(EnumerationEnd& end, uint32_t index, int times, InstallerStatus status) {
  InstallerStatus judged = kInstallerSuccess;
  for (int i = 0; i < times; ++i)
    judged = end.judge(index++, status);
  return judged;
}

TEST(EnumerationEnd, ComesWithTheHundredthEqualFailureInARow) {
  EnumerationEnd end;
  for (uint32_t i = 1; i < 100; ++i)
    EXPECT_EQ(end.judge(i, kInstallerBadConfiguration), kInstallerBadConfiguration) << i;
  EXPECT_EQ(end.judge(100, kInstallerBadConfiguration), kInstallerNoMoreItems);
  EXPECT_EQ(end.judge(101, kInstallerBadConfiguration), kInstallerNoMoreItems) << "and stays";
}

TEST(EnumerationEnd, NeverComesWithSuccess) {
  EnumerationEnd end;
  EXPECT_EQ(judge_many(end, 0, 1000, kInstallerSuccess), kInstallerSuccess);
}

TEST(EnumerationEnd, TheSystemsOwnEndIsToldAtOnce) {
  EnumerationEnd end;
  EXPECT_EQ(end.judge(0, kInstallerNoMoreItems), kInstallerNoMoreItems);
}

TEST(EnumerationEnd, ASuccessBetweenFailuresBeginsTheCountAnew) {
  EnumerationEnd end;
  judge_many(end, 0, 99, kInstallerBadConfiguration);
  end.judge(99, kInstallerSuccess);
  EXPECT_EQ(judge_many(end, 100, 99, kInstallerBadConfiguration), kInstallerBadConfiguration);
  EXPECT_EQ(end.judge(199, kInstallerBadConfiguration), kInstallerNoMoreItems);
}

TEST(EnumerationEnd, AnotherFailureBeginsTheCountAnew) {
  EnumerationEnd end;
  judge_many(end, 0, 99, kInstallerBadConfiguration);
  EXPECT_EQ(judge_many(end, 99, 99, kOtherFailure), kOtherFailure);
  EXPECT_EQ(judge_many(end, 198, 99, kInstallerBadConfiguration), kInstallerBadConfiguration);
}

TEST(EnumerationEnd, TheFirstIndexBeginsANewEnumeration) {
  EnumerationEnd end;
  EXPECT_EQ(judge_many(end, 0, 100, kInstallerBadConfiguration), kInstallerNoMoreItems);
  EXPECT_EQ(end.judge(0, kInstallerBadConfiguration), kInstallerBadConfiguration);
  EXPECT_EQ(judge_many(end, 1, 98, kInstallerBadConfiguration), kInstallerBadConfiguration);
  EXPECT_EQ(end.judge(99, kInstallerBadConfiguration), kInstallerNoMoreItems);
}

}  // namespace
