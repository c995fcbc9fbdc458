#include "inventory/usage_cache.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "inventory/uninstall_test_support.h"
#include "orlo/fixed_clock.h"

namespace {

UsageRecord decoded(const UsageBytes& bytes) {
  const ORLO::FixedClock clock({2026, 11, 5, 20, 12});
  const std::string data = bytes.bytes();
  const auto record = decode_usage_record(data.data(), data.size(), clock);
  EXPECT_TRUE(record);
  return record.value_or(UsageRecord());
}

TEST(UsageRecord, IsNoneOfAnotherSizeThan552) {
  const ORLO::FixedClock clock({2026, 11, 5, 20, 12});
  const std::string data = UsageBytes().bytes() + "more";
  EXPECT_TRUE(decode_usage_record(data.data(), 552, clock));
  for (const size_t size : {0U, 3U, 4U, 551U, 553U}) {
    SCOPED_TRACE(size);
    EXPECT_FALSE(decode_usage_record(data.data(), size, clock));
  }
  EXPECT_FALSE(decode_usage_record(nullptr, 0, clock));
}

TEST(UsageRecord, IsNoneWhereItTellsAnotherSizeThan552) {
  const ORLO::FixedClock clock({2026, 11, 5, 20, 12});
  for (const uint32_t size : {0U, 551U, 553U, 0x22800U, 0xFFFFFFFFU}) {
    SCOPED_TRACE(size);
    UsageBytes bytes;
    bytes.size = size;
    EXPECT_FALSE(decode_usage_record(bytes.bytes().data(), 552, clock));
  }
}

TEST(UsageRecord, RoundsTheSizeToKilobytesInWrappingArithmetic) {
  const struct {
    int64_t bytes;
    int32_t kilobytes;
  } rows[] = {
      {0, 0},
      {511, 0},
      {512, 1},
      {1535, 1},
      {1536, 2},
      {-2, 0},
      {-1535, 0},
      {-1536, -1},
      {int64_t{1} << 41, -2147483647 - 1},
      {(int64_t{1} << 42) + 2048, 2},
      // Both come to -(2^53 - 1) KB.
      {std::numeric_limits<int64_t>::max(), 1},
      {std::numeric_limits<int64_t>::min(), 1},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.bytes);
    UsageBytes bytes;
    bytes.installed = row.bytes;
    EXPECT_EQ(decoded(bytes).size_kb, row.kilobytes);
  }
  EXPECT_FALSE(decoded(UsageBytes()).size_kb);
}

TEST(UsageRecord, KnowsItsMainFileOnlyWhereItSaysSo) {
  UsageBytes bytes;
  bytes.name = u"C:\\x.exe";
  EXPECT_FALSE(decoded(bytes).main_file);
  bytes.has_name = 0x80000000;
  EXPECT_STREQ(decoded(bytes).main_file.value().c_str(), "C:\\x.exe");
}

TEST(UsageRecord, ConvertsTheMainFileToTheCodePageUpToItsFirstNul) {
  UsageBytes bytes;
  bytes.has_name = 1;
  bytes.name = u"C:\\\u00C4\u20AC\u041F.exe";
  bytes.name += u'\0';
  bytes.name += u"rest";
  EXPECT_STREQ(decoded(bytes).main_file.value().c_str(), "C:\\\xC4\x80?.exe");
  bytes.name = std::u16string(262, u'x');
  EXPECT_EQ(decoded(bytes).main_file.value().length(), 262u);
  bytes.name.clear();
  EXPECT_TRUE(decoded(bytes).main_file.value().empty());
}

TEST(UsageRecord, ShowsTheLastUseInLocalTimeWithTheRulesOfItsOwnDate) {
  const struct {
    uint64_t time;
    const char* text;
  } rows[] = {
      {128763036000000000, "13.01.2009 08:00:00"},
      {128909052000000000, "01.07.2009 09:00:00"},
      {0x100000000, "01.01.1601 01:07:09"},
      {ORLO::kUnixEpoch - 1, "01.01.1970 00:59:59"},
      {uint64_t{1} << 63, ""},
      {0xFFFFFFFFFFFFFFFF, ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.time);
    UsageBytes bytes;
    bytes.last_used = row.time;
    EXPECT_STREQ(decoded(bytes).last_use.value().c_str(), row.text);
  }
}

TEST(UsageRecord, KnowsNoLastUseWhereTheHighHalfIsZero) {
  UsageBytes bytes;
  bytes.last_used = 0xFFFFFFFF;
  EXPECT_FALSE(decoded(bytes).last_use);
}

TEST(UsageRecord, TakesAnyFrequencyButTheUnknownOne) {
  UsageBytes bytes;
  EXPECT_FALSE(decoded(bytes).frequency);
  bytes.frequency = 0;
  EXPECT_EQ(decoded(bytes).frequency, 0);
  bytes.frequency = 0xFFFFFFFE;
  EXPECT_EQ(decoded(bytes).frequency, -2);
}

}  // namespace
