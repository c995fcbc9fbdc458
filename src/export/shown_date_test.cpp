#include "export/shown_date.h"

#include <gtest/gtest.h>

#include "orlo/datetime.h"

namespace {

/// Writes its short dates in one way, which isn't used for anything else.
class PictureLocale : public ORLO::Locale {
 public:
  explicit PictureLocale(const char* picture) : picture_(picture) {}
  std::optional<std::string> date_text(const ORLO::SystemTime& time, const char*) const override {
    return ORLO::system_locale().date_text(time, picture_);
  }
  std::optional<std::string> time_text(const ORLO::SystemTime&, const char*) const override {
    return std::nullopt;
  }
  int collate(const char*, const char*, bool) const override { return 0; }
  std::string narrow(const char16_t*, size_t) const override { return {}; }
  std::u16string widen(const char*, size_t) const override { return {}; }

 private:
  const char* picture_;
};

std::string read(const DatePattern& pattern, const char* text) {
  const auto iso = pattern.iso_text(text);
  return iso ? std::string(iso->text()) : "none";
}
std::string read(const char* picture, const char* text) {
  return read(DatePattern::of_locale(PictureLocale(picture)), text);
}

TEST(DatePattern, ReadsWhatTheLocaleWrites) {
  struct Case {
    const char* picture;
    const char* text;
    const char* iso;
  };
  const Case cases[] = {
      {"dd/MM/yyyy", "14/08/2003", "2003-08-14"},       {"dd/MM/yyyy", "04/03/2003", "2003-03-04"},
      {"M/d/yyyy", "8/14/2003", "2003-08-14"},          {"M/d/yyyy", "4/3/2003", "2003-04-03"},
      {"M/d/yyyy", "12/31/2003", "2003-12-31"},         {"dd.MM.yyyy", "14.08.2003", "2003-08-14"},
      {"dd.MM.yy", "14.08.03", "2003-08-14"},           {"dd.MM.yy", "14.08.79", "2079-08-14"},
      {"dd.MM.yy", "14.08.80", "1980-08-14"},           {"yyyy-MM-dd", "2003-08-14", "2003-08-14"},
      {"yyyy. MM. dd.", "2003. 08. 14.", "2003-08-14"}, {"yyyyMMdd", "20030814", "2003-08-14"},
      {"d.M.yyyy' g.'", "4.8.2003 g.", "2003-08-04"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.picture) + " " + c.text);
    EXPECT_EQ(read(c.picture, c.text), c.iso);
    EXPECT_EQ(read(c.picture, (std::string(c.text) + " 09:05").c_str()),
              std::string(c.iso) + "T09:05:00");
  }
}

TEST(DatePattern, ReadsBackEveryDayThatTheProgramShows) {
  const DatePattern pattern = DatePattern::of_locale(ORLO::system_locale());
  ORLO::FileTime moment = 0;
  ASSERT_TRUE(ORLO::to_file_time({1999, 12, 0, 31, 13, 45}, moment));
  for (int day = 0; day < 12'000; day += 7) {
    DateTime date;
    ASSERT_TRUE(ORLO::to_system_time(moment + static_cast<uint64_t>(day) * ORLO::kFileTimePerDay,
                                     date.time));
    const std::string expected = String::formatted("%04d-%02d-%02dT13:45:00", date.time.wYear,
                                                   date.time.wMonth, date.time.wDay)
                                     .c_str();
    EXPECT_EQ(read(pattern, date.display().c_str()), expected);
  }
}

TEST(DatePattern, WithDotsReadsDatesWithAndWithoutATimeOfDay) {
  const DatePattern pattern = DatePattern::with_dots();
  EXPECT_EQ(read(pattern, "31.12.2099"), "2099-12-31");
  EXPECT_EQ(read(pattern, "08.07.2020 06:05:04"), "2020-07-08T06:05:04");
  EXPECT_EQ(read(pattern, "08.07.2020 23:59"), "2020-07-08T23:59:00");
}

TEST(DatePattern, LeavesOtherTextsAlone) {
  const DatePattern pattern = DatePattern::with_dots();
  for (const char* text : {"",
                           " ",
                           "some day",
                           "31.12.99",
                           "31.12.20999",
                           "31.12.",
                           "31.12",
                           "x31.12.2099",
                           " 31.12.2099",
                           "31.12.2099 ",
                           "31.12.2099 1",
                           "31.12.2099 10",
                           "31.12.2099 10:",
                           "31.12.2099 10:1",
                           "31.12.2099 1:10",
                           "31.12.2099 10:10:1",
                           "31.12.2099 10:10:10 x",
                           "31.12.2099 10:10x",
                           "31.12.2099T10:10",
                           "31.02.2020",
                           "00.01.2020",
                           "01.13.2020",
                           "01.00.2020",
                           "01.01.1600",
                           "31.12.2020 24:00",
                           "31.12.2020 23:60",
                           "31.12.2020 23:00:60",
                           "31/12/2020",
                           "123.12.2020",
                           "-1.12.2020",
                           "20201231"}) {
    EXPECT_EQ(read(pattern, text), "none");
  }
}

TEST(DatePattern, OfALocaleWithoutPlainNumbersFitsNothing) {
  EXPECT_EQ(read("dd-MMM-yyyy", "14-Aug-2003"), "none");
  EXPECT_EQ(read("dd/MM", "14/08"), "none");
  EXPECT_EQ(read("dd/MM/yyyy yyyy", "14/08/2003 2003"), "none");
  EXPECT_EQ(read("'25/11/2577'", "25/11/2577"), "none");
  EXPECT_EQ(read("''", ""), "none");
}

}  // namespace
