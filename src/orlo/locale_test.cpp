#include "orlo/locale.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace ORLO {
namespace {

// The same promises hold for the platform and for the stand-in of build machines. Run with the
// locale English (United Kingdom).

const SystemTime kAfternoon = {2009, 1, 1, 5, 13, 5, 7, 0};
const SystemTime kMidnight = {2010, 10, 0, 31, 0, 0, 0, 0};

bool is_british() {
  return system_locale().date_text(kAfternoon, nullptr) == "05/01/2009";
}

TEST(Locale, PrintsDatesByPicture) {
  struct Row {
    const char* picture;
    const char* text;
  };
  const Row rows[] = {
      {"d dd", "5 05"},
      {"ddd", "Mon"},
      {"dddd", "Monday"},
      {"M MM", "1 01"},
      {"MMM", "Jan"},
      {"MMMM", "January"},
      {"yy yyyy", "09 2009"},
      {"dd.MM.yyyy", "05.01.2009"},
      {"yyyy-MM-dd", "2009-01-05"},
      {"'day' d", "day 5"},
      {"d 'it''s'", "5 it's"},
      {"d 'open", "5 open"},
      {"d/M-yy, x", "5/1-09, x"},
      {"HH:mm", "HH:mm"},
      {"", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.picture);
    EXPECT_EQ(system_locale().date_text(kAfternoon, row.picture), row.text);
  }
}

TEST(Locale, PrintsTimesByPicture) {
  struct Row {
    const char* picture;
    const char* afternoon;
    const char* midnight;
  };
  const Row rows[] = {
      {"HH:mm", "13:05", "00:00"},
      {"H:m:s", "13:5:7", "0:0:0"},
      {"hh:mm:ss", "01:05:07", "12:00:00"},
      {"h", "1", "12"},
      {"t", "p", "a"},
      {"tt", "pm", "am"},
      {"HH'h'mm", "13h05", "00h00"},
      {"hh 'o''clock'", "01 o'clock", "12 o'clock"},
      {"dd", "dd", "dd"},
      {"", "", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.picture);
    EXPECT_EQ(system_locale().time_text(kAfternoon, row.picture), row.afternoon);
    EXPECT_EQ(system_locale().time_text(kMidnight, row.picture), row.midnight);
  }
}

TEST(Locale, PrintsTheShortDateAndTheTimeWithoutPicture) {
  if (!is_british()) GTEST_SKIP() << "runs only in the locale English (United Kingdom)";
  EXPECT_EQ(system_locale().date_text(kMidnight, nullptr), "31/10/2010");
  EXPECT_EQ(system_locale().time_text(kMidnight, nullptr), "00:00:00");
  EXPECT_EQ(system_locale().time_text(kAfternoon, nullptr), "13:05:07");
}

TEST(Locale, KnowsEveryMonthAndWeekday) {
  const char* const months[] = {"January",   "February", "March",    "April",
                                "May",       "June",     "July",     "August",
                                "September", "October",  "November", "December"};
  for (uint16_t month = 1; month <= 12; ++month) {
    EXPECT_EQ(system_locale().date_text({2009, month, 0, 1, 0, 0, 0, 0}, "MMMM"),
              months[month - 1]);
  }
  const char* const days[] = {"Mon Monday", "Tue Tuesday",  "Wed Wednesday", "Thu Thursday",
                              "Fri Friday", "Sat Saturday", "Sun Sunday"};
  for (uint16_t day = 1; day <= 7; ++day) {
    EXPECT_EQ(system_locale().date_text({2009, 6, 99, day, 0, 0, 0, 0}, "ddd dddd"), days[day - 1]);
  }
}

TEST(Locale, FailsForADateThatTheCalendarLacks) {
  const SystemTime bad[] = {{2009, 25, 0, 5, 0, 0, 0, 0}, {2009, 0, 0, 5, 0, 0, 0, 0},
                            {2009, 4, 0, 31, 0, 0, 0, 0}, {2009, 2, 0, 30, 0, 0, 0, 0},
                            {1600, 1, 0, 5, 0, 0, 0, 0},  {}};
  for (const SystemTime& time : bad) {
    SCOPED_TRACE(testing::Message() << time.wYear << '-' << time.wMonth << '-' << time.wDay);
    EXPECT_EQ(system_locale().date_text(time, nullptr), std::nullopt);
    EXPECT_EQ(system_locale().date_text(time, "yyyy"), std::nullopt);
    EXPECT_EQ(system_locale().time_text(time, "HH"), "00");
  }
}

TEST(Locale, FailsForATimeThatTheClockLacks) {
  const SystemTime bad[] = {
      {2009, 1, 0, 5, 24, 0, 0, 0}, {2009, 1, 0, 5, 0, 60, 0, 0}, {2009, 1, 0, 5, 0, 0, 60, 0}};
  for (const SystemTime& time : bad) {
    EXPECT_EQ(system_locale().time_text(time, nullptr), std::nullopt);
    EXPECT_EQ(system_locale().time_text(time, "HH"), std::nullopt);
    EXPECT_EQ(system_locale().date_text(time, "dd"), "05");
  }
}

TEST(Locale, FailsForATextBeyond511Characters) {
  EXPECT_EQ(system_locale().date_text(kAfternoon, std::string(600, '-').c_str()), std::nullopt);
  EXPECT_EQ(system_locale().time_text(kAfternoon, std::string(600, '-').c_str()), std::nullopt);
}

int sign(int order) {
  return (order > 0) - (order < 0);
}

TEST(Locale, CollatesLinguistically) {
  struct Row {
    const char* a;
    const char* b;
    int with_case;
    int without_case;
  };
  const Row rows[] = {
      {"", "", 0, 0},
      {"", "a", -1, -1},
      {"a", "a", 0, 0},
      {"a", "A", -1, 0},
      {"a", "b", -1, -1},
      {"a", "B", -1, -1},
      {"A", "b", -1, -1},
      {"ab", "Aa", 1, 1},
      {"aB", "Ab", -1, 0},
      {"AB", "ab", 1, 0},
      {"abc", "ab", 1, 1},
      {"abc", "ABCD", -1, -1},
      {"10", "9", -1, -1},
      {"9", "a", -1, -1},
      {"-", "1", -1, -1},
      {"_", "a", -1, -1},
      {"(x)", "1", -1, -1},
      {"co-op", "coop", -1, -1},
      {"co-op", "co_op", -1, -1},
      {"a b", "ab", -1, -1},
      {"it's", "its", -1, -1},
      {"a.b", "a,b", 1, 1},
      {"Program 1", "Program 1.0", -1, -1},
      {"\xe4", "a", 1, 1},
      {"\xe4", "b", -1, -1},
      {"\xe4"
       "b",
       "ac", -1, -1},
      {"\xe4"
       "b",
       "ab", 1, 1},
      {"\xe4", "\xc4", -1, 0},
      {"a\xe4",
       "\xe4"
       "a",
       -1, -1},
      {"A\xe4", "a\xe4", 1, 0},
      {"\xe4", "A", 1, 1},
      {"\xfc", "z", -1, -1},
      {"\xf6", "o", 1, 1},
      {"\xf6", "p", -1, -1},
      {"\xf8", "o", 1, 1},
      {"\xe9t\xe9", "ete", 1, 1},
      {"\xe9", "\xe8", -1, -1},
      {"\xdf", "ss", 0, 0},
      {"\xdf", "sz", -1, -1},
      {"\xe6", "ae", 0, 0},
      {"\xc6", "ae", 1, 0},
      {"\xe6", "af", -1, -1},
      {"\x8c", "oe", 1, 0},
      {"\xf1", "n", 1, 1},
      {"\xf1", "o", -1, -1},
      {"\x9a", "\x8a", -1, 0},
      {"a\xad"
       "b",
       "ab", 0, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.a << " and " << row.b);
    EXPECT_EQ(sign(system_locale().collate(row.a, row.b, false)), row.with_case);
    EXPECT_EQ(sign(system_locale().collate(row.b, row.a, false)), -row.with_case);
    EXPECT_EQ(sign(system_locale().collate(row.a, row.b, true)), row.without_case);
    EXPECT_EQ(sign(system_locale().collate(row.b, row.a, true)), -row.without_case);
  }
}

std::string in_order(std::string characters) {
  std::sort(characters.begin(), characters.end());
  std::stable_sort(characters.begin(), characters.end(), [](char a, char b) {
    const char text_a[] = {a, '\0'};
    const char text_b[] = {b, '\0'};
    return system_locale().collate(text_a, text_b, false) < 0;
  });
  return characters;
}

TEST(Locale, CollatesThePrintableCharactersOfAsciiInThePlatformsOrder) {
  const std::string expected =
      "'- !\"#$%&()*,./:;?@[\\]^_`{|}~+<=>0123456789"
      "aAbBcCdDeEfFgGhHiIjJkKlLmMnNoOpPqQrRsStTuUvVwWxXyYzZ";
  EXPECT_EQ(expected.size(), 95U);
  EXPECT_EQ(in_order(expected), expected);
}

TEST(Locale, CollatesTheLettersOfTheCodePageInThePlatformsOrder) {
  const std::string expected =
      "9aA\xaa\xe1\xc1\xe0\xc0\xe2\xc2\xe4\xc4\xe3\xc3\xe5\xc5\xe6\xc6"
      "bBcC\xe7\xc7"
      "dD\xf0\xd0"
      "eE\xe9\xc9\xe8\xc8\xea\xca\xeb\xcb"
      "fF\x83gGhHiI\xed\xcd\xec\xcc\xee\xce\xef\xcf"
      "jJkKlLmMnN\xf1\xd1oO\xba\xf3\xd3\xf2\xd2\xf4\xd4\xf6\xd6\xf5\xd5\xf8\xd8\x9c\x8cpPqQrR"
      "sS\x9a\x8a\xdftT\xfe\xdeuU\xfa\xda\xf9\xd9\xfb\xdb\xfc\xdcvVwWxXyY\xfd\xdd\xff\x9fzZ\x9e"
      "\x8e";
  EXPECT_EQ(in_order(expected), expected);
}

TEST(Locale, EveryByteSurvivesTheWayThroughWideText) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte)
    bytes += static_cast<char>(byte);
  const std::u16string wide = system_locale().widen(bytes.data(), bytes.size());
  ASSERT_EQ(wide.size(), bytes.size());
  EXPECT_EQ(system_locale().narrow(wide.data(), wide.size()), bytes);
}

