#include "trellis/xml_node.h"

#include <gtest/gtest.h>

#include "orlo/assertion.h"
#include "orlo/report_test_support.h"
#include "trellis/xml_test_support.h"

namespace Trellis {
namespace {

XMLNode& add_child(XMLNode& node, const char* name) {
  node.children.push_back(std::make_unique<XMLNode>(name));
  return *node.children.back();
}

TEST(TL_String, ConvertsToAndFromStringByItsCount) {
  const std::string bytes("a\0b\xE4", 4);
  const TL_String text{String(bytes)};
  EXPECT_EQ(text, bytes);
  TL_String assigned("old");
  assigned = String(bytes);
  EXPECT_EQ(assigned, bytes);
  const String back(text);
  EXPECT_EQ(std::string(back.c_str(), back.length()), bytes);
}

TEST(TL_String, HasItsTwoConstants) {
  EXPECT_EQ(kValueName, "value");
  EXPECT_EQ(kPropertyName, "property");
}

TEST(XMLNode, BeginsWithItsNameAndWhatStoodInFrontOfIt) {
  const XMLNode named("a");
  EXPECT_EQ(dump(named), "(a)");
  const XMLNode led("a", "\n ");
  EXPECT_EQ(dump(led), "(a leading=[\n ])");
  EXPECT_FALSE(led.cdata_content);
}

TEST(XMLNode, KeepsAttributesInByteOrderOfTheirNames) {
  XMLNode node("row");
  for (const char* const name : {"ab", "\xE4", "a", "OK", "64bit", "MSI", "HKEY_ROOT", "a"})
    node[name] = "1";
  EXPECT_EQ(dump(node), "(row @64bit=1 @HKEY_ROOT=1 @MSI=1 @OK=1 @a=1 @ab=1 @\xE4=1)");
}

TEST(XMLNode, CreatesAnAttributeThatIsAskedForByReferenceAlone) {
  XMLNode node("a");
  EXPECT_EQ(node.get("x", "none"), "none");
  EXPECT_TRUE(node.attributes.empty());
  EXPECT_EQ(node["x"], "");
  EXPECT_EQ(node.attributes.size(), 1u);
  EXPECT_EQ(node.get("x", "none"), "");
  node["x"] = "1";
  EXPECT_EQ(node.get("x", "none"), "1");
}

TEST(XMLNode, DecodesItsContentOnlyWhenItIsAskedForItsText) {
  XMLNode node("a");
  node.content = "1 &lt; \xC3\xA4";
  EXPECT_EQ(node.text(), "1 < \xE4");
  EXPECT_EQ(node.content, "1 &lt; \xC3\xA4");
}

TEST(XMLNode, DecodesTheContentOfACdataSectionToo) {
  const auto read = read_text("<a><![CDATA[x &amp; y]]></a>");
  EXPECT_TRUE(read->root().cdata_content);
  EXPECT_EQ(read->root().text(), "x & y");
}

TEST(XMLNode, HasOnlyTheTextInFrontOfItsFirstChildAsItsText) {
  const auto read = read_text("<a>one<b/>two</a>");
  EXPECT_EQ(read->root().text(), "one");
  EXPECT_EQ(read->root().children.front()->trailing, "two");
}

TEST(XMLNode, KeepsACommentWithItsMarkersInTheTextBesideIt) {
  const auto read = read_text("<a>one<!-- c > d -->two<b/><!--e--></a>");
  EXPECT_EQ(read->tree(), "( (a content=[one<!-- c > d -->two] (b trailing=[<!--e-->])))");
  EXPECT_EQ(read->root().text(), "one<!-- c > d -->two");
}

TEST(XMLNode, FindsTheFirstChildThatMatchesAStep) {
  const auto read = read_text("<a><b i='1'/><c/><b i='2'/><b i='3' x='y'/></a>");
  const struct {
    const char* path;
    const char* expected;  ///< attribute i of the node found, or null
  } rows[] = {{"b", "1"},
              {"b[0]", "1"},
              {"b[1]", "1"},
              {"b[2]", "2"},
              {"b[3]", "3"},
              {"b[4]", nullptr},
              {"*[2]", ""},
              {"*[3]", "2"},
              {"b[@x='y']", "3"},
              {"b[@x='']", "1"},
              {"b[@x='n']", nullptr},
              {"*[@i='2']", "2"},
              {"d", nullptr},
              {"B", nullptr},
              {"b[@i='3' and @x='y']", "3"},
              {"b[@i='2' and @x='y']", nullptr}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.path);
    const XMLNode* const found = read->root().find(XMLPath(row.path));
    ASSERT_EQ(found != nullptr, row.expected != nullptr);
    if (found != nullptr) {
      EXPECT_EQ(found->get("i", ""), row.expected);
    }
  }
}

TEST(XMLNode, CountsOnlyChildrenThatMatchTheWholeStep) {
  const auto read = read_text("<a><b/><b x='1' n='first'/><b/><b x='1' n='second'/></a>");
  const XMLPathStep step{"b", 1, {{"x", "1"}}};
  EXPECT_EQ(read->root().find(step)->get("n", ""), "second");
  EXPECT_EQ(read->root().find(step)->get("n", ""), "second") << "each search counts anew";
}

TEST(XMLNode, GoesDownAPathWithoutTurningBack) {
  const auto read = read_text("<r><a/><a><b>text</b></a></r>");
  EXPECT_EQ(read->root().find(XMLPath("a/b")), nullptr);
  EXPECT_NE(read->root().find(XMLPath("a[2]/b")), nullptr);
  EXPECT_EQ(read->root().sub_text("a/b"), "");
  EXPECT_EQ(read->root().sub_text("a[2]/b"), "text");
}

TEST(XMLNode, IsItselfAtTheEndOfAnEmptyPath) {
  XMLNode node("a");
  node.content = "text";
  EXPECT_EQ(node.find(XMLPath("")), &node);
  EXPECT_EQ(node.sub_text(""), "text");
}

class Mourned final : public XMLNode {
 public:
  Mourned(const char* name, std::string& log) : XMLNode(name), log_(log) {}
  ~Mourned() override { log_ += *this; }

