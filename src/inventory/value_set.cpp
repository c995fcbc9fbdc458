#include "inventory/value_set.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "orlo/ascii.h"

namespace {

constexpr size_t kFirstNameBuffer = 256;
constexpr uint32_t kFirstDataBuffer = 1024;
// The longest value name a registry holds, at up to three bytes for a character.
constexpr size_t kLongestName = size_t{16383} * 3;
// With more values than are ever asked for, a walk is no gain; nor is it with values that are
// large and mostly not asked for.
constexpr uint32_t kMostValues = 22;
constexpr uint32_t kLargestValue = 64U * 1024U;

void grow(std::vector<char>& buffer, size_t size) {
  if (buffer.size() < size) buffer.resize(size);
}

uint32_t size_of(const std::vector<char>& buffer) noexcept {
  return static_cast<uint32_t>(buffer.size());
}

}  // namespace

void ValueSet::read(const RegistryKey& key, const Registry::KeyInfo* info) {
  key_ = &key;
  values_.clear();
  bytes_.clear();
  walked_ = info != nullptr && walk(key, *info);
}

bool ValueSet::walk(const RegistryKey& key, const Registry::KeyInfo& info) {
  if (info.values > kMostValues || info.longest_value > kLargestValue) return false;
  grow(name_buffer_,
       std::clamp<size_t>(info.longest_value_name, kFirstNameBuffer, kLongestName) + 1);
  grow(data_buffer_, std::max(kFirstDataBuffer, info.longest_value));
  // To the count and no further: the call that says "no more" is one too many.
  for (uint32_t index = 0; index < info.values; ++index) {
    if (!read_one(key, index)) return false;
  }
  return true;
}

bool ValueSet::read_one(const RegistryKey& key, uint32_t index) {
  // Sizes may have grown since they were asked for; a value that still grows is left to a query.
  for (int round = 0; round < 2; ++round) {
    uint32_t name_length = size_of(name_buffer_);
    uint32_t size = size_of(data_buffer_);
    uint32_t type = 0;
    const RegStatus status = key.registry()->value_at(key, index, name_buffer_.data(), name_length,
                                                      type, data_buffer_.data(), size);
    if (status == kRegSuccess) {
      name_length = std::min(name_length, size_of(name_buffer_));
      size = std::min(size, size_of(data_buffer_));
      Value value{bytes_.size(), name_length, type, 0, size};
      bytes_.insert(bytes_.end(), name_buffer_.data(), name_buffer_.data() + name_length);
      value.data = bytes_.size();
      bytes_.insert(bytes_.end(), data_buffer_.data(), data_buffer_.data() + size);
      values_.push_back(value);
      return true;
    }
    if (status != kRegMoreData || size > kLargestValue) return false;
    grow(data_buffer_, size);
    grow(name_buffer_, kLongestName + 1);
  }
  return false;
}

bool ValueSet::find(const char* name, const Value*& found) const {
  found = nullptr;
  if (!walked_) return false;
  const std::string_view wanted(name);
  for (const Value& value : values_) {
    const std::string_view stored(bytes_.data() + value.name, value.name_length);
    if (!ORLO::equal_nocase(stored, wanted)) continue;
    // One of the two only looks like the name, in the code page.
    if (found != nullptr) return false;
    found = &value;
  }
  return true;
}

String ValueSet::text(const char* name) const {
  const Value* value = nullptr;
  if (!find(name, value)) return get_registry_text(*key_, name);
  if (value == nullptr) return String();
  const char* begin = bytes_.data() + value->data;
  const char* end = begin + value->size;
  return String(begin, std::find(begin, end, '\0'));
}

/// What a query with a buffer of four bytes gives.
bool ValueSet::read_short(const char* name, ShortValue& result) const {
  const Value* value = nullptr;
  if (!find(name, value)) {
    result.size = sizeof result.bits;
    return key_->registry()->value(*key_, name, result.type, &result.bits, result.size) ==
           kRegSuccess;
  }
  if (value == nullptr || value->size > sizeof result.bits) return false;
  result = {value->type, value->size, 0};
  std::memcpy(&result.bits, bytes_.data() + value->data, value->size);
  return true;
}

bool ValueSet::number(const char* name, int32_t& number) const {
  ShortValue value;
  if (!read_short(name, value)) return false;
  number = static_cast<int32_t>(value.bits);
  return true;
}

int32_t ValueSet::number_or(const char* name, int32_t fallback) const {
  int32_t result = fallback;
  return number(name, result) ? result : fallback;
}

bool ValueSet::dword(const char* name, uint32_t& number) const {
  ShortValue value;
  if (!read_short(name, value) || value.type != kRegDword || value.size != sizeof number) {
    return false;
  }
  number = value.bits;
  return true;
}
