#include "update/update_check.h"

#include <gtest/gtest.h>

#include <string>

#include "orlo/exception.h"
#include "update/update_check_test_support.h"

namespace {

constexpr uint32_t kNotResolved = 12007;
constexpr size_t kMegabyte = size_t{1} << 20;

class BackgroundCheckTest : public UpdateBed {
 protected:
  int run() { return check().checkInBackground(); }
  void set_last(const std::string& date) { key_.values[kLastCheckValue] = date; }
  std::string last() { return key_.values[kLastCheckValue]; }
  size_t attempts() const { return internet_.requests.size(); }
};

class CheckNowTest : public UpdateBed {
 protected:
  void run() { check().checkNow(); }
};

class ReadDescriptionTest : public UpdateBed {
 protected:
  bool read(PadInfo& info) {
    return check().readDescription(info, kDescriptionUrl, "agent %n", "system %s");
  }
  bool read() {
    PadInfo info;
    return read(info);
  }
};

/// Late on an evening of November, and nobody knows where.
class ClockWithoutZone final : public ORLO::Clock {
 public:
  ORLO::SystemTime now() const override { return {2026, 11, 0, 5, 23, 30}; }
  ORLO::ZoneState zone(ORLO::TimeZoneInfo& /*zone*/) const override {
    return ORLO::ZoneState::unknown;
  }
  bool to_local(const ORLO::TimeZoneInfo* /*zone*/, const ORLO::SystemTime& /*utc*/,
                ORLO::SystemTime& /*local*/) const override {
    return false;
  }
  bool to_local(ORLO::FileTime /*utc*/, ORLO::FileTime& /*local*/) const override { return false; }
};

/// A body of exactly this length that is a sound description.
std::string padded(size_t length) {
  const std::string end = "</XML_DIZ_INFO>";
  std::string body = "<XML_DIZ_INFO>";
  body.append(length - body.size() - end.size(), ' ');
  return body += end;
}

TEST_F(ReadDescriptionTest, TellsTheServerAgentReferrerAndThatNoCacheWillDo) {
  describe({});
  PadInfo info;
  EXPECT_TRUE(read(info));
  EXPECT_STREQ(info.programVersion.c_str(), "5.4");
  ASSERT_EQ(internet_.requests.size(), 1u);
  const MemoryInternet::Request& request = internet_.requests[0];
  EXPECT_EQ(request.agent, "agent %n");
  EXPECT_EQ(request.url, kDescriptionUrl);
  EXPECT_EQ(request.referrer, "agent %n update check system %s");
  EXPECT_EQ(request.flags, 0x100u);
  EXPECT_EQ(request.limit, 4 * kMegabyte);
}

TEST_F(ReadDescriptionTest, RefusesABodyOfAnotherLengthThanTold) {
  const std::string body = PadText().xml();
  for (const int64_t more : {-1, 1}) {
    internet_.answers[kDescriptionUrl] = {body, static_cast<int64_t>(body.size()) + more, 0};
    EXPECT_FALSE(read());
  }
}

TEST_F(ReadDescriptionTest, TakesABodyWithoutALength) {
  internet_.answers[kDescriptionUrl] = {PadText().xml(), std::nullopt, 0};
  EXPECT_TRUE(read());
}

TEST_F(ReadDescriptionTest, RefusesA404PageOfTheRightLength) {
  serve(kDescriptionUrl, "<html><body>404 Not Found</body></html>");
  EXPECT_FALSE(read());
}

TEST_F(ReadDescriptionTest, RefusesABodyOfMoreThanFourMegabytes) {
  serve(kDescriptionUrl, padded(4 * kMegabyte));
  EXPECT_TRUE(read());
  serve(kDescriptionUrl, padded(4 * kMegabyte + 1));
  EXPECT_FALSE(read());
}

TEST_F(ReadDescriptionTest, PassesOnAFailureOfTheTransfer) {
  internet_.answers[kDescriptionUrl] = {PadText().xml(), std::nullopt, 12031};
  EXPECT_THROW(read(), ORLO::INetException);
}

TEST_F(BackgroundCheckTest, OffersANewerVersion) {
  describe({});
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(boxes(), "?[Program Update Check] There is available a new program version 5.4 (" +
                         shown_date(2026, 11, 5) +
                         ") of \"Zolvane\" from Ada Byron\n\n"
                         "Do you want to run the setup from "
                         "\"http://download.example/files/setup.exe\"?\n");
  EXPECT_EQ(frame_.log, Lines{"ask"});
}

TEST_F(BackgroundCheckTest, OffersItInGerman) {
  german_ = true;
  describe({});
  run();
  EXPECT_EQ(boxes(), "?[Suche nach Programm-Updates] Eine neue Progamm-Version  5.4 (" +
                         shown_date(2026, 11, 5) +
                         ") des \"Zolvane\" von Ada Byron ist verf\xfcgbar.\n\n"
                         "M\xf6\x63hten Sie das Setup von "
                         "\"http://download.example/files/setup.exe\" einspielen?\n");
}

TEST_F(BackgroundCheckTest, TellsTheServerItsSystem) {
  describe({});
  run();
  EXPECT_EQ(internet_.requests.at(0).agent, "zolvane 5.3");
  EXPECT_EQ(internet_.requests.at(0).referrer, "zolvane 5.3 update check WIN6.1.7601");
}

TEST_F(BackgroundCheckTest, HidesTheWindowAndRunsTheSetupOnYes) {
  describe({});
  serve(kSetupUrl, "MZ");
  frame_.answers = {true};
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(frame_.log,
            (Lines{"ask", "hide", std::string("show ") + kSetupUrl, "range 0", "position 0",
                   "close", "open " + in_folder("setup.exe"), "end", "cursor back"}));
}

TEST_F(BackgroundCheckTest, LeavesTheWindowHiddenIfTheDownloadFails) {
  describe({});
  frame_.answers = {true};
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(frame_.log,
            (Lines{"ask", "hide", std::string("show ") + kSetupUrl, "close", "cursor back"}));
}

TEST_F(BackgroundCheckTest, OffersThePageWithoutAnAddressOfTheSetup) {
  PadText text;
  text.url = "";
  describe(text);
  run();
  EXPECT_EQ(boxes(), "?[Program Update Check] There is available a new program version 5.4 (" +
                         shown_date(2026, 11, 5) +
                         ") of \"Zolvane\" from Ada Byron\n\n"
                         "Do you want to open the web page \"\" to download the new version?\n");
}

TEST_F(BackgroundCheckTest, OffersThePageInGerman) {
  german_ = true;
  PadText text;
  text.url = "";
  describe(text);
  run();
  EXPECT_EQ(boxes(),
            "?[Suche nach Programm-Updates] Eine neue Progamm-Version  5.4 (" +
                shown_date(2026, 11, 5) +
                ") des \"Zolvane\" von Ada Byron ist verf\xfcgbar.\n\n"
                "M\xf6\x63hten Sie die Web-Seite \"\" \xf6\x66\x66nen, um die neue Version "
                "herunterzuladen?\n");
}

TEST_F(BackgroundCheckTest, ShowsWhatTheDescriptionLeavesOutAsEmpty) {
  PadText text;
  text.name = text.year = text.month = text.day = text.first = text.last = text.url = "";
  describe(text);
  run();
  EXPECT_EQ(boxes(),
            "?[Program Update Check] There is available a new program version 5.4 () of \"\" "
            "from  \n\nDo you want to open the web page \"\" to download the new version?\n");
}

TEST_F(BackgroundCheckTest, AsksTheShellForThePageOnYes) {
  PadText text;
  text.url = "";
  describe(text);
  frame_.answers = {true};
  run();
  // No description names a page, so the shell will refuse.
  EXPECT_EQ(frame_.log, (Lines{"ask", "open "}));
  EXPECT_EQ(shell_.owner, frame_.window());
  EXPECT_EQ(shell_.show, 1);
  EXPECT_EQ(internet_.requests.size(), 1u);
}

TEST_F(BackgroundCheckTest, ShowsMessagesBeforeTheOffer) {
  PadText text;
  text.messages =
      "<qm:msg>one</qm:msg><qm:msg version='5.3'>two</qm:msg>"
      "<qm:msg id='WIN6.1.7601'>three</qm:msg><qm:msg version='5.4'>no</qm:msg>";
  describe(text);
  run();
  ASSERT_EQ(frame_.boxes.size(), 2u);
  EXPECT_EQ(frame_.boxes[0].text, "one\n\ntwo\n\nthree");
  EXPECT_EQ(frame_.boxes[0].title, "Message");
  EXPECT_FALSE(frame_.boxes[0].is_question);
  EXPECT_TRUE(frame_.boxes[1].is_question);
}

TEST_F(BackgroundCheckTest, ShowsMessagesWithoutANewerVersion) {
  PadText text;
  text.version = "5.3";
  text.messages = "<qm:msg>news</qm:msg>";
  describe(text);
  run();
  EXPECT_EQ(boxes(), "[Message] news\n");
}

TEST_F(BackgroundCheckTest, OffersWhatComparesAsNewerOnly) {
  const struct {
    const char* version;
    bool offered;
  } rows[] = {{"5.3", false}, {"5.10", true},  {"5.3.1", true}, {"5.2.9", false},
              {"", false},    {"05.3", false}, {"6", true},     {"5", false}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.version);
    key_.values.clear();
    frame_.boxes.clear();
    PadText text;
    text.version = row.version;
    describe(text);
    run();
    EXPECT_EQ(frame_.boxes.size(), row.offered ? 1u : 0u);
  }
}