 private:
  std::string& log_;
};

TEST(XMLNode, DestroysItsChildrenFromTheLastToTheFirst) {
  std::string log;
  {
    XMLNode root("root");
    for (const char* const name : {"1", "2", "3"}) {
      root.children.push_back(std::make_unique<Mourned>(name, log));
      for (const char* const below : {"a", "b"})
        root.children.back()->children.push_back(std::make_unique<Mourned>(below, log));
    }
  }
  EXPECT_EQ(log, "3ba2ba1ba");
}

TEST(XMLPosition, BeginsAtItsNodeWithAnEmptyStack) {
  XMLNode node("a");
  const XMLPosition position(node);
  EXPECT_EQ(position.root, &node);
  EXPECT_EQ(position.current, &node);
  EXPECT_TRUE(position.stack.empty());
}

TEST(XMLPosition, GoesDownToTheFirstChildOfAName) {
  XMLNode node("a");
  XMLNode& first = add_child(node, "b");
  add_child(node, "b");
  XMLPosition position(node);
  EXPECT_FALSE(position.go_down("c"));
  EXPECT_EQ(position.current, &node);
  EXPECT_TRUE(position.stack.empty());
  EXPECT_TRUE(position.go_down("b"));
  EXPECT_EQ(position.current, &first);
  EXPECT_TRUE(position.back());
  EXPECT_EQ(position.current, &node);
}

TEST(XMLPosition, GoesAPathInOnePush) {
  const auto read = read_text("<a><b><c/></b></a>");
  XMLPosition position(read->doc);
  EXPECT_TRUE(position.go("a/b/c"));
  EXPECT_EQ(*position.current, "c");
  EXPECT_EQ(position.stack.size(), 1u);
  EXPECT_FALSE(position.go("d"));
  EXPECT_EQ(*position.current, "c");
  EXPECT_TRUE(position.go("/a/b")) << "from the root";
  EXPECT_EQ(*position.current, "b");
  EXPECT_TRUE(position.go("c")) << "from here";
  EXPECT_EQ(position.stack.size(), 3u);
  EXPECT_TRUE(position.back() && position.back() && position.back());
  EXPECT_EQ(position.current, position.root);
}

TEST(XMLPosition, OnADocumentHasTheRootElementAsFirstStepOfAnAbsolutePath) {
  const auto read = read_text("<zolvane><ui/></zolvane>");
  XMLPosition position(read->doc);
  EXPECT_FALSE(position.go("/ui"));
  EXPECT_TRUE(position.go("/zolvane/ui"));
}

TEST(XMLPosition, CannotGoBackFromWhereItBegan) {
  ORLO::forget_failed_assertions();
  const ORLO::TestReports reports;
  XMLNode node("a");
  XMLPosition position(node);
  EXPECT_FALSE(position.back());
  EXPECT_EQ(position.current, &node);
  ASSERT_EQ(reports.shown.size(), 1u);
  EXPECT_EQ(reports.shown[0].text, "Assertion failed: !_stack.empty(), file trellis, line 1702");
}

TEST(XMLChildFilter, WalksTheChildrenOfExactlyItsName) {
  const auto read = read_text("<a><row i='1'/><Row/><row i='2'/>x<rows/><row i='3'/></a>");
  std::string seen;
  for (const XMLNode& row : XMLChildFilter(read->root(), "row"))
    seen += row.get("i", "?");
  EXPECT_EQ(seen, "123");
}

TEST(XMLChildFilter, MeetsChildrenThatAreAddedOnItsWay) {
  XMLNode node("a");
  for (int i = 0; i < 3; ++i)
    add_child(node, "b");
  int met = 0;
  for (XMLNode& child : XMLChildFilter(node, "b")) {
    child["met"] = "1";
    if (++met < 10) add_child(node, "b");
  }
  EXPECT_EQ(met, 12);
  const XMLChildFilter none(node, "c");
  add_child(node, "c");
  EXPECT_TRUE(none == XMLChildFilter()) << "it was at the end already";
}

TEST(XMLChildFilter, EqualsTheEndWhenNoneIsLeft) {
  const auto read = read_text("<a><b/><c/></a>");
  XMLChildFilter filter(read->root(), "b");
  EXPECT_FALSE(filter == XMLChildFilter());
  EXPECT_EQ(*filter, "b");
  ++filter;
  EXPECT_TRUE(filter == XMLChildFilter());
  ++filter;
  EXPECT_TRUE(filter == XMLChildFilter()) << "and stays there";
  EXPECT_TRUE(++XMLChildFilter() == XMLChildFilter());
  EXPECT_TRUE(XMLChildFilter(read->root(), "d") == XMLChildFilter());
  EXPECT_TRUE(XMLChildFilter(read->root(), "c") == XMLChildFilter(read->root(), "c"));
  EXPECT_FALSE(XMLChildFilter(read->root(), "c") == XMLChildFilter(read->root(), "b"));
}

}  // namespace
}  // namespace Trellis
