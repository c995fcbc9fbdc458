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

}  // namespace
}  // namespace ORLO
