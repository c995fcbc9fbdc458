#include "inventory/update_log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/update_log_test_support.h"
#include "orlo/file_test_support.h"
#include "orlo/locale.h"

namespace {

using Field = PackageColumn;
using testing::ElementsAre;
using testing::IsEmpty;

std::string shown(uint16_t year, uint16_t month, uint16_t day, uint16_t hour = 0,
                  uint16_t minute = 0) {
  DateTime date;
  date.time = {year, month, 0, day, hour, minute};
  return date.display(update_log_clock()).c_str();
}

LoggedUpdate parse(std::string_view line) {
  const auto update = parse_update_line(line, update_log_clock());
  EXPECT_TRUE(update.has_value()) << line.substr(0, 200);
  return update.value_or(LoggedUpdate());
}

bool counts(std::string_view line) {
  return parse_update_line(line, update_log_clock()).has_value();
}

std::string title_of(std::string_view line) {
  return parse(line).title.c_str();
}

/// Name and version that a title has.
std::vector<std::string> parts(const std::string& title) {
  const LoggedUpdate update = parse(success_line(title));
  EXPECT_EQ(update.title.c_str(), title);
  return {update.name.c_str(), update.version.c_str()};
}

std::string date_of(const std::string& moment) {
  return parse(success_line("x", moment)).installed.display(update_log_clock()).c_str();
}

TEST(UpdateLogLine, ADefinitionUpdateHasItsNumberAndTheVersionInBrackets) {
  EXPECT_THAT(parts("Definition Update for Windows Defender - KB915597 (Definition 1.105.1116.0)"),
              ElementsAre("KB915597", "1.105.1116.0"));
}

TEST(UpdateLogLine, ABracketBehindTheDigitsIsNoVersion) {
  EXPECT_THAT(parts("Security Update for Windows 7 (KB2345678)"), ElementsAre("KB2345678", ""));
}

TEST(UpdateLogLine, ATitleWithoutKbIsTheName) {
  EXPECT_THAT(parts("Microsoft Windows Installer 3.1"),
              ElementsAre("Microsoft Windows Installer 3.1", ""));
  EXPECT_THAT(parts("kb123 Kb123 K B123"), ElementsAre("kb123 Kb123 K B123", ""));
}

TEST(UpdateLogLine, KbWithoutADigitIsNamedKb) {
  EXPECT_THAT(parts("Update KB"), ElementsAre("KB", ""));
  EXPECT_THAT(parts("Update KB (1.2)"), ElementsAre("KB", ""));
  EXPECT_THAT(parts("KBytes, KB123 (1.2)"), ElementsAre("KB", "")) << "the first one counts";
}

TEST(UpdateLogLine, VersionReachesFromBehindTheBlankToABracketOrTheEnd) {
  const struct {
    const char* title;
    const char* name;
    const char* version;
  } cases[] = {
      {"KB1 (1.2)", "KB1", "1.2"},
      {"KB1 (1.2", "KB1", "1.2"},
      {"KB1 1.2", "KB1", "1.2"},
      {"KB1 1.2) rest)", "KB1", "1.2"},
      {"KB1 Definition 1.2", "KB1", "1.2"},
      {"KB1 (Definition 1.2) x", "KB1", "1.2"},
      {"KB1 (definition 1.2)", "KB1", "definition 1.2"},
      {"KB1 (Definition1.2)", "KB1", "Definition1.2"},
      {"KB1 (Definition Definition 1.2)", "KB1", "Definition 1.2"},
      {"KB1 ((1.2)", "KB1", "(1.2"},
      {"KB1 Definition (1.2)", "KB1", "(1.2"},
      {"KB1  (1.2)", "KB1", " (1.2"},
      {"KB1 ", "KB1", ""},
      {"KB1 )", "KB1", ""},
      {"KB1 (", "KB1", ""},
      {"KB1\t(1.2)", "KB1", ""},
      {"KB1-v2 (1.2)", "KB1", ""},
      {"KB1", "KB1", ""},
      {"x KB0123456789 (2)", "KB0123456789", "2"},
      {"KB1 KB2 (2)", "KB1", "KB2 (2"},
  };
  for (const auto& c : cases)
    EXPECT_THAT(parts(c.title), ElementsAre(c.name, c.version)) << c.title;
}

TEST(UpdateLogLine, WithoutTheLongPhraseTheTitleStandsBehindColonAndBlank) {
  EXPECT_EQ(title_of("2011-01-08\t22:54:25:015\tInstallation Successful: Update KB1"),
            "Update KB1");
  EXPECT_EQ(title_of("2011-01-08\t22:54:25:015\tInstallation Successful:\tUpdate KB1"),
            "Update KB1")
      << "whatever stands there";
  EXPECT_EQ(title_of("a b Installation Successful: windows successfully installed the following "
                     "update: x"),
            "windows successfully installed the following update: x")
      << "not the same phrase";
  EXPECT_EQ(title_of("a b Installation Successful: Windows successfully installed the following "
                     "update:"),
            "Windows successfully installed the following update:");
  EXPECT_EQ(title_of("a b Installation Successful: Windows successfully installed the following "
                     "update: "),
            "");
}

TEST(UpdateLogLine, ATitleThatWouldLieBeyondTheEndIsEmpty) {
  for (const char* line : {"a b Installation Successful:", "a b Installation Successful: "}) {
    const LoggedUpdate update = parse(line);
    EXPECT_STREQ(update.title.c_str(), "");
    EXPECT_STREQ(update.name.c_str(), "");
    EXPECT_STREQ(update.version.c_str(), "");
  }
}

TEST(UpdateLogLine, TheFirstPhraseCounts) {
  EXPECT_EQ(title_of("a b Installation Successful: x Installation Successful: y"),
            "x Installation Successful: y");
}

TEST(UpdateLogLine, OnlyTheWordingOfASuccessCounts) {
  for (const char* line :
       {"", " ", "2011-01-08\t22:54:25:015\tInstallation Failure: Windows failed to install",
        "a b installation successful: x", "a b Installation Successful x",
        "a b Installation  Successful: x", "Installation Successful", ":",
        "nstallation Successful:", "a b Installation SuccessfuInstallation Successful"}) {
    EXPECT_FALSE(counts(line)) << line;
  }
  EXPECT_TRUE(counts("a b Installation SuccessfuInstallation Successful:"));
}

TEST(UpdateLogLine, FindsThePhraseWhereverItStands) {
  for (size_t before = 0; before < 200; ++before) {
    const std::string line = std::string(before, 'l') + "Installation Successful: KB1";
    EXPECT_EQ(title_of(line), "KB1") << before;
    EXPECT_FALSE(counts(line.substr(0, before + 23))) << before;
  }
}

TEST(UpdateLogLine, TheDateIsMadeOfTheFirstTwoWords) {
  const std::string date = shown(2011, 1, 8, 22, 54);
  EXPECT_EQ(date_of("2011-01-08\t22:54:25:015"), date);
  EXPECT_EQ(date_of("2011-01-08 22:54:25:015"), date);
  EXPECT_EQ(date_of(" \t 2011-01-08 \v\f 22:54:25:015"), date);
  EXPECT_EQ(date_of("2011-01-08\t22:54:25"), date);
  EXPECT_EQ(date_of("2011-01-08\t00:00:00:000"), shown(2011, 1, 8));
}

TEST(UpdateLogLine, ALocalTimeStaysTheTimeThatItIs) {
  const ORLO::FixedClock berlin({2026, 11, 5, 20, 12});
  const auto update = parse_update_line(success_line("x"), berlin);
  ASSERT_TRUE(update);
  EXPECT_EQ(update->installed.time.wHour, 21);
  EXPECT_EQ(update->installed.zone, 60);
  EXPECT_EQ(std::string(update->installed.display(berlin).c_str()), shown(2011, 1, 8, 22, 54));
}

TEST(UpdateLogLine, WithoutADateInFrontTheDateIsEmpty) {
  EXPECT_EQ(date_of("some words"), "");
  EXPECT_EQ(date_of("\xEF\xBB\xBF"
                    "2011-01-08\t22:54:25:015"),
            "");
  // The phrase itself has two words, so that none is ever missing.
  EXPECT_TRUE(parse("Installation Successful: KB1").installed.empty());
}

TEST(UpdateLogLine, WordsAreCutAtAHundredCharacters) {
  const std::string zeros(92, '0');
  EXPECT_EQ(date_of("2011-01-08 22:54:25:" + std::string(5000, '0')), shown(2011, 1, 8, 22, 54));
  EXPECT_EQ(date_of("2011-01-" + zeros.substr(2) + "08 22:54:25"), shown(2011, 1, 8, 22, 54))
      << "a hundred are taken whole";
  EXPECT_NE(date_of("2011-01-" + zeros.substr(1) + "08 22:54:25"), shown(2011, 1, 8, 22, 54))
      << "the last digit is cut";
  EXPECT_EQ(date_of("2011-01-08 " + zeros + "22:54:25"), shown(2011, 1, 8, 22, 54));
  EXPECT_EQ(date_of("2011-01-08 " + std::string(98, '0') + "22:54:25"), shown(2011, 1, 8, 22))
      << "minutes and seconds are cut";
}

TEST(UpdateLogLine, ALineEndsAtItsFirstNul) {
  using namespace std::string_literals;
  EXPECT_FALSE(counts("a b\0Installation Successful: x"s));
  EXPECT_FALSE(counts("a b Installation Suc\0cessful: x"s));
  EXPECT_FALSE(counts("\0"s));
  EXPECT_EQ(title_of("a b Installation Successful:\0x"s), "");
  EXPECT_EQ(title_of("a b Installation Successful: KB1\0 (2)"s), "KB1");
  EXPECT_FALSE(counts("a b\0 Installation Successful: x Installation Successful: y"s));
}

TEST(UpdateLogLine, TitlesOfTheCodePageAreTold) {
  EXPECT_EQ(title_of(success_line("Update f\xC3\xBCr KB1")), "Update f\xFCr KB1");
  EXPECT_EQ(title_of(success_line("\xE2\x82\xAC")), "\x80");
  const LoggedUpdate update = parse(success_line("f\xC3\xBCr KB1 (\xC3\xA4)"));
  EXPECT_STREQ(update.name.c_str(), "KB1");
  EXPECT_STREQ(update.version.c_str(), "\xE4");
}

TEST(UpdateLogLine, WhatTheCodePageLacksIsWhatThePlatformMakesOfIt) {
  const std::u16string wide = u"\u6587\u0101\U0001F600";
  EXPECT_EQ(title_of(success_line("\xE6\x96\x87\xC4\x81\xF0\x9F\x98\x80")),
            ORLO::system_locale().narrow(wide.data(), wide.size()));
}

TEST(UpdateLogLine, ATitleThatIsNoUtf8StaysAsItIs) {
  for (const char* title : {
           "f\xFCr KB1",                         // another code page
           "\xC3\xBC and \xC3",                  // cut
           "\xC3\xBC and \x80",                  // a stray byte
           "\xC0\xAF\xC3\xBC",                   // two bytes for one
           "\xE0\x80\xAF",                       // three bytes for one
           "\xF0\x82\x82\xAC",                   // four bytes for three
           "\xED\xA0\x80\xED\xB0\x80 \xC3\xBC",  // surrogates
           "\xF4\x90\x80\x80",                   // beyond the last character
           "\xF8\x88\x80\x80\x80",
           "\xFE",
           "\xFF\xFE",
       }) {
    EXPECT_EQ(title_of(success_line(title)), title);
  }
}

TEST(UpdateLogLine, AReplacementCharacterInATitleIsACharacterLikeOthers) {
  EXPECT_EQ(title_of(success_line("\xEF\xBF\xBD\xC3\xBC")), "?\xFC");
}

/// `count` times the two bytes of one character.
std::string umlauts(size_t count) {
  std::string text;
  while (text.size() < 2 * count)
    text += "\xC3\xBC";
  return text;
}

TEST(UpdateLogLine, OnlyTitlesOfUpTo1023CharactersAreConverted) {
  EXPECT_EQ(title_of(success_line(umlauts(1022))), std::string(1022, '\xFC'));
  EXPECT_EQ(title_of(success_line(umlauts(1023))), std::string(1023, '\xFC'));
  EXPECT_EQ(title_of(success_line(umlauts(1024))), umlauts(1024));
  std::string euros;
  for (int i = 0; i < 1023; ++i)
    euros += "\xE2\x82\xAC";
  EXPECT_EQ(title_of(success_line(euros)), std::string(1023, '\x80')) << "three bytes each";
  EXPECT_EQ(title_of(success_line(euros + 'x')), euros + 'x');
  // Beyond the basic plane a character is two units.
  std::string faces;
  for (int i = 0; i < 512; ++i)
    faces += "\xF0\x9F\x98\x80";
  EXPECT_EQ(title_of(success_line(faces)), faces);
}

TEST(UpdateLogLine, LongTitlesStayWhole) {
  for (const size_t length : {size_t{1023}, size_t{1024}, size_t{3069}, size_t{5'000'000}}) {
    const std::string ascii = "<" + std::string(length - 2, 'x') + ">";
    // Compared in one piece: so long a text is nothing to print.
    EXPECT_TRUE(title_of(success_line(ascii)) == ascii) << length;
    const std::string broken = umlauts(length) + "\xFF";
    EXPECT_TRUE(title_of(success_line(broken)) == broken) << length;
  }
  const LoggedUpdate update = parse(success_line(umlauts(2000) + " KB1 (2)"));
  EXPECT_STREQ(update.name.c_str(), "KB1");
  EXPECT_STREQ(update.version.c_str(), "2");
}

TEST(UpdateLogLine, ALineOfManyMegabytesIsParsed) {
  const std::string noise(5'000'000, 'x');
  EXPECT_FALSE(counts(noise));
  EXPECT_EQ(title_of("a b " + noise + "Installation Successful: KB1 (2)"), "KB1 (2)");
  EXPECT_EQ(parse("a b Installation Successful: KB1" + std::string(5'000'000, '7')).name.length(),
            5'000'003u);
}

class UpdateLog : public testing::Test {
 protected:
  std::vector<Row> read(const std::string& content) {
    return read_update_log(folder_.make("log", content));
  }
  /// The titles of the rows of a log.
  std::vector<std::string> titles(const std::string& content) {
    std::vector<std::string> result;
    for (const Row& row : read(content))
      result.emplace_back(cell(row, Field::displayName).text.c_str());
    return result;
  }

