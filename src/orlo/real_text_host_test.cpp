#include <gtest/gtest.h>

#include "orlo/real_text.h"

namespace ORLO {
namespace {

// Where the platform is emulated, other emulations of it print more digits.
TEST(RealText, FillsWithZerosBehindTheSeventeenthDigit) {
  EXPECT_EQ(real_text('f', 20, 0.1), "0.10000000000000001000");
  EXPECT_EQ(real_text('f', 0, 1208925819614629174706176.0), "1208925819614629200000000");
  EXPECT_EQ(real_text('e', 20, 0.1), "1.00000000000000010000e-001");
}

}  // namespace
}  // namespace ORLO
