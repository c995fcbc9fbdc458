#include "orlo/system_time.h"

#include <gtest/gtest.h>

namespace ORLO {
namespace {

struct Row {
  SystemTime time;
  FileTime file_time;
};

const Row kMoments[] = {
    {{1601, 1, 1, 1, 0, 0, 0, 0}, 0},
    {{1601, 1, 1, 1, 0, 0, 0, 1}, 10'000},
    {{1601, 1, 2, 2, 0, 0, 0, 0}, kFileTimePerDay},
    {{1970, 1, 4, 1, 0, 0, 0, 0}, kUnixEpoch},
    {{2000, 2, 2, 29, 12, 0, 0, 0}, 125'962'992'000'000'000},
    {{2009, 1, 1, 5, 11, 34, 56, 789}, 128'756'288'967'890'000},
    {{2038, 1, 2, 19, 3, 14, 7, 0}, 137'919'572'470'000'000},
};

TEST(SystemTime, ConvertsToFileTimeAndBack) {
  for (const Row& row : kMoments) {
    SCOPED_TRACE(row.file_time);
    FileTime file_time = 1;
    EXPECT_TRUE(to_file_time(row.time, file_time));
    EXPECT_EQ(file_time, row.file_time);
    SystemTime time;
    EXPECT_TRUE(to_system_time(row.file_time, time));
    EXPECT_EQ(time, row.time);
  }
}

TEST(SystemTime, TheDayOfTheWeekIsIgnoredOnTheWayIn) {
  SystemTime time = {2009, 1, 65535, 5, 0, 0, 0, 0};
  FileTime file_time = 0;
  ASSERT_TRUE(to_file_time(time, file_time));
  ASSERT_TRUE(to_system_time(file_time, time));
  EXPECT_EQ(time.wDayOfWeek, 1);
}

TEST(SystemTime, RefusesFieldsOutOfRange) {
  const SystemTime refused[] = {
      {},
      {1600, 12, 0, 31, 0, 0, 0, 0},
      {30828, 1, 0, 1, 0, 0, 0, 0},
      {65535, 1, 0, 1, 0, 0, 0, 0},
      {2009, 0, 0, 1, 0, 0, 0, 0},
      {2009, 13, 0, 1, 0, 0, 0, 0},
      {2009, 25, 0, 12, 0, 0, 0, 0},
      {2009, 65535, 0, 1, 0, 0, 0, 0},
      {2009, 1, 0, 0, 0, 0, 0, 0},
      {2009, 1, 0, 32, 0, 0, 0, 0},
      {2009, 4, 0, 31, 0, 0, 0, 0},
      {2009, 2, 0, 29, 0, 0, 0, 0},
      {1900, 2, 0, 29, 0, 0, 0, 0},
      {2000, 2, 0, 30, 0, 0, 0, 0},
      {2009, 1, 0, 1, 24, 0, 0, 0},
      {2009, 1, 0, 1, 0, 60, 0, 0},
      {2009, 1, 0, 1, 0, 0, 60, 0},
      {2009, 1, 0, 1, 0, 0, 0, 1000},
  };
  for (const SystemTime& time : refused) {
    SCOPED_TRACE(testing::Message() << time.wYear << '-' << time.wMonth << '-' << time.wDay << ' '
                                    << time.wHour << ':' << time.wMinute << ':' << time.wSecond);
    FileTime result = 42;
    EXPECT_FALSE(to_file_time(time, result));
    EXPECT_EQ(result, 42U);
  }
}

TEST(SystemTime, TakesTheFirstAndTheLastYear) {
  FileTime result = 0;
  EXPECT_TRUE(to_file_time({1601, 1, 0, 1, 0, 0, 0, 0}, result));
  EXPECT_TRUE(to_file_time({30827, 12, 0, 31, 23, 59, 59, 999}, result));
  EXPECT_EQ(result, 0x7FFF35F4F06C58F0U);
}

TEST(SystemTime, RefusesFileTimesWithTheHighestBit) {
  SystemTime time = {2009, 1, 1, 5, 0, 0, 0, 0};
  const SystemTime before = time;
  EXPECT_FALSE(to_system_time(FileTime{1} << 63, time));
  EXPECT_FALSE(to_system_time(~FileTime{0}, time));
  EXPECT_EQ(time, before);
  EXPECT_TRUE(to_system_time((FileTime{1} << 63) - 1, time));
  EXPECT_EQ(time, (SystemTime{30828, 9, 4, 14, 2, 48, 5, 477}));
}

TEST(SystemTime, EveryDayOfFourHundredYearsFollowsTheOneBefore) {
  SystemTime before;
  ASSERT_TRUE(to_system_time(0, before));
  for (FileTime day = 1; day <= 146'097; ++day) {
    SystemTime time;
    FileTime back = 0;
    ASSERT_TRUE(to_system_time(day * kFileTimePerDay, time));
    ASSERT_TRUE(to_file_time(time, back));
    ASSERT_EQ(back, day * kFileTimePerDay);
    ASSERT_EQ(time.wDayOfWeek, (before.wDayOfWeek + 1) % 7);
    const bool same_month = time.wMonth == before.wMonth && time.wDay == before.wDay + 1;
    const bool next_month = time.wMonth == before.wMonth % 12 + 1 && time.wDay == 1;
    ASSERT_TRUE(same_month || next_month) << day;
    before = time;
  }
  EXPECT_EQ(before, (SystemTime{2001, 1, 1, 1, 0, 0, 0, 0}));
}

}  // namespace
}  // namespace ORLO
