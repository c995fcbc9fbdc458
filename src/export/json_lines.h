// Writing packages as lines of JSON, for machines to read.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
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

  void append_value(const Column& column, const Entry& entry);
  void append_date(const DatePattern& pattern, const String& text);
  void append_text(const String& text);
  void hand_over();

  const ORLO::Locale& locale_;
  ORLO::OutFile& file_;
  const DatePattern short_date_;
  const DatePattern with_dots_;
  /// What stands before each column's value.
  std::vector<std::string> before_;

  class Buffer {
   public:
    std::string_view content() const noexcept { return {bytes_.data(), length_}; }
    /// Room for so many bytes more, which advance() then adds.
    char* room(size_t count);
    void advance(const char* end) noexcept { length_ = static_cast<size_t>(end - bytes_.data()); }
    void append(std::string_view text);
    void clear() noexcept { length_ = 0; }

   private:
    std::vector<char> bytes_;
    size_t length_ = 0;
  } buffer_;
};
