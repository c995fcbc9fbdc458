// The syntax that the parser accepts, and what it makes of it.
#include "trellis/tl_native.h"

#include <gtest/gtest.h>

#include "orlo/assertion.h"
#include "orlo/report_test_support.h"
#include "trellis/xml_test_support.h"

namespace Trellis {
namespace {

using Errors = std::vector<std::string>;

struct Row {
  std::string text;
  std::string tree;
  Errors errors{};
};

void expect_rows(std::initializer_list<Row> rows) {
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.text));
    const auto read = read_text(row.text);
    EXPECT_EQ(read->tree(), row.tree);
    EXPECT_EQ(read->errors, row.errors);
    EXPECT_EQ(read->good, row.errors.empty());
    const auto slow = read_text_with<CharByCharReader>(row.text);
    EXPECT_EQ(slow->tree(), row.tree) << "character by character";
    EXPECT_EQ(slow->errors, row.errors) << "character by character";
  }
}

TEST(TagBuffer, GrowsToWhatItGets) {
  TagBuffer buffer;
  std::string expected;
  for (int i = 0; i < 5000; ++i) {
    buffer.add(static_cast<char>('a' + i % 26));
    expected += static_cast<char>('a' + i % 26);
  }
  const std::string much(100000, 'x');
  buffer.add(much.data(), much.size());
  EXPECT_EQ(buffer.view(), expected + much);
  buffer.clear();
  EXPECT_EQ(buffer.view(), "");
}

TEST(NativeParser, TakesAnEmptyElementInAllItsForms) {
  expect_rows({{"<a></a>", "( (a))"},
               {"<a/>", "( (a))"},
               {"<a />", "( (a))"},
               {"<a b='1'/>", "( (a @b=1))"},
               {"<a b=\"1\" />", "( (a @b=1))"},
               {"<a b='1' c='2'><d/></a>", "( (a @b=1 @c=2 (d)))"}});
}

TEST(NativeParser, ClosesTheOpenElementWhateverItsEndTagSays) {
  expect_rows({{"<a><b></x><c></c></>", "( (a (b) (c)))"}, {"<a><b></a>", "( (a (b)))"}});
}

TEST(NativeParser, TakesMissingEndTagsAsNoError) {
  expect_rows({{"<a><b>", "( (a (b)))"}, {"<a>text", "( (a trailing=[text]))"}});
}

TEST(NativeParser, FailsAnAssertionAtOneEndTagTooManyAndGoesOn) {
  ORLO::forget_failed_assertions();
  const ORLO::TestReports reports;
  const auto read = read_text("<a></a></a><b/>");
  EXPECT_EQ(read->tree(), "( (a) (b))");
  EXPECT_TRUE(read->good);
  ASSERT_EQ(reports.shown.size(), 1u);
  EXPECT_EQ(reports.shown[0].text, "Assertion failed: !_stack.empty(), file trellis, line 1702");
}

TEST(NativeParser, ReportsAnAttributeWithoutAssignment) {
  const char kMessage[] = "missing attribute assignment";
  expect_rows({{"<a x>", "( (a))", {std::string("1:6 ") + kMessage}},
               {"<a x = '1'>", "( (a))", {std::string("1:12 ") + kMessage}},
               {"<a b='1' x c='2'/>", "( (a @b=1))", {std::string("1:19 ") + kMessage}},
               {"<a $='1'>", "( (a))", {std::string("1:10 ") + kMessage}},
               {"<a >", "( (a))", {std::string("1:5 ") + kMessage}},
               {"<a b='1' >", "( (a @b=1))", {std::string("1:11 ") + kMessage}}});
}

TEST(NativeParser, ReportsAValueWithoutQuote) {
  const char kMessage[] = "missing attribute value quote";
  expect_rows({{"<a x=1>", "( (a))", {std::string("1:8 ") + kMessage}},
               {"<a x= '1'>", "( (a))", {std::string("1:11 ") + kMessage}},
               {"<a x=", "( (a))", {std::string("1:6 ") + kMessage}}});
}

TEST(NativeParser, EndsATagAtTheFirstBracketEvenInsideQuotes) {
  expect_rows(
      {{"<a x='1>2'>", "( (a @x=1> trailing=[2'>]))", {"1:9 unterminated attribute quote"}}});
}

TEST(NativeParser, CountsWhatStandsBehindAnOpenQuoteAsItsValue) {
  expect_rows({{"<a x='1", "( (a @x=1))", {"1:8 unterminated attribute quote"}},
               {"<a x='/>", "( (a @x=/>))", {"1:9 unterminated attribute quote"}}});
}

