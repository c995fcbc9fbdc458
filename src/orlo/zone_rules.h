// What a zone description says about a moment. Time of day and both hemispheres count here; the
// date reader has simpler rules of its own.
#pragma once

#include "orlo/clock.h"
#include "orlo/system_time.h"

namespace ORLO {

/// Central European Time with the European Union's daylight rules.
TimeZoneInfo berlin_zone() noexcept;

/// False as well for a zone without transition rules.
bool is_daylight_time(const TimeZoneInfo& zone, FileTime utc) noexcept;

/// As SystemTimeToTzSpecificLocalTime with that zone; false on failure, with `local` untouched.
bool utc_to_local(const TimeZoneInfo& zone, const SystemTime& utc, SystemTime& local) noexcept;

/// `time` moved by so many minutes. Below the calendar's begin it wraps to a time that
/// to_system_time refuses.
FileTime moved(FileTime time, int32_t minutes) noexcept;

/// Minutes that are added to local time to get UTC.
int32_t bias_at(const TimeZoneInfo& zone, FileTime utc) noexcept;

}  // namespace ORLO
