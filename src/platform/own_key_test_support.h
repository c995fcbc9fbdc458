// What the contract of the program's own key is tested on: a key that nobody else uses.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/own_key.h"

class OwnKeyBed {
 public:
  virtual ~OwnKeyBed() = default;
  virtual OwnKey& key() = 0;
  /// A value at kOwnTestPath as something else has written it, bytes of the code page.
  virtual void put(const char* name, uint32_t type, const std::string& bytes) = 0;
  /// A path that can't be opened.
  virtual const char* refused_path() = 0;
  /// Makes further writes fail with kRegKeyDeleted.
  virtual void lose_key() = 0;
};

inline constexpr char kOwnTestPath[] = R"(Software\ZolvaneTest\Own)";
inline constexpr char kOtherTestPath[] = R"(Software\ZolvaneTest\Other)";

struct OwnKeyBedMaker {
  const char* name;
  std::function<std::unique_ptr<OwnKeyBed>()> make;
};

inline void PrintTo(const OwnKeyBedMaker& maker, std::ostream* out) {
  *out << maker.name;
}

/// The promises of OwnKey that every implementation keeps.
class OwnKeyContract : public ::testing::TestWithParam<OwnKeyBedMaker> {
 protected:
  OwnKeyContract() : bed_(GetParam().make()) {}

  OwnKeyBed& bed() { return *bed_; }
  OwnKey& key() { return bed_->key(); }
  /// A text that has been written and is read again.
  std::string written(const std::string& text) {
    EXPECT_EQ(key().set_text("a value", String(text)), kRegSuccess);
    return key().text("a value").c_str();
  }

 private:
  std::unique_ptr<OwnKeyBed> bed_;
};
