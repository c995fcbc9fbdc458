// What has happened, as lines that the tests read from outside.
#pragma once

#include "orlo/orlowin.h"
#include "orlo/rstring.h"

namespace gallery {

/// Appends a line to the read-only edit control that shows the log.
class Log {
 public:
  explicit Log(HWND edit) noexcept : edit_(edit) {}
  void add(const String& line) const;

 private:
  const HWND edit_;
};

}  // namespace gallery
