#include "trellis/xml_node.h"

#include "orlo/assertion.h"
#include "trellis/xml_text.h"

namespace Trellis {
namespace {

bool has_all(const XMLNode& node, const XMLAttributes& required) {
  for (const auto& [name, value] : required) {
    const auto found = node.attributes.find(name);
    if (found == node.attributes.end() ? !value.empty() : found->second != value) return false;
  }
  return true;
}

std::string_view name_of(const XMLNode& node) {
  return node;
}

bool matches(const XMLNode& node, const XMLPathStep& step) {
  return (step.name == "*" || name_of(node) == step.name) && has_all(node, step.filter);
}

}  // namespace

XMLNode::XMLNode(TL_String name, TL_String leading_text)
    : TL_String(std::move(name)), leading(std::move(leading_text)) {}

XMLNode::~XMLNode() {
  // Takes the tree apart into one list: depth costs no stack, and splicing no memory.
  auto doomed = std::move(children);
  while (!doomed.empty()) {
    const std::unique_ptr<XMLNode> last = std::move(doomed.back());
    doomed.pop_back();
    doomed.splice(doomed.end(), last->children);
  }
}

TL_String XMLNode::get(std::string_view key, const char* fallback) const {
  const auto found = attributes.find(key);
  return found != attributes.end() ? found->second : TL_String(fallback);
}

TL_String XMLNode::text() const {
  return decode_xml_text(content);
}

TL_String XMLNode::sub_text(const XMLPath& path) const {
  const XMLNode* const node = find(path);
  return node != nullptr ? node->text() : TL_String();
}

XMLNode* XMLNode::find(const XMLPathStep& step) const {
  int before = 0;
  for (const auto& child : children) {
    if (!matches(*child, step)) continue;
    if (step.index == -1 || before == step.index) return child.get();
    ++before;
  }
  return nullptr;
}

const XMLNode* XMLNode::find(const XMLPath& path) const {
  const XMLNode* node = this;
  for (const XMLPathStep& step : path.steps) {
    node = node->find(step);
    if (node == nullptr) return nullptr;
  }
  return node;
}

XMLNode* XMLNode::find(const XMLPath& path) {
  XMLNode* node = this;
  for (const XMLPathStep& step : path.steps) {
    node = node->find(step);
    if (node == nullptr) return nullptr;
  }
  return node;
}

bool XMLPosition::go_down(std::string_view name) {
  const XMLChildFilter child(*current, name);
  if (child == child.end()) return false;
  add_down(*child);
  return true;
}

void XMLPosition::add_down(XMLNode& node) {
  stack.push(current);
  current = &node;
}

bool XMLPosition::go(const XMLPath& path) {
  XMLNode* const node = (path.absolute ? root : current)->find(path);
  if (node == nullptr) return false;
  add_down(*node);
  return true;
}

bool XMLPosition::back() {
  if (!ORLO::check_assertion(!stack.empty(), "!_stack.empty()", "trellis", 1702)) return false;
  current = stack.top();
  stack.pop();
  return true;
}

XMLChildFilter::XMLChildFilter(const XMLNode& node, std::string_view name)
    : node_(&node), name_(name), at_(node.children.begin()) {
  seek();
}

XMLChildFilter& XMLChildFilter::operator++() {
  if (at_end()) return *this;
  ++at_;
  seek();
  return *this;
}

bool XMLChildFilter::operator==(const XMLChildFilter& other) const {
  if (at_end() || other.at_end()) return at_end() == other.at_end();
  return at_ == other.at_;
}

void XMLChildFilter::seek() {
  while (!at_end() && name_of(**at_) != name_)
    ++at_;
}

}  // namespace Trellis
