// What the contract of the temporary files is tested on: some of them, and a folder for them.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "orlo/file_test_support.h"
#include "platform/temporary_files.h"

class TemporaryFilesBed {
 public:
  virtual ~TemporaryFilesBed() = default;
  virtual TemporaryFiles& files() = 0;
  /// False if none can be made here.
  virtual bool make_link(const std::string& target, const std::string& link) = 0;
  const TempFolder& place() const { return place_; }

 private:
  const TempFolder place_;
};

struct TemporaryFilesBedMaker {
  const char* name;
  std::function<std::unique_ptr<TemporaryFilesBed>()> make;
};

inline void PrintTo(const TemporaryFilesBedMaker& maker, std::ostream* out) {
  *out << maker.name;
}

/// The promises of TemporaryFiles that every implementation keeps.
class TemporaryFilesContract : public ::testing::TestWithParam<TemporaryFilesBedMaker> {
 protected:
  TemporaryFilesContract() : bed_(GetParam().make()) {}

  TemporaryFiles& files() { return bed_->files(); }
  const TempFolder& place() const { return bed_->place(); }
  bool make_link(const char* target, const char* link) {
    return bed_->make_link(place().path(target), place().path(link));
  }
  bool can_replace(const char* name) { return files().can_replace(place().path(name).c_str()); }

 private:
  std::unique_ptr<TemporaryFilesBed> bed_;
};
