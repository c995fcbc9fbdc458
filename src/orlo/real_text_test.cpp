#include "orlo/real_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ORLO {
namespace {

TEST(RealText, PrintsAsTheTargetsRuntimeDoes) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const double not_a_number = std::numeric_limits<double>::quiet_NaN();
  const double indefinite = std::copysign(not_a_number, -1.0);
  struct Row {
    char conversion;
    int precision;
    double value;
    const char* text;
  };
  const Row rows[] = {
      // Ties go away from zero.
      {'f', 2, 0.125, "0.13"},
      {'f', 2, 0.375, "0.38"},
      {'f', 2, -0.125, "-0.13"},
      {'f', 0, 0.5, "1"},
      {'f', 0, 1.5, "2"},
      {'f', 0, 2.5, "3"},
      {'f', 0, -2.5, "-3"},
      {'f', 1, 0.25, "0.3"},
      {'f', 1, 0.75, "0.8"},
      {'e', 0, 2.5, "3e+000"},
      {'g', 1, 2.5, "3"},
      {'f', 3, 1.0005, "1.000"},  // lies below the tie
      {'f', 2, 1.005, "1.00"},
      // Carries.
      {'f', 0, 9.5, "10"},
      {'f', 1, 9.96, "10.0"},
      {'f', 2, 99.999, "100.00"},
      {'e', 1, 9.96, "1.0e+001"},
      {'g', 2, 9.96, "10"},
      {'g', 2, 99.6, "1e+002"},
      {'f', 0, 0.4, "0"},
      {'f', 0, 0.04, "0"},
      {'f', 1, 0.05, "0.1"},
      {'f', 1, 0.04, "0.0"},
      {'f', 2, 0.005, "0.01"},
      // Plain numbers.
      {'f', 6, 0.0, "0.000000"},
      {'f', 0, 0.0, "0"},
      {'f', 1, -0.0, "-0.0"},
      {'f', 2, 1234.5, "1234.50"},
      {'f', 0, 1e22, "10000000000000000000000"},
      {'f', 2, 1e-10, "0.00"},
      {'f', 12, 1e-10, "0.000000000100"},
      {'f', 1, 123456789.0, "123456789.0"},
      {'f', 4, 0.00012, "0.0001"},
      // Exponents have three digits.
      {'e', 1, 1500.0, "1.5e+003"},
      {'e', 6, 0.0, "0.000000e+000"},
      {'e', 0, 0.0, "0e+000"},
      {'e', 3, 1e-5, "1.000e-005"},
      {'E', 2, 1e100, "1.00E+100"},
      {'e', 2, -1e-300, "-1.00e-300"},
      {'e', 0, 5e-324, "5e-324"},
      {'e', 16, 0.1, "1.0000000000000001e-001"},
      // The shorter form.
      {'g', 6, 0.0, "0"},
      {'g', 6, 100000.0, "100000"},
      {'g', 6, 1e6, "1e+006"},
      {'g', 6, 1234567.0, "1.23457e+006"},
      {'g', 6, 0.0001, "0.0001"},
      {'g', 6, 0.00012345678, "0.000123457"},
      {'g', 6, 0.00001, "1e-005"},
      {'G', 6, 0.00001, "1E-005"},
      {'g', 6, 999999.5, "1e+006"},
      {'g', 6, 1.5, "1.5"},
      {'g', 0, 1.5, "2"},
      {'g', 0, 0.00001, "1e-005"},
      {'g', 17, 0.1, "0.10000000000000001"},
      {'g', 3, 100.0, "100"},
      {'g', 3, 1e10, "1e+010"},
      // What is no number, cut and even rounded like digits.
      {'f', 6, kInfinity, "1.#INF00"},
      {'f', 6, -kInfinity, "-1.#INF00"},
      {'f', 4, kInfinity, "1.#INF"},
      {'f', 3, kInfinity, "1.#IO"},
      {'f', 2, kInfinity, "1.#J"},
      {'f', 1, kInfinity, "1.$"},
      {'f', 0, kInfinity, "1"},
      {'e', 6, kInfinity, "1.#INF00e+000"},
      {'g', 6, kInfinity, "1.#INF"},
      {'f', 6, not_a_number, "1.#QNAN0"},
      {'f', 6, indefinite, "-1.#IND00"},
      {'g', 6, indefinite, "-1.#IND"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message()
                 << "%." << row.precision << row.conversion << " of " << row.value);
    EXPECT_EQ(real_text(row.conversion, row.precision, row.value), row.text);
  }
}

TEST(RealText, TakesLongPrecisions) {
  EXPECT_EQ(real_text('f', 600, 1.5), "1.5" + std::string(599, '0'));
  EXPECT_EQ(real_text('e', 600, 1.5), "1.5" + std::string(599, '0') + "e+000");
  EXPECT_EQ(real_text('g', 600, 1.5), "1.5");
}

}  // namespace
}  // namespace ORLO
