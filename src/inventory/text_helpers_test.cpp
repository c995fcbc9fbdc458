#include "inventory/text_helpers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>

#include "platform/memory_files.h"

namespace {

DateTime local_date(uint16_t year, uint16_t month, uint16_t day, uint16_t hour = 0,
                    uint16_t minute = 0) {
  DateTime date;
  date.time.wYear = year;
  date.time.wMonth = month;
  date.time.wDay = day;
  date.time.wHour = hour;
  date.time.wMinute = minute;
  return date;
}

TEST(SplitIconSpec, SplitsQuotedPathFromItsArguments) {
  struct Case {
    const char* text;
    const char* path;
    const char* args;
  };
  const Case cases[] = {
      {"", "", ""},
      {"C:\\x.exe,2", "C:\\x.exe,2", ""},
      {"\"C:\\x.exe\",2", "C:\\x.exe", ",2"},
      {" C:\\x.exe", "C:\\x.exe", ""},
      {"  C:\\x.exe", " C:\\x.exe", ""},
      {" \"C:\\a b\\x.exe\"  /s", "C:\\a b\\x.exe", "/s"},
      {"\"C:\\open end", "C:\\open end", ""},
      {"\"\"", "", ""},
      {"%APPS%\\x.exe", "D:\\Apps\\x.exe", ""},
      {"\"%APPS%\\x.exe\" %APPS%", "D:\\Apps\\x.exe", "%APPS%"},
  };
  MemoryFiles files;
  files.set_variable("APPS", "D:\\Apps");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const IconSpec spec = SplitIconSpec(c.text, files);
    EXPECT_STREQ(spec.path.c_str(), c.path);
    EXPECT_STREQ(spec.args.c_str(), c.args);
  }
}

TEST(SplitIconSpec, ExpansionThatDoesNotFitLeavesTheTextUnchanged) {
  MemoryFiles files;
  files.set_variable("LONG", std::string(1100, 'x'));
  EXPECT_STREQ(SplitIconSpec("%LONG%", files).path.c_str(), "%LONG%");
}

TEST(SplitIconSpec, ExpansionFitsUpToTheLimitLessItsTerminator) {
  MemoryFiles files;
  for (const size_t length : {size_t{1023}, size_t{1024}, size_t{1025}}) {
    SCOPED_TRACE(length);
    const std::string value(length, 'x');
    files.set_variable("LONG", value);
    const std::string expected = length < 1024 ? value : "%LONG%";
    EXPECT_EQ(std::string(SplitIconSpec("%LONG%", files).path.c_str()), expected);
    EXPECT_EQ(std::string(SplitIconSpec("\"%LONG%\" /s", files).path.c_str()), expected);
    // The limit is that of the expansion: a text without variables isn't cut by it.
    EXPECT_EQ(std::string(SplitIconSpec(value.c_str(), files).path.c_str()), value);
  }
}

TEST(SplitIconSpec, ExpansionThatFailsLeavesTheTextUnchanged) {
  MemoryFiles files;
  files.set_variable("APPS", "D:\\Apps");
  files.fail("expand_environment");
  EXPECT_STREQ(SplitIconSpec("%APPS%\\x", files).path.c_str(), "%APPS%\\x");
}

TEST(SplitIconSpec, SkipsOneWhiteSpaceOfAnyKindInFront) {
  MemoryFiles files;
  for (const char* text : {"\t\"a\"", "\n\"a\"", "\v\"a\"", "\f\"a\"", "\r\"a\"", " \"a\""}) {
    EXPECT_STREQ(SplitIconSpec(text, files).path.c_str(), "a");
  }
  EXPECT_STREQ(SplitIconSpec("\xa0\"a\"", files).path.c_str(), "\xa0\"a\"");
}

class ResolveCommandLineTest : public testing::Test {
 protected:
  void expect(const char* text, const char* path, const char* args, const char* command) {
    SCOPED_TRACE(text);
    const CommandLine found = ResolveCommandLine(text, files_);
    EXPECT_STREQ(found.path.c_str(), path);
    EXPECT_STREQ(found.args.c_str(), args);
    EXPECT_STREQ(found.command.c_str(), command);
  }
  MemoryFiles files_;
};

