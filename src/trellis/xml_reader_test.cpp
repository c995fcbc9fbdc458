// How texts find their nodes, where characters are counted, and what reading survives.
#include "trellis/xml_reader.h"

#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>
#include <streambuf>

#include "orlo/assertion.h"
#include "orlo/report_test_support.h"
#include "trellis/tl_native.h"
#include "trellis/xml_test_support.h"

namespace Trellis {
namespace {

struct Row {
  const char* text;
  const char* tree;
};

void expect_rows(std::initializer_list<Row> rows) {
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.text));
    EXPECT_EQ(read_text(row.text)->tree(), row.tree);
  }
}

TEST(XMLReader, PutsTextsAndWhiteSpaceBetweenTagsWhereTheyBelong) {
  expect_rows(
      {{"<a><b/> x <c/> y </a>", "( (a end=[ ] (b trailing=[ x]) (c leading=[ ] trailing=[ y])))"},
       {"<a> x <b/></a>", "( (a content=[ x] (b leading=[ ])))"},
       {"<a> x </a>", "( (a content=[ x] end=[ ]))"},
       {"<a>  </a>", "( (a end=[  ]))"},
       {"<a>\n <b/>\n <c>1</c>\n</a>\n",
        "( (a end=[\n] trailing=[\n] (b leading=[\n ]) (c leading=[\n ] content=[1])))"},
       {"<a><b>1</b>2<c/></a>", "( (a (b content=[1] trailing=[2]) (c)))"}});
}

TEST(XMLReader, PutsAllInFrontOfTheRootIntoItsLeadingText) {
  expect_rows({{" x y \n<a/>", "( (a leading=[ x y \n]))"}, {"\n<a/>", "( (a leading=[\n]))"}});
}

TEST(XMLReader, PutsAllBehindTheRootIntoItsTrailingText) {
  expect_rows({{"<a/> x \n", "( (a trailing=[ x \n]))"},
               {"<a></a>x<b/>y", "( (a trailing=[x]) (b trailing=[y]))"}});
}

TEST(XMLReader, PutsTextWithoutAnyElementBehindTheDocument) {
  expect_rows({{" only text ", "( trailing=[ only text ])"}, {"", "()"}});
  XMLNode node("");
  std::istringstream stream("text");
  XMLReader reader(node, stream);
  reader.read();
  EXPECT_EQ(node.trailing, "text");
  EXPECT_EQ(reader.content, "");
}

TEST(XMLReader, PutsTextBehindAnOpenElementIntoItsTrailingTextAtTheEnd) {
  expect_rows({{"<a><b>x", "( (a (b trailing=[x])))"}, {"<a><b/>x", "( (a (b trailing=[x])))"}});
}

TEST(XMLReader, TakesTextBehindAnEndTagTooManyForTheDocument) {
  const ORLO::TestReports reports;
  expect_rows({{"</a>x <b/>", "( trailing=[x] (b leading=[ ]))"},
               {"<a></a> </a></a>", "( end=[ ] (a))"},
               {"</a>x </a>", "( content=[x] end=[ ])"},
               {"x</a>y</a>", "( content=[xy])"},
               {" </a>\n</a></a>", "( end=[\n])"},
               {"<![CDATA[x]]></a>y</a>", "( content=[xy])"},
               {"<r></r>x</a>y</a>", "( (r trailing=[xy]))"},
               {"<r></r>x</a>y<b/>", "( (r trailing=[xy]) (b))"}});
}

TEST(XMLReader, TellsWhereAnErrorIs) {
  XMLDoc doc;
  std::istringstream stream("<r>\r\n<a x>\n\r\r<b y=1>");
  XMLReader reader(doc, stream);
  EXPECT_FALSE(doc.read(reader, "C:\\a.xml"));
  ASSERT_EQ(doc.errors.size(), 2u);
  EXPECT_EQ(doc.errors[0].message, "missing attribute assignment");
  EXPECT_EQ(doc.errors[0].pos, "C:\\a.xml");
  EXPECT_EQ(doc.errors[0].line, 2);
  EXPECT_EQ(doc.errors[0].column, 6);
  EXPECT_EQ(doc.errors[0].error_code, 0);
  EXPECT_EQ(doc.errors[1].line, 4);
  EXPECT_EQ(doc.errors[1].column, 8);
  EXPECT_TRUE(reader.warnings.empty());
}

TEST(XMLReader, CountsAnyPairOfDifferentLineEndsAsOneBreak) {
  const struct {
    const char* text;
    int line;
    int column;
  } rows[] = {{"", 1, 1},         {"ab", 1, 3},     {"a\n", 2, 1},     {"a\r", 2, 1},
              {"a\r\n", 2, 1},    {"a\n\r", 2, 1},  {"a\n\n", 3, 1},   {"a\r\r", 3, 1},
              {"\r\n\r\n", 3, 1}, {"\n\r\n", 3, 1}, {"\r\n\nb", 3, 2}, {"\r\na\nb", 3, 2}};
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.text));
    for (const auto& read : {read_text(row.text), read_text_with<CharByCharReader>(row.text)}) {
      EXPECT_EQ(read->location.line, row.line);
      EXPECT_EQ(read->location.column, row.column);
    }
  }
}

