// Writing a file: bytes, and text of 8 or 16 bits to a character.
#pragma once

#include <cstddef>
#include <cstdint>

#include "orlo/file_modes.h"

namespace ORLO {

/// Characters are given as 8-bit ones in the code page and converted to the file's encoding.
/// Objects belong to one thread. Nothing throws.
class OutFile {
 public:
  OutFile() = default;
  OutFile(const OutFile&) = delete;
  OutFile& operator=(const OutFile&) = delete;

  virtual ~OutFile() = default;
  /// Returns 1 on success, else 0.
  virtual size_t put(char character) = 0;
  /// Returns how many characters were taken. They may reach the file later; a failure then shows
  /// in failed().
  virtual size_t write(const void* data, size_t count) = 0;
  /// The file isn't open, or a write has failed; all later writes are refused.
  virtual bool failed() const = 0;
  virtual bool good() const = 0;
  /// Offset of the next character, in bytes from the file's beginning.
  virtual uint64_t tell() const = 0;
  /// Writes out what is held back and goes on at `offset`.
  virtual void seek(uint64_t offset) = 0;
  /// Gives all that is held back to the system. Returns good().
  virtual bool flush() = 0;

  /// Fixed; nothing depends on it.
  int kind = 6;
  int encoding = kText8Bit;
};

}  // namespace ORLO
