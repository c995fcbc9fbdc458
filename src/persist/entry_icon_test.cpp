#include "persist/entry_icon.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/memory_files.h"
#include "platform/memory_icons.h"

namespace {

using Calls = std::vector<std::string>;

class LoadEntryIcon : public testing::Test {
 protected:
  std::unique_ptr<Icon> load(bool large = false) {
    icons_.forget_calls();
    return loadEntryIcon(entry_, large, files_, icons_);
  }
  /// What is asked for first.
  std::string asked(const std::string& displayIcon) {
    entry_.displayIcon = displayIcon;
    load();
    return icons_.calls().empty() ? "nothing" : icons_.calls().front();
  }

  UninstallEntry entry_;
  MemoryFiles files_;
  MemoryIcons icons_;
};

TEST_F(LoadEntryIcon, TakesTheIndexBehindTheComma) {
  EXPECT_EQ(asked("C:\\x.exe"), "C:\\x.exe 0 small");
  EXPECT_EQ(asked("C:\\x.exe,3"), "C:\\x.exe 3 small");
  EXPECT_EQ(asked("C:\\x.exe,-101"), "C:\\x.exe -101 small");
}

TEST_F(LoadEntryIcon, TakesThePathFromTheQuotesAndTheIndexFromTheRest) {
  EXPECT_EQ(asked("\"C:\\Program Files\\y.exe\",1"), "C:\\Program Files\\y.exe 1 small");
  EXPECT_EQ(asked("\"C:\\Program Files\\y.exe\" ,1"), "C:\\Program Files\\y.exe 1 small");
  EXPECT_EQ(asked("\"C:\\y.exe\" 2,3"), "C:\\y.exe 2 small");
  EXPECT_EQ(asked("\"C:\\y.exe\" /s,3"), "C:\\y.exe 0 small") << "the first piece is no number";
  EXPECT_EQ(asked("\"C:\\y.exe\",,4"), "C:\\y.exe 4 small") << "empty pieces are none";
  EXPECT_EQ(asked("\"C:\\y.exe\",,"), "C:\\y.exe 0 small");
  EXPECT_EQ(asked("\"C:\\y.exe"), "C:\\y.exe 0 small");
}

TEST_F(LoadEntryIcon, CutsAQuotedPathAtItsCommaToo) {
  EXPECT_EQ(asked("\"C:\\y.exe,5\""), "C:\\y.exe 5 small");
  EXPECT_EQ(asked("\"C:\\y.exe,5\",6"), "C:\\y.exe 6 small") << "arguments go first";
  EXPECT_EQ(asked("\"C:\\a,b\\y.exe\",6"), "C:\\a 6 small");
}

TEST_F(LoadEntryIcon, ExpandsThePathAndPassesANegativeIndexOn) {
  files_.set_variable("SystemRoot", "C:\\Windows");
  EXPECT_EQ(asked("%SystemRoot%\\a.dll,-5"), "C:\\Windows\\a.dll -5 small");
  EXPECT_EQ(asked("\"%SystemRoot%\\a.dll\",-5"), "C:\\Windows\\a.dll -5 small");
}

TEST_F(LoadEntryIcon, ReadsAnyTextAsAnIndex) {
  const struct {
    const char* text;
    const char* index;
  } rows[] = {
      {"", "0"},
      {" ", "0"},
      {" 7", "7"},
      {"\t-7", "-7"},
      {"+7", "7"},
      {"7x", "7"},
      {"7,8", "7"},
      {"x7", "0"},
      {"--7", "0"},
      {"- 7", "0"},
      {"0x10", "0"},
      {"007", "7"},
      {"2147483647", "2147483647"},
      {"2147483648", "-2147483648"},
      {"-2147483648", "-2147483648"},
      {"4294967297", "1"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(asked(std::string("x.exe,") + row.text),
              std::string("x.exe ") + row.index + " small");
  }
  EXPECT_EQ(asked("x.exe," + std::string(100000, '0') + "9"), "x.exe 9 small");
}

TEST_F(LoadEntryIcon, AsksForTheSizeThatIsWanted) {
  icons_.add_icon("C:\\x.exe", 0, false, 1);
  icons_.add_icon("C:\\x.exe", 0, true, 2);
  entry_.displayIcon = "C:\\x.exe";
  for (const bool large : {false, true}) {
    const auto icon = load(large);
    ASSERT_TRUE(icon);
    EXPECT_EQ(dynamic_cast<const MemoryIcon&>(*icon).color(), large ? 2U : 1U);
  }
}

TEST_F(LoadEntryIcon, FallsBackOnTheWholeUninstallAndModifyTexts) {
  entry_.displayIcon = "C:\\none.exe,3";
  entry_.uninstallCmd = "\"C:\\un.exe\" /s,1";
  entry_.modifyCmd = "C:\\mod.exe,2";
  EXPECT_EQ(load(), nullptr);
  EXPECT_EQ(icons_.calls(), (Calls{"C:\\none.exe 3 small", "\"C:\\un.exe\" /s,1 0 small",
                                   "C:\\mod.exe,2 0 small"}));
  icons_.add_icon("C:\\mod.exe,2", 0, 5);
  EXPECT_TRUE(load());
  icons_.add_icon("\"C:\\un.exe\" /s,1", 0, 6);
  EXPECT_TRUE(load(true));
  EXPECT_EQ(icons_.calls(), (Calls{"C:\\none.exe 3 large", "\"C:\\un.exe\" /s,1 0 large"}))
      << "the first one is enough";
  icons_.add_icon("C:\\none.exe", 3, 7);
  EXPECT_TRUE(load());
  EXPECT_EQ(icons_.calls(), (Calls{"C:\\none.exe 3 small"}));
}

TEST_F(LoadEntryIcon, PassesOverCommandsThatAreEmpty) {
  EXPECT_EQ(load(), nullptr);
  EXPECT_EQ(icons_.calls(), (Calls{" 0 small"}));
  entry_.modifyCmd = "C:\\mod.exe";
  EXPECT_EQ(load(), nullptr);
  EXPECT_EQ(icons_.calls(), (Calls{" 0 small", "C:\\mod.exe 0 small"}));
}

TEST_F(LoadEntryIcon, StandsTextsOfAnyKind) {
  entry_.uninstallCmd = std::string(32767, ' ');
  entry_.modifyCmd = std::string(32767, '"');
  for (const char* text :
       {",", ",,", "\"", "\"\"", "\"\",", "\",\"", " ", "  ,  ", "%", "%%,%", "-"}) {
    SCOPED_TRACE(text);
    entry_.displayIcon = text;
    EXPECT_EQ(load(), nullptr);
    EXPECT_EQ(icons_.calls().size(), 3U);
  }
  EXPECT_EQ(asked(std::string(100000, ',')), " 0 small");
  EXPECT_EQ(asked(std::string(100000, 'x') + ",1"), std::string(100000, 'x') + " 1 small");
}

}  // namespace
