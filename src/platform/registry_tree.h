// The keys and values of a registry in memory, as a registry stores them.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "orlo/system_time.h"

struct RegistryValue {
  std::u16string name;
  uint32_t type = 0;
  std::string data;  ///< texts are UTF-16 in little-endian bytes
};

struct RegistryNode : std::enable_shared_from_this<RegistryNode> {
  /// The subkey of that name, compared without case; null if there is none.
  RegistryNode* subkey(std::u16string_view wanted) const;
  /// Likewise.
  RegistryValue* value(std::u16string_view wanted);
  /// The key at `path` below this one; empty pieces don't count. Null if it isn't there.
  RegistryNode* descend(std::u16string_view path);
  /// The key's whole path, from the name of its predefined key on.
  std::u16string path() const;
  bool is_below(const RegistryNode& other) const;

  std::u16string name;  ///< as first spelled
  std::u16string upper_name;
  RegistryNode* parent = nullptr;
  std::vector<std::shared_ptr<RegistryNode>> subkeys;  ///< sorted by upper_name
  std::vector<RegistryValue> values;                   ///< in the order written
  ORLO::FileTime last_write = 0;
  bool removed = false;
};

/// Paths begin with the name of a predefined key, in full or short ("HKLM"). Where one doesn't, or
/// breaks a limit of the platform, std::invalid_argument is thrown.
class RegistryTree {
 public:
  /// Told of each change after it was made, with its kind: kRegNotifyName, kRegNotifyLastSet, or 0
  /// for a key that has just come to be.
  using Observer = std::function<void(RegistryNode& node, uint32_t kind)>;

  explicit RegistryTree(Observer observer);

  /// The predefined key of that number; null if there is none.
  std::shared_ptr<RegistryNode> root(int32_t number) const;
  /// Null if there is no such key.
  RegistryNode* find(std::u16string_view path) const;
  RegistryNode& create(std::u16string_view path);
  /// Removes a key with all below it, if it is there.
  void remove(std::u16string_view path);
  void set(RegistryNode& node, std::u16string_view name, uint32_t type, std::string data);
  void unset(RegistryNode& node, std::u16string_view name);

 private:
  RegistryNode& add(RegistryNode& parent, std::u16string_view name);

  Observer observer_;
  std::vector<std::shared_ptr<RegistryNode>> roots_;
};
