#include <chrono>

#include "orlo/clock.h"
#include "orlo/zone_rules.h"

// The stand-in of build machines: the real time, in the zone Europe/Berlin.

namespace ORLO {
namespace {

FileTime present() noexcept {
  const auto since_1970 = std::chrono::system_clock::now().time_since_epoch();
  const auto milliseconds =
      std::chrono::duration_cast<std::chrono::milliseconds>(since_1970).count();
  return kUnixEpoch + static_cast<FileTime>(milliseconds) * (kFileTimePerSecond / 1000);
}

class StandInClock final : public Clock {
 public:
  SystemTime now() const override {
    SystemTime time;
    to_system_time(present(), time);
    return time;
  }

  ZoneState zone(TimeZoneInfo& zone) const override {
    zone = berlin_zone();
    return is_daylight_time(zone, present()) ? ZoneState::daylight : ZoneState::standard;
  }

  bool to_local(const TimeZoneInfo* zone, const SystemTime& utc, SystemTime& local) const override {
    return utc_to_local(zone != nullptr ? *zone : berlin_zone(), utc, local);
  }

  bool to_local(FileTime utc, FileTime& local) const override {
    local = moved(utc, -bias_at(berlin_zone(), present()));
    return true;
  }
};

}  // namespace

const Clock& system_clock() {
  static const StandInClock clock;
  return clock;
}

}  // namespace ORLO
