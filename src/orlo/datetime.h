// Dates in every form that installers and log files have thought of.
#pragma once

#include <cstdint>

#include "orlo/clock.h"
#include "orlo/rstring.h"
#include "orlo/system_time.h"

namespace ORLO {

/// A plain value. `time` is UTC where a conversion took place, else the fields as given; `zone` is
/// the source's offset in minutes east of UTC. All zero is the empty date; a wMonth of 0 tells it.
struct DateTime {
  SystemTime time;
  int16_t zone = 0;

  bool empty() const noexcept { return time.wMonth == 0; }
  void clear() noexcept { *this = DateTime(); }

  /// The present moment.
  static DateTime now(const Clock& clock = system_clock());
  /// Reads `text`; leaves the empty date if it isn't understood. A time of day without a zone is
  /// local to the machine.
  void parse(const char* text, const Clock& clock = system_clock());

  /// Order of the two instants: negative, 0, positive. Not a strict order: 1 if the first date
  /// can't be converted, 0 if only the second can't.
  static int compare(const DateTime& a, const DateTime& b) noexcept;
  static bool less(const DateTime& a, const DateTime& b) noexcept { return compare(a, b) < 0; }

  /// "" for the empty date; else `format_text` with the time, in the zone it came from, as two
  /// arguments for %D and %T.
  String format(const char* format_text, const Clock& clock = system_clock()) const;
  /// "" for the empty date; else "dd.mm.yyyy hh:mm:ss" in the system's zone.
  String text(const Clock& clock = system_clock()) const;
  /// The program's usual display: "" for the empty date, the locale's short date alone if the
  /// stored time of day is 0:00:00, else with hours and minutes behind it.
  String display(const Clock& clock = system_clock()) const;
};

/// Bias in minutes of the present moment.
int current_bias(const Clock& clock, TimeZoneInfo& zone);

/// False if `local` or the rules of `zone` can't be converted.
bool local_to_utc(const TimeZoneInfo& zone, const SystemTime& local, SystemTime& result) noexcept;

}  // namespace ORLO

using ORLO::DateTime;
