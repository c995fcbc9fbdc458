// What the contract of the shell is tested on: a shell with things that it can start.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/shell.h"

/// A file with its arguments, as a start takes them.
struct ShellTarget {
  std::string file;
  std::string arguments;

  ShellStart start() const {
    ShellStart start;
    start.file = file.c_str();
    start.arguments = arguments.c_str();
    return start;
  }
};

class ShellBed {
 public:
  virtual ~ShellBed() = default;
  virtual Shell& shell() = 0;
  /// A program that ends by itself.
  virtual ShellTarget short_program() = 0;
  /// One that runs until end_programs().
  virtual ShellTarget long_program() = 0;
  virtual void end_programs() = 0;
  /// What no shell can start.
  virtual ShellTarget missing_file() = 0;
};

struct ShellBedMaker {
  const char* name;
  std::function<std::unique_ptr<ShellBed>()> make;
};

inline void PrintTo(const ShellBedMaker& maker, std::ostream* out) {
  *out << maker.name;
}

/// The promises of Shell that every implementation keeps.
class ShellContract : public ::testing::TestWithParam<ShellBedMaker> {
 protected:
  ShellContract() : bed_(GetParam().make()) {}

  ShellBed& bed() { return *bed_; }
  Shell& shell() { return bed_->shell(); }

 private:
  std::unique_ptr<ShellBed> bed_;
};