TEST_F(BackgroundCheckTest, IsAttemptedOnceOnTwoStartsOfADay) {
  describe({});
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(attempts(), 1u);
  EXPECT_EQ(frame_.boxes.size(), 1u);
  const std::string date = shown_date(2026, 11, 5);
  const Lines once = {std::string("open ") + kOwnKey, "text last update check",
                      "set_text last update check " + date};
  Lines twice = once;
  twice.insert(twice.end(), once.begin(), once.end());
  EXPECT_EQ(key_.calls, twice);
  EXPECT_EQ(last(), date);
}

TEST_F(BackgroundCheckTest, IsAttemptedAgainOnTheNextDay) {
  describe({});
  run();
  clock_.set({2026, 11, 0, 6, 0, 1});
  run();
  EXPECT_EQ(attempts(), 2u);
  EXPECT_EQ(last(), shown_date(2026, 11, 6));
}

TEST_F(BackgroundCheckTest, TakesTheLocalDateForToday) {
  clock_.set({2026, 11, 0, 5, 23, 30});
  run();
  EXPECT_EQ(last(), shown_date(2026, 11, 6));
  clock_.set({2026, 7, 0, 31, 22, 0});
  run();
  EXPECT_EQ(last(), shown_date(2026, 8, 1));
}

TEST_F(BackgroundCheckTest, TakesTheWorldsDateWhereNoLocalOneCanBeTold) {
  const ClockWithoutZone clock;
  const UpdateServices there{internet_, key_, files_, shell_, clock, nullptr};
  UpdateCheck(settings_, there, frame_).checkInBackground();
  EXPECT_EQ(last(), shown_date(2026, 11, 5));
}

