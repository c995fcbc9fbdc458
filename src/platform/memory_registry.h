// A registry in memory, for tests and for the build machine: loads .reg texts, keeps write times,
// tells of changes, logs the calls it gets and fails any operation on demand.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"

/// Answers as the platform's 8-bit functions do: names and texts are kept in UTF-16 and come in the
/// code page, subkeys in the order of their names, values in the order written. Keys that are open
/// must be closed before it ends. All operations may be called from any thread.
class MemoryRegistry : public Registry {
 public:
  /// Which view of HKEY_LOCAL_MACHINE\SOFTWARE a process without further flags sees.
  enum class View { native, wow64 };

  explicit MemoryRegistry(View view = View::wow64);
  ~MemoryRegistry() override;

  /// Loads a .reg text: "REGEDIT4" (code page) or "Windows Registry Editor Version 5.00" (UTF-8,
  /// or UTF-16 with a byte order mark). Keys below HKEY_LOCAL_MACHINE\SOFTWARE\WOW6432Node fill
  /// the 32-bit view, as on a 64-bit system. A value behind a key that is removed isn't loaded.
  /// False, with the line in error(), if the text isn't understood; what stood before that line
  /// has been loaded.
  bool load(std::string_view reg_text);
  std::string error() const;

  /// Sets a value, creating the key. `path` begins with the name of a predefined key
  /// and is UTF-8, as is `name`; where it doesn't, this and the operations below throw
  /// std::invalid_argument. Text data is UTF-16 bytes, as a registry stores it.
  void set_raw(std::string_view path, std::string_view name, uint32_t type, std::string_view data);
  void set_text(std::string_view path, std::string_view name, std::u16string_view text);
  void set_number(std::string_view path, std::string_view name, uint32_t number);
  void create(std::string_view path);
  /// Removes a key with all below it; handles to it answer kRegKeyDeleted from then on.
  void remove(std::string_view path);
  void remove_value(std::string_view path, std::string_view name);
  /// Creates the key if it isn't there. Every other change stamps the key with a clock of the
  /// registry's own, which begins in 2009 and advances by a second with each change.
  void set_last_write(std::string_view path, ORLO::FileTime time);

  /// The next `times` calls of `operation` ("open", "info", "subkey_at", "value", "value_at",
  /// "notify", "delete_key") for a name that equals `name` (any if empty), without regard to case,
  /// answer `status`; times -1 is for ever. The name is the one in calls(), or the whole path as
  /// set_raw takes it, of a value with its name behind a further backslash.
  void fail(std::string operation, std::string name, RegStatus status, int times = 1);
  /// The calls so far: "open SOFTWARE\\Foo", "value DisplayName", with the name of what was found
  /// for "subkey_at" and "value_at", and the key's own name for "info" and "notify".
  std::vector<std::string> calls() const;
  void clear_calls();
  /// Keys that are open at the moment.
  size_t open_keys() const;
  /// Events that notify() has promised to signal.
  size_t awaited() const;

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
  struct Impl;
  std::unique_ptr<Impl> impl_;
};
