// Reading dates back from the texts that the inventory keeps them as.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "orlo/locale.h"

/// At most "2023-01-15T10:00:00".
struct IsoText {
  char bytes[19];
  size_t length = 0;

  std::string_view text() const noexcept { return {bytes, length}; }
};

/// How a date is written: numbers for day, month and year, with fixed texts around them.
class DatePattern {
 public:
  /// Learnt from how the locale writes its short dates. Fits nothing where that isn't in plain
  /// numbers of our calendar.
  static DatePattern of_locale(const ORLO::Locale& locale);
  /// "dd.mm.yyyy", which doesn't depend on the locale.
  static DatePattern with_dots();

  /// ISO 8601: the date, with "T" and the time of day if the text goes on with " hh:mm" or
  /// " hh:mm:ss". Nothing if the text isn't such a date.
  std::optional<IsoText> iso_text(std::string_view text) const;

 private:
  enum class Kind { literal, day, month, year, short_year };
  struct Part {
    Kind kind;
    char literal;
  };

  static DatePattern of_example(std::string_view example);

  /// Of the example, without which nothing fits.
  std::vector<Part> parts_;
};