TEST(NativeParser, ClosesAnElementByTheSlashInFrontOfItsBracketWhereverItsListEnded) {
  expect_rows({{"<a x='/><b/>", "( (a @x=/>) (b))", {"1:9 unterminated attribute quote"}},
               {"<a x y/><b/>", "( (a) (b))", {"1:9 missing attribute assignment"}},
               {"<a x=1/><b/>", "( (a) (b))", {"1:9 missing attribute value quote"}},
               {"<a/x='1'/><b/>", "( (a) (b))"},
               {"<a/ ><b/>", "( (a (b)))"}});
}

TEST(NativeParser, EndsTheAttributesAtASlashOrAQuestionMark) {
  expect_rows({{"<a b='1'/c='2'></a>", "( (a @b=1))"}, {"<a b='1'?c='2'></a>", "( (a @b=1))"}});
}

TEST(NativeParser, NeedsNoBlankBetweenAttributes) {
  expect_rows({{"<a b='1'c=\"2\"/>", "( (a @b=1 @c=2))"}, {"<a\r\n\tb='1'/>", "( (a @b=1))"}});
}

TEST(NativeParser, KeepsTheLastOfTwoAttributesOfAName) {
  expect_rows({{"<a x='1' b='3' x='2'/>", "( (a @b=3 @x=2))"}});
}

TEST(NativeParser, DecodesValuesAndKeepsTheOtherQuote) {
  expect_rows({{"<a x='&lt;&amp;&#7;\"'/>", "( (a @x=<&&#7;\"))"}, {"<a x=''/>", "( (a @x=))"}});
}

TEST(NativeParser, TakesAnEmptyAttributeName) {
  expect_rows({{"<a ='1'/>", "( (a @=1))"}});
}

TEST(NativeParser, AdmitsLatinLettersInNames) {
  expect_rows({{std::string(kUtf8Declaration) + "<\xC3\xA4.b-c_d:9 \xC3\xB6='1'/>",
                "( (\xE4.b-c_d:9 @\xF6=1))"},
               {std::string(kUtf8Declaration) + "<a\xC5\x93/>",
                "( (a))",
                {"1:45 missing attribute assignment"}},
               {"<\xE4/>", "( (\xE4))"}});
}

TEST(NativeParser, TakesTheByteBehindALatinLeadByteIntoTheName) {
  expect_rows({{std::string(kUtf8Declaration) + "<a\xC3>", "( (a?>))"},
               {std::string(kUtf8Declaration) + "<a\xC3", "( (a?))"}});
}

TEST(NativeParser, DropsATagWithoutAName) {
  expect_rows({{"<a><></a>", "( (a))"}, {"<a>x< b/>y</a>", "( (a content=[xy]))"}, {"<", "()"}});
}

TEST(NativeParser, DropsAnUnknownDeclarationButForItsBracket) {
  expect_rows({{"<a><!FOO></a>", "( (a content=[>]))"},
               {"<a><!FOO>bar</a>", "( (a content=[>bar]))"},
               {"<!FOO", "()"},
               {"<a><!-x --></a>", "( (a content=[>]))"},
               {"<!DOCTYPE><a/>", "( (a leading=[>]))"},
               {"<!doctype a><a/>", "( (a leading=[>]))"}});
}

TEST(NativeParser, KeepsCommentsAsText) {
  expect_rows(
      {{"<!-- a --><r/>", "( (r leading=[<!-- a -->]))"},
       {"<r><!-- <b x='1'> -- > <c/>--></r>", "( (r content=[<!-- <b x='1'> -- > <c/>-->]))"},
       {"<r><!--></r>", "( (r content=[<!-->]))"},
       {"<r><!-- a >> --></r>", "( (r content=[<!-- a >> -->]))"},
       {"<r><!--a>-></r>", "( (r trailing=[<!--a>-></r>]))"}});
}

TEST(NativeParser, KeepsUnknownInstructionsAsText) {
  expect_rows({{"<r><?php a?></r>", "( (r content=[<?php a?>]))"},
               {"<?xmlx a?><r/>", "( (r leading=[<?xmlx a?>]))"},
               {"<?xml-style a?><r/>", "( (r leading=[<?xml-style a?>]))"},
               {"<?xml-stylesheets a?><r/>", "( (r leading=[<?xml-stylesheets a?>]))"},
               {"<?XML version='1.0'?><r/>", "( (r leading=[<?XML version='1.0'?>]))"}});
}

TEST(NativeParser, KeepsOneCdataSectionWithoutItsMarkers) {
  expect_rows({{"<a><![CDATA[x]]></a>", "( (a content=[x] cdata))"},
               {"<a><![CDATA[x > <b/> ]> ]]></a>", "( (a content=[x > <b/> ]> ] cdata))"},
               {"<a><![CDATA[x]><b/>]]></a>", "( (a content=[x]><b/>] cdata))"},
               {"<a><![CDATA[]]></a>", "( (a cdata))"},
               {"<a><![CDATA[x</a>", "( (a trailing=[<![CDATA[x</a>]))"}});
}

