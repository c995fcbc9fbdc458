// What the reading of values is tested on: a key that a test may fill with anything.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/registry.h"

struct DirtyValue {
  std::u16string name;
  uint32_t type;
  std::string data;  ///< as a registry stores it: texts are UTF-16
};

class ValueStore {
 public:
  virtual ~ValueStore() = default;
  virtual Registry& registry() = 0;
  /// Makes the values the only ones of the key, which it opens. Of equal names the last one stays.
  virtual RegistryKey fill(const std::vector<DirtyValue>& values) = 0;
};

struct ValueStoreMaker {
  const char* name;
  std::function<std::unique_ptr<ValueStore>()> make;
};

inline void PrintTo(const ValueStoreMaker& maker, std::ostream* out) {
  *out << maker.name;
}

class ValueSetOnDirtyData : public testing::TestWithParam<ValueStoreMaker> {};
