#include "start/switches.h"

#include <gtest/gtest.h>

namespace {

TEST(Switches, CountWhereverTheyStand) {
  struct Case {
    const char* command_line;
    bool postUpdate, noPersist, noUpdate, german, english;
  };
  const Case cases[] = {
      {"", false, false, false, false, false},
      {"-postupdate", true, false, false, false, false},
      {"-nopersist -noupdate", false, true, true, false, false},
      {"x-nopersisty", false, true, false, false, false},
      {"\"-ger\"", false, false, false, true, false},
      {"-eng -ger", false, false, false, true, true},
      {"-NOUPDATE -Ger", false, false, false, false, false},
      {"-nopersist-noupdate-ger", false, true, true, true, false},
      {"C:\\-english\\-gerda\\zolvane.exe", false, false, false, true, true},
      {"- nopersist -no update", false, false, false, false, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.command_line);
    const Switches switches = read_switches(c.command_line);
    EXPECT_EQ(switches.postUpdate, c.postUpdate);
    EXPECT_EQ(switches.noPersist, c.noPersist);
    EXPECT_EQ(switches.noUpdate, c.noUpdate);
    EXPECT_EQ(switches.german, c.german);
    EXPECT_EQ(switches.english, c.english);
  }
}

TEST(Language, GermanWinsOverEnglish) {
  UninstallPara para;
  EXPECT_EQ(choose_language(read_switches("-eng -ger"), para), 0x407u);
  EXPECT_EQ(para.langId, kLangGerman);
}

TEST(Language, EnglishSwitchOverridesTheSystem) {
  UninstallPara para;
  para.langId = kLangGerman;
  EXPECT_EQ(choose_language(read_switches("-eng"), para), 0x809u);
  EXPECT_EQ(para.langId, kLangEnglish);
}

TEST(Language, AnyOtherOneIsShownInEnglishAndKept) {
  UninstallPara para;
  para.langId = 12;
  EXPECT_EQ(choose_language(Switches(), para), 0x809u);
  EXPECT_EQ(para.langId, 12);
  para.langId = kLangGerman;
  EXPECT_EQ(choose_language(Switches(), para), 0x407u);
}

TEST(Paths, StandBelowThePerUserFolder) {
  UninstallPara para;
  set_paths("C:\\Users\\me\\Local", para);
  EXPECT_STREQ(para.cfgPath.c_str(), "C:\\Users\\me\\Local\\Quillmere\\zolvane-cfg.xml");
  EXPECT_STREQ(para.histPath.c_str(), "C:\\Users\\me\\Local\\Quillmere\\zolvane-hist.xml");
  EXPECT_STREQ(para.imageListPath.c_str(),
               "C:\\Users\\me\\Local\\Quillmere\\zolvane-imagelist.dat");
  EXPECT_STREQ(para.imagePathsPath.c_str(),
               "C:\\Users\\me\\Local\\Quillmere\\zolvane-imagepaths.txt");
}

TEST(Paths, WithoutAFolderAreBuiltFromNothing) {
  UninstallPara para;
  set_paths("", para);
  EXPECT_STREQ(para.cfgPath.c_str(), "\\Quillmere\\zolvane-cfg.xml");
}

TEST(Paths, TakeTheFolderAsItIs) {
  UninstallPara para;
  set_paths("C:\\100%s%n\\\xC4", para);
  EXPECT_STREQ(para.cfgPath.c_str(), "C:\\100%s%n\\\xC4\\Quillmere\\zolvane-cfg.xml");
}

TEST(UninstallPara, StartsWithItsDefaults) {
  const UninstallPara para;
  EXPECT_FALSE(para.noPersist);
  EXPECT_FALSE(para.noUpdate);
  EXPECT_TRUE(para.colorBackground);
  EXPECT_TRUE(para.windowPos.empty());
}

}  // namespace