TEST_F(ResolveCommandLineTest, FindsAPathWithBlanksAndItsArguments) {
  files_.add_file("C:\\Program Files\\App\\un.exe");
  expect("C:\\Program Files\\App\\un.exe /x", "C:\\Program Files\\App\\un.exe", "/x",
         "C:\\Program Files\\App\\un.exe");
}

TEST_F(ResolveCommandLineTest, ShortestPrefixThatExistsWins) {
  files_.add_file("C:\\Program Files\\App\\un.exe");
  files_.add_file("C:\\Program.exe");
  expect("C:\\Program Files\\App\\un.exe /x", "C:\\Program.exe", "Files\\App\\un.exe /x",
         "C:\\Program");
}

TEST_F(ResolveCommandLineTest, WholePathThatIsAFileNeedsNoSearch) {
  files_.add_file("C:\\a b\\un.exe");
  expect("C:\\a b\\un.exe", "C:\\a b\\un.exe", "", "C:\\a b\\un.exe");
  expect("\"C:\\a b\\un.exe\" /s", "C:\\a b\\un.exe", "/s", "C:\\a b\\un.exe");
}

TEST_F(ResolveCommandLineTest, PrefixThatEndsAtTheEndOfTheTextCounts) {
  files_.add_file("C:\\Windows\\un.exe");
  files_.add_search_folder("C:\\Windows");
  expect("un", "C:\\Windows\\un.exe", "", "un");
}

TEST_F(ResolveCommandLineTest, QuotedProgramFoundBySearchKeepsItsArguments) {
  files_.add_file("C:\\Windows\\msiexec.exe");
  files_.add_search_folder("C:\\Windows");
  expect("\"msiexec\" /x {1}", "C:\\Windows\\msiexec.exe", "/x {1}", "msiexec");
  expect("msiexec /x {1}", "C:\\Windows\\msiexec.exe", "/x {1}", "msiexec");
}

TEST_F(ResolveCommandLineTest, QuotedAndUnquotedCommandsGiveTheSame) {
  files_.add_file("C:\\Program Files\\App\\un.exe");
  for (const char* text :
       {"\"C:\\Program Files\\App\\un.exe\" /x  1", "C:\\Program Files\\App\\un.exe /x  1"}) {
    expect(text, "C:\\Program Files\\App\\un.exe", "/x  1", "C:\\Program Files\\App\\un.exe");
  }
}

TEST_F(ResolveCommandLineTest, ExpandsVariablesInTheProgramOnlyWhereItIsQuoted) {
  files_.set_variable("APPS", "D:\\Apps");
  files_.add_file("D:\\Apps\\un.exe");
  expect("\"%APPS%\\un.exe\" %APPS%", "D:\\Apps\\un.exe", "%APPS%", "D:\\Apps\\un.exe");
  expect("%APPS%\\un.exe %APPS%", "D:\\Apps\\un.exe", "D:\\Apps", "D:\\Apps\\un.exe");
}

TEST_F(ResolveCommandLineTest, GoesOnBehindAFolder) {
  files_.add_folder("C:\\Program");
  files_.add_file("C:\\Program Files\\un.exe");
  expect("C:\\Program Files\\un /x", "C:\\Program Files\\un.exe", "/x", "C:\\Program Files\\un");
}

TEST_F(ResolveCommandLineTest, FolderDoesNotCount) {
  files_.add_folder("C:\\App");
  expect("C:\\App", "C:\\App", "", "");
}

/// Finds nothing, and counts how often it is asked.
class EmptyFiles : public Files {
 public:
  bool is_file(const char*) override { return false; }
  bool can_open(const char*) override { return false; }
  std::optional<String> search_path(const char* name, const char*) override {
    ++searches;
    longest = std::max(longest, std::strlen(name));
    return std::nullopt;
  }
  std::optional<String> expand_environment(const char*, size_t) override { return std::nullopt; }
  std::optional<String> system_folder() override { return std::nullopt; }
  std::optional<String> windows_folder() override { return std::nullopt; }

  size_t searches = 0;
  size_t longest = 0;
};

TEST(ResolveCommandLine, SearchesForEachPrefixThatEndsInFrontOfABlankOrAtTheEnd) {
  EmptyFiles files;
  ResolveCommandLine("a bc  d", files);
  EXPECT_EQ(files.searches, 4u);
  EXPECT_EQ(files.longest, 7u);
}

