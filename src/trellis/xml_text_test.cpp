#include "trellis/xml_text.h"

#include <gtest/gtest.h>

namespace Trellis {
namespace {

struct Row {
  std::string text;
  std::string expected;
};

TEST(EncodeXmlText, EscapesTheFiveMarks) {
  EXPECT_EQ(encode_xml_text("a&b<c>d\"e'f", false), "a&amp;b&lt;c&gt;d&quot;e&apos;f");
}

TEST(EncodeXmlText, WritesControlCharactersAsNumbersButForTabAndLineEnds) {
  for (int c = 0; c < 0x20; ++c) {
    SCOPED_TRACE(c);
    const std::string text(1, static_cast<char>(c));
    const bool plain = c == 9 || c == 10 || c == 13;
    EXPECT_EQ(encode_xml_text(text, false), plain ? text : "&#" + std::to_string(c) + ";");
  }
  EXPECT_EQ(encode_xml_text("\x7F", false), "\x7F");
}

TEST(EncodeXmlText, BecomesUtf8) {
  EXPECT_EQ(encode_xml_text("\xE4<\x80", false), "\xC3\xA4&lt;\xE2\x82\xAC");
}

TEST(EncodeXmlText, EscapesNothingInACdataSection) {
  EXPECT_EQ(encode_xml_text("a&<\x07\xE4]]>", true), "<![CDATA[a&<\x07\xC3\xA4]]>]]>");
  EXPECT_EQ(encode_xml_text("", true), "<![CDATA[]]>");
}

TEST(EncodeXmlText, IsTheSameForTextsOfAnyLength) {
  for (const size_t length :
       {size_t{0}, size_t{1}, size_t{2047}, size_t{2048}, size_t{2049}, size_t{100000}}) {
    SCOPED_TRACE(length);
    std::string expected;
    for (size_t i = 0; i < length; ++i)
      expected += "&lt;";
    EXPECT_EQ(encode_xml_text(std::string(length, '<'), false), expected);
    EXPECT_EQ(encode_xml_text(std::string(length, 'x'), false), std::string(length, 'x'));
    EXPECT_EQ(encode_xml_text(std::string(length, '\xE4'), false).size(), 2 * length);
  }
}

TEST(DecodeXmlText, KnowsTheFiveEntitiesInAnyCase) {
  EXPECT_EQ(decode_xml_text("a&amp;b&lt;c&gt;d&quot;e&apos;f"), "a&b<c>d\"e'f");
  EXPECT_EQ(decode_xml_text("&AMP;&Lt;&gT;&QUOT;&aPos;"), "&<>\"'");
}

TEST(DecodeXmlText, CopiesAnyOtherAmpersand) {
  for (const char* const text : {"&", "&&", "&amp", "&nbsp;", "&#7;", "&#x41;", "& amp;", "a&l"}) {
    EXPECT_EQ(decode_xml_text(text), text);
  }
  EXPECT_EQ(decode_xml_text("&amp;lt;"), "&lt;") << "what comes out isn't read again";
}

TEST(DecodeXmlText, LeavesAnEscapedControlCharacterAsItWasWritten) {
  EXPECT_EQ(decode_xml_text(encode_xml_text("\x07", false)), "&#7;");
}

TEST(DecodeXmlText, TakesTheMarkersOffCdataSections) {
  const Row rows[] = {{"<![CDATA[a]]>b", "ab"},
                      {"x<![cdata[&amp;<]]>y", "x&amp;<y"},
                      {"<![CDATA[]]>", ""},
                      {"<![CDATA[a]]><![CDATA[b]]>", "ab"},
                      {"<![CDATA[a<![CDATA[b]]>c]]>", "a<![CDATA[bc]]>"},
                      {"<![CDATA[a]]&gt;", "<![CDATA[a]]>"},
                      {"a<b", "a<b"},
                      {"<", "<"},
                      {"]]>", "]]>"},
                      {"<![CDATA[]>", "<![CDATA[]>"}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(decode_xml_text(row.text), row.expected);
  }
}

TEST(DecodeXmlText, LooksForMarksInTheCodePage) {
  const Row rows[] = {{"\xEF\xBC\x86lt;", "<"},
                      {"\xEF\xBC\x86 amp;", "& amp;"},
                      {"\xEF\xBC\x9C![CDATA[a&amp;]]>", "a&amp;"}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(decode_xml_text(row.text), row.expected);
  }
}

TEST(DecodeXmlText, TakesManySectionsThatNeverEndInOneGo) {
  std::string text;
  for (int i = 0; i < 200000; ++i)
    text += "<![CDATA[";
  EXPECT_EQ(decode_xml_text(text), text);
}

TEST(Utf8, HoldsEveryByteOfTheCodePageThereAndBack) {
  std::string all;
  for (int c = 0; c < 256; ++c) {
    const std::string text(1, static_cast<char>(c));
    all += text;
    EXPECT_EQ(from_utf8(to_utf8(text.data(), 1)), text) << c;
  }
  EXPECT_EQ(from_utf8(to_utf8(all.data(), all.size())), all);
}

TEST(Utf8, TakesTheCountedText) {
  EXPECT_EQ(to_utf8("a\0\xE4z", 3), std::string("a\0\xC3\xA4", 4));
}

// What a unit beyond the code page gives is the same on both sides of it.
TEST(Utf8, HasAStandInForWhatTheCodePageLacks) {
  const Row rows[] = {{"\xE2\x82\xAC", "\x80"},
                      {"\xD0\x96", "?"},
                      {"\xE4\xB8\xAD", "?"},
                      {"\xF0\x9F\x98\x80", "??"},
                      {"a\xEF\xBF\xBDz", "a?z"}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(from_utf8(row.text), row.expected);
  }
}

TEST(Utf8, ReplacesWhatIsNotValid) {
  const Row rows[] = {{"a\xE4z", "a?z"},
                      {"\x80", "?"},
                      {"\xC3", "?"},
                      {"\xC0\x80", "??"},
                      {"\xC1\xBF", "??"},
                      {"\xE2\x82", "?"},
                      {"\xE2\x82z", "?z"},
                      {"\xE0\x80\x80", "??"},
                      {"\xED\xA0\x80", "??"},
                      {"\xF0\x9F\x98", "?"},
                      {"\xF4\x90\x80\x80", "???"},
                      {"\xF5\x80\x80\x80", "????"},
                      {"\xFF\xFE", "??"},
                      {"\xC3\xC3\xA4", "?\xE4"}};
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.text));
    EXPECT_EQ(from_utf8(row.text), row.expected);
  }
}

}  // namespace
}  // namespace Trellis
