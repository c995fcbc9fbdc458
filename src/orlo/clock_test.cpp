#include "orlo/clock.h"

#include <gtest/gtest.h>

#include <chrono>

#include "orlo/fixed_clock.h"
#include "orlo/zone_rules.h"

namespace ORLO {
namespace {

// The same promises hold for the platform and for the stand-in of build machines. Run in the time
// zone Europe/Berlin.

bool in_berlin() {
  TimeZoneInfo zone;
  system_clock().zone(zone);
  return zone.Bias == -60 && zone.DaylightDate.wMonth == 3;
}

TEST(Clock, TellsThePresentMoment) {
  const auto seconds = [] {
    const auto since_1970 = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<uint64_t>(
        std::chrono::duration_cast<std::chrono::seconds>(since_1970).count());
  };
  const uint64_t before = seconds();
  FileTime now = 0;
  ASSERT_TRUE(to_file_time(system_clock().now(), now));
  const uint64_t after = seconds();
  const uint64_t told = (now - kUnixEpoch) / kFileTimePerSecond;
  EXPECT_LE(before, told + 1);
  EXPECT_LE(told, after + 1);
}

TEST(Clock, DescribesTheZoneByItsRules) {
  if (!in_berlin()) GTEST_SKIP() << "runs only in the time zone Europe/Berlin";
  TimeZoneInfo zone;
  const ZoneState state = system_clock().zone(zone);
  const TimeZoneInfo expected = berlin_zone();
  EXPECT_EQ(zone.StandardDate, expected.StandardDate);
  EXPECT_EQ(zone.DaylightDate, expected.DaylightDate);
  EXPECT_EQ(zone.StandardBias, 0);
  EXPECT_EQ(zone.DaylightBias, -60);
  FileTime now = 0;
  ASSERT_TRUE(to_file_time(system_clock().now(), now));
  EXPECT_EQ(state == ZoneState::daylight, is_daylight_time(expected, now));
  EXPECT_NE(state, ZoneState::unknown);
}

struct Row {
  SystemTime utc;
  SystemTime local;
};

const Row kBerlin[] = {
    {{2009, 1, 0, 5, 12, 34, 56, 789}, {2009, 1, 1, 5, 13, 34, 56, 789}},
    {{2009, 7, 0, 1, 12, 0, 0, 0}, {2009, 7, 3, 1, 14, 0, 0, 0}},
    {{2009, 3, 0, 29, 0, 59, 59, 999}, {2009, 3, 0, 29, 1, 59, 59, 999}},
    {{2009, 3, 0, 29, 1, 0, 0, 0}, {2009, 3, 0, 29, 3, 0, 0, 0}},
    {{2009, 10, 0, 25, 0, 59, 59, 999}, {2009, 10, 0, 25, 2, 59, 59, 999}},
    {{2009, 10, 0, 25, 1, 0, 0, 0}, {2009, 10, 0, 25, 2, 0, 0, 0}},
    {{2009, 12, 0, 31, 23, 30, 0, 0}, {2010, 1, 5, 1, 0, 30, 0, 0}},
    {{2008, 2, 0, 28, 23, 30, 0, 0}, {2008, 2, 5, 29, 0, 30, 0, 0}},
};

TEST(Clock, ConvertsToTheSystemsZone) {
  if (!in_berlin()) GTEST_SKIP() << "runs only in the time zone Europe/Berlin";
  for (const Row& row : kBerlin) {
    SCOPED_TRACE(testing::Message()
                 << row.utc.wMonth << '-' << row.utc.wDay << ' ' << row.utc.wHour);
    SystemTime local;
    EXPECT_TRUE(system_clock().to_local(nullptr, row.utc, local));
    EXPECT_EQ(local, row.local);
  }
}

TEST(Clock, ConvertsToAGivenZone) {
  const TimeZoneInfo berlin = berlin_zone();
  for (const Row& row : kBerlin) {
    SystemTime local;
    EXPECT_TRUE(system_clock().to_local(&berlin, row.utc, local));
    EXPECT_EQ(local, row.local);
  }
  TimeZoneInfo fixed;
  fixed.Bias = 330;
  SystemTime local;
  EXPECT_TRUE(system_clock().to_local(&fixed, {2009, 7, 0, 1, 3, 0, 0, 0}, local));
  EXPECT_EQ(local, (SystemTime{2009, 6, 2, 30, 21, 30, 0, 0}));
}

TEST(Clock, ConvertsToAZoneOfTheSouthernHemisphere) {
  // Daylight time from the first Sunday in October, 2:00, to the first Sunday in April, 3:00.
  TimeZoneInfo sydney;
  sydney.Bias = -600;
  sydney.DaylightBias = -60;
  sydney.DaylightDate = {0, 10, 0, 1, 2, 0, 0, 0};
  sydney.StandardDate = {0, 4, 0, 1, 3, 0, 0, 0};
  const Row rows[] = {
      {{2009, 1, 0, 5, 12, 0, 0, 0}, {2009, 1, 1, 5, 23, 0, 0, 0}},
      {{2009, 7, 0, 5, 12, 0, 0, 0}, {2009, 7, 0, 5, 22, 0, 0, 0}},
      {{2009, 4, 0, 4, 15, 59, 0, 0}, {2009, 4, 0, 5, 2, 59, 0, 0}},
      {{2009, 4, 0, 4, 16, 0, 0, 0}, {2009, 4, 0, 5, 2, 0, 0, 0}},
      {{2009, 10, 0, 3, 15, 59, 0, 0}, {2009, 10, 0, 4, 1, 59, 0, 0}},
      {{2009, 10, 0, 3, 16, 0, 0, 0}, {2009, 10, 0, 4, 3, 0, 0, 0}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message()
                 << row.utc.wMonth << '-' << row.utc.wDay << ' ' << row.utc.wHour);
    SystemTime local;
    EXPECT_TRUE(system_clock().to_local(&sydney, row.utc, local));
    EXPECT_EQ(local, row.local);
  }
}

TEST(Clock, LeavesTheResultAloneWhenItCannotConvert) {
  const SystemTime untouched = {1, 2, 3, 4, 5, 6, 7, 8};
  SystemTime local = untouched;
  EXPECT_FALSE(system_clock().to_local(nullptr, {2009, 25, 0, 5, 0, 0, 0, 0}, local));
  EXPECT_FALSE(system_clock().to_local(nullptr, {2009, 1, 0, 5, 24, 0, 0, 0}, local));
  TimeZoneInfo west;
  west.Bias = 60;
  EXPECT_FALSE(system_clock().to_local(&west, {1601, 1, 0, 1, 0, 0, 0, 0}, local));
  EXPECT_EQ(local, untouched);
}

TEST(Clock, ShiftsFileTimesByThePresentBias) {
  if (!in_berlin()) GTEST_SKIP() << "runs only in the time zone Europe/Berlin";
  TimeZoneInfo zone;
  const bool daylight = system_clock().zone(zone) == ZoneState::daylight;
  FileTime local = 0;
  ASSERT_TRUE(system_clock().to_local(kUnixEpoch, local));
  EXPECT_EQ(local, kUnixEpoch + (daylight ? 120 : 60) * kFileTimePerMinute);
}

TEST(FixedClock, StandsWhereItIsPut) {
  FixedClock clock({2009, 1, 1, 5, 12, 0, 0, 0});
  TimeZoneInfo zone;
  EXPECT_EQ(clock.zone(zone), ZoneState::standard);
  clock.set({2009, 7, 3, 1, 12, 0, 0, 0});
  EXPECT_EQ(clock.now(), (SystemTime{2009, 7, 3, 1, 12, 0, 0, 0}));
  EXPECT_EQ(clock.zone(zone), ZoneState::daylight);
  EXPECT_EQ(zone.Bias, -60);
  FileTime local = 0;
  ASSERT_TRUE(clock.to_local(kUnixEpoch, local));
  EXPECT_EQ(local, kUnixEpoch + 120 * kFileTimePerMinute);
}

TEST(FixedClock, WithoutRulesItsZoneHasNoState) {
  TimeZoneInfo fixed;
  fixed.Bias = 300;
  const FixedClock clock({2009, 7, 3, 1, 12, 0, 0, 0}, fixed);
  TimeZoneInfo zone;
  EXPECT_EQ(clock.zone(zone), ZoneState::unknown);
  SystemTime local;
  ASSERT_TRUE(clock.to_local(nullptr, clock.now(), local));
  EXPECT_EQ(local.wHour, 7);
}

}  // namespace
}  // namespace ORLO
