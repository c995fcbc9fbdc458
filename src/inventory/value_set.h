// All values of one registry key, read in one walk: a registry call costs far more than a look
// through a dozen names.
#pragma once

#include <cstdint>
#include <vector>

#include "orlo/rstring.h"
#include "platform/registry.h"

class ValueSet {
 public:
  /// Reads all values of `key`, replacing what was read before. The buffers are kept, so one set
  /// serves many keys.
  void read(const RegistryKey& key, const Registry::KeyInfo& info);

  /// The value as text that ends at its first NUL, whatever its type; empty if there is none.
  String text(const char* name) const;
  /// The value read into four cleared bytes: false if it is missing or longer.
  bool number(const char* name, int32_t& number) const;
  int32_t number_or(const char* name, int32_t fallback) const;
  /// True only for a REG_DWORD of four bytes.
  bool dword(const char* name, uint32_t& number) const;

 private:
  struct Value {
    size_t name;  ///< offset in bytes_, NUL-terminated
    uint32_t name_length;
    uint32_t type;
    size_t data;  ///< offset in bytes_
    uint32_t size;
  };

  const Value* find(const char* name) const;
  bool read_one(const RegistryKey& key, uint32_t index);

  std::vector<Value> values_;
  std::vector<char> bytes_;
  std::vector<char> name_buffer_;
  std::vector<char> data_buffer_;
};
