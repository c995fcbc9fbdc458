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

TEST(Switches, TheWordAfterExportIsTheFile) {
  struct Case {
    const char* command_line;
    bool given;
    const char* file;
  };
  const Case cases[] = {
      {"-export list.xls", true, "list.xls"},
      {"  -export \t list.xls ", true, "list.xls"},
      {"-nopersist -export C:\\a.csv -ger", true, "C:\\a.csv"},
      {"-export \"C:\\My files\\a b.csv\" -ger", true, "C:\\My files\\a b.csv"},
      {"-export C:\\\"My files\"\\a.csv", true, "C:\\My files\\a.csv"},
      {"-export \"C:\\My files\\", true, "C:\\My files\\"},
      {"\"-export\" -", true, "-"},
      {"-export", true, ""},
      {"-export ", true, ""},
      {"-export \"\"", true, ""},
      {"-export \" \"", true, " "},
      {"-export a -export b", true, "a"},
      {"-export -export", true, "-export"},
      {"-export -ger", true, "-ger"},
      {"-ger\t-export\ta.csv\t-eng", true, "a.csv"},
      {"-export a\tb", true, "a"},
      {"-export \"a\tb\"", true, "a\tb"},
      {"-ger -export", true, ""},
      {"x-export a", false, ""},
      {"-exports a", false, ""},
      {"-export=a", false, ""},
      {"-Export a", false, ""},
      {"\"x -export a\"", false, ""},
      {"", false, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.command_line);
    const Switches switches = read_switches(c.command_line);
    EXPECT_EQ(switches.doExport, c.given);
    EXPECT_STREQ(switches.exportFile.c_str(), c.file);
  }
}

TEST(Switches, TheExportsFileHoldsNone) {
  const Switches none = read_switches("-export x-german-eng-postupdate-nopersist-noupdate.xls");
  EXPECT_FALSE(none.german || none.english || none.postUpdate || none.noPersist || none.noUpdate);
  EXPECT_FALSE(read_switches("-export \"a -ger b.xls\"").german);
  EXPECT_FALSE(read_switches("-export -ger").german);
  EXPECT_FALSE(read_switches("-postup -export date.xls").postUpdate);
  EXPECT_FALSE(read_switches("-p -export \"o\"stupdate").postUpdate);
}

TEST(Switches, TheFirstExportCounts) {
  const Switches twice = read_switches("-export a.csv -export -ger.csv");
  EXPECT_STREQ(twice.exportFile.c_str(), "a.csv");
  // What follows is an ordinary word.
  EXPECT_TRUE(twice.german);
}

TEST(Switches, OthersHoldBesideTheExport) {
  for (const char* command_line : {"-export a.xls -ger -noupdate", "-ger -noupdate -export a.xls",
                                   "-ger -export \"a b\" -noupdate"}) {
    SCOPED_TRACE(command_line);
    const Switches switches = read_switches(command_line);
    EXPECT_TRUE(switches.german && switches.noUpdate && switches.doExport);
    EXPECT_FALSE(switches.english || switches.postUpdate || switches.noPersist);
  }
  EXPECT_TRUE(read_switches("-export a.xls -postupdate").postUpdate);
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