TEST_F(BackgroundCheckTest, RunsOnceMoreWhenTheDateFormatHasChanged) {
  describe({});
  set_last("2026, the 5th of November");
  run();
  EXPECT_EQ(attempts(), 1u);
  EXPECT_EQ(last(), shown_date(2026, 11, 5));
  run();
  EXPECT_EQ(attempts(), 1u);
}

TEST_F(BackgroundCheckTest, RunsWhenTheValueIsMissing) {
  describe({});
  run();
  EXPECT_EQ(attempts(), 1u);
  EXPECT_EQ(last(), shown_date(2026, 11, 5));
}

TEST_F(BackgroundCheckTest, RunsWhenTheValueIsOfAnotherType) {
  // A number, as its bytes are read.
  set_last("\x05");
  describe({});
  run();
  EXPECT_EQ(attempts(), 1u);
  EXPECT_EQ(last(), shown_date(2026, 11, 5));
}

TEST_F(BackgroundCheckTest, StopsSilentlyWhenTheValueIsRefused) {
  describe({});
  key_.refuse_to_write(kRegAccessDenied);
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(attempts(), 0u);
  EXPECT_TRUE(frame_.log.empty());
}

TEST_F(BackgroundCheckTest, StopsWhenTheValueOfTodayIsRefused) {
  describe({});
  set_last(shown_date(2026, 11, 5));
  key_.refuse_to_write(kRegAccessDenied);
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(attempts(), 0u);
}

