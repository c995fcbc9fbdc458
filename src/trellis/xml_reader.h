// From the characters of a document to its tree.
#pragma once

#include <istream>
#include <vector>

#include "trellis/xml_doc.h"

namespace Trellis {

/// The next character's place, counted from 1.
struct XMLLocation {
  const char* display_path = "";  ///< of whoever started the reading
  int line = 1;
  int column = 1;
};

/// What the parser meets, put into a tree below a given node. Used once; belongs to one thread.
class XMLReaderBase {
 public:
  enum LastTag : int { kNoTag = 0, kStartTag = 1, kEndTag = 2 };

  explicit XMLReaderBase(XMLNode& node) : pos(node) {}
  XMLReaderBase(const XMLReaderBase&) = delete;
  XMLReaderBase& operator=(const XMLReaderBase&) = delete;
  virtual ~XMLReaderBase() = default;

  /// The next character, 0 to 255, or -1 at the end.
  virtual int get() = 0;
  /// Null for what isn't there or empty; `standalone` is -1 if absent, 0 no, 1 yes.
  virtual void on_xml_decl(const char* version, const char* encoding, int standalone);
  virtual void on_start_element(const TL_String& name, XMLAttributes attributes);
  virtual void on_end_element();
  /// Text, comments, CDATA sections and unknown instructions, in UTF-8.
  virtual void on_default(const TL_String& text);

  /// Reads to the end of the stream.
  void read();

  XMLPosition pos;
  TL_String content;  ///< since the last tag
  LastTag last_tag = kNoTag;
  std::vector<XMLError> errors;
  std::vector<XMLError> warnings;
  XMLFormat _format;
  bool endl_defined = false;  ///< a line end was met, and `_format.endl` is the file's
  XMLLocation location;
};

/// Reads from a stream. Where `get` is this one, the parser takes whole blocks off the stream; a
/// class derived from this one gets a call for each character.
class XMLReader : public XMLReaderBase {
 public:
  /// The stream must outlive the reading.
  XMLReader(XMLNode& node, std::istream& stream) : XMLReaderBase(node), in(&stream) {}

  int get() override;
  /// Counts lines and columns for characters that the parser took off the stream itself.
  void count(const char* begin, const char* end);

  std::istream* in;
  int last_eol = 0;  ///< the last character if it was the first of a line end, else 0

 private:
  void count(int c);
};

}  // namespace Trellis
