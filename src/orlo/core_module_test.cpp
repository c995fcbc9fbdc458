#include "orlo/core_module.h"

#include <gtest/gtest.h>

#include "orlo/core_module_test_support.h"

namespace ORLO {
namespace {

TEST(CoreModule, IsLoadedAnewForEachUseAndReleasedStraightAfter) {
  TestCoreModule module;
  module.strings = {{256, "text"}};
  for (const int use : {1, 2, 3}) {
    EXPECT_STREQ(core_string(256, "built in").c_str(), "text");
    EXPECT_EQ(module.loads, use);
    EXPECT_EQ(module.open_uses, 0);
  }
}

TEST(CoreModule, IsNotLookedForAgainOnceItWasMissing) {
  TestCoreModule module;
  module.present = false;
  EXPECT_EQ(core_module(), nullptr);
  module.present = true;
  module.strings = {{256, "text"}};
  EXPECT_EQ(core_module(), nullptr);
  EXPECT_STREQ(core_string(256, "built in").c_str(), "built in");
  EXPECT_EQ(module.loads, 1);
}

TEST(CoreModule, LacksAStringThenTheBuiltInOneStands) {
  const TestCoreModule module;
  EXPECT_STREQ(core_string(280, "built in").c_str(), "built in");
}

TEST(CoreModule, IsFoundMissingByThePlatformWhereThereIsNone) {
  set_core_module_loader({});
  EXPECT_EQ(core_module(), nullptr);
}

std::u16string entry(const std::u16string& block, unsigned index) {
  return string_block_entry(block.data(), block.size(), index);
}

TEST(StringBlock, HoldsCountedTextsOneBehindTheOther) {
  std::u16string block = u"_ab__xyz";
  block[0] = 2;
  block[3] = 0;
  block[4] = 3;
  EXPECT_EQ(entry(block, 0), u"ab");
  EXPECT_EQ(entry(block, 1), u"");
  EXPECT_EQ(entry(block, 2), u"xyz");
  EXPECT_EQ(entry(block, 3), u"");
}

TEST(StringBlock, ThatEndsInsideATextHasNoSuchEntry) {
  std::u16string block = u"_ab_xy";
  block[0] = 2;
  block[3] = 3;
  EXPECT_EQ(entry(block, 0), u"ab");
  EXPECT_EQ(entry(block, 1), u"");
  EXPECT_EQ(entry(u"", 0), u"");
  EXPECT_EQ(entry(u"\xffff", 0), u"");
}

}  // namespace
}  // namespace ORLO