TEST(ResolveCommandLine, SearchesForNothingLongerThanAPathCanBe) {
  EmptyFiles files;
  const std::string word = std::string(99, 'x') + ' ';
  std::string text;
  while (text.size() < 1 << 20)
    text += word;
  EXPECT_EQ(ResolveCommandLine(text, files).path.length(), text.size());
  EXPECT_EQ(files.searches, 327u);
  EXPECT_EQ(files.longest, 32699u);
}

TEST_F(ResolveCommandLineTest, NothingFoundLeavesTheSplit) {
  expect("\"C:\\gone.exe\" /s", "C:\\gone.exe", "/s", "");
  expect("C:\\gone.exe /s", "C:\\gone.exe /s", "", "");
  expect("", "", "", "");
  expect(" ", "", "", "");
}

TEST(MergeDateText, TextThatIsNoDateStandsWhereThereIsNoOther) {
  EXPECT_STREQ(MergeDateText("soon", DateTime()).c_str(), "soon");
  EXPECT_STREQ(MergeDateText("", DateTime()).c_str(), "");
}

TEST(MergeDateText, FileTimeOfTheSameDayKeepsItsTimeOfDay) {
  const DateTime date = local_date(2009, 1, 5, 10, 11);
  EXPECT_STREQ(MergeDateText("05.01.2009", date).c_str(), date.display().c_str());
  EXPECT_STREQ(MergeDateText("5.1.2009", date).c_str(), date.display().c_str());
  EXPECT_NE(std::string(date.display().c_str()).find("10:11"), std::string::npos);
}

TEST(MergeDateText, TextOfAnotherDayWins) {
  const DateTime date = local_date(2009, 1, 6, 10, 11);
  EXPECT_STREQ(MergeDateText("05.01.2009", date).c_str(), local_date(2009, 1, 5).display().c_str());
}

/// The merged text of `text` and a file time of the morning of 5 January 2009.
std::string merged_with_5_january(const char* text) {
  return MergeDateText(text, local_date(2009, 1, 5, 10, 11)).c_str();
}

TEST(MergeDateText, TextOfAnotherYearWins) {
  EXPECT_EQ(merged_with_5_january("05.01.2008"), local_date(2008, 1, 5).display().c_str());
}

TEST(MergeDateText, TextOfAnotherMonthWins) {
  EXPECT_EQ(merged_with_5_january("05.02.2009"), local_date(2009, 2, 5).display().c_str());
}

TEST(MergeDateText, TextOfAnotherDayOfTheMonthWins) {
  EXPECT_EQ(merged_with_5_january("06.01.2009"), local_date(2009, 1, 6).display().c_str());
}

TEST(MergeDateText, TextOfTheSameDayWithNothingButAnHourWins) {
  EXPECT_EQ(merged_with_5_january("05 Jan 2009 12:00:00 GMT"),
            local_date(2009, 1, 5, 12, 0).display().c_str());
}

TEST(MergeDateText, TextOfTheSameDayWithNothingButAMinuteWins) {
  EXPECT_EQ(merged_with_5_january("05 Jan 2009 00:34:00 GMT"),
            local_date(2009, 1, 5, 0, 34).display().c_str());
}

TEST(MergeDateText, TextOfTheSameDayWithNothingButASecondWins) {
  DateTime shown = local_date(2009, 1, 5);
  shown.time.wSecond = 56;
  const std::string merged = merged_with_5_january("05 Jan 2009 00:00:56 GMT");
  EXPECT_EQ(merged, shown.display().c_str());
  EXPECT_NE(merged.find("00:00"), std::string::npos) << "a second is a time of day";
}

TEST(MergeDateText, TextOfTheSameDayWithATimeOfDayWins) {
  const DateTime date = local_date(2009, 1, 5, 10, 11);
  EXPECT_STREQ(MergeDateText("05 Jan 2009 12:34:56 GMT", date).c_str(),
               local_date(2009, 1, 5, 12, 34).display().c_str());
}

TEST(MergeDateText, TextThatIsADateIsShownAsTheProgramShowsDates) {
  const std::string shown = local_date(2009, 1, 5).display().c_str();
  for (const char* text :
       {"20090105", "2009-01-05", "1/5/2009", "05.01.2009", "5 Jan 2009", "Jan 5 2009"}) {
    EXPECT_EQ(std::string(MergeDateText(text, DateTime()).c_str()), shown) << text;
  }
}