TEST(NativeParser, KeepsTheMarkersOfCdataBesideOtherText) {
  expect_rows({{"<a><![CDATA[a]]>b</a>", "( (a content=[<![CDATA[a]]>b]))"},
               {"<a> <![CDATA[a]]></a>", "( (a content=[ <![CDATA[a]]>]))"},
               {"<a><![cdata[a]]></a>", "( (a content=[>]))"}});
  EXPECT_EQ(read_text("<a><![CDATA[a]]>b</a>")->root().text(), "ab");
}

TEST(NativeParser, TakesTwoSectionsForOneAsTheirOuterMarkersFit) {
  expect_rows({{"<a><![CDATA[a]]><![CDATA[b]]></a>", "( (a content=[a]]><![CDATA[b] cdata))"}});
}

TEST(NativeParser, ReadsTheDeclaration) {
  const struct {
    const char* text;
    const char* version;
    const char* encoding;
    int standalone;
  } rows[] = {
      {"<?xml version='1.1' encoding='UTF-8' standalone='YES'?>", "1.1", "UTF-8", 1},
      {"<?xml version=\"1.0\" standalone=\"no\" ?>", "1.0", "utf-8", 0},
      {"<?xml version='' encoding='' standalone=''?>", "1.0", "utf-8", 0},
      {"<?xml?>", "1.0", "utf-8", -1},
      {"<?xml encoding='iso-8859-1'?>", "1.0", "iso-8859-1", -1},
      {"", "1.0", "utf-8", -1},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    const auto read = read_text(std::string(row.text) + "<a/>");
    EXPECT_TRUE(read->good);
    EXPECT_EQ(read->doc._format.version, row.version);
    EXPECT_EQ(read->doc._format._encoding, row.encoding);
    EXPECT_EQ(read->doc._format.standalone, row.standalone);
    EXPECT_EQ(read->tree(), "( (a))");
  }
}

TEST(NativeParser, DropsOneLineEndBehindADeclaration) {
  const std::string starts[] = {"<?xml version='1.0'?>", "<?xml-stylesheet href='a'?>",
                                "<!DOCTYPE a>"};
  for (const std::string& start : starts) {
    expect_rows({{start + "\n<a/>", "( (a))"},
                 {start + "\r\n<a/>", "( (a))"},
                 {start + "\r<a/>", "( (a))"},
                 {start + "\n\n<a/>", "( (a leading=[\n]))"},
                 {start + "\r\r<a/>", "( (a leading=[\r]))"},
                 {start + " \n<a/>", "( (a leading=[ \n]))"},
                 {start, "()"}});
    EXPECT_FALSE(read_text(start + "\r\n<a/>")->endl_defined);
  }
}

TEST(NativeParser, ReadsStyleSheets) {
  const auto read = read_text(
      "<?xml-stylesheet href='h' type='t' title='&lt;' media='m' charset='c' alternate='yes'?>"
      "<?xml-stylesheet alternate='YES'?><a/>");
  const auto& sheets = read->doc._format.stylesheets;
  ASSERT_EQ(sheets.size(), 2u);
  EXPECT_EQ(sheets[0].href + sheets[0].type + sheets[0].title + sheets[0].media + sheets[0].charset,
            "ht<mc");
  EXPECT_TRUE(sheets[0].alternate);
  EXPECT_FALSE(sheets[1].alternate);
}

TEST(NativeParser, ReadsTheDocumentType) {
  const struct {
    const char* text;
    const char* name;
    const char* public_id;
    const char* system_id;
  } rows[] = {{"<!DOCTYPE html>", "html", "", ""},
              {"<!DOCTYPE html PUBLIC \"p\" \"s\">", "html", "p", "s"},
              {"<!DOCTYPE  html PUBLIC 'p'>", "html", "p", ""},
              {"<!DOCTYPE a SYSTEM \"s\">", "a", "s", ""},
              {"<!DOCTYPE a PUBLIC \"p\" \"s\"?>", "a", "p", "s"},
              {"<!DOCTYPE a PUBLIC p>", "a", "", ""},
              {"<!DOCTYPE \xE4 PUBLIC 'p'>", "\xE4", "p", ""},
              {"<!DOCTYPE a PUBLIC \"p>", "a", "", ""},
              {"<!DOCTYPE ", "", "", ""}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    const auto read = read_text(row.text);
    EXPECT_EQ(read->doc._format.doctype.name, row.name);
    EXPECT_EQ(read->doc._format.doctype.public_id, row.public_id);
    EXPECT_EQ(read->doc._format.doctype.system_id, row.system_id);
    EXPECT_TRUE(read->good);
  }
}

