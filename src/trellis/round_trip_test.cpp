// What is written comes back, but for the control characters.
#include <gtest/gtest.h>

#include <random>

#include "trellis/xml_test_support.h"

namespace Trellis {
namespace {

/// Makes random trees, writes them, and knows what must come back.
class Trees {
 public:
  explicit Trees(unsigned seed) : random_(seed) {}

  std::string written(const XMLNode& root, const XMLFormat& format) {
    std::ostringstream out;
    {
      XMLWriter writer(out, format);
      format.print_header(out, false);
      write(writer, root);
    }
    return out.str();
  }

  std::unique_ptr<XMLNode> tree(int levels) {
    auto node = std::make_unique<XMLNode>(name());
    const size_t attributes = below(5);
    for (size_t i = 0; i < attributes; ++i)
      (*node)[name()] = value();
    if (levels == 0) return node;
    const size_t children = below(4);
    for (size_t i = 0; i < children; ++i)
      node->children.push_back(tree(levels - 1));
    return node;
  }

 private:
  size_t below(size_t limit) { return random_() % limit; }

  TL_String name() {
    constexpr std::string_view kLetters = "abcXYZ059._-:\xC0\xE4\xFF";
    TL_String text;
    for (size_t length = 1 + below(4); length > 0; --length)
      text += kLetters[below(kLetters.size())];
    return text;
  }

  /// Empty, a few marks, or any bytes.
  TL_String value() {
    TL_String text;
    const bool marks = below(2) == 0;
    for (size_t length = below(4) == 0 ? 0 : below(40); length > 0; --length)
      text += marks ? "&<>\"'];\n"[below(8)] : static_cast<char>(below(256));
    return text;
  }

  static void write(XMLWriter& writer, const XMLNode& node) {
    writer.create(node);
    for (const auto& [name, value] : node.attributes)
      writer[name] = value;
    for (const auto& child : node.children)
      write(writer, *child);
    writer.back();
  }

  std::mt19937 random_;
};

void expect_alike(const XMLNode& read, const XMLNode& made) {
  EXPECT_EQ(std::string_view(read), std::string_view(made));
  ASSERT_EQ(read.attributes.size(), made.attributes.size());
  for (const auto& [name, value] : made.attributes)
    EXPECT_EQ(read.get(name, "absent"), as_read_again(value)) << name;
  ASSERT_EQ(read.children.size(), made.children.size());
  auto next = read.children.begin();
  for (const auto& child : made.children)
    expect_alike(**next++, *child);
}

TEST(RoundTrip, BringsRandomTreesBack) {
  for (unsigned seed = 0; seed < 300; ++seed) {
    Trees trees(seed);
    const auto made = trees.tree(4);
    XMLFormat format;
    format.pretty = static_cast<int>(seed % 3);
    format.endl = seed % 2 == 0 ? "\n" : "\r\n";
    const std::string text = trees.written(*made, format);
    SCOPED_TRACE(seed);
    const auto read = read_text(text);
    ASSERT_TRUE(read->good) << text;
    ASSERT_EQ(read->doc.children.size(), 1u);
    expect_alike(read->root(), *made);
    if (HasFailure()) break;
  }
}

TEST(RoundTrip, BringsEveryByteOfTheCodePageBackOrItsNumber) {
  for (int c = 0; c < 256; ++c) {
    SCOPED_TRACE(c);
    XMLNode made("a");
    made["v"] = std::string("x") + static_cast<char>(c) + "y";
    const auto read = read_text(Trees(0).written(made, plain_format()));
    EXPECT_TRUE(read->good);
    expect_alike(read->root(), made);
  }
}

TEST(RoundTrip, WritesABellAsANumberThatStaysOne) {
  XMLNode made("a");
  made["v"] = "\x07";
  const std::string text = Trees(0).written(made, plain_format());
  EXPECT_EQ(text, std::string(kUtf8Declaration) + "<a v=\"&#7;\"/>\n");
  EXPECT_EQ(read_text(text)->root().get("v", ""), "&#7;");
}

TEST(RoundTrip, EndsADocumentTypeAtItsBracketAllTheSame) {
  XMLFormat format = plain_format();
  format.doctype = {"a", "p", "s"};
  std::ostringstream out;
  format.print_header(out, true);
  const auto read = read_text(out.str() + "<a/>");
  EXPECT_TRUE(read->good);
  EXPECT_EQ(read->tree(), "( (a))");
  EXPECT_EQ(read->doc._format.doctype.name, "a");
  EXPECT_EQ(read->doc._format.doctype.public_id, "p");
  EXPECT_EQ(read->doc._format.doctype.system_id, "s");
}

}  // namespace
}  // namespace Trellis
