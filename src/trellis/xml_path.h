// The way to a node, built from a text like "a/b[2]/c[@id='x']".
#pragma once

#include <functional>
#include <map>
#include <vector>

#include "trellis/tl_string.h"

namespace Trellis {

struct XMLPathStep {
  TL_String name;          ///< of the child; "*" is any
  int index = -1;          ///< how many matching children come before it; -1 is the first
  XMLAttributes filter{};  ///< values that attributes must have; an absent one is empty
};

struct XMLPath {
  XMLPath() = default;
  /// Steps up to the first empty one; what follows that is ignored.
  XMLPath(const char* text);
  XMLPath(const std::string& text);

  bool absolute = false;  ///< the text begins with "/"
  std::vector<XMLPathStep> steps;
};

}  // namespace Trellis