TEST_F(BackgroundCheckTest, GoesOnWithoutTheKey) {
  describe({});
  key_.refuse_to_open();
  set_last(shown_date(2026, 11, 5));
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(attempts(), 1u);
  EXPECT_EQ(frame_.boxes.size(), 1u);
  EXPECT_EQ(key_.calls, Lines{std::string("open ") + kOwnKey});
}

TEST_F(BackgroundCheckTest, AsksNoKeyIfItIsNotLimited) {
  settings_.limitToDaily = false;
  describe({});
  set_last(shown_date(2026, 11, 5));
  run();
  run();
  EXPECT_EQ(attempts(), 2u);
  EXPECT_TRUE(key_.calls.empty());
}

TEST_F(BackgroundCheckTest, CountsAnAttemptThatFails) {
  internet_.offline = true;
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(last(), shown_date(2026, 11, 5));
  internet_.offline = false;
  describe({});
  run();
  EXPECT_EQ(attempts(), 0u);
}

TEST_F(BackgroundCheckTest, FetchesNothingOffline) {
  internet_.offline = true;
  describe({});
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(attempts(), 0u);
}

TEST_F(BackgroundCheckTest, EndsWithMinusOneIfItCannotAskWhetherItIsOffline) {
  internet_.offline = std::nullopt;
  describe({});
  EXPECT_EQ(run(), -1);
  EXPECT_EQ(attempts(), 0u);
}

TEST_F(BackgroundCheckTest, AsksTheKeyBeforeTheLine) {
  internet_.offline = std::nullopt;
  EXPECT_EQ(run(), -1);
  EXPECT_EQ(run(), 0);
}

TEST_F(BackgroundCheckTest, IsSilentAboutAnyFailure) {
  settings_.limitToDaily = false;
  const MemoryInternet::Answer answers[] = {
      {PadText().xml(), 100000, 0}, {PadText().xml(), std::nullopt, 12031},
      {"no XML", std::nullopt, 0},  {"", 0, 0},
      {"<html></html>", 13, 0},     {"<XML_DIZ_INFO><a b></a></XML_DIZ_INFO>", std::nullopt, 0},
  };
  EXPECT_EQ(run(), 0);  // a name that doesn't resolve
  for (const MemoryInternet::Answer& answer : answers) {
    SCOPED_TRACE(answer.body);
    internet_.answers[kDescriptionUrl] = answer;
    EXPECT_EQ(run(), 0);
  }
  EXPECT_EQ(attempts(), 7u);
  EXPECT_TRUE(frame_.log.empty());
}

TEST_F(BackgroundCheckTest, IsSilentAboutAnyExceptionOfTheFoundation) {
  settings_.limitToDaily = false;
  internet_.on_fetch = [] { throw ORLO::UserException("text"); };
  EXPECT_EQ(run(), 0);
  internet_.on_fetch = [] { throw ORLO::BreakException(); };
  EXPECT_EQ(run(), 0);
  EXPECT_TRUE(frame_.log.empty());
}

TEST_F(BackgroundCheckTest, PassesOnOtherExceptions) {
  internet_.on_fetch = [] { throw std::bad_alloc(); };
  EXPECT_THROW(run(), std::bad_alloc);
}

TEST_F(BackgroundCheckTest, ShowsFormatCharactersOfEveryFieldAsTheyAre) {
  PadText text;
  text.version = "9%n%s";
  text.name = "%n name %#s %D";
  text.first = "%s%s%s%s%s%s";
  text.last = "%t%p%d";
  text.url = "http://a.example/%25n%n%s";
  text.messages = "<qm:msg>%n 100% %s %#s %999999d</qm:msg>";
  describe(text);
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(boxes(),
            "[Message] %n 100% %s %#s %999999d\n"
            "?[Program Update Check] There is available a new program version 9%n%s (" +
                shown_date(2026, 11, 5) +
                ") of \"%n name %#s %D\" from %s%s%s%s%s%s %t%p%d\n\n"
                "Do you want to run the setup from \"http://a.example/%25n%n%s\"?\n");
}

TEST_F(BackgroundCheckTest, ShowsNoDateForYearsThatNoCalendarHas) {
  settings_.limitToDaily = false;
  for (const char* year : {"0", "99999", "", "1600", "-1", "x"}) {
    SCOPED_TRACE(year);
    frame_.boxes.clear();
    PadText text;
    text.year = year;
    describe(text);
    run();
    ASSERT_EQ(frame_.boxes.size(), 1u);
    EXPECT_NE(frame_.boxes[0].text.find("version 5.4 () of"), std::string::npos)
        << frame_.boxes[0].text;
  }
}