  TempFolder folder_;
};

TEST_F(UpdateLog, ASuccessFillsItsFiveFieldsAndNoOther) {
  auto rows = read(success_line("Update KB1 (Definition 1.2)") + "\r\n");
  ASSERT_EQ(rows.size(), 1u);
  const std::pair<Field, std::string> expected[] = {
      {Field::name, "KB1"},
      {Field::source, "Windows Update"},
      {Field::displayName, "Update KB1 (Definition 1.2)"},
      {Field::displayVersion, "1.2"},
      {Field::installDate, shown(2011, 1, 8, 22, 54)},
      {Field::size, "-1"},
  };
  for (const auto& [column, text] : expected) {
    EXPECT_EQ(std::string(cell(rows[0], column).text.c_str()), text);
    cell(rows[0], column).text = "";
  }
  for (const Cell& other : rows[0].cells)
    EXPECT_TRUE(other.text.empty());
}

TEST_F(UpdateLog, NothingOfARowStaysInTheNextOne) {
  const auto rows = read(success_line("KB1 (2)") + "\n" + success_line("x", "no date") + "\n");
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_STREQ(cell(rows[1], Field::name).text.c_str(), "x");
  EXPECT_STREQ(cell(rows[1], Field::displayVersion).text.c_str(), "");
  EXPECT_STREQ(cell(rows[1], Field::installDate).text.c_str(), "");
  EXPECT_STREQ(cell(rows[0], Field::name).text.c_str(), "KB1");
}

TEST_F(UpdateLog, AnUpdateThatWasInstalledTwiceIsToldTwice) {
  const std::string line = success_line("KB1") + "\r\n";
  EXPECT_THAT(titles(line + "something else\r\n" + line), ElementsAre("KB1", "KB1"));
}

TEST_F(UpdateLog, LinesEndAsTheyLike) {
  const std::string line = success_line("x");
  for (const char* end : {"\n", "\r", "\r\n", "\n\n", "\r\r\n\n"})
    EXPECT_THAT(titles(std::string(line).append(end).append(line)), ElementsAre("x", "x"));
}

TEST_F(UpdateLog, ALogWithoutLineEndsIsOneLine) {
  std::string content;
  for (int i = 0; i < 1000; ++i)
    content += success_line("x");
  EXPECT_EQ(titles(content).size(), 1u);
}

TEST_F(UpdateLog, NulsEndTheirLineAndNotTheLog) {
  using namespace std::string_literals;
  EXPECT_THAT(titles("\0\n"s + success_line("x\0y"s) + "\n\0"s + success_line("no") + "\n" +
                     success_line("z")),
              ElementsAre("x", "z"));
  EXPECT_THAT(titles(std::string(100'000, '\0') + "\n" + success_line("x")), ElementsAre("x"));
}

TEST_F(UpdateLog, ALogIn16BitsToACharacterTellsOfNothing) {
  const std::string line = success_line("x") + "\r\n";
  const std::u16string wide(line.begin(), line.end());
  EXPECT_THAT(titles("\xFF\xFE" + wide_bytes(wide)), IsEmpty());
  EXPECT_THAT(titles("\xFE\xFF" + wide_bytes(wide, true)), IsEmpty());
}

TEST_F(UpdateLog, BrokenUtf8HarmsItsOwnTitleOnly) {
  EXPECT_THAT(titles(success_line("\xC3") + "\n" + success_line("\xC3\xBC") + "\n\xC3\xFF\n" +
                     success_line("\xFC")),
              ElementsAre("\xC3", "\xFC", "\xFC"));
}

TEST_F(UpdateLog, LinesLongerThanTheFirstBufferAreReadWhole) {
  std::string content;
  for (size_t length = 700; length < 5000; length += 7)
    content += success_line(std::string(length, 'x')) + "\n";
  size_t length = 700;
  for (const std::string& title : titles(content)) {
    EXPECT_EQ(title, std::string(length, 'x'));
    length += 7;
  }
  EXPECT_GE(length, 5000u);
}

TEST_F(UpdateLog, ALineOfManyMegabytesIsOneOfMany) {
  const std::string noise(8'000'000, 'y');
  const std::string before = success_line("x") + "\n";
  EXPECT_THAT(titles(before + noise + "\n" + success_line("z")), ElementsAre("x", "z"));
}

TEST_F(UpdateLog, WhatALineHasBeyondAMegabyteCountsAsTheNextOne) {
  constexpr size_t kLongest = 1'000'000;
  const std::string before = success_line("x") + "\n";
  const std::string after = "\n" + success_line("z");
  const std::string noise(kLongest, 'y');
  EXPECT_THAT(titles(before + noise + success_line("b") + noise + noise + after),
              ElementsAre("x", testing::StartsWith("by"), "z"));
  const std::string start = success_line("");
  const std::string full(kLongest - start.size(), 'f');
  EXPECT_THAT(titles(before + start + full + after), ElementsAre("x", full, "z"));
  const auto rows = titles(before + start + full + noise + noise + after);
  EXPECT_THAT(rows, ElementsAre("x", full, "z"));
  EXPECT_THAT(titles(start + full + success_line("next") + after), ElementsAre(full, "next", "z"));
}

TEST_F(UpdateLog, AnEmptyOneAMissingOneAndAFolderInItsPlaceGiveNoRow) {
  EXPECT_THAT(read(""), IsEmpty());
  EXPECT_THAT(read_update_log(folder_.path("missing")), IsEmpty());
  EXPECT_THAT(read_update_log(folder_.path(".")), IsEmpty());
  EXPECT_THAT(read_update_log(""), IsEmpty());
}

TEST_F(UpdateLog, ErasesTheKeyOfItsRowsFromTheUnseenOnes) {
  Row other = make_source_row("x");
  cell(other, Field::keyName).text = "other";
  const RowKey other_key = packageSchema().key_of(other);
  std::set<RowKey> unseen = {packageSchema().key_of(make_source_row("x")), other_key};
  const auto ignore = [](const Row&) {};
  ReadUpdateLog(folder_.make("none", "no success\n"), update_log_clock(), unseen, ignore);
  EXPECT_EQ(unseen.size(), 2u);
  ReadUpdateLog(folder_.make("log", success_line("x")), update_log_clock(), unseen, ignore);
  EXPECT_EQ(unseen, std::set<RowKey>{other_key});
}

}  // namespace
