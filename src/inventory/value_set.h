// All values of one registry key, read in one walk: a registry call costs far more than a look
// through a dozen names.
#pragma once

#include <cstdint>
#include <vector>

#include "orlo/rstring.h"
#include "platform/registry.h"

/// Answers as a query by name would, and asks by name itself where a walk can't tell: in a key of
/// many or huge values, where the walk failed or came up short, and for names that stand twice in
/// the code page. Alone, a name that only looks like another in the code page passes for it.
class ValueSet {
 public:
  /// Reads the values of `key`, replacing what was read before. `info` is the key's, null if it
  /// isn't known. The key must stay open and in its place while values are asked for. The buffers
  /// are kept, so one set serves many keys.
  void read(const RegistryKey& key, const Registry::KeyInfo* info);

  /// The value as text that ends at its first NUL, whatever its type; empty if there is none.
  String text(const char* name) const;
  /// The value read into four cleared bytes, whatever its type: false if it is missing or longer.
  bool number(const char* name, int32_t& number) const;
  int32_t number_or(const char* name, int32_t fallback) const;
  /// True only for a REG_DWORD of four bytes.
  bool dword(const char* name, uint32_t& number) const;

 private:
  struct Value {
    size_t name;  ///< offset in bytes_
    uint32_t name_length;
    uint32_t type;
    size_t data;  ///< offset in bytes_
    uint32_t size;
  };
  struct ShortValue {
    uint32_t type = 0;
    uint32_t size = 0;
    uint32_t bits = 0;
  };

  bool walk(const RegistryKey& key, const Registry::KeyInfo& info);
  bool read_one(const RegistryKey& key, uint32_t index);
  /// False if only a query by name can tell; `found` is null where there is no such value.
  bool find(const char* name, const Value*& found) const;
  bool read_short(const char* name, ShortValue& result) const;

  const RegistryKey* key_ = nullptr;
  bool walked_ = false;  ///< values_ holds all values of the key
  std::vector<Value> values_;
  std::vector<char> bytes_;
  std::vector<char> name_buffer_;
  std::vector<char> data_buffer_;
};