TEST_F(BackgroundCheckTest, BearsFieldsOfTenThousandCharacters) {
  PadText text;
  text.version = std::string(10000, '9');
  text.name = std::string(10000, 'n');
  text.url = "http://a.example/" + std::string(10000, 'u');
  describe(text);
  frame_.answers = {true};
  EXPECT_EQ(run(), 0);
  ASSERT_EQ(frame_.boxes.size(), 0u) << "a number that wraps to less than 5";
  settings_.limitToDaily = false;
  text.version = "6." + text.version;
  describe(text);
  EXPECT_EQ(run(), 0);
  ASSERT_EQ(frame_.boxes.size(), 1u);
  EXPECT_NE(frame_.boxes[0].text.find(text.version), std::string::npos);
  EXPECT_NE(frame_.boxes[0].text.find(text.url), std::string::npos);
  EXPECT_TRUE(shell_.starts().empty());
}

TEST_F(BackgroundCheckTest, ShowsMessagesByTheThousandInOneBox) {
  PadText text;
  text.version = "5.3";
  for (int i = 0; i < 3000; ++i)
    text.messages += "<qm:msg>%s</qm:msg>";
  describe(text);
  run();
  ASSERT_EQ(frame_.boxes.size(), 1u);
  EXPECT_EQ(frame_.boxes[0].text.size(), 3000u * 2 + 2999u * 2);
}

TEST_F(CheckNowTest, TellsThatNoUpdateIsNeeded) {
  PadText text;
  text.version = "5.3";
  describe(text);
  run();
  EXPECT_EQ(boxes(),
            "[Program Update Check] Active version: 5.3\n\n"
            "The newest version of Zolvane is 5.3 (" +
                shown_date(2026, 11, 5) + ")\n\nNo update is needed.\n");
}

TEST_F(CheckNowTest, TellsSoOfAnOlderVersionToo) {
  PadText text;
  text.version = "5.2";
  describe(text);
  run();
  ASSERT_EQ(frame_.boxes.size(), 1u);
  EXPECT_FALSE(frame_.boxes[0].is_question);
}

TEST_F(CheckNowTest, AsksWhetherToRunTheSetupOfANewerVersion) {
  describe({});
  run();
  EXPECT_EQ(boxes(),
            "?[Program Update Check] Active version: 5.3\n\n"
            "The newest version of Zolvane is 5.4 (" +
                shown_date(2026, 11, 5) +
                ")\n\nDo you want to run the setup from "
                "\"http://download.example/files/setup.exe\"?\n");
  EXPECT_EQ(internet_.requests.size(), 1u);
}

TEST_F(CheckNowTest, SpeaksGerman) {
  german_ = true;
  describe({});
  run();
  EXPECT_EQ(boxes(),
            "?[Suche nach Programm-Updates] derzeit aktive Version: 5.3\n\n"
            "Der neueste Zolvane ist die Version 5.4 vom " +
                shown_date(2026, 11, 5) +
                ".\n\nM\xf6\x63hten Sie das Setup von "
                "\"http://download.example/files/setup.exe\" einspielen?\n");
}

TEST_F(CheckNowTest, TellsInGermanThatNoUpdateIsNeeded) {
  german_ = true;
  PadText text;
  text.version = "5.3";
  describe(text);
  run();
  EXPECT_EQ(boxes(),
            "[Suche nach Programm-Updates] derzeit aktive Version: 5.3\n\n"
            "Der neueste Zolvane ist die Version 5.3 vom " +
                shown_date(2026, 11, 5) + ".\n\nEs ist keine Aktualisierung erforderlich.\n");
}

TEST_F(CheckNowTest, NeedsNoUpdateWhereTheDescriptionNamesNoVersion) {
  serve(kDescriptionUrl, "<XML_DIZ_INFO></XML_DIZ_INFO>");
  run();
  EXPECT_EQ(boxes(),
            "[Program Update Check] Active version: 5.3\n\n"
            "The newest version of  is  ()\n\nNo update is needed.\n");
}

