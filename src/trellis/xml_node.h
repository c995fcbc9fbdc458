// A document in memory: nodes that keep what stood around them, a cursor, a filter.
#pragma once

#include <iterator>
#include <list>
#include <memory>
#include <stack>
#include <vector>

#include "trellis/tl_string.h"
#include "trellis/xml_path.h"

namespace Trellis {

/// An element; as a text it is its name. Names and attributes are in the code page; the other texts
/// are held as they stood in the file, in UTF-8, with entities and comments.
class XMLNode : public TL_String {
 public:
  explicit XMLNode(TL_String name, TL_String leading_text = {});
  XMLNode(const XMLNode&) = delete;
  XMLNode& operator=(const XMLNode&) = delete;
  /// Destroys all below it, however deep, from the last child to the first.
  virtual ~XMLNode();

  /// The value, created empty if absent. Lives as long as the attribute.
  TL_String& operator[](std::string_view key) { return attribute_of(attributes, key); }
  TL_String get(std::string_view key, const char* fallback) const;
  /// The decoded `content`.
  TL_String text() const;
  /// The decoded `content` of the node at the end of the path; empty without such a node.
  TL_String sub_text(const XMLPath& path) const;
  /// The first child that matches; null without one.
  XMLNode* find(const XMLPathStep& step) const;
  /// Goes to the first child that matches at each step, without turning back; null if there is
  /// none. A path without steps leads nowhere else than here.
  XMLNode* find(const XMLPath& path);
  const XMLNode* find(const XMLPath& path) const;

  std::list<std::unique_ptr<XMLNode>> children;
  XMLAttributes attributes;
  TL_String leading;           ///< in front of the start tag
  TL_String content;           ///< from the start tag to the first child or to the end tag
  TL_String end;               ///< the white space in front of the end tag
  TL_String trailing;          ///< from the end tag to the next tag
  bool cdata_content = false;  ///< `content` stood in one CDATA section
};

/// A place in a tree and the way down to it. Owns nothing; the tree must outlive it.
struct XMLPosition {
  explicit XMLPosition(XMLNode& node) : root(&node), current(&node) {}

  /// To the first child of that name; false, and no move, without one.
  bool go_down(std::string_view name);
  /// To a node that is a child of the current one already.
  void add_down(XMLNode& node);
  /// From the root if the path is absolute; false, and no move, if it leads nowhere. One back()
  /// undoes it, however many steps it has.
  bool go(const XMLPath& path);
  /// False, and a failed assertion, at the place where it all began.
  bool back();

  XMLNode* root;
  XMLNode* current;
  std::stack<XMLNode*, std::vector<XMLNode*>> stack;
};

/// Walks the children of that name: `for (XMLNode& row : XMLChildFilter(node, "row"))`. A default
/// one is the end.
class XMLChildFilter {
 public:
  XMLChildFilter() = default;
  XMLChildFilter(const XMLNode& node, std::string_view name);

  XMLNode& operator*() const { return **at_; }
  XMLNode* operator->() const { return at_->get(); }
  XMLChildFilter& operator++();
  bool operator==(const XMLChildFilter& other) const;
  bool operator==(std::default_sentinel_t) const { return at_end(); }

  XMLChildFilter begin() const { return *this; }
  static std::default_sentinel_t end() { return {}; }

 private:
  bool at_end() const { return node_ == nullptr || at_ == node_->children.end(); }
  void seek();

  const XMLNode* node_ = nullptr;
  TL_String name_;
  std::list<std::unique_ptr<XMLNode>>::const_iterator at_;
};

}  // namespace Trellis
