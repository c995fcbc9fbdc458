// Writing packages as lines of JSON, for machines to read.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "export/shown_date.h"
#include "inventory/entry.h"
#include "orlo/out_file.h"

/// What each line says of the pass itself. Texts are UTF-8.
struct PassStamp {
  std::string hostName;
  ORLO::SystemTime passTime;  ///< UTC
  std::string programVersion;
};

/// One object on a line of its own for each package, in UTF-8. Its keys are `hostName`, `passTime`,
/// `programVersion` and the columns of the inventory, always all of them and in this order. Numbers
/// are numbers, dates are in ISO 8601 where they can be read, in the machine's own time, and what
/// isn't known is null. Whatever a text holds, its line is valid.
class JsonLines {
 public:
  JsonLines(const PassStamp& stamp, const ORLO::Locale& locale, ORLO::OutFile& file);

  void write(const UninstallEntry& entry);
  /// Hands the file what is held back by now, and has it written. False after a failure.
  bool finish();

 private:
  struct Column;
  using Entry = UninstallEntry;

  static const Column kColumns[kPackageColumns];

  /// What stands before a column's value, and how much of it: copying a fixed size is quicker.
  struct Before {
    char bytes[24];
    size_t length = 0;
  };

  void make_room(const Entry& entry);
  char* put_value(char* out, const Column& column, const Entry& entry) const;
  char* put_date(char* out, const DatePattern& pattern, const String& text) const;
  char* put_text(char* out, const String& text) const;
  void hand_over();

  const ORLO::Locale& locale_;
  ORLO::OutFile& file_;
  const DatePattern short_date_;
  const DatePattern with_dots_;
  const std::string beginning_;  ///< of each line
  std::vector<Before> before_;
  std::vector<char> buffer_;
  size_t length_ = 0;  ///< of what is held back there
};
