#include "inventory/value_set.h"

#include <algorithm>
#include <cstring>

namespace {

// The longest value name a registry holds, and its terminator.
constexpr uint32_t kLongestName = 16384;
constexpr uint32_t kFirstNameBuffer = 256;
constexpr uint32_t kFirstDataBuffer = 1024;
constexpr uint32_t kLargestValue = 64U * 1024U * 1024U;

char fold(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

bool same_name(const char* a, const char* b, size_t length) noexcept {
  return std::equal(a, a + length, b, [](char x, char y) { return fold(x) == fold(y); });
}

void grow(std::vector<char>& buffer, size_t size) {
  if (buffer.size() < size) buffer.resize(size);
}

}  // namespace

void ValueSet::read(const RegistryKey& key, const Registry::KeyInfo& info) {
  values_.clear();
  bytes_.clear();
  grow(name_buffer_,
       std::max(kFirstNameBuffer, std::min(info.longest_value_name, kLongestName)) + 1);
  grow(data_buffer_, std::max(kFirstDataBuffer, std::min(info.longest_value, kLargestValue)));
  // The count bounds the walk, so that a registry that never says "no more" can't hold it.
  for (uint32_t index = 0; index < info.values && read_one(key, index); ++index) {
  }
}

bool ValueSet::read_one(const RegistryKey& key, uint32_t index) {
  // Sizes may have grown since they were asked for; three rounds are plenty.
  for (int round = 0; round < 3; ++round) {
    auto name_length = static_cast<uint32_t>(name_buffer_.size());
    auto size = static_cast<uint32_t>(data_buffer_.size());
    uint32_t type = 0;
    const RegStatus status = key.registry()->value_at(key, index, name_buffer_.data(), name_length,
                                                      type, data_buffer_.data(), size);
    if (status == kRegSuccess) {
      Value value{bytes_.size(), name_length, type, 0, size};
      bytes_.insert(bytes_.end(), name_buffer_.data(), name_buffer_.data() + name_length);
      bytes_.push_back('\0');
      value.data = bytes_.size();
      bytes_.insert(bytes_.end(), data_buffer_.data(), data_buffer_.data() + size);
      values_.push_back(value);
      return true;
    }
    if (status != kRegMoreData || size > kLargestValue) return status == kRegMoreData;
    grow(data_buffer_, size);
    grow(name_buffer_, kLongestName + 1);
  }
  return true;
}

const ValueSet::Value* ValueSet::find(const char* name) const {
  const size_t length = std::strlen(name);
  for (const Value& value : values_) {
    if (value.name_length == length && same_name(bytes_.data() + value.name, name, length)) {
      return &value;
    }
  }
  return nullptr;
}

String ValueSet::text(const char* name) const {
  const Value* value = find(name);
  if (value == nullptr) return String();
  const char* begin = bytes_.data() + value->data;
  const char* end = begin + value->size;
  return String(begin, std::find(begin, end, '\0'));
}

bool ValueSet::number(const char* name, int32_t& number) const {
  const Value* value = find(name);
  if (value == nullptr || value->size > sizeof number) return false;
  number = 0;
  std::memcpy(&number, bytes_.data() + value->data, value->size);
  return true;
}

int32_t ValueSet::number_or(const char* name, int32_t fallback) const {
  int32_t result = fallback;
  return number(name, result) ? result : fallback;
}

bool ValueSet::dword(const char* name, uint32_t& number) const {
  const Value* value = find(name);
  if (value == nullptr || value->type != kRegDword || value->size != sizeof number) return false;
  std::memcpy(&number, bytes_.data() + value->data, sizeof number);
  return true;
}
