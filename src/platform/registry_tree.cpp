#include "platform/registry_tree.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "platform/reg_text.h"
#include "platform/registry.h"
#include "platform/utf16.h"

namespace {

struct PredefinedKey {
  int32_t number;
  std::u16string_view name;
  std::u16string_view short_name;
};

constexpr int32_t kUsers = kLocalMachine + 1;
constexpr int32_t kCurrentConfig = kLocalMachine + 3;

constexpr PredefinedKey kPredefined[] = {
    {kLocalMachine, u"HKEY_LOCAL_MACHINE", u"HKLM"},
    {kCurrentUser, u"HKEY_CURRENT_USER", u"HKCU"},
    {kClassesRoot, u"HKEY_CLASSES_ROOT", u"HKCR"},
    {kUsers, u"HKEY_USERS", u"HKU"},
    {kCurrentConfig, u"HKEY_CURRENT_CONFIG", u"HKCC"},
};

[[noreturn]] void refuse(const char* why, std::u16string_view path) {
  throw std::invalid_argument(why + (": " + utf8_from_utf16(path)));
}

/// Takes the first piece off `path`, with the backslashes around it; empty at the end.
std::u16string_view take_piece(std::u16string_view& path) {
  path.remove_prefix(std::min(path.find_first_not_of(u'\\'), path.size()));
  const std::u16string_view piece = path.substr(0, path.find(u'\\'));
  path.remove_prefix(piece.size());
  return piece;
}

/// Which of kPredefined the path begins with, taken off it.
size_t take_root(std::u16string_view& path) {
  const std::u16string_view whole = path;
  const std::u16string name = upcase(take_piece(path));
  for (size_t i = 0; i < std::size(kPredefined); ++i) {
    if (name == kPredefined[i].name || name == kPredefined[i].short_name) return i;
  }
  refuse("not a predefined key", whole);
}

auto place_of(const std::vector<std::shared_ptr<RegistryNode>>& subkeys,
              std::u16string_view upper_name) {
  return std::lower_bound(subkeys.begin(), subkeys.end(), upper_name,
                          [](const std::shared_ptr<RegistryNode>& node,
                             std::u16string_view wanted) { return node->upper_name < wanted; });
}

/// Handles may keep the node alive; it must not know of its parent any longer.
void mark_removed(RegistryNode& node) {
  node.removed = true;
  node.parent = nullptr;
  for (const auto& subkey : node.subkeys)
    mark_removed(*subkey);
}

}  // namespace

RegistryNode* RegistryNode::subkey(std::u16string_view wanted) const {
  const std::u16string upper = upcase(wanted);
  const auto place = place_of(subkeys, upper);
  return place != subkeys.end() && (*place)->upper_name == upper ? place->get() : nullptr;
}

RegistryValue* RegistryNode::value(std::u16string_view wanted) {
  const std::u16string upper = upcase(wanted);
  const auto found =
      std::find_if(values.begin(), values.end(), [&upper](const RegistryValue& candidate) {
        return candidate.name.size() == upper.size() && upcase(candidate.name) == upper;
      });
  return found == values.end() ? nullptr : &*found;
}

RegistryNode* RegistryNode::descend(std::u16string_view path) {
  RegistryNode* node = this;
  for (auto piece = take_piece(path); node != nullptr && !piece.empty(); piece = take_piece(path)) {
    node = node->subkey(piece);
  }
  return node;
}

std::u16string RegistryNode::path() const {
  return parent == nullptr ? name : parent->path() + u'\\' + name;
}

bool RegistryNode::is_below(const RegistryNode& other) const {
  const RegistryNode* node = parent;
  while (node != nullptr && node != &other)
    node = node->parent;
  return node != nullptr;
}

RegistryTree::RegistryTree(Observer observer) : observer_(std::move(observer)) {
  for (const PredefinedKey& key : kPredefined) {
    auto node = std::make_shared<RegistryNode>();
    node->name = key.name;
    node->upper_name = key.name;
    roots_.push_back(std::move(node));
  }
}

std::shared_ptr<RegistryNode> RegistryTree::root(int32_t number) const {
  for (size_t i = 0; i < std::size(kPredefined); ++i) {
    if (kPredefined[i].number == number) return roots_[i];
  }
  return nullptr;
}

RegistryNode* RegistryTree::find(std::u16string_view path) const {
  return roots_[take_root(path)]->descend(path);
}

RegistryNode& RegistryTree::create(std::u16string_view path) {
  const std::u16string_view whole = path;
  RegistryNode* node = roots_[take_root(path)].get();
  size_t depth = 1;
  for (auto piece = take_piece(path); !piece.empty(); piece = take_piece(path)) {
    if (piece.size() > kMaxKeyName) refuse("the name of a key is too long", whole);
    if (piece.find(u'\0') != piece.npos) refuse("a NUL in the name of a key", whole);
    if (++depth > kMaxKeyDepth) refuse("keys are nested too deeply", whole);
    RegistryNode* next = node->subkey(piece);
    node = next != nullptr ? next : &add(*node, piece);
  }
  return *node;
}

void RegistryTree::remove(std::u16string_view path) {
  RegistryNode* node = find(path);
  if (node == nullptr) return;
  if (node->parent == nullptr) refuse("a predefined key can't be removed", path);
  RegistryNode& parent = *node->parent;
  const auto place = place_of(parent.subkeys, node->upper_name);
  mark_removed(*node);
  parent.subkeys.erase(place);
  observer_(parent, kRegNotifyName);
}

void RegistryTree::set(RegistryNode& node, std::u16string_view name, uint32_t type,
                       std::string data) {
  if (name.size() > kMaxValueName) refuse("the name of a value is too long", name);
  if (name.find(u'\0') != name.npos) refuse("a NUL in the name of a value", name);
  RegistryValue* value = node.value(name);
  if (value == nullptr) {
    value = &node.values.emplace_back();
    value->name = name;
  }
  value->type = type;
  value->data = std::move(data);
  observer_(node, kRegNotifyLastSet);
}

void RegistryTree::unset(RegistryNode& node, std::u16string_view name) {
  const RegistryValue* value = node.value(name);
  if (value == nullptr) return;
  node.values.erase(node.values.begin() + (value - node.values.data()));
  observer_(node, kRegNotifyLastSet);
}

RegistryNode& RegistryTree::add(RegistryNode& parent, std::u16string_view name) {
  auto node = std::make_shared<RegistryNode>();
  node->name = name;
  node->upper_name = upcase(name);
  node->parent = &parent;
  RegistryNode& added = *node;
  parent.subkeys.insert(place_of(parent.subkeys, added.upper_name), std::move(node));
  observer_(added, 0);
  observer_(parent, kRegNotifyName);
  return added;
}
