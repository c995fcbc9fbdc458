// The seam to the system's clock and time zone.
#pragma once

#include <cstdint>

#include "orlo/system_time.h"

namespace ORLO {

/// The platform's zone description; biases in minutes, UTC = local time + bias. A transition date
/// with wYear 0 means week wDay (5: the last) of wMonth, on weekday wDayOfWeek.
struct TimeZoneInfo {
  int32_t Bias = 0;
  SystemTime StandardDate;
  int32_t StandardBias = 0;
  SystemTime DaylightDate;
  int32_t DaylightBias = 0;
};

/// Which of the zone's two times holds at the moment.
enum class ZoneState { unknown = 0, standard = 1, daylight = 2 };

class Clock {
 public:
  virtual ~Clock() = default;
  /// The present moment in UTC.
  virtual SystemTime now() const = 0;
  /// Fills `zone` with the system's zone description.
  virtual ZoneState zone(TimeZoneInfo& zone) const = 0;
  /// As SystemTimeToTzSpecificLocalTime; a null zone means the system's. False on failure, with
  /// `local` untouched.
  virtual bool to_local(const TimeZoneInfo* zone, const SystemTime& utc,
                        SystemTime& local) const = 0;
  /// As FileTimeToLocalFileTime: shifts by the bias of the present moment. False on failure.
  virtual bool to_local(FileTime utc, FileTime& local) const = 0;
};

/// The clock of this system. On a build machine it is a fixed stand-in that keeps the time zone of
/// the tests (Europe/Berlin) whatever the machine's zone is.
const Clock& system_clock();

}  // namespace ORLO
