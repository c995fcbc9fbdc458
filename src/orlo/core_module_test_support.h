// A module ORLOCORE made of tables, for tests of what reads it.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

#include "orlo/core_module.h"

namespace ORLO {

/// Takes the module's place for its scope. Counts how often it was asked for and how many uses of
/// it are open.
class TestCoreModule {
 public:
  TestCoreModule() {
    set_core_module_loader([this]() -> std::unique_ptr<CoreModule> {
      ++loads;
      return present ? std::make_unique<Use>(*this) : nullptr;
    });
  }
  ~TestCoreModule() {
    set_core_module_loader({});
    EXPECT_EQ(open_uses, 0) << "a use wasn't ended";
  }
  TestCoreModule(const TestCoreModule&) = delete;
  TestCoreModule& operator=(const TestCoreModule&) = delete;

  std::map<unsigned, std::string> strings;
  std::map<uint32_t, std::string> messages;
  /// By id and language.
  std::map<std::pair<unsigned, uint16_t>, std::u16string> wide_strings;
  bool present = true;
  int loads = 0;
  int open_uses = 0;

 private:
  class Use : public CoreModule {
   public:
    explicit Use(TestCoreModule& module) : module_(module) { ++module_.open_uses; }
    ~Use() override { --module_.open_uses; }
    bool string(unsigned id, String& text) const override {
      return copy(module_.strings, id, text);
    }
    bool message(uint32_t code, String& text) const override {
      return copy(module_.messages, code, text);
    }
    std::u16string wide_string(unsigned id, uint16_t language) const override {
      const auto found = module_.wide_strings.find({id, language});
      return found != module_.wide_strings.end() ? found->second : std::u16string();
    }

   private:
    template <typename Map, typename Key>
    static bool copy(const Map& map, Key key, String& text) {
      const auto found = map.find(key);
      if (found == map.end()) return false;
      text = found->second;
      return true;
    }
    TestCoreModule& module_;
  };
};

}  // namespace ORLO
