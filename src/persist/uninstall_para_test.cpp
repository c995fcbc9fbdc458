#include "persist/uninstall_para.h"

#include <gtest/gtest.h>

namespace {

UninstallPara filled() {
  UninstallPara para;
  para.searchText = "search";
  para.noPersist = true;
  para.noUpdate = true;
  para.colorBackground = false;
  para.windowPos = "1/2/3/4 - 5";
  para.langId = 12;
  para.cfgPath = "cfg";
  para.histPath = "hist";
  para.imageListPath = "list";
  para.imagePathsPath = "paths";
  return para;
}

void expect_filled(const UninstallPara& para) {
  EXPECT_STREQ(para.searchText.c_str(), "search");
  EXPECT_TRUE(para.noPersist);
  EXPECT_TRUE(para.noUpdate);
  EXPECT_FALSE(para.colorBackground);
  EXPECT_STREQ(para.windowPos.c_str(), "1/2/3/4 - 5");
  EXPECT_EQ(para.langId, 12);
  EXPECT_STREQ(para.cfgPath.c_str(), "cfg");
  EXPECT_STREQ(para.histPath.c_str(), "hist");
  EXPECT_STREQ(para.imageListPath.c_str(), "list");
  EXPECT_STREQ(para.imagePathsPath.c_str(), "paths");
}

TEST(UninstallPara, CopiesAreWholeAndIndependent) {
  const UninstallPara original = filled();
  UninstallPara copy(original);
  expect_filled(copy);
  copy.windowPos = "";
  copy.searchText.append(" more");
  copy.langId = 7;
  expect_filled(original);
}

TEST(UninstallPara, IsAssignedWhole) {
  UninstallPara assigned;
  assigned = filled();
  expect_filled(assigned);
}

}  // namespace
