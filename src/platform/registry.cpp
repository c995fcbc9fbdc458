#include "platform/registry.h"

#include <algorithm>
#include <cstring>

#include "orlo/rstring.h"

namespace {

constexpr uint32_t kFirstRead = 1024;
// How often a value that grows while it is read is followed.
constexpr int kMaxFurtherReads = 8;

bool is_text(uint32_t type) {
  return type == kRegSz || type == kRegExpandSz || type == kRegMultiSz;
}

/// Reads a value of any size; false if it can't be had.
bool read_value(const RegistryKey& key, const char* name, uint32_t& type, String& bytes) {
  if (!key) return false;
  char first[kFirstRead];
  uint32_t size = kFirstRead;
  RegStatus status = key.registry()->value(key, name, type, first, size);
  if (status == kRegSuccess) {
    bytes.assign(first, std::min(size, kFirstRead));
    return true;
  }
  for (int read = 0; status == kRegMoreData && read < kMaxFurtherReads; ++read) {
    bytes.resize(size);
    status = key.registry()->value(key, name, type, bytes.writable(), size);
  }
  if (status != kRegSuccess) return false;
  bytes.resize(std::min<size_t>(size, bytes.length()));
  return true;
}

}  // namespace

RegistryKey& RegistryKey::operator=(RegistryKey&& other) noexcept {
  if (this != &other) {
    close();
    registry_ = other.registry_;
    handle_ = std::exchange(other.handle_, nullptr);
  }
  return *this;
}

void RegistryKey::close() noexcept {
  if (handle_ != nullptr) registry_->close(std::exchange(handle_, nullptr));
}

bool names_no_key(const char* path) noexcept {
  return path == nullptr || path[std::strspn(path, "\\")] == '\0';
}

String get_registry_binary(const RegistryKey& key, const char* value_name) {
  uint32_t type = 0;
  String bytes;
  if (!read_value(key, value_name, type, bytes)) return String();
  const size_t length = bytes.length();
  if (is_text(type) && length > 0 && bytes.c_str()[length - 1] == '\0') bytes.resize(length - 1);
  return bytes;
}

String get_registry_text(const RegistryKey& key, const char* value_name) {
  uint32_t type = 0;
  String bytes;
  if (!read_value(key, value_name, type, bytes)) return String();
  // The block ends in a NUL of its own, so the search can't leave it.
  bytes.resize(std::strlen(bytes.c_str()));
  return bytes;
}