TEST_F(CheckNowTest, RunsTheSetupOnYesWithTheWindowInPlace) {
  describe({});
  serve(kSetupUrl, "MZ");
  frame_.answers = {true};
  run();
  EXPECT_EQ(frame_.log, (Lines{"ask", std::string("show ") + kSetupUrl, "range 0", "position 0",
                               "close", "open " + in_folder("setup.exe"), "end", "cursor back"}));
}

TEST_F(CheckNowTest, TellsTheServerNoSystem) {
  describe({});
  run();
  EXPECT_EQ(internet_.requests.at(0).referrer, "zolvane 5.3 update check ");
}

TEST_F(CheckNowTest, ShowsTheMessagesOfTheSystemFirst) {
  PadText text;
  text.version = "5.3";
  text.messages =
      "<qm:msg id='WIN6.1.7601'>for you</qm:msg><qm:msg id='WIN5.1.2600'>not</qm:msg>"
      "<qm:msg version='5.3'>all</qm:msg>";
  describe(text);
  run();
  ASSERT_EQ(frame_.boxes.size(), 2u);
  EXPECT_EQ(frame_.boxes[0].text, "for you\n\nall");
  EXPECT_EQ(frame_.boxes[0].title, "Message");
  EXPECT_FALSE(frame_.boxes[0].is_question);
}

TEST_F(CheckNowTest, TellsOfADescriptionThatCannotBeUsed) {
  for (const char* body : {"", "no XML", "<html>404</html>"}) {
    SCOPED_TRACE(body);
    frame_.boxes.clear();
    serve(kDescriptionUrl, body);
    run();
    EXPECT_EQ(boxes(),
              "[Program Update Check] The check for the current version using the "
              "internet failed.\n");
  }
  frame_.boxes.clear();
  internet_.answers[kDescriptionUrl] = {PadText().xml(), 100000, 0};
  run();
  EXPECT_EQ(frame_.boxes.size(), 1u);
  EXPECT_FALSE(frame_.boxes[0].is_question);
}

TEST_F(CheckNowTest, PassesOnAFailureOfTheFetch) {
  try {
    run();
    FAIL() << "nothing thrown";
  } catch (const ORLO::INetException& failure) {
    EXPECT_EQ(failure.code, kNotResolved);
    EXPECT_STREQ(failure.context.text(), "looking for a new version");
    EXPECT_STREQ(failure.context.object().c_str(), kDescriptionUrl);
  }
  EXPECT_TRUE(frame_.log.empty());
}

TEST_F(CheckNowTest, PassesOnAFailureOfTheDownload) {
  describe({});
  frame_.answers = {true};
  EXPECT_THROW(run(), ORLO::INetException);
  EXPECT_EQ(frame_.log.back(), "cursor back");
}

TEST_F(CheckNowTest, AsksNeitherTheKeyNorTheLine) {
  internet_.offline = std::nullopt;
  key_.values[kLastCheckValue] = shown_date(2026, 11, 5);
  describe({});
  run();
  EXPECT_TRUE(key_.calls.empty());
  EXPECT_EQ(frame_.boxes.size(), 1u);
}

TEST_F(CheckNowTest, AsksEvenWithoutAnAddressAndThenDoesNothing) {
  PadText text;
  text.url = "";
  describe(text);
  frame_.answers = {true};
  run();
  ASSERT_EQ(frame_.boxes.size(), 1u);
  EXPECT_NE(frame_.boxes[0].text.find("run the setup from \"\"?"), std::string::npos);
  EXPECT_EQ(frame_.log, (Lines{"ask", "show ", "close", "cursor back"}));
}

TEST_F(CheckNowTest, ShowsFormatCharactersOfEveryFieldAsTheyAre) {
  settings_.currentVersion = "%n5";
  PadText text;
  text.name = "%n%s";
  text.version = "%n9%s";
  text.url = "http://a.example/%n";
  describe(text);
  run();
  EXPECT_EQ(boxes(),
            "?[Program Update Check] Active version: %n5\n\n"
            "The newest version of %n%s is %n9%s (" +
                shown_date(2026, 11, 5) +
                ")\n\nDo you want to run the setup from \"http://a.example/%n\"?\n");
}

TEST_F(CheckNowTest, ShowsThemWhereNoUpdateIsNeededToo) {
  PadText text;
  text.name = "%n%s%D";
  text.version = "5.3";
  describe(text);
  run();
  EXPECT_NE(boxes().find("The newest version of %n%s%D is 5.3"), std::string::npos);
}

}  // namespace
