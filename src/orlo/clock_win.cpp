#include <windows.h>

#include <bit>

#include "orlo/clock.h"

namespace ORLO {
namespace {

static_assert(sizeof(SystemTime) == sizeof(SYSTEMTIME));

SystemTime from_native(const SYSTEMTIME& time) noexcept {
  return std::bit_cast<SystemTime>(time);
}
SYSTEMTIME to_native(const SystemTime& time) noexcept {
  return std::bit_cast<SYSTEMTIME>(time);
}

TIME_ZONE_INFORMATION to_native(const TimeZoneInfo& zone) noexcept {
  TIME_ZONE_INFORMATION native = {};
  native.Bias = zone.Bias;
  native.StandardDate = to_native(zone.StandardDate);
  native.StandardBias = zone.StandardBias;
  native.DaylightDate = to_native(zone.DaylightDate);
  native.DaylightBias = zone.DaylightBias;
  return native;
}

class SystemClock final : public Clock {
 public:
  SystemTime now() const override {
    SYSTEMTIME time = {};
    GetSystemTime(&time);
    return from_native(time);
  }

  ZoneState zone(TimeZoneInfo& zone) const override {
    TIME_ZONE_INFORMATION native = {};
    const DWORD state = GetTimeZoneInformation(&native);
    zone.Bias = native.Bias;
    zone.StandardDate = from_native(native.StandardDate);
    zone.StandardBias = native.StandardBias;
    zone.DaylightDate = from_native(native.DaylightDate);
    zone.DaylightBias = native.DaylightBias;
    if (state == TIME_ZONE_ID_STANDARD) return ZoneState::standard;
    if (state == TIME_ZONE_ID_DAYLIGHT) return ZoneState::daylight;
    return ZoneState::unknown;
  }

  bool to_local(const TimeZoneInfo* zone, const SystemTime& utc, SystemTime& local) const override {
    TIME_ZONE_INFORMATION native_zone = {};
    if (zone != nullptr) native_zone = to_native(*zone);
    const SYSTEMTIME native_utc = to_native(utc);
    SYSTEMTIME native_local = {};
    if (!SystemTimeToTzSpecificLocalTime(zone != nullptr ? &native_zone : nullptr, &native_utc,
                                         &native_local)) {
      return false;
    }
    local = from_native(native_local);
    return true;
  }

  bool to_local(FileTime utc, FileTime& local) const override {
    const FILETIME native_utc = {static_cast<DWORD>(utc), static_cast<DWORD>(utc >> 32)};
    FILETIME native_local = {};
    if (!FileTimeToLocalFileTime(&native_utc, &native_local)) return false;
    local = FileTime{native_local.dwHighDateTime} << 32 | native_local.dwLowDateTime;
    return true;
  }
};

}  // namespace

const Clock& system_clock() {
  static const SystemClock clock;
  return clock;
}

}  // namespace ORLO
