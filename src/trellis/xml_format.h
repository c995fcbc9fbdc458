// The outward form of a document.
#pragma once

#include <ostream>
#include <vector>

#include "trellis/tl_string.h"

namespace Trellis {

struct XMLDocType {
  TL_String name{};
  TL_String public_id{};
  TL_String system_id{};
};

struct XMLStyleSheet {
  TL_String href{};
  TL_String type{};
  TL_String title{};
  TL_String media{};
  TL_String charset{};
  bool alternate = false;
};

struct XMLFormat {
  /// Writes byte order mark, declaration, document type and style sheets; with `line_feed` each is
  /// followed by a line end.
  void print_header(std::ostream& out, bool line_feed) const;

  /// 0: nothing added; 1: a line end before each tag; 2: a line end and two blanks for each level.
  int pretty = 2;
  const char* endl = "\n";  ///< a constant text, "\n" or "\r\n"
  TL_String version{"1.0"};
  TL_String _encoding{"utf-8"};
  bool _utf8_bom = false;
  XMLDocType doctype{};
  std::vector<XMLStyleSheet> stylesheets{};
  int standalone = -1;  ///< -1: not said; 0: no; 1: yes
};

}  // namespace Trellis
