// A registry in front of another one, to change things between two calls.
#pragma once

#include <atomic>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/registry.h"

class HookedRegistry : public Registry {
 public:
  /// Told of each call before it is made: "subkey_at", with the index of what is asked for (0 where
  /// there is none).
  using Hook = std::function<void(const std::string& operation, uint32_t index)>;

  HookedRegistry(Registry& behind, Hook hook) : behind_(behind), hook_(std::move(hook)) {}
  int open_keys() const noexcept { return open_keys_; }

  RegStatus open(int32_t root, const char* path, uint32_t access, RegistryKey& key) override {
    hook_("open", 0);
    RegistryKey opened;
    const RegStatus status = behind_.open(root, path, access, opened);
    adopt(std::move(opened), key);
    return status;
  }
  RegStatus open(const RegistryKey& parent, const char* path, uint32_t access,
                 RegistryKey& key) override {
    hook_("open", 0);
    RegistryKey opened;
    const RegStatus status = behind_.open(own(parent), path, access, opened);
    adopt(std::move(opened), key);
    return status;
  }
  RegStatus info(const RegistryKey& key, KeyInfo& info) override {
    hook_("info", 0);
    return behind_.info(own(key), info);
  }
  RegStatus subkey_at(const RegistryKey& key, uint32_t index, char* name,
                      uint32_t& length) override {
    hook_("subkey_at", index);
    return behind_.subkey_at(own(key), index, name, length);
  }
  RegStatus value(const RegistryKey& key, const char* name, uint32_t& type, void* data,
                  uint32_t& size) override {
    hook_("value", 0);
    return behind_.value(own(key), name, type, data, size);
  }
  RegStatus value_at(const RegistryKey& key, uint32_t index, char* name, uint32_t& name_length,
                     uint32_t& type, void* data, uint32_t& size) override {
    hook_("value_at", index);
    return behind_.value_at(own(key), index, name, name_length, type, data, size);
  }
  RegStatus notify(const RegistryKey& key, bool subtree, uint32_t filter,
                   ORLO::Event& event) override {
    return behind_.notify(own(key), subtree, filter, event);
  }
  RegStatus delete_key(int32_t root, const char* path) override {
    hook_("delete_key", 0);
    return behind_.delete_key(root, path);
  }

 protected:
  void close(RegistryKey::Handle handle) noexcept override {
    delete static_cast<RegistryKey*>(handle);
    --open_keys_;
  }

 private:
  static const RegistryKey& own(const RegistryKey& key) {
    return *static_cast<const RegistryKey*>(key.handle());
  }
  /// The handle is the key behind, which closes when it is deleted.
  void adopt(RegistryKey opened, RegistryKey& key) {
    if (opened) ++open_keys_;
    key = opened ? RegistryKey(*this, std::make_unique<RegistryKey>(std::move(opened)).release())
                 : RegistryKey();
  }

  Registry& behind_;
  const Hook hook_;
  std::atomic<int> open_keys_{0};
};

/// Tells of each key a subkey before all others whose name begins with a NUL.
class NulNameRegistry final : public HookedRegistry {
 public:
  explicit NulNameRegistry(Registry& behind)
      : HookedRegistry(behind, [](const std::string&, uint32_t) {}) {}

  RegStatus subkey_at(const RegistryKey& key, uint32_t index, char* name,
                      uint32_t& length) override {
    if (index != 0) return HookedRegistry::subkey_at(key, index - 1, name, length);
    constexpr char kName[] = "\0x";
    if (length < sizeof kName) return kRegMoreData;
    length = sizeof kName - 1;
    std::memcpy(name, kName, sizeof kName);
    return kRegSuccess;
  }
};
