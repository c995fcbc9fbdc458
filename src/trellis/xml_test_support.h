// Documents read from texts in tests, and trees as texts.
#pragma once

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "trellis/trellis.h"

namespace Trellis {

/// Gets a call for each character.
class CharByCharReader final : public XMLReader {
 public:
  using XMLReader::XMLReader;
  int get() override { return XMLReader::get(); }
};

/// The node and all below it: name, attributes, then the texts that aren't empty, then children.
inline std::string dump(const XMLNode& node) {
  std::string text = '(' + std::string(node);
  for (const auto& [name, value] : node.attributes)
    text += " @" + name + '=' + value;
  const std::pair<const char*, const TL_String&> texts[] = {{"leading", node.leading},
                                                            {"content", node.content},
                                                            {"end", node.end},
                                                            {"trailing", node.trailing}};
  for (const auto& [name, value] : texts) {
    if (!value.empty()) text += std::string(" ") + name + "=[" + value + ']';
  }
  if (node.cdata_content) text += " cdata";
  for (const auto& child : node.children)
    text += ' ' + dump(*child);
  return text + ')';
}

/// What reading a text has given.
struct ReadText {
  XMLDoc doc;
  bool good = false;
  /// "LINE:COLUMN MESSAGE" of each error.
  std::vector<std::string> errors{};
  XMLLocation location{};
  int last_eol = 0;
  bool endl_defined = false;

  XMLNode& root() { return *doc.children.front(); }
  std::string tree() const { return dump(doc); }
};

template <typename Reader>
std::unique_ptr<ReadText> read_text_with(const std::string& text) {
  auto result = std::make_unique<ReadText>();
  std::istringstream stream(text);
  Reader reader(result->doc, stream);
  result->good = result->doc.read(reader, "test.xml");
  for (const XMLError& error : result->doc.errors) {
    result->errors.push_back(std::to_string(error.line) + ':' + std::to_string(error.column) + ' ' +
                             error.message);
  }
  result->location = reader.location;
  result->last_eol = reader.last_eol;
  result->endl_defined = reader.endl_defined;
  return result;
}

inline std::unique_ptr<ReadText> read_text(const std::string& text) {
  return read_text_with<XMLReader>(text);
}

/// The form of the program's own files.
inline XMLFormat plain_format() {
  XMLFormat format;
  format.pretty = 0;
  return format;
}

/// How a text comes back that was written: a control character is the number that it was written
/// as.
inline TL_String as_read_again(std::string_view text) {
  TL_String result;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool number = byte < 0x20 && c != '\t' && c != '\n' && c != '\r';
    result += number ? "&#" + std::to_string(byte) + ';' : std::string(1, c);
  }
  return result;
}

inline constexpr char kUtf8Declaration[] = "<?xml version=\"1.0\" encoding=\"utf-8\"?>";

}  // namespace Trellis