TEST(MergeDateText, TextWithAMonthThatNoCalendarHasIsShownAsNothing) {
  EXPECT_STREQ(MergeDateText("25/12/2009", DateTime()).c_str(), "");
  EXPECT_STREQ(MergeDateText("25/12/2009", local_date(2009, 1, 6)).c_str(), "");
}

TEST(MergeDateText, UnreadableTextGivesWayToTheFileTime) {
  const DateTime date = local_date(2009, 1, 6, 10, 11);
  EXPECT_STREQ(MergeDateText("soon", date).c_str(), date.display().c_str());
}

TEST(CompareVersions, ComparesSuffixesByUnsignedBytes) {
  EXPECT_EQ(compareVersions("1\xe4", "1z"), 1);
  EXPECT_EQ(compareVersions("1z", "1\xe4"), -1);
}

TEST(CompareVersions, StartsBehindTheProductNameOnlyWhereTextRemains) {
  EXPECT_EQ(compareVersions("Suite/Pro \t 2.1", "2.1"), 0);
  EXPECT_EQ(compareVersions("Suite/2.1 ", "Suite/2.1 "), 0);
  EXPECT_EQ(compareVersions("a/b.c ", "a/b.c"), 1) << "nothing behind the blank";
  EXPECT_EQ(compareVersions("Suite/Pro 2", "2"), -1) << "no dot";
}

TEST(CompareVersions, ASlashBeforeTheFirstDotBelongsToTheProductName) {
  EXPECT_EQ(compareVersions("My Suite/Pro 2.1", "2.1"), 0) << "the blank behind the slash counts";
  EXPECT_EQ(compareVersions("Suite/1.9 2.1", "2.1"), 0) << "the dot stands behind the slash";
  EXPECT_EQ(compareVersions("A/B C/D 2.1", "2.1"), -1) << "the first slash counts";
  EXPECT_EQ(compareVersions("2.1/C 3.0", "2.1"), 1) << "the dot stands before the slash";
  EXPECT_EQ(compareVersions("2.1/C 3.0", "3.0"), -1);
}

TEST(CompareVersions, BlanksBeforeANumberCountOnlyWhereTheNumbersAreEqual) {
  for (const char* blank : {" ", "\t", "  ", "\n"}) {
    SCOPED_TRACE(static_cast<int>(*blank));
    const std::string part = std::string("1.") + blank;
    EXPECT_EQ(compareVersions((part + "10").c_str(), (part + "9").c_str()), 1);
    EXPECT_EQ(compareVersions((part + "9").c_str(), "1.10"), -1);
    EXPECT_EQ(compareVersions((part + "10").c_str(), "1.9"), 1);
    // The blank and the number behind it then stand as a suffix.
    EXPECT_EQ(compareVersions((part + "9").c_str(), "1.9"), 1);
    EXPECT_EQ(compareVersions((blank + std::string("2.0")).c_str(), "10.0"), -1);
  }
  EXPECT_EQ(compareVersions("1.\t9", "1. 9"), -1);
}

TEST(CompareVersions, OrdersByPartsAndSuffixes) {
  struct Case {
    const char* a;
    const char* b;
    int expected;
  };
  const Case cases[] = {
      {"", "", 0},
      {"1.2", "1.2", 0},
      {"1.2", "1.2.1", -1},
      {"1.2a", "1.2b", -1},
      {"1.2", "1.2a", -1},
      {"1.10", "1.9", 1},
      {"10", "9.9", 1},
      {"1.02", "1.2", 0},
      {"2.4.x-build-26", "2.4.x-build-3", -1},
      {"", "1", -1},
      {"abc", "abd", -1},
      {"-1", "1", -1},
      {"Suite/Pro 2.1", "2.1", 0},
      {"Suite/Pro 2.1", "Other/Thing 2.2", -1},
      {"2.1/x 9", "2.1", 1},
      {"Suite/2.1", "Suite/2.1", 0},
      {"4294967297", "1", 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.a) + " | " + c.b);
    EXPECT_EQ(compareVersions(c.a, c.b), c.expected);
    EXPECT_EQ(compareVersions(c.b, c.a), -c.expected);
  }
}

}  // namespace
