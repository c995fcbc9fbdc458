// A key of the program's own in memory, for tests and for the build machine.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/own_key.h"

class MemoryOwnKey : public OwnKey {
 public:
  /// Makes every further open() fail.
  void refuse_to_open() noexcept { opens_ = false; }
  /// Makes every further set_text() fail with this status.
  void refuse_to_write(RegStatus status) noexcept { write_status_ = status; }
  /// "PATH: NAME" of what is there, with its text.
  std::map<std::string, std::string> values;
  /// The calls so far: "open PATH", "text NAME", "set_text NAME TEXT".
  std::vector<std::string> calls;

  bool open(const char* path) override;
  String text(const char* name) override;
  RegStatus set_text(const char* name, const String& text) override;

 private:
  std::string whole_name(const char* name) const { return path_ + ": " + name; }

  bool opens_ = true;
  bool open_ = false;
  RegStatus write_status_ = kRegSuccess;
  std::string path_;
};
