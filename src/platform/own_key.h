// The seam to the registry key in which the program keeps texts of its own. All texts are 8-bit, in
// the code page.
#pragma once

#include <memory>

#include "orlo/rstring.h"
#include "platform/registry.h"

/// Belongs to one thread.
class OwnKey {
 public:
  virtual ~OwnKey() = default;
  /// Opens the key at `path` below HKEY_CURRENT_USER for reading and writing, and creates it if it
  /// isn't there. False if that fails. Once: a second call closes the first one's key.
  virtual bool open(const char* path) = 0;
  /// A value as text that ends at its first NUL, whatever its type; empty if it can't be read.
  virtual String text(const char* name) = 0;
  /// Writes a value as REG_SZ with its terminator.
  virtual RegStatus set_text(const char* name, const String& text) = 0;
};

/// The one of this system.
std::unique_ptr<OwnKey> make_system_own_key();
