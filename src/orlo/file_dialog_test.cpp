#include "orlo/file_dialog.h"

#include <gtest/gtest.h>

#include <string>

namespace ORLO {
namespace {

/// All bytes up to and with the terminator behind the text.
std::string whole(const String& text) {
  return {text.c_str(), text.length() + 1};
}

TEST(SystemFilter, EachBarBecomesATerminatorAndTwoEndTheText) {
  using namespace std::string_literals;
  const struct {
    const char* filter;
    std::string expected;
  } rows[] = {
      {"Sheet (*.xls)|*.xls|CSV (*.csv)|*.csv|", "Sheet (*.xls)\0*.xls\0CSV (*.csv)\0*.csv\0\0"s},
      {"All|*.*", "All\0*.*\0\0"s},
      {"All|*.*||", "All\0*.*\0\0\0"s},
      {"|", "\0\0"s},
      {"", "\0\0"s},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.filter);
    EXPECT_EQ(whole(system_filter(row.filter)), row.expected);
  }
}

TEST(SystemFilter, WorksOnACopy) {
  const String filter("All|*.*|");
  // Shares its block.
  const String other = filter;  // NOLINT(performance-unnecessary-copy-initialization)
  system_filter(filter);
  EXPECT_STREQ(filter.c_str(), "All|*.*|");
  EXPECT_STREQ(other.c_str(), "All|*.*|");
}

}  // namespace
}  // namespace ORLO
