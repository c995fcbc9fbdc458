#include "planted_registry.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

/// An open key of this registry; anything else is a fault of the reader.
PlantedKey& planted(const RegistryKey& key) {
  auto* found = static_cast<PlantedKey*>(key.handle());
  if (found == nullptr || found->opened == 0) std::abort();
  return *found;
}

template <typename Keys>
auto key_at(const Keys& keys, uint32_t index) {
  return std::find_if(keys.begin(), keys.end(),
                      [&index](const PlantedKey* key) { return key != nullptr && index-- == 0; });
}

RegStatus hand_over(std::string_view bytes, void* data, uint32_t& size) {
  const bool fits = bytes.size() <= size;
  size = static_cast<uint32_t>(bytes.size());
  if (data == nullptr) return kRegSuccess;
  if (!fits) return kRegMoreData;
  if (!bytes.empty()) std::memcpy(data, bytes.data(), bytes.size());
  return kRegSuccess;
}

RegStatus hand_over_name(std::string_view text, char* name, uint32_t& length) {
  if (text.size() >= length) return kRegMoreData;
  std::memcpy(name, text.data(), text.size());
  name[text.size()] = '\0';
  length = static_cast<uint32_t>(text.size());
  return kRegSuccess;
}

const PlantedValue* find_value(const PlantedKey& key, std::string_view name) {
  const auto found = std::find_if(key.values.begin(), key.values.end(),
                                  [name](const PlantedValue& value) { return value.name == name; });
  return found == key.values.end() ? nullptr : &*found;
}

}  // namespace

std::string_view PlantedKey::text(std::string_view value) const {
  const PlantedValue* found = find_value(*this, value);
  if (found == nullptr) return {};
  return found->data.substr(0, found->data.find('\0'));
}

PlantedKey* PlantedKey::find(std::string_view told) const {
  for (size_t i = 0; i < below.size(); ++i) {
    if (below.at(i) != nullptr && kPlantedNames.at(i).opens && kPlantedNames.at(i).told == told)
      return below.at(i);
  }
  return nullptr;
}

PlantedKey& PlantedRegistry::plant(PlantedKey& parent, size_t name) {
  PlantedKey*& key = parent.below.at(name);
  if (key == nullptr) {
    key = &keys_.emplace_back();
    key->name = name;
    key->parent = &parent;
  }
  return *key;
}

void PlantedRegistry::set(PlantedKey& key, const PlantedValue& value) {
  const auto same = std::find_if(
      key.values.begin(), key.values.end(),
      [&value](const PlantedValue& candidate) { return candidate.name == value.name; });
  if (same == key.values.end()) {
    key.values.push_back(value);
  } else {
    *same = value;
  }
}

void PlantedRegistry::fail(Operation operation, size_t name) {
  ++failures_.at(operation).at(name);
  if (operation == kOpen || operation == kSubkeyAt) hides_keys_ = true;
}

bool PlantedRegistry::refuses(Operation operation, const PlantedKey& key) {
  if (key.parent == nullptr) return false;
  uint8_t& failures = failures_.at(operation).at(key.name);
  if (failures == 0) return false;
  --failures;
  return true;
}

RegStatus PlantedRegistry::hand_out(PlantedKey& key, RegistryKey& opened) {
  ++key.opened;
  ++open_keys_;
  opened = RegistryKey(*this, &key);
  return kRegSuccess;
}

RegStatus PlantedRegistry::open(int32_t, const char*, uint32_t, RegistryKey& key) {
  return hand_out(root(), key);
}

RegStatus PlantedRegistry::open(const RegistryKey& parent, const char* path, uint32_t,
                                RegistryKey& key) {
  PlantedKey* found = planted(parent).find(path);
  const bool refused = found != nullptr && refuses(kOpen, *found);
  if (found != nullptr && !refused) return hand_out(*found, key);
  key = RegistryKey();
  return refused ? kRegAccessDenied : kRegFileNotFound;
}

RegStatus PlantedRegistry::info(const RegistryKey& key, KeyInfo& info) {
  const PlantedKey& node = planted(key);
  if (refuses(kInfo, node)) return kRegAccessDenied;
  info = {};
  info.values = static_cast<uint32_t>(node.values.size()) + node.more_values;
  info.last_write = node.last_write;
  for (const PlantedValue& value : node.values) {
    info.longest_value_name =
        std::max(info.longest_value_name, static_cast<uint32_t>(value.name.size()));
    info.longest_value = std::max(info.longest_value, static_cast<uint32_t>(value.data.size()));
  }
  return kRegSuccess;
}

RegStatus PlantedRegistry::subkey_at(const RegistryKey& key, uint32_t index, char* name,
                                     uint32_t& length) {
  const PlantedKey& node = planted(key);
  if (refuses(kSubkeyAt, node)) return kRegAccessDenied;
  const auto found = key_at(node.below, index);
  if (found == node.below.end()) return kRegNoMoreItems;
  return hand_over_name(kPlantedNames.at((*found)->name).told, name, length);
}

RegStatus PlantedRegistry::value(const RegistryKey& key, const char* name, uint32_t& type,
                                 void* data, uint32_t& size) {
  const PlantedValue* found = find_value(planted(key), name);
  if (found == nullptr) return kRegFileNotFound;
  type = found->type;
  return hand_over(found->data, data, size);
}

RegStatus PlantedRegistry::value_at(const RegistryKey& key, uint32_t index, char* name,
                                    uint32_t& name_length, uint32_t& type, void* data,
                                    uint32_t& size) {
  const PlantedKey& node = planted(key);
  if (refuses(kValueAt, node)) return kRegAccessDenied;
  if (index >= node.values.size()) return kRegNoMoreItems;
  const PlantedValue& found = node.values.at(index);
  const RegStatus named = hand_over_name(found.name, name, name_length);
  if (named != kRegSuccess) return named;
  type = found.type;
  return hand_over(found.data, data, size);
}

RegStatus PlantedRegistry::notify(const RegistryKey&, bool, uint32_t, ORLO::Event&) {
  return kRegAccessDenied;
}

RegStatus PlantedRegistry::delete_key(int32_t, const char*) {
  return kRegAccessDenied;
}

void PlantedRegistry::close(RegistryKey::Handle handle) noexcept {
  --static_cast<PlantedKey*>(handle)->opened;
  --open_keys_;
}
