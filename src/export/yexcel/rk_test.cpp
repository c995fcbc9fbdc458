#include "export/yexcel/rk.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using YExcel::is_exact;
using YExcel::rk_value;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(RK, OfTheInteger5Is22) {
  EXPECT_EQ(rk_value(5), 22u);
}

TEST(RK, OfAnIntegerLosesItsTwoHighestBits) {
  EXPECT_EQ(rk_value(0), 2u);
  EXPECT_EQ(rk_value(-1), 0xFFFFFFFEu);
  EXPECT_EQ(rk_value(0x1FFFFFFF), 0x7FFFFFFEu);
  EXPECT_EQ(rk_value(0x20000000), 0x80000002u);
  EXPECT_EQ(rk_value(0x40000000), 2u);
  EXPECT_EQ(rk_value(std::numeric_limits<int32_t>::max()), 0xFFFFFFFEu);
  EXPECT_EQ(rk_value(std::numeric_limits<int32_t>::min()), 2u);
}

TEST(RK, Of1Point5IsThatOf150WithTheFlag) {
  EXPECT_TRUE(is_exact(1.5));
  EXPECT_EQ(rk_value(1.5), 0x4062C001u);  // 150.0 is 0x4062C000'00000000
}

TEST(RK, Of2Point0HasNoFlag) {
  EXPECT_TRUE(is_exact(2.0));
  EXPECT_EQ(rk_value(2.0), 0x40000000u);
}

TEST(RK, HasNoRoomForAThousandth) {
  EXPECT_FALSE(is_exact(0.123));
}

TEST(RK, TakesNegativeNumbersAndZero) {
  EXPECT_TRUE(is_exact(0.0));
  EXPECT_EQ(rk_value(0.0), 0u);
  EXPECT_EQ(rk_value(-0.0), 0x80000000u);
  EXPECT_TRUE(is_exact(-1.5));
  EXPECT_EQ(rk_value(-1.5), 0xC062C001u);
  EXPECT_FALSE(is_exact(-0.123));
}

TEST(RK, IsCutWhereANumberHasMoreDigits) {
  // 1048577.0 is 0x41300001'00000000, whose last bit of the high half is lost.
  EXPECT_TRUE(is_exact(1048577.0));
  EXPECT_EQ(rk_value(1048577.0), 0x41300000u);
  EXPECT_EQ(rk_value(1048578.0), 0x41300000u);
  EXPECT_EQ(rk_value(1048580.0), 0x41300004u);
}

TEST(RK, HasRoomForTwoDigitsAfterThePoint) {
  EXPECT_TRUE(is_exact(0.25));
  EXPECT_EQ(rk_value(0.25), 0x40390001u);  // 25.0 is 0x40390000'00000000
  EXPECT_FALSE(is_exact(0.125));
}

TEST(RK, OverlooksWhatIsLessThanATenthOfAThousandth) {
  // 1.00001 is 0x3FF0000A'7C5AC472. It counts as whole, and is not multiplied.
  EXPECT_TRUE(is_exact(1.00001));
  EXPECT_EQ(rk_value(1.00001), 0x3FF00008u);
}

TEST(RK, ComparesTheLow32BitsOfLargeNumbers) {
  // A hundred times 30,000,000 doesn't fit in 32 bits; both sides wrap alike.
  EXPECT_TRUE(is_exact(300000.0));
  EXPECT_EQ(rk_value(300000.0), 0x41124F80u);
  EXPECT_TRUE(is_exact(50000000.0));
  EXPECT_EQ(rk_value(50000000.0), 0x4187D784u);  // whole, though a hundred times it wraps
  EXPECT_FALSE(is_exact(300000.123));
  EXPECT_TRUE(is_exact(1e14));
  EXPECT_TRUE(is_exact(5e14));  // 10,000 times it is above 2 to the 62nd
  EXPECT_TRUE(is_exact(-5e14));
  // Only the low bits of a tenth of a thousandth count.
  EXPECT_TRUE(is_exact(4294967296.0 * 65536));
}

TEST(RK, IsNotForWhatNoIntegerHolds) {
  EXPECT_FALSE(is_exact(std::nan("")));
  EXPECT_FALSE(is_exact(kInfinity));
  EXPECT_FALSE(is_exact(-kInfinity));
  EXPECT_FALSE(is_exact(1e15));
  EXPECT_FALSE(is_exact(-1e15));
  EXPECT_FALSE(is_exact(std::ldexp(1.0, 60)));  // nor does an integer hold 100 times it
  EXPECT_FALSE(is_exact(-std::ldexp(1.0, 60)));
  EXPECT_FALSE(is_exact(1e300));
  EXPECT_FALSE(is_exact(std::numeric_limits<double>::max()));
  EXPECT_TRUE(is_exact(std::numeric_limits<double>::denorm_min()));
}

TEST(RK, IsDefinedForAllNumbers) {
  // Nobody writes these in the short form; none may do harm.
  for (const double value : {std::nan(""), kInfinity, -kInfinity, 1e300, -1e15, std::ldexp(1.0, 63),
                             -std::ldexp(1.0, 63)})
    rk_value(value);
}

}  // namespace
