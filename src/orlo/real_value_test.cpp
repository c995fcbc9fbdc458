#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "orlo/real_text.h"

namespace ORLO {
namespace {

TEST(RealValue, ReadsTheNumberThatATextBeginsWith) {
  const struct {
    const char* text;
    double value;
  } rows[] = {{"0", 0},          {"1.5", 1.5}, {" \t\r\n-2.25", -2.25}, {"+3", 3},
              {".5", 0.5},       {"1.", 1},    {"12abc", 12},           {"1e3", 1000},
              {"1.5E-2x", .015}, {"1e", 1},    {"-0.1", -0.1},          {"1,5", 1}};
  for (const auto& row : rows)
    EXPECT_EQ(real_value(row.text), row.value) << row.text;
}

TEST(RealValue, IsZeroWithoutANumber) {
  for (const char* text : {"", " ", "-", "+", ".", "-.", "e5", "inf", "-nan", "--1", "+-1", "x1"})
    EXPECT_EQ(real_value(text), 0) << text;
}

TEST(RealValue, IsInfiniteOrZeroBeyondItsRange) {
  EXPECT_EQ(real_value("1e400"), HUGE_VAL);
  EXPECT_EQ(real_value("-1e400"), -HUGE_VAL);
  EXPECT_EQ(real_value(std::string(400, '9').c_str()), HUGE_VAL);
  EXPECT_EQ(real_value("1e-400"), 0);
}

TEST(RealValue, TellsTooLargeFromTooSmallByAllItsDigits) {
  const std::string zeros(400, '0');
  for (const std::string& large :
       {"1" + zeros, "1" + zeros + "e-5", "0.1e+9" + zeros, "12" + zeros + ".5x"})
    EXPECT_EQ(real_value(large.c_str()), HUGE_VAL) << large;
  for (const std::string& small :
       {"0." + zeros + "1", "." + zeros + "1e+5", "1e-9" + zeros, zeros + ".1e-400"})
    EXPECT_EQ(real_value(small.c_str()), 0) << small;
  EXPECT_EQ(real_value(("1" + zeros + "e-400").c_str()), 1);
}

}  // namespace
}  // namespace ORLO
