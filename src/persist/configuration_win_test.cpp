#include "persist/configuration.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace {

/// Without what another test, or the test run's own environment, has left.
class Configuration : public testing::Test {
 protected:
  Configuration() { clear(); }
  ~Configuration() override { clear(); }

 private:
  static void clear() {
    for (const char* name : {"ZOLVANE_WINDOW_POS", "ZOLVANE_LANG_ID", "ZOLVANE_COLOR_BKGND"})
      SetEnvironmentVariableA(name, nullptr);
  }
};

UninstallPara settings(const char* windowPos, uint16_t langId, bool colorBackground) {
  UninstallPara para;
  para.windowPos = windowPos;
  para.langId = langId;
  para.colorBackground = colorBackground;
  return para;
}

TEST_F(Configuration, GivesBackWhatWasWritten) {
  const UninstallPara rows[] = {settings("1/2/303/404 - 1", kLangGerman, false),
                                settings("-8/-8/1288/1032 - 3", kLangEnglish, true),
                                settings("", 12, true)};
  for (const UninstallPara& written : rows) {
    SCOPED_TRACE(written.langId);
    writeConfiguration(written);
    UninstallPara para = settings("9/9/9/9 - 9", 1, !written.colorBackground);
    EXPECT_TRUE(readConfiguration(para));
    EXPECT_STREQ(para.windowPos.c_str(), written.windowPos.c_str());
    EXPECT_EQ(para.langId, written.langId);
    EXPECT_EQ(para.colorBackground, written.colorBackground);
  }
}

TEST_F(Configuration, ChangesNothingIfNothingWasWritten) {
  UninstallPara para = settings("9/9/9/9 - 9", kLangGerman, false);
  EXPECT_FALSE(readConfiguration(para));
  EXPECT_STREQ(para.windowPos.c_str(), "9/9/9/9 - 9");
  EXPECT_EQ(para.langId, kLangGerman);
  EXPECT_FALSE(para.colorBackground);
}

TEST_F(Configuration, TakesALanguageThatIsNoNumberForNone) {
  SetEnvironmentVariableA("ZOLVANE_LANG_ID", "german");
  UninstallPara para = settings("", kLangGerman, true);
  EXPECT_TRUE(readConfiguration(para));
  EXPECT_EQ(para.langId, 0);
}

TEST_F(Configuration, TakesATextOfAbsurdLengthForNone) {
  writeConfiguration(settings("", kLangGerman, true));
  SetEnvironmentVariableA("ZOLVANE_WINDOW_POS", std::string(5000, '1').c_str());
  UninstallPara para = settings("9/9/9/9 - 9", kLangEnglish, true);
  EXPECT_TRUE(readConfiguration(para));
  EXPECT_STREQ(para.windowPos.c_str(), "");
}

TEST_F(Configuration, ReachesTheProgramsThatThisOneStarts) {
  writeConfiguration(settings("1/2/303/404 - 1", kLangGerman, true));
  char text[100] = {};
  GetEnvironmentVariableA("ZOLVANE_WINDOW_POS", text, sizeof text);
  EXPECT_STREQ(text, "1/2/303/404 - 1");
}

}  // namespace