TEST(XMLReader, TakesOverTheErrorsAndTheFormInTheDocument) {
  XMLDoc doc;
  std::istringstream stream("<?xml version='1.1'?><a x><b>");
  XMLReader reader(doc, stream);
  reader.errors.push_back({"old", "", 1, 1, 0});
  reader.warnings.push_back({"old", "", 1, 1, 0});
  reader._format.endl = "\r\n";
  EXPECT_FALSE(doc.read(reader, nullptr));
  ASSERT_EQ(doc.errors.size(), 1u);
  EXPECT_EQ(doc.errors[0].message, "missing attribute assignment");
  EXPECT_EQ(doc.errors[0].pos, "");
  EXPECT_EQ(doc._format.version, "1.1");
  EXPECT_STREQ(doc._format.endl, "\n") << "the file has none";
  EXPECT_EQ(dump(doc), "( (a (b)))") << "the tree holds all that was read";
  EXPECT_TRUE(reader.warnings.empty());
}

class LoggingReader final : public XMLReader {
 public:
  using XMLReader::XMLReader;
  void on_xml_decl(const char* version, const char* encoding, int standalone) override {
    log += std::string("decl ") + (version != nullptr ? version : "null") + ' ' +
           (encoding != nullptr ? encoding : "null") + ' ' + std::to_string(standalone) + '|';
  }
  void on_start_element(const TL_String& name, XMLAttributes attributes) override {
    log += '+' + name + ' ' + std::to_string(attributes.size()) + '|';
  }
  void on_end_element() override { log += "-|"; }
  void on_default(const TL_String& text) override { log += text + '|'; }
  std::string log;
};

TEST(XMLReader, HandsAllThatItMeetsToItsHandlers) {
  XMLDoc doc;
  std::istringstream stream("<?xml version=''?> <a b='1'>x<!-- > --><c/></a>y");
  LoggingReader reader(doc, stream);
  reader.read();
  EXPECT_EQ(reader.log, "decl null null -1| |+a 1|x|<!-- >| -->|+c 0|-|-|y|");
  EXPECT_EQ(dump(doc), "()");
}

class UpperReader final : public XMLReader {
 public:
  using XMLReader::XMLReader;
  int get() override {
    const int c = XMLReader::get();
    return c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c;
  }
};

TEST(XMLReader, AsksAGetThatIsReplacedForEachCharacter) {
  XMLDoc doc;
  std::istringstream stream("<row name='x'>text</row>");
  UpperReader reader(doc, stream);
  EXPECT_TRUE(doc.read(reader, ""));
  EXPECT_EQ(dump(doc), "( (ROW @NAME=X content=[TEXT]))");
}

TEST(XMLReader, ReadsNothingFromAStreamThatHasFailed) {
  XMLDoc doc;
  std::istringstream stream("<a/>");
  stream.setstate(std::ios::failbit);
  XMLReader reader(doc, stream);
  EXPECT_TRUE(doc.read(reader, ""));
  EXPECT_TRUE(doc.children.empty());
}

/// Has some characters, and then a failure.
class BreakingBuffer final : public std::streambuf {
 public:
  explicit BreakingBuffer(std::string text) : text_(std::move(text)) {
    setg(text_.data(), text_.data(), text_.data() + text_.size());
  }

 protected:
  int_type underflow() override { throw std::runtime_error("broken"); }

 private:
  std::string text_;
};

template <typename Reader>
std::string read_until_it_breaks(std::ios::iostate thrown) {
  BreakingBuffer buffer("<a x='1'>\n<b/>text");
  std::istream stream(&buffer);
  stream.exceptions(thrown);
  XMLDoc doc;
  Reader reader(doc, stream);
  std::string ending = " good";
  try {
    doc.read(reader, "");
  } catch (const std::exception&) {
    ending = " thrown";
  }
  return dump(doc) + ending + ' ' + std::to_string(reader.location.line) + ':' +
         std::to_string(reader.location.column);
}

TEST(XMLReader, KeepsWhatComesInFrontOfAFailureOfItsStream) {
  EXPECT_EQ(read_until_it_breaks<XMLReader>(std::ios::goodbit),
            "( (a @x=1 (b leading=[\n] trailing=[text]))) good 2:9");
  const std::string thrown = "( (a @x=1 (b leading=[\n]))) thrown 2:9";
  EXPECT_EQ(read_until_it_breaks<XMLReader>(std::ios::badbit), thrown);
  EXPECT_EQ(read_until_it_breaks<XMLReader>(std::ios::failbit), thrown);
  EXPECT_EQ(read_until_it_breaks<CharByCharReader>(std::ios::badbit), thrown);
}

TEST(XMLReader, KeepsTheDocumentOfAStreamThatThrowsAtItsEnd) {
  XMLDoc doc;
  std::istringstream stream("<a>x</a>");
  stream.exceptions(std::ios::eofbit);
  XMLReader reader(doc, stream);
  EXPECT_ANY_THROW(doc.read(reader, ""));
  EXPECT_EQ(dump(doc), "( (a content=[x]))");
}

