#include "orlo/ascii.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using ORLO::ascii_lower;
using ORLO::equal_nocase;

TEST(Ascii, LowersTheLettersFromAToZAndNothingElse) {
  const std::string letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  const std::string lower = "abcdefghijklmnopqrstuvwxyz";
  for (int code = -128; code < 128; ++code) {
    const char c = static_cast<char>(code);
    const size_t place = letters.find(c);
    EXPECT_EQ(ascii_lower(c), place != letters.npos ? lower[place] : c) << code;
  }
}

TEST(Ascii, LowersATextOfWhichOthersHaveCopies) {
  const String text(std::string("{AZ}\0\xC4[@", 8));
  const std::vector<String> copies(2, text);
  const String lower = ascii_lower(copies[0]);
  EXPECT_EQ(std::string(lower.c_str(), lower.length()), std::string("{az}\0\xC4[@", 8));
  for (const String& copy : copies)
    EXPECT_EQ(std::string(copy.c_str(), copy.length()), std::string(text.c_str(), text.length()));
  EXPECT_TRUE(ascii_lower(String()).empty());
}

TEST(Ascii, ComparesWithoutRegardToTheCaseOfItsLetters) {
  const struct {
    std::string_view a;
    std::string_view b;
    bool equal;
  } cases[] = {
      {"", "", true},
      {"AZaz", "azAZ", true},
      {"a", "", false},
      {"", "a", false},
      {"ab", "a", false},
      {"a", "ab", false},
      {"ab", "aC", false},
      {"bb", "Cb", false},
      {"@[", "`{", false},
      {"\xC4", "\xE4", false},
      {{"a\0b", 3}, {"A\0B", 3}, true},
      {{"a\0b", 3}, {"A\0C", 3}, false},
  };
  for (const auto& [a, b, equal] : cases) {
    const std::string first(a);
    const std::string second(b);
    SCOPED_TRACE(String::formatted("%s|%s", first, second).c_str());
    EXPECT_EQ(equal_nocase(a, b), equal);
    EXPECT_EQ(equal_nocase(String(first), String(second)), equal);
  }
}

}  // namespace
