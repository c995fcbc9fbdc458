// Calendar time and file time as plain values, with the platform's arithmetic between them.
#pragma once

#include <cstdint>

namespace ORLO {

/// Field for field the platform's SYSTEMTIME.
struct SystemTime {
  uint16_t wYear = 0;
  uint16_t wMonth = 0;
  uint16_t wDayOfWeek = 0;
  uint16_t wDay = 0;
  uint16_t wHour = 0;
  uint16_t wMinute = 0;
  uint16_t wSecond = 0;
  uint16_t wMilliseconds = 0;

  bool operator==(const SystemTime&) const = default;
};

/// 100-nanosecond units since 1 January 1601, UTC.
using FileTime = uint64_t;

inline constexpr FileTime kFileTimePerSecond = 10'000'000;
inline constexpr FileTime kFileTimePerMinute = 60 * kFileTimePerSecond;
inline constexpr FileTime kFileTimePerDay = 24 * (60 * kFileTimePerMinute);
/// 1 January 1970.
inline constexpr FileTime kUnixEpoch = 116'444'736'000'000'000;

/// As SystemTimeToFileTime: false (and `result` untouched) for fields out of range or a year
/// outside 1601 to 30827; wDayOfWeek is ignored.
bool to_file_time(const SystemTime& time, FileTime& result) noexcept;

/// As FileTimeToSystemTime: false (and `result` untouched) from 2^63 on.
bool to_system_time(FileTime time, SystemTime& result) noexcept;

}  // namespace ORLO
