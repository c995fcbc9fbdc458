// The text of a path, followed through a fixed tree: its steps keep to their form, and what is
// found is what a count of all children finds.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "trellis/xml_test_support.h"

namespace {

using namespace Trellis;

void demand(bool holds) {
  if (!holds) std::abort();
}

const XMLDoc& tree() {
  static const auto read =
      read_text("<a><b x='1'>one</b><b/><b x='1' y=''>two</b><c><a x='2'/><a/></c></a><a><d/></a>");
  return read->doc;
}

const XMLNode* by_counting(const XMLNode& node, const XMLPathStep& step) {
  int left = std::max(step.index, 0);
  for (const auto& child : node.children) {
    bool fits = step.name == "*" || std::string(*child) == step.name;
    for (const auto& [name, value] : step.filter)
      fits = fits && child->get(name, "") == value;
    if (fits && left-- == 0) return child.get();
  }
  return nullptr;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const XMLPath path(text);
  demand(path.absolute == text.starts_with('/'));
  demand(path.steps.size() <= text.size());
  const XMLNode* expected = &tree();
  for (const XMLPathStep& step : path.steps) {
    demand(step.name.find_first_of("/[") == std::string::npos);
    demand(step.index >= -1);
    demand(step.filter.empty() || step.index == -1);
    if (expected != nullptr) expected = by_counting(*expected, step);
  }
  demand(tree().find(path) == expected);
  demand(tree().sub_text(path) == (expected != nullptr ? expected->text() : TL_String()));
  return 0;
}