TEST(Locale, WidensWindows1252) {
  const std::string bytes = "A\x80\x8a\x91\x99\x9f\xa0\xe4\xff\x81";
  EXPECT_EQ(system_locale().widen(bytes.data(), bytes.size()),
            u"A\x20ac\x0160\x2018\x2122\x0178\x00a0\x00e4\x00ff\x0081");
  EXPECT_EQ(system_locale().widen("", 0), u"");
}

TEST(Locale, NarrowsToTheNearestCharacter) {
  struct Row {
    std::u16string wide;
    const char* text;
  };
  const Row rows[] = {
      {u"", ""},
      {u"\x0100\x0107\x010d\x0119\x0142\x015f\x017c", "Accelsz"},
      {u"\x0110\x0111\x0131\x0133",
       "\xd0"
       "di?"},
      {u"\x0160\x0152\x017e", "\x8a\x8c\x9e"},
      {u"\xff21\xff42\xff19\xff0d", "Ab9-"},
      {u"\x2010\x2011\x2212\x2032\x2002\x3000", "---'  "},
      {u"\x4e2d\x6587", "??"},
      {u"\xd83d\xde00", "??"},
      {u"\xd83d"
       u"a",
       "?a"},
      {std::u16string(u"a\0b", 3), "a"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_STREQ(system_locale().narrow(row.wide.data(), row.wide.size()).c_str(), row.text);
    EXPECT_EQ(system_locale().narrow(row.wide.data(), row.wide.size()).size(), row.wide.size());
  }
}

}  // namespace
}  // namespace ORLO
