#include "inventory/text_helpers.h"

#include <gtest/gtest.h>

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

TEST_F(ResolveCommandLineTest, FolderDoesNotCount) {
  files_.add_folder("C:\\App");
  expect("C:\\App", "C:\\App", "", "");
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

TEST(MergeDateText, UnreadableTextGivesWayToTheFileTime) {
  const DateTime date = local_date(2009, 1, 6, 10, 11);
  EXPECT_STREQ(MergeDateText("soon", date).c_str(), date.display().c_str());
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