TEST(NativeParser, TakesAFileWithoutDeclarationAsCodePageText) {
  expect_rows(
      {{"<a x='\xE4'>\x80 \xE4</a>", "( (a @x=\xE4 content=[\xE2\x82\xAC \xC3\xA4]))"},
       {"<a><!--\xE4--></a>", "( (a content=[<!--\xC3\xA4-->]))"},
       {"<a><![CDATA[>\xE4]]></a>", "( (a content=[>\xC3\xA4] cdata))"},
       {"<?xml encoding='windows-1252'?><a x='\xE4'/>", "( (a @x=\xE4))"},
       {std::string(kUtf8Declaration) + "<?xml encoding='x'?><a x='\xE4'/>", "( (a @x=\xE4))"}});
  EXPECT_EQ(read_text("<a>\x80 \xE4</a>")->root().text(), "\x80 \xE4");
}

TEST(NativeParser, TakesAFileThatSaysSoAsUtf8) {
  const std::string a = "<a x='\xC3\xA4'>\xE2\x82\xAC</a>";
  const std::string tree = "( (a @x=\xE4 content=[\xE2\x82\xAC]))";
  expect_rows({{kUtf8Declaration + a, tree},
               {"<?xml encoding='UTF-8'?>" + a, tree},
               {"\xEF\xBB\xBF" + a, tree},
               {"\xEF\xBB\xBF<?xml version='1.0'?>" + a, tree},
               {"\xEF\xBB\xBF<?xml encoding=''?>" + a, tree},
               {std::string(kUtf8Declaration) + "<?xml encoding=''?>" + a, tree}});
  EXPECT_EQ(read_text(kUtf8Declaration + a)->root().text(), "\x80");
}

TEST(NativeParser, ReplacesWhatIsNotValidUtf8WithoutAnError) {
  const auto read = read_text(std::string(kUtf8Declaration) + "<a x='\xE4'>b\xFF</a>");
  EXPECT_TRUE(read->good);
  EXPECT_EQ(read->root().get("x", ""), "?");
  EXPECT_EQ(read->root().content, "b\xFF") << "held as read";
  EXPECT_EQ(read->root().text(), "b?");
}

TEST(NativeParser, NotesAByteOrderMark) {
  EXPECT_TRUE(read_text("\xEF\xBB\xBF<a/>")->doc._format._utf8_bom);
  EXPECT_FALSE(read_text("<a/>")->doc._format._utf8_bom);
}

TEST(NativeParser, LosesTheBeginningOfAMarkThatIsNone) {
  expect_rows({{"\xEF<a/>", "( (a))"},
               {"\xEF\xBB<a/>", "( (a))"},
               {"\xEF\xBBx<a/>", "( (a leading=[x]))"},
               {"\xEF", "()"},
               {"\xEF\xBB\xBF", "()"}});
}

TEST(NativeParser, FailsAnAssertionAtAnotherEncodingBehindAMarkAndStaysWithUtf8) {
  ORLO::forget_failed_assertions();
  const ORLO::TestReports reports;
  const auto read = read_text("\xEF\xBB\xBF<?xml encoding='windows-1252'?><a>\xC3\xA4</a>");
  ASSERT_EQ(reports.shown.size(), 1u);
  EXPECT_EQ(reports.shown[0].text,
            "Assertion failed: !_reader._format._utf8_bom, file tl-native, line 336");
  EXPECT_TRUE(read->good);
  EXPECT_EQ(read->root().text(), "\xE4");
}

TEST(NativeParser, TakesTheFirstLineEndOfATextAsThatOfTheFile) {
  const struct {
    const char* text;
    bool defined;
    const char* endl;
  } rows[] = {{"<a/>", false, "\n"},         {"<a>\n\r</a>", true, "\n"},
              {"<a>\r\n</a>", true, "\r\n"}, {"<a>\r</a>\n", true, "\r\n"},
              {"<a\r\n/>", false, "\n"},     {"<a><!--\r--></a>", false, "\n"},
              {"<a/>x\ny", true, "\n"},      {"<a><![CDATA[\r]]></a>", false, "\n"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.text));
    const auto read = read_text(row.text);
    EXPECT_EQ(read->endl_defined, row.defined);
    EXPECT_STREQ(read->doc._format.endl, row.endl);
  }
}

TEST(NativeParser, EndsAnAttributeListAtANul) {
  expect_rows({{std::string("<a b='1'\0c='2'></a>", 19), "( (a @b=1))"}});
}

}  // namespace
}  // namespace Trellis
