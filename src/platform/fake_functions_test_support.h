// A module of functions that a test writes, in the place of one of the system's.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "orlo/module_functions.h"

class FakeFunctions : public ORLO::ModuleFunctions {
 public:
  using Names = std::vector<std::string>;

  template <typename Type>
  void set(const std::string& name, Type* function) {
    functions_[name] = reinterpret_cast<Function>(function);
  }
  void remove(const std::string& name) { functions_.erase(name); }
  /// Those that it has.
  Names names() const {
    Names names;
    for (const auto& [name, function] : functions_)
      names.push_back(name);
    return names;
  }
  /// What was looked up, as "module function".
  const Names& asked() const { return asked_; }

  Function find(const char* module, const char* name) override {
    asked_.push_back(module + (std::string(" ") + name));
    const auto found = functions_.find(name);
    return found != functions_.end() ? found->second : nullptr;
  }

 private:
  std::map<std::string, Function> functions_;
  Names asked_;
};
