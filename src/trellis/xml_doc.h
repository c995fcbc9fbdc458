// A document: a node without a name, whose child is the root element.
#pragma once

#include <vector>

#include "trellis/xml_format.h"
#include "trellis/xml_node.h"

namespace Trellis {

class XMLReaderBase;

struct XMLError {
  TL_String message{};
  TL_String pos{};  ///< display path of the document
  int line = 0;     ///< counted from 1, like `column`
  int column = 0;
  int error_code = 0;
};

class XMLDoc : public XMLNode {
 public:
  XMLDoc() : XMLNode(TL_String()) {}

  /// Reads all that `reader`, made for this document, has; the tree holds what could be read in
  /// any case. True if there was no error. `display_path` says in errors where they are; it may be
  /// null, and must outlive the reading.
  bool read(XMLReaderBase& reader, const char* display_path);

  XMLFormat _format;  ///< as read
  std::vector<XMLError> errors;
};

}  // namespace Trellis
