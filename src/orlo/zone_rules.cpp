#include "orlo/zone_rules.h"

namespace ORLO {
namespace {

constexpr FileTime kWeek = 7 * kFileTimePerDay;

/// The moment of a transition in that year, on the clock that it ends. False for a rule that can't
/// be converted.
bool transition(const SystemTime& rule, uint16_t year, FileTime& moment) noexcept {
  if (rule.wYear != 0) return to_file_time(rule, moment);
  SystemTime first = rule;
  first.wYear = year;
  first.wDay = 1;
  if (!to_file_time(first, moment) || !to_system_time(moment, first)) return false;
  moment += (rule.wDayOfWeek + 7U - first.wDayOfWeek) % 7 * kFileTimePerDay;
  for (unsigned week = 1; week < rule.wDay; ++week) {
    SystemTime next;
    if (!to_system_time(moment + kWeek, next) || next.wMonth != rule.wMonth) break;
    moment += kWeek;
  }
  return true;
}

}  // namespace

TimeZoneInfo berlin_zone() noexcept {
  TimeZoneInfo zone;
  zone.Bias = -60;
  zone.StandardDate.wMonth = 10;
  zone.StandardDate.wDay = 5;
  zone.StandardDate.wHour = 3;
  zone.DaylightDate.wMonth = 3;
  zone.DaylightDate.wDay = 5;
  zone.DaylightDate.wHour = 2;
  zone.DaylightBias = -60;
  return zone;
}

FileTime moved(FileTime time, int32_t minutes) noexcept {
  return time + static_cast<FileTime>(int64_t{minutes}) * kFileTimePerMinute;
}

bool is_daylight_time(const TimeZoneInfo& zone, FileTime utc) noexcept {
  SystemTime local;
  FileTime daylight = 0;
  FileTime standard = 0;
  if (zone.StandardDate.wMonth == 0 || zone.DaylightDate.wMonth == 0) return false;
  if (!to_system_time(moved(utc, -zone.Bias), local)) return false;
  if (!transition(zone.DaylightDate, local.wYear, daylight)) return false;
  if (!transition(zone.StandardDate, local.wYear, standard)) return false;
  daylight = moved(daylight, zone.Bias + zone.StandardBias);
  standard = moved(standard, zone.Bias + zone.DaylightBias);
  if (daylight < standard) return utc >= daylight && utc < standard;
  return utc >= daylight || utc < standard;
}

int32_t bias_at(const TimeZoneInfo& zone, FileTime utc) noexcept {
  if (zone.StandardDate.wMonth == 0 || zone.DaylightDate.wMonth == 0) return zone.Bias;
  return zone.Bias + (is_daylight_time(zone, utc) ? zone.DaylightBias : zone.StandardBias);
}

bool utc_to_local(const TimeZoneInfo& zone, const SystemTime& utc, SystemTime& local) noexcept {
  FileTime moment = 0;
  return to_file_time(utc, moment) && to_system_time(moved(moment, -bias_at(zone, moment)), local);
}

}  // namespace ORLO
