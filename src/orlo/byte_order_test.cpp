#include "orlo/byte_order.h"

#include <gtest/gtest.h>

namespace {

using ORLO::ByteOrder;
using ORLO::compare_bytes;
using ORLO::String;

TEST(ByteOrder, IsThatOfUnsignedBytes) {
  const ByteOrder less;
  EXPECT_TRUE(less("a", "b"));
  EXPECT_TRUE(less("Z", "a"));
  EXPECT_TRUE(less("a", "\xE4"));
  EXPECT_FALSE(less("\xE4", "a"));
  EXPECT_FALSE(less("a", "a"));
}

TEST(ByteOrder, PutsWhatATextBeginsWithBeforeIt) {
  const ByteOrder less;
  EXPECT_TRUE(less("", "a"));
  EXPECT_TRUE(less("a", "ab"));
  EXPECT_FALSE(less("ab", "a"));
  EXPECT_FALSE(less("", ""));
}

TEST(ByteOrder, LooksBeyondANul) {
  const String a("x", 1, "\0a", 2);
  const String b("x", 1, "\0b", 2);
  EXPECT_EQ(compare_bytes(a, b), -1);
  EXPECT_EQ(compare_bytes(b, a), 1);
  EXPECT_EQ(compare_bytes(a, a), 0);
}

}  // namespace
