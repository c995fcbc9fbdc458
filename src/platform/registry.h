// The seam to the registry. All names and texts are 8-bit, in the process's code page.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "orlo/rstring_fwd.h"
#include "orlo/system_time.h"

namespace ORLO {
class Event;
}

/// A system error code; 0 is success.
using RegStatus = uint32_t;

inline constexpr RegStatus kRegSuccess = 0;
inline constexpr RegStatus kRegFileNotFound = 2;
inline constexpr RegStatus kRegAccessDenied = 5;
inline constexpr RegStatus kRegInvalidHandle = 6;
inline constexpr RegStatus kRegMoreData = 234;
inline constexpr RegStatus kRegNoMoreItems = 259;
inline constexpr RegStatus kRegKeyDeleted = 1018;

inline constexpr uint32_t kRegSz = 1;
inline constexpr uint32_t kRegExpandSz = 2;
inline constexpr uint32_t kRegBinary = 3;
inline constexpr uint32_t kRegDword = 4;
inline constexpr uint32_t kRegMultiSz = 7;
inline constexpr uint32_t kRegQword = 11;

inline constexpr uint32_t kKeyQueryValue = 0x0001;
inline constexpr uint32_t kKeyRead = 0x20019;
inline constexpr uint32_t kKeyWow64_64 = 0x0100;

/// Kinds of change that notify() tells of.
inline constexpr uint32_t kRegNotifyName = 1;  ///< a subkey came or went
inline constexpr uint32_t kRegNotifyAttributes = 2;
inline constexpr uint32_t kRegNotifyLastSet = 4;  ///< a value was written or removed
inline constexpr uint32_t kRegNotifySecurity = 8;

/// The predefined keys as rows of the inventory store them.
inline constexpr int32_t kLocalMachine = -2147483646;
inline constexpr int32_t kCurrentUser = -2147483647;
/// HKEY_CLASSES_ROOT: what the shell knows of types of files.
inline constexpr int32_t kClassesRoot = -2147483647 - 1;

class Registry;

/// Owns one open key; closing goes to the registry that opened it. Move-only. An empty one stands
/// for a key that could not be opened.
class RegistryKey {
 public:
  /// What a registry makes of an open key. Null is no key.
  using Handle = void*;

  RegistryKey() noexcept = default;
  RegistryKey(Registry& registry, Handle handle) noexcept : registry_(&registry), handle_(handle) {}
  RegistryKey(RegistryKey&& other) noexcept
      : registry_(other.registry_), handle_(std::exchange(other.handle_, nullptr)) {}
  RegistryKey& operator=(RegistryKey&& other) noexcept;
  ~RegistryKey() { close(); }

  void close() noexcept;
  explicit operator bool() const noexcept { return handle_ != nullptr; }
  Handle handle() const noexcept { return handle_; }
  Registry* registry() const noexcept { return registry_; }

 private:
  Registry* registry_ = nullptr;
  Handle handle_ = nullptr;
};

class Registry {
 public:
  struct KeyInfo {
    uint32_t subkeys = 0;
    uint32_t longest_subkey_name = 0;  ///< in characters, no terminator
    uint32_t values = 0;
    uint32_t longest_value_name = 0;  ///< in characters, no terminator
    uint32_t longest_value = 0;       ///< in bytes
    ORLO::FileTime last_write = 0;
  };

  virtual ~Registry() = default;

  /// Opens `path` below a predefined key (kLocalMachine, kCurrentUser, kClassesRoot). `key` is
  /// replaced on success and emptied on failure.
  virtual RegStatus open(int32_t root, const char* path, uint32_t access, RegistryKey& key) = 0;
  /// Opens `path` below an open key.
  virtual RegStatus open(const RegistryKey& parent, const char* path, uint32_t access,
                         RegistryKey& key) = 0;
  virtual RegStatus info(const RegistryKey& key, KeyInfo& info) = 0;
  /// Name of the subkey at `index`; `length` is the buffer's size on entry and the name's length
  /// without terminator on success. kRegMoreData if it doesn't fit, kRegNoMoreItems at the end.
  virtual RegStatus subkey_at(const RegistryKey& key, uint32_t index, char* name,
                              uint32_t& length) = 0;
  /// Reads a value, its name compared without case. `size` is the buffer's size on entry and the
  /// value's size on success and with kRegMoreData (`data` then holds nothing of use); with null
  /// `data` only the size is asked for. Text comes as 8-bit, with no terminator but its own.
  virtual RegStatus value(const RegistryKey& key, const char* name, uint32_t& type, void* data,
                          uint32_t& size) = 0;
  /// Name, type and data of the value at `index`, sizes as in subkey_at and value.
  virtual RegStatus value_at(const RegistryKey& key, uint32_t index, char* name,
                             uint32_t& name_length, uint32_t& type, void* data, uint32_t& size) = 0;
  /// Asks for one signal of `event`: at the next change of a kind in `filter` to the key (with
  /// `subtree`, to all below it too), when the key itself is removed, or when `key` is closed. What
  /// changes between a signal and the next call may go untold; `subtree` and `filter` of the first
  /// call stay in force while the key is open. `event` must live as long as `key` is open.
  virtual RegStatus notify(const RegistryKey& key, bool subtree, uint32_t filter,
                           ORLO::Event& event) = 0;
  /// Deletes the key at `path` below a predefined key, in the view of this process, with its
  /// values. kRegAccessDenied if it has subkeys, and for a path without a name, which would stand
  /// for the predefined key itself.
  virtual RegStatus delete_key(int32_t root, const char* path) = 0;

 protected:
  friend class RegistryKey;
  virtual void close(RegistryKey::Handle handle) noexcept = 0;
};

/// Whether a path is null, or made of backslashes alone.
bool names_no_key(const char* path) noexcept;

/// The value's bytes; of a text value one trailing NUL is dropped. Empty on failure.
String get_registry_binary(const RegistryKey& key, const char* value_name);

/// The value as text that ends at its first NUL, whatever its type. Empty on failure.
String get_registry_text(const RegistryKey& key, const char* value_name);

/// The registry of this system.
std::unique_ptr<Registry> make_system_registry();
