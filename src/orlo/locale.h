// The seam to the system's locale: code page, dates, collation.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "orlo/system_time.h"

namespace ORLO {

class Locale {
 public:
  virtual ~Locale() = default;
  /// As GetDateFormatA for the user's locale: the short date, or the picture when one is given.
  /// Empty optional on failure (a date that the calendar doesn't have).
  virtual std::optional<std::string> date_text(const SystemTime& time,
                                               const char* picture) const = 0;
  /// As GetTimeFormatA, likewise.
  virtual std::optional<std::string> time_text(const SystemTime& time,
                                               const char* picture) const = 0;
  /// Linguistic order of two texts with punctuation counted (SORT_STRINGSORT): negative, 0,
  /// positive.
  virtual int collate(const char* a, const char* b, bool ignore_case) const = 0;
  /// 16-bit text to the code page; a character outside it becomes its stand-in or "?".
  virtual std::string narrow(const char16_t* wide, size_t length) const = 0;
  /// Code page to 16-bit text.
  virtual std::u16string widen(const char* text, size_t length) const = 0;
};

/// The locale of this system. On a build machine it is a stand-in with Windows-1252 and the
/// conventions of English (United Kingdom), or German where `LC_ALL` begins with "de".
const Locale& system_locale();

}  // namespace ORLO
