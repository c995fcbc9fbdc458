#include "trellis/xml_path.h"

#include <gtest/gtest.h>

#include <climits>

namespace Trellis {
namespace {

std::string shown(const XMLPath& path) {
  std::string text = path.absolute ? "/" : "";
  for (const XMLPathStep& step : path.steps) {
    text += '(' + step.name;
    if (step.index != -1) text += " #" + std::to_string(step.index);
    for (const auto& [name, value] : step.filter)
      text += ' ' + name + "=[" + value + ']';
    text += ')';
  }
  return text;
}

struct Row {
  const char* text;
  const char* expected;
};

void expect_rows(std::initializer_list<Row> rows) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(shown(XMLPath(row.text)), row.expected);
  }
}

TEST(XMLPath, HasAStepBetweenAnyTwoSlashes) {
  expect_rows({{"", ""},
               {"ui", "(ui)"},
               {"a/b/c", "(a)(b)(c)"},
               {"Web_Info/Download_URLs/Primary_Download_URL",
                "(Web_Info)(Download_URLs)(Primary_Download_URL)"},
               {"*", "(*)"}});
}

TEST(XMLPath, IsAbsoluteBehindALeadingSlash) {
  expect_rows({{"/", "/"}, {"/ui", "/(ui)"}, {"/a/b", "/(a)(b)"}});
}

TEST(XMLPath, EndsAtAnEmptyStep) {
  expect_rows({{"a//b", "(a)"}, {"a/", "(a)"}, {"//a", "/"}, {"a/b///c", "(a)(b)"}});
}

TEST(XMLPath, CountsItsIndexFromOne) {
  expect_rows({{"a[1]", "(a #0)"},
               {"a[2]/b[ \t12 ]", "(a #1)(b #11)"},
               {"a[3x]", "(a #2)"},
               {"[2]", "( #1)"}});
}

TEST(XMLPath, TakesTheIndexZeroAsNone) {
  expect_rows({{"a[0]", "(a)"}, {"a[000]", "(a)"}});
}

TEST(XMLPath, KeepsAnIndexThatIsTooGreatWithinItsType) {
  EXPECT_EQ(XMLPath("a[99999999999999999999]").steps.at(0).index, INT_MAX - 1);
  EXPECT_EQ(XMLPath("a[2147483647]").steps.at(0).index, INT_MAX - 1);
}

TEST(XMLPath, HasNoConditionWithoutBothBrackets) {
  expect_rows({{"a[2", "(a)"}, {"a[", "(a)"}, {"a[]", "(a)"}, {"a[@x='1'", "(a)"}, {"a]", "(a])"}});
}

TEST(XMLPath, FiltersByAttributes) {
  expect_rows({{"a[@x='1']", "(a x=[1])"},
               {"a[@x=\"it's\"]", "(a x=[it's])"},
               {"a[ @x='1' and @y='2']", "(a x=[1] y=[2])"},
               {"a[@x='1'AND @y='2']", "(a x=[1] y=[2])"},
               {"a[@x='1'@y='2']", "(a x=[1] y=[2])"},
               {"a[@x='1' and  @y='2']", "(a x=[1])"},
               {"a[@x='1' or @y='2']", "(a x=[1])"},
               {"a[@x='1' and @x='2']", "(a x=[2])"},
               {"a[@x='']", "(a x=[])"}});
}

TEST(XMLPath, TakesQuotesOffAFilterName) {
  expect_rows({{"a[@'x'='1']", "(a x=[1])"}, {"a[@\"x\"='1']", "(a x=[1])"}});
}

TEST(XMLPath, TakesWhateverOpensAValueAsItsQuote) {
  expect_rows({{"a[@x=|1| and @y='2']", "(a x=[|1|] y=[2])"}, {"a[@x=abca]", "(a x=[abca])"}});
}

TEST(XMLPath, TakesTheRestAsAValueThatIsNotClosed) {
  expect_rows({{"a[@x='1 and @y=2]", "(a x=[1 and @y=2])"}, {"a[@x=]", "(a x=[])"}});
}

TEST(XMLPath, IgnoresAFilterWithoutAnAssignment) {
  expect_rows({{"a[@x]", "(a)"}, {"a[@]", "(a)"}, {"a[@x='1' and @y]", "(a x=[1])"}});
}

TEST(XMLPath, IsSplitByASlashInsideAQuotedValue) {
  expect_rows({{"a[@x='1/2']/b", "(a)(2'])(b)"}});
}

}  // namespace
}  // namespace Trellis
