// What the contract of files is tested on: files with a way to make some.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/files.h"

/// Files that a test may make below one folder of its own.
class FilesBed {
 public:
  virtual ~FilesBed() = default;
  virtual Files& files() = 0;
  /// The own folder, without a separator at the end. It lies below another one.
  virtual std::string folder() const = 0;
  /// `path` is below folder(); folders on its way are made, too.
  virtual void add_file(const std::string& path) = 0;
  virtual void add_folder(const std::string& path) = 0;
  virtual void set_variable(const std::string& name, const std::string& value) = 0;
  /// Makes a folder below folder() a part of the search path; called once.
  virtual void search_in(const std::string& path) = 0;
};

struct FilesBedMaker {
  const char* name;
  std::function<std::unique_ptr<FilesBed>()> make;
};

inline void PrintTo(const FilesBedMaker& maker, std::ostream* out) {
  *out << maker.name;
}

/// The promises of Files that every implementation keeps.
class FilesContract : public ::testing::TestWithParam<FilesBedMaker> {
 protected:
  FilesContract() : bed_(GetParam().make()) {}

  FilesBed& bed() { return *bed_; }
  bool is_file(const std::string& below) { return bed().files().is_file(whole(below).c_str()); }
  bool can_open(const std::string& below) { return bed().files().can_open(whole(below).c_str()); }
  /// What a search for `name` finds; "-" for nothing.
  std::string search(const std::string& name);
  /// What the text becomes; "-" if it can't be expanded.
  std::string expand(const std::string& text, size_t limit = 1024);
  std::string whole(const std::string& below) { return bed().folder() + '\\' + below; }

 private:
  std::unique_ptr<FilesBed> bed_;
};
