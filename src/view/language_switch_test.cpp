#include "view/language_switch.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Steps = std::vector<std::string>;

/// Notes every step that is taken, in order.
class RecordedRestart : public ProgramRestart {
 public:
  String program_path() override { return path; }
  void keep_place(String& windowPos) override {
    steps.push_back("keep place");
    if (!place.empty()) windowPos = place;
  }
  void write_configuration(const UninstallPara& para) override {
    steps.push_back("write " + std::to_string(para.langId) + " " + para.windowPos.c_str());
  }
  void show_window(bool shown) override { steps.push_back(shown ? "show" : "hide"); }
  unsigned start(const String& command_line) override {
    steps.push_back(std::string("start ") + command_line.c_str());
    return result;
  }
  void quit() override { steps.push_back("quit"); }

  String path = "C:\\Zolvane\\zolvane.exe";
  String place = "10/20/330/440 - 1";
  unsigned result = 33;
  Steps steps;
};

TEST(LanguageSwitch, KeepsWhatLastsHidesStartsAndQuits) {
  RecordedRestart restart;
  UninstallPara para;
  switchLanguage("-ger", para, restart);
  EXPECT_EQ(restart.steps, (Steps{"keep place", "write 7 10/20/330/440 - 1", "hide",
                                  "start C:\\Zolvane\\zolvane.exe -ger", "quit"}));
}

TEST(LanguageSwitch, GivesTheSettingsTheOtherLanguage) {
  const struct {
    const char* other_switch;
    uint16_t before;
    uint16_t after;
  } rows[] = {{"-ger", kLangEnglish, kLangGerman},
              {"-eng", kLangGerman, kLangEnglish},
              {"-ger", 12, kLangGerman},
              {"-ger -eng", 12, kLangEnglish},
              {"-GER", 12, 12},
              {"", kLangGerman, kLangGerman}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.other_switch);
    RecordedRestart restart;
    UninstallPara para;
    para.langId = row.before;
    switchLanguage(row.other_switch, para, restart);
    EXPECT_EQ(para.langId, row.after);
  }
}

TEST(LanguageSwitch, WritesNothingInARunThatMustNotPersist) {
  RecordedRestart restart;
  UninstallPara para;
  para.noPersist = true;
  switchLanguage("-ger", para, restart);
  EXPECT_EQ(restart.steps,
            (Steps{"keep place", "hide", "start C:\\Zolvane\\zolvane.exe -ger", "quit"}));
  EXPECT_EQ(para.langId, kLangGerman);
}

TEST(LanguageSwitch, GoesOnInItsLanguageIfNothingStarts) {
  for (const unsigned result : {0u, 2u, 3u, 11u, 31u}) {
    SCOPED_TRACE(result);
    RecordedRestart restart;
    restart.result = result;
    UninstallPara para;
    switchLanguage("-ger", para, restart);
    EXPECT_EQ(restart.steps, (Steps{"keep place", "write 7 10/20/330/440 - 1", "hide",
                                    "start C:\\Zolvane\\zolvane.exe -ger", "show"}));
    // The next start is in the other language all the same.
    EXPECT_EQ(para.langId, kLangGerman);
  }
}

TEST(LanguageSwitch, TakesEveryResultFrom32OnForARunningProgram) {
  for (const unsigned result : {32u, 33u, 0xffffffffu}) {
    SCOPED_TRACE(result);
    RecordedRestart restart;
    restart.result = result;
    UninstallPara para;
    switchLanguage("-ger", para, restart);
    EXPECT_EQ(restart.steps.back(), "quit");
  }
}

TEST(LanguageSwitch, KeepsTheFormerPlaceOfAMinimisedWindow) {
  RecordedRestart restart;
  restart.place = "";
  UninstallPara para;
  para.windowPos = "1/2/3/4 - 3";
  switchLanguage("-eng", para, restart);
  EXPECT_STREQ(para.windowPos.c_str(), "1/2/3/4 - 3");
}

TEST(RestartCommand, QuotesThePathWhereItHoldsABlank) {
  const struct {
    const char* path;
    const char* expected;
  } rows[] = {
      {"C:\\Tools\\zolvane.exe", "C:\\Tools\\zolvane.exe -ger"},
      {"C:\\My Tools\\zolvane.exe", "\"C:\\My Tools\\zolvane.exe\" -ger"},
      {" ", "\" \" -ger"},
      {"", " -ger"},
      {"C:\\100%s\\zolvane.exe", "C:\\100%s\\zolvane.exe -ger"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.path);
    EXPECT_STREQ(restart_command(row.path, "-ger").c_str(), row.expected);
  }
}

}  // namespace
