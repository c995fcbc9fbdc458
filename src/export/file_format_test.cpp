#include "export/file_format.h"

#include <gtest/gtest.h>

#include <string>

namespace {

bool is_workbook(const std::string& name) {
  return is_workbook_name(String(name.c_str()));
}

TEST(FileFormat, TakesANameThatEndsInXlsForAWorkbook) {
  EXPECT_TRUE(is_workbook("Software.xls"));
  EXPECT_TRUE(is_workbook("C:\\Lists of May\\Software.xls"));
}

TEST(FileFormat, TakesXlsInAnyCase) {
  EXPECT_TRUE(is_workbook("Software.XLS"));
  EXPECT_TRUE(is_workbook("Software.Xls"));
  EXPECT_TRUE(is_workbook("Software.xLs"));
}

TEST(FileFormat, TakesOtherEndingsForText) {
  EXPECT_FALSE(is_workbook("Software.csv"));
  EXPECT_FALSE(is_workbook("Software.txt"));
  EXPECT_FALSE(is_workbook("Software.xlsx"));
  EXPECT_FALSE(is_workbook("Software.xls "));
  EXPECT_FALSE(is_workbook("Software.xls.csv"));
  EXPECT_FALSE(is_workbook("Software.xl"));
}

TEST(FileFormat, TakesANameWithoutExtensionForText) {
  EXPECT_FALSE(is_workbook("Software"));
  EXPECT_FALSE(is_workbook("C:\\old.xls\\Software"));
  EXPECT_FALSE(is_workbook(""));
}

TEST(FileFormat, TakesAnyCharacterBeforeXlsForThePoint) {
  EXPECT_TRUE(is_workbook("Softwarexls"));
  EXPECT_TRUE(is_workbook("Software_xls"));
  EXPECT_TRUE(is_workbook("C:\\xls"));
  EXPECT_TRUE(is_workbook(".xls"));
  EXPECT_TRUE(is_workbook("\nxls"));
}

TEST(FileFormat, WantsACharacterBeforeXls) {
  EXPECT_FALSE(is_workbook("xls"));
  EXPECT_FALSE(is_workbook("XLS"));
}

TEST(FileFormat, TakesXlsOnlyAtTheVeryEnd) {
  EXPECT_FALSE(is_workbook("Software.xls\n"));
  EXPECT_FALSE(is_workbook("Software.xls\nx"));
}

TEST(FileFormat, TakesEveryByteOfTheCodePageForACharacter) {
  for (int byte = 1; byte < 256; ++byte) {
    const std::string character(1, static_cast<char>(byte));
    EXPECT_TRUE(is_workbook(character + "xls")) << byte;
    EXPECT_TRUE(is_workbook("Soft" + character + "ware.xls")) << byte;
    EXPECT_FALSE(is_workbook("Soft" + character + "ware.csv")) << byte;
  }
  EXPECT_TRUE(is_workbook("\xc4rger\xe4\x80\xff.xls"));
}

TEST(FileFormat, LooksAtTheEndOfALongName) {
  const std::string name(100'000, 'x');
  EXPECT_TRUE(is_workbook(name + "ls"));
  EXPECT_TRUE(is_workbook(name + ".xls"));
  EXPECT_FALSE(is_workbook(name));
  EXPECT_FALSE(is_workbook(name + "lsx"));
}

}  // namespace
