// A clock that stands where a test puts it.
#pragma once

#include "orlo/clock.h"
#include "orlo/zone_rules.h"

namespace ORLO {

class FixedClock final : public Clock {
 public:
  explicit FixedClock(const SystemTime& time, const TimeZoneInfo& zone = berlin_zone()) noexcept
      : time_(time), zone_(zone) {}

  void set(const SystemTime& time) noexcept { time_ = time; }

  SystemTime now() const override { return time_; }

  ZoneState zone(TimeZoneInfo& zone) const override {
    zone = zone_;
    if (zone_.StandardDate.wMonth == 0) return ZoneState::unknown;
    return is_daylight_time(zone_, present()) ? ZoneState::daylight : ZoneState::standard;
  }

  bool to_local(const TimeZoneInfo* zone, const SystemTime& utc, SystemTime& local) const override {
    return utc_to_local(zone != nullptr ? *zone : zone_, utc, local);
  }

  bool to_local(FileTime utc, FileTime& local) const override {
    local = moved(utc, -bias_at(zone_, present()));
    return true;
  }

 private:
  FileTime present() const noexcept {
    FileTime time = 0;
    to_file_time(time_, time);
    return time;
  }

  SystemTime time_;
  TimeZoneInfo zone_;
};

}  // namespace ORLO
