#include "orlo/wildcard.h"

#include <gtest/gtest.h>

#include <string>

namespace ORLO {
namespace {

struct Row {
  const char* text;
  const char* pattern;
  bool matches;
};

/// Counts through all words of the letters.
std::string nth_word(size_t n, const std::string& letters) {
  std::string word;
  for (; n != 0; n = (n - 1) / letters.size())
    word += letters[(n - 1) % letters.size()];
  return word;
}

TEST(Wildcard, MatchesByTheRules) {
  const Row rows[] = {
      {"", "", true},
      {"", "*", true},
      {"", "***", true},
      {"", "?", false},
      {"", "a", false},
      {"", "*a", false},
      {"", "*?", false},
      {"a", "", false},
      {"a", "a", true},
      {"a", "A", false},
      {"a", "?", true},
      {"a", "??", false},
      {"a", "*", true},
      {"a", "**", true},
      {"a", "a*", true},
      {"a", "*a", true},
      {"a", "*a*", true},
      {"a", "?*", true},
      {"a", "*?", true},
      {"a", "*??", false},
      {"a", "b*", false},
      {"abc", "a*c", true},
      {"abc", "*b*", true},
      {"abc", "ab", false},
      {"abc", "abcd", false},
      {"abc", "*", true},
      {"abc", "a?c", true},
      {"abc", "a??c", false},
      {"abc", "***c", true},
      {"abc", "*d", false},
      {"abc", "a*d", false},
      {"abc", "*ab*bc", false},
      {"abcbc", "a*bc", true},
      {"abcbcd", "a*bc", false},
      {"aab", "*ab", true},
      {"abab", "*ab", true},
      {"ababab", "*ab*ab", true},
      {"aaaa", "a*a*a*a", true},
      {"aaa", "a*a*a*a", false},
      {"mississippi", "m*iss*ip*", true},
      {"mississippi", "*issi?pi", true},
      {"mississippi", "*issi?ppi", false},
      {"a*c", "a*c", true},
      {"a?c", "a?c", true},
      {"\xe4", "\xe4", true},
      {"\xe4", "\xc4", false},
      {"\xe4 b", "\xe4*b", true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.text) + " against " + row.pattern);
    EXPECT_EQ(match_wildcard(row.text, row.pattern), row.matches);
  }
}

TEST(Wildcard, WithoutCaseFoldsTheLettersOfAsciiAlone) {
  const Row rows[] = {
      {"", "", true},
      {"ABC", "abc", true},
      {"abc", "A*C", true},
      {"aBc", "AbC", true},
      {"[", "{", false},
      {"@", "`", false},
      {"\xc4", "\xe4", false},
      {"\xc4"
       "a",
       "\xc4"
       "A",
       true},
      {"abc", "A?D", false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.text) + " against " + row.pattern);
    EXPECT_EQ(match_wildcard_nocase(row.text, row.pattern), row.matches);
    EXPECT_EQ(FoldedPattern(row.pattern).matches(row.text), row.matches);
  }
}

TEST(Wildcard, FoldedPatternAgreesOnAllShortTextsAndPatterns) {
  for (size_t p = 0; p < 400; ++p) {
    const std::string pattern = nth_word(p, "aB*?");
    const FoldedPattern folded{String(pattern)};
    for (size_t t = 0; t < 127; ++t) {
      const std::string text = nth_word(t, "Ab");
      ASSERT_EQ(folded.matches(String(text)), match_wildcard_nocase(text, pattern))
          << text << " against " << pattern;
    }
  }
}

TEST(Wildcard, FoldedPatternReadsNoFurtherThanTheFirstNul) {
  const String text("ab\0cd", 5, "", 0);
  EXPECT_FALSE(FoldedPattern("*cd*").matches(text));
  EXPECT_TRUE(FoldedPattern("*B*").matches(text));
}

TEST(Wildcard, WithoutCaseLeavesTheCallersTextsAlone) {
  const String text("ABC");
  const String pattern("A*");
  EXPECT_TRUE(match_wildcard_nocase(text, pattern));
  EXPECT_STREQ(text.c_str(), "ABC");
  EXPECT_STREQ(pattern.c_str(), "A*");
}

TEST(Wildcard, ManyStarsAgainstALongTextEndSoon) {
  const std::string text(10000, 'a');
  EXPECT_FALSE(match_wildcard(text.c_str(), "*a*a*a*a*a*b"));
  EXPECT_FALSE(match_wildcard(text.c_str(), "*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*ab"));
  EXPECT_TRUE(match_wildcard(text.c_str(), "*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a"));
  const std::string half = "*" + text.substr(0, 100) + "b*";
  EXPECT_FALSE(match_wildcard(text.c_str(), half.c_str()));
}

/// The rules word by word, for short texts.
bool matches_by_recursion(const char* text, const char* pattern) {
  if (*pattern == '*') {
    return matches_by_recursion(text, pattern + 1) ||
           (*text != '\0' && matches_by_recursion(text + 1, pattern));
  }
  if (*text == '\0' || *pattern == '\0') return *text == *pattern;
  return (*pattern == '?' || *pattern == *text) && matches_by_recursion(text + 1, pattern + 1);
}

TEST(Wildcard, AgreesWithTheRulesOnAllShortTexts) {
  for (size_t t = 0; t < 127; ++t) {
    const std::string text = nth_word(t, "ab");
    for (size_t p = 0; p < 1365; ++p) {
      const std::string pattern = nth_word(p, "ab*?");
      ASSERT_EQ(match_wildcard(text.c_str(), pattern.c_str()),
                matches_by_recursion(text.c_str(), pattern.c_str()))
          << text << " against " << pattern;
    }
  }
}

}  // namespace
}  // namespace ORLO
