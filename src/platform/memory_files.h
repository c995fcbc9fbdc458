// Files in memory, for tests and for the build machine.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/files.h"

/// Paths compare without case; "/" counts as "\", and "." and ".." pieces, doubled separators and
/// blanks or dots at the end are understood as the platform does. There is no current folder apart
/// from the search path. Not thread-safe while it is being filled.
class MemoryFiles : public Files {
 public:
  /// Adds the folders that it lies in, too.
  void add_file(const std::string& path);
  void add_folder(const std::string& path);
  /// Sets an environment variable; names compare without case.
  void set_variable(const std::string& name, const std::string& value);
  /// Appends a folder to the search path.
  void add_search_folder(const std::string& path);
  /// Makes this folder that of the system, "C:\\Windows\\system32" at first.
  void set_system_folder(const std::string& path) { system_folder_ = path; }
  /// Likewise; "C:\\Windows" at first.
  void set_windows_folder(const std::string& path) { windows_folder_ = path; }

  /// Makes every further call of `operation` ("is_file", "can_open", "search_path",
  /// "expand_environment", "system_folder", "windows_folder") fail.
  void fail(const std::string& operation);
  /// The calls so far, as "is_file C:\\x.exe".
  const std::vector<std::string>& calls() const noexcept { return calls_; }
  void forget_calls() noexcept { calls_.clear(); }

  bool is_file(const char* path) override;
  bool can_open(const char* path) override;
  std::optional<String> search_path(const char* name, const char* extension) override;
  std::optional<String> expand_environment(const char* text, size_t limit) override;
  std::optional<String> system_folder() override;
  std::optional<String> windows_folder() override;

 private:
  bool enter(const char* operation, const char* argument);
  std::optional<String> folder(const char* operation, const std::string& path);
  bool exists(const std::string& full) const;
  bool finds_file(const std::string& pattern) const;
  std::optional<String> first_existing(const std::vector<std::string>& candidates) const;

  // Full paths in upper case.
  std::set<std::string> files_;
  std::set<std::string> folders_;
  std::map<std::string, std::string> variables_;  // by name in upper case
  std::vector<std::string> search_folders_;
  std::string system_folder_ = "C:\\Windows\\system32";
  std::string windows_folder_ = "C:\\Windows";
  std::set<std::string> failing_;
  std::vector<std::string> calls_;
};
