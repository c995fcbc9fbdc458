// Reads .reg texts into the statements they are made of.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The platform's limits, in units; names beyond them aren't understood.
inline constexpr size_t kMaxKeyName = 255;
inline constexpr size_t kMaxKeyDepth = 512;
inline constexpr size_t kMaxValueName = 16383;

struct RegStatement {
  enum class Kind { key, remove_key, value, remove_value };

  Kind kind = Kind::key;
  /// The whole path of a key, or the name of a value (empty for the default value), which belongs
  /// to the key statement before it.
  std::u16string name;
  uint32_t type = 0;
  /// As a registry stores it: texts are UTF-16 in little-endian bytes.
  std::string data;
  size_t line = 0;  ///< counted from 1

  bool operator==(const RegStatement&) const = default;
};

struct RegText {
  std::vector<RegStatement> statements;
  /// Empty, or "line N: " and why the text wasn't read beyond it.
  std::string error;
};

/// Understands "REGEDIT4" (code page) and "Windows Registry Editor Version 5.00" (UTF-16 with a
/// byte order mark, UTF-8 with or without one). Takes any bytes; what it makes of them is bounded
/// by their number. Whether a key's path names a registry is left to the caller.
RegText parse_reg_text(std::string_view text);