/// Hands out what a get should not.
class OddReader final : public XMLReader {
 public:
  OddReader(XMLNode& node, std::istream& stream, std::vector<int> characters)
      : XMLReader(node, stream), characters_(std::move(characters)) {}
  int get() override { return next_ < characters_.size() ? characters_[next_++] : -1; }

 private:
  const std::vector<int> characters_;
  size_t next_ = 0;
};

TEST(XMLReader, SurvivesAGetThatHandsOutAnything) {
  const ORLO::TestReports reports;
  const std::string text =
      "\xEF\xBB\xBF<?xml v='1'?>\r\n<!DOCTYPE a>\n<a x='1'>t<![CDATA[u]]><!--c--></a><";
  for (const int odd : {-1, -2, 0, 256, 256 + '<', 256 + '>', '<' - 256, INT_MAX, INT_MIN}) {
    for (size_t at = 0; at <= text.size(); ++at) {
      std::vector<int> characters;
      for (const char c : text)
        characters.push_back(static_cast<unsigned char>(c));
      characters.insert(characters.begin() + static_cast<std::ptrdiff_t>(at), odd);
      XMLDoc doc;
      std::istringstream unused;
      OddReader reader(doc, unused, std::move(characters));
      doc.read(reader, "");
      EXPECT_LE(doc.children.size(), 2u) << odd << " at " << at;
    }
  }
}

void expect_both_ways_alike(const std::string& text) {
  const auto blocks = read_text(text);
  const auto characters = read_text_with<CharByCharReader>(text);
  EXPECT_EQ(blocks->tree(), characters->tree());
  EXPECT_EQ(blocks->errors, characters->errors);
  EXPECT_EQ(blocks->location.line, characters->location.line);
  EXPECT_EQ(blocks->location.column, characters->location.column);
  EXPECT_EQ(blocks->last_eol, characters->last_eol);
  EXPECT_EQ(blocks->endl_defined, characters->endl_defined);
}

TEST(XMLReader, ReadsInBlocksWhatItReadsByCharacters) {
  // Each construct comes to lie across a border between blocks.
  const std::string pieces[] = {"<a x='1' y='&lt;'/>",      "text\r\n",      "<!-- c > d -->",
                                "<![CDATA[ > ]]>",          "<b q>\n\r</b>", "<!FOO>",
                                "<?xml version='1.0'?>\r\n"};
  for (const std::string& piece : pieces) {
    for (size_t shift = 0; shift <= piece.size(); ++shift) {
      SCOPED_TRACE(testing::PrintToString(piece) + " at " + std::to_string(shift));
      std::string text = "<r>";
      text.append(CharSource::kBlockSize - 3 - shift, 'x').append(piece).append(piece);
      expect_both_ways_alike(text + "</r>");
    }
  }
}

TEST(XMLReader, TakesEveryCutOfADocumentInItsStride) {
  ORLO::forget_failed_assertions();
  const ORLO::TestReports reports;
  const std::string whole =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<!DOCTYPE z PUBLIC 'p' 's'>\n"
      "<?xml-stylesheet href='x'?><z v=\"5.3\"><!-- c --><last><row 64bit=\"0\" "
      "n=\"\xC3\xA4&lt;\"/>"
      "<row n='2'>t<![CDATA[u>]]></row> </last></z>\n";
  for (size_t length = 0; length <= whole.size(); ++length) {
    SCOPED_TRACE(length);
    expect_both_ways_alike(whole.substr(0, length));
  }
  EXPECT_TRUE(read_text(whole)->good);
  EXPECT_TRUE(reports.shown.empty());
  const size_t behind_a_row = whole.find("/>") + 2;
  EXPECT_TRUE(read_text(whole.substr(0, behind_a_row))->good) << "nothing is missed there";
  EXPECT_FALSE(read_text(whole.substr(0, behind_a_row - 4))->good);
}

TEST(XMLReader, ReadsAndDestroysAHundredThousandElementsInsideEachOther) {
  constexpr int kDepth = 100000;
  std::string text;
  for (int i = 0; i < kDepth; ++i)
    text += "<a>";
  for (const bool closed : {false, true}) {
    if (closed) {
      for (int i = 0; i < kDepth; ++i)
        text += "</a>";
    }
    const auto read = read_text(text);
    EXPECT_TRUE(read->good);
    int depth = 0;
    for (const XMLNode* node = &read->doc; !node->children.empty(); ++depth)
      node = node->children.front().get();
    EXPECT_EQ(depth, kDepth);
  }
}

TEST(XMLReader, TakesOneTagAndOneTextOfSeveralMegabytes) {
  const std::string much(3000000, 'x');
  const auto read = read_text("<a v='" + much + "'>" + much + "</a>");
  EXPECT_TRUE(read->good);
  EXPECT_EQ(read->root().get("v", ""), much);
  EXPECT_EQ(read->root().text(), much);
}

}  // namespace
}  // namespace Trellis
