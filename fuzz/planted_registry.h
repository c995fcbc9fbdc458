// A registry of one tree that a fuzzer plants. It does less than MemoryRegistry, so that a run
// costs what the reading costs: keys are found without a path, and nothing is converted or logged.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string_view>
#include <vector>

#include "platform/registry.h"

/// What the 8-bit functions make of the names of keys, in the order of the names that are stored.
/// Those that don't open are told as another one is, or can't be told at all.
struct PlantedName {
  std::string_view told;
  bool opens;
};
inline constexpr std::array<PlantedName, 8> kPlantedNames = {{{"a", true},
                                                              {"b c", true},
                                                              {"KB1", true},
                                                              {"{1}.x", true},
                                                              {"\xC4", true},
                                                              {"a", false},
                                                              {"?", false},
                                                              {"a", false}}};

struct PlantedValue {
  std::string_view name;
  uint32_t type = 0;
  std::string_view data;
};

struct PlantedKey {
  /// The value's text up to its first NUL; empty if there is none.
  std::string_view text(std::string_view value) const;
  /// The key that opens by that name; null if there is none.
  PlantedKey* find(std::string_view told) const;

  size_t name = 0;  ///< in kPlantedNames; the root has none
  PlantedKey* parent = nullptr;
  std::array<PlantedKey*, kPlantedNames.size()> below{};
  std::vector<PlantedValue> values;
  uint32_t more_values = 0;  ///< that are counted, and gone when they are read
  ORLO::FileTime last_write = 0;
  int opened = 0;
};

/// All handles are pointers to its keys.
class PlantedRegistry : public Registry {
 public:
  enum Operation { kOpen, kInfo, kSubkeyAt, kValueAt, kOperations };

  PlantedKey& root() { return keys_.front(); }
  /// The key below `parent`, which is made if it isn't there.
  PlantedKey& plant(PlantedKey& parent, size_t name);
  /// Sets a value. The bytes are what the 8-bit functions give, and must stay where they are.
  static void set(PlantedKey& key, const PlantedValue& value);
  /// The next call of `operation` for a key of that name is refused.
  void fail(Operation operation, size_t name);
  /// Whether a failure is planted that keeps the reader from a key.
  bool hides_keys() const { return hides_keys_; }
  int open_keys() const { return open_keys_; }

  RegStatus open(int32_t root, const char* path, uint32_t access, RegistryKey& key) override;
  RegStatus open(const RegistryKey& parent, const char* path, uint32_t access,
                 RegistryKey& key) override;
  RegStatus info(const RegistryKey& key, KeyInfo& info) override;
  RegStatus subkey_at(const RegistryKey& key, uint32_t index, char* name,
                      uint32_t& length) override;
  RegStatus value(const RegistryKey& key, const char* name, uint32_t& type, void* data,
                  uint32_t& size) override;
  RegStatus value_at(const RegistryKey& key, uint32_t index, char* name, uint32_t& name_length,
                     uint32_t& type, void* data, uint32_t& size) override;
  RegStatus notify(const RegistryKey& key, bool subtree, uint32_t filter,
                   ORLO::Event& event) override;
  RegStatus delete_key(int32_t root, const char* path) override;

 protected:
  void close(RegistryKey::Handle handle) noexcept override;

 private:
  RegStatus hand_out(PlantedKey& key, RegistryKey& opened);
  bool refuses(Operation operation, const PlantedKey& key);

  std::deque<PlantedKey> keys_{1};  // which stay where they are
  std::array<std::array<uint8_t, kPlantedNames.size()>, kOperations> failures_{};
  bool hides_keys_ = false;
  int open_keys_ = 0;
};
