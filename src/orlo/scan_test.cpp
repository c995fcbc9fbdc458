#include "orlo/scan.h"

#include <gtest/gtest.h>

namespace ORLO {
namespace {

TEST(Scan, FillsNumbers) {
  struct Row {
    const char* text;
    const char* pattern;
    int filled;
    int a;
    int b;
    int c;
  };
  constexpr int kUntouched = 77;
  const Row rows[] = {
      {"1.2.3", "%d.%d.%d", 3, 1, 2, 3},
      {"1. 2.\t3", "%d.%d.%d", 3, 1, 2, 3},
      {"1 .2", "%d.%d", 1, 1, kUntouched, kUntouched},
      {"  12", "%d", 1, 12, kUntouched, kUntouched},
      {"+5-6", "%d%d", 2, 5, -6, kUntouched},
      {"- 5", "%d", 0, kUntouched, kUntouched, kUntouched},
      {"--5", "%d", 0, kUntouched, kUntouched, kUntouched},
      {"x", "%d", 0, kUntouched, kUntouched, kUntouched},
      {"", "%d", -1, kUntouched, kUntouched, kUntouched},
      {"   ", "%d", -1, kUntouched, kUntouched, kUntouched},
      {"+", "%d", -1, kUntouched, kUntouched, kUntouched},
      {"5", "%d %d", 1, 5, kUntouched, kUntouched},
      {"5x", "%d", 1, 5, kUntouched, kUntouched},
      {"0x10", "%d", 1, 0, kUntouched, kUntouched},
      {"010", "%d", 1, 10, kUntouched, kUntouched},
      {"20090105", "%4d%2d%2d", 3, 2009, 1, 5},
      {"2009 1 5", "%4d%2d%2d", 3, 2009, 1, 5},
      {"-0030", "%03d%02d", 2, 0, 30, kUntouched},
      {"+0100", "%03d%02d", 2, 1, 0, kUntouched},
      {"0100", "%03d%02d", 2, 10, 0, kUntouched},
      {"+", "%1d", -1, kUntouched, kUntouched, kUntouched},
      {"+5", "%1d", 0, kUntouched, kUntouched, kUntouched},
      {"12:34", "%d:%d", 2, 12, 34, kUntouched},
      {"12 34", "%d:%d", 1, 12, kUntouched, kUntouched},
      {"4294967297", "%d", 1, 1, kUntouched, kUntouched},
      {"-4294967297", "%d", 1, -1, kUntouched, kUntouched},
      {"2147483648", "%d", 1, -2147483647 - 1, kUntouched, kUntouched},
      {"18446744073709551617", "%d", 1, 1, kUntouched, kUntouched},
      {"\xa0"
       "5",
       "%d", 0, kUntouched, kUntouched, kUntouched},
      {"1\v\f\r\n2", "%d %d", 2, 1, 2, kUntouched},
      {"12", "%d%d", 1, 12, kUntouched, kUntouched},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << '"' << row.text << "\" by " << row.pattern);
    int a = kUntouched;
    int b = kUntouched;
    int c = kUntouched;
    EXPECT_EQ(scan(row.text, row.pattern, {a, b, c}), row.filled);
    EXPECT_EQ(a, row.a);
    EXPECT_EQ(b, row.b);
    EXPECT_EQ(c, row.c);
  }
}

TEST(Scan, FillsTextsUpToTheirWidth) {
  struct Row {
    const char* text;
    const char* pattern;
    int filled;
    const char* a;
    const char* b;
  };
  const Row rows[] = {
      {"abcdef", "%3s%5s", 2, "abc", "def"},
      {"abcdef", "%3s %5s", 2, "abc", "def"},
      {"  ab cd", "%3s %5s", 2, "ab", "cd"},
      {"a", "%3s %5s", 1, "a", "@"},
      {"", "%3s", -1, "@", "@"},
      {"  ", "%3s", -1, "@", "@"},
      {"ab:c", "%2s:%1s", 2, "ab", "c"},
      {"abc", "%2s:%1s", 1, "ab", "@"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << '"' << row.text << "\" by " << row.pattern);
    char a[8] = "@";
    char b[8] = "@";
    EXPECT_EQ(scan(row.text, row.pattern, {a, b}), row.filled);
    EXPECT_STREQ(a, row.a);
    EXPECT_STREQ(b, row.b);
  }
}

TEST(Scan, ATextNeverOutgrowsItsField) {
  char small[4] = "";
  EXPECT_EQ(scan("abcdef", "%s", {small}), 1);
  EXPECT_STREQ(small, "abc");
  EXPECT_EQ(scan("uvwxyz", "%99s", {small}), 1);
  EXPECT_STREQ(small, "uvw");
}

TEST(Scan, LiteralsMustMatch) {
  int number = 0;
  EXPECT_EQ(scan("x5", "x%d", {number}), 1);
  EXPECT_EQ(number, 5);
  EXPECT_EQ(scan("X6", "x%d", {number}), 0);
  EXPECT_EQ(scan("", "x%d", {number}), -1);
  EXPECT_EQ(number, 5);
}

TEST(Scan, AFieldOfTheWrongKindEndsTheScan) {
  int number = 0;
  char text[4] = "";
  EXPECT_EQ(scan("abc", "%s", {number}), 0);
  EXPECT_EQ(scan("5", "%d", {text}), 1);
  EXPECT_EQ(scan("5 6", "%d %d", {number}), 1);
}

}  // namespace
}  // namespace ORLO
