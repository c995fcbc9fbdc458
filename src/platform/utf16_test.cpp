#include "platform/utf16.h"

#include <gtest/gtest.h>

TEST(Utf16, ComesFromUtf8AndGoesBack) {
  const struct {
    std::string utf8;
    std::u16string utf16;
  } rows[] = {
      {"", u""},
      {"abc", u"abc"},
      {std::string("a\0b", 3), std::u16string(u"a\0b", 3)},
      {"\x7F\xC2\x80\xDF\xBF", u"\u007F\u0080\u07FF"},
      {"\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", u"\u0800\uD7FF\uE000\uFFFF"},
      {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\U00010000\U0010FFFF"},
      {"QQ\xE6\xB8\xB8\xE6\x88\x8F", u"QQ\u6E38\u620F"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.utf8);
    EXPECT_EQ(utf16_from_utf8(row.utf8), row.utf16);
    EXPECT_EQ(utf8_from_utf16(row.utf16), row.utf8);
  }
}

TEST(Utf16, ReplacesEachByteThatIsNoUtf8) {
  const struct {
    const char* what;
    std::string utf8;
    std::u16string utf16;
  } rows[] = {
      {"a code page's letter", "a\xE4z", u"a\uFFFDz"},
      {"a tail alone", "\x80", u"\uFFFD"},
      {"cut short", "\xE2\x82", u"\uFFFD\uFFFD"},
      {"cut short by a letter", "\xE2\x82z", u"\uFFFD\uFFFDz"},
      {"too long a form", "\xC0\x80", u"\uFFFD\uFFFD"},
      {"too long a form of three", "\xE0\x9F\xBF", u"\uFFFD\uFFFD\uFFFD"},
      {"a surrogate", "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
      {"beyond the last", "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"no lead at all", "\xFF\xFE", u"\uFFFD\uFFFD"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    EXPECT_EQ(utf16_from_utf8(row.utf8), row.utf16);
  }
}

TEST(Utf16, ReplacesLoneSurrogatesInUtf8) {
  const char16_t high[] = {0xD83D, u'a', 0};
  const char16_t swapped[] = {0xDE00, 0xD83D, 0};
  EXPECT_EQ(utf8_from_utf16(high),
            "\xEF\xBF\xBD"
            "a");
  EXPECT_EQ(utf8_from_utf16(swapped), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(Utf16, TakesBytesInPairs) {
  EXPECT_EQ(utf16_from_bytes(std::string("a\0\xE4\x20", 4)), u"a\u20E4");
  EXPECT_EQ(utf16_from_bytes(std::string("a\0b", 3)), u"a");
  EXPECT_EQ(utf16_from_bytes("a"), u"");
  EXPECT_EQ(bytes_from_utf16(u"a\u20E4"), std::string("a\0\xE4\x20", 4));
}

TEST(Utf16, RaisesTheCaseOfLetters) {
  const struct {
    std::u16string_view lower;
    std::u16string_view upper;
  } rows[] = {
      {u"az{`09_", u"AZ{`09_"},
      {u"\u00E0\u00F6\u00F8\u00FE", u"\u00C0\u00D6\u00D8\u00DE"},
      {u"\u00F7\u00DF\u00B5", u"\u00F7\u00DF\u00B5"},
      {u"\u00FF\u0161\u017E\u0153", u"\u0178\u0160\u017D\u0152"},
      {u"\u0101\u0100\u012F\u0137\u0138\u0148\u0149",
       u"\u0100\u0100\u012E\u0136\u0138\u0147\u0149"},
      {u"\u03AC\u03AF\u03B1\u03C9\u03CC\u03CE", u"\u0386\u038A\u0391\u03A9\u038C\u038F"},
      {u"\u0430\u044F\u0451\u045F\u0491", u"\u0410\u042F\u0401\u040F\u0490"},
      {u"\u0561\u0586\u1E01\uFF41\u4E00", u"\u0531\u0556\u1E00\uFF21\u4E00"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(utf8_from_utf16(row.lower));
    EXPECT_EQ(upcase(row.lower), row.upper);
    EXPECT_EQ(upcase(row.upper), row.upper);
  }
}
