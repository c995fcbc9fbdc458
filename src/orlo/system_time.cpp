#include "orlo/system_time.h"

namespace ORLO {
namespace {

constexpr unsigned kFirstYear = 1601;
constexpr unsigned kLastYear = 30827;
constexpr uint64_t kDaysPer400Years = 146'097;
constexpr uint64_t kDaysPer4Years = 1'461;
// From 1 March of year 0 to 1 January 1601. Years are counted from March, so that they end in the
// leap day.
constexpr uint64_t kDaysBeforeEpoch = 584'694;
constexpr FileTime kFileTimePerMillisecond = kFileTimePerSecond / 1000;

bool is_leap_year(unsigned year) noexcept {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

unsigned days_in_month(unsigned year, unsigned month) noexcept {
  constexpr uint8_t kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && is_leap_year(year) ? 29 : kDays[month - 1];
}

bool is_valid(const SystemTime& time) noexcept {
  return time.wYear >= kFirstYear && time.wYear <= kLastYear && time.wMonth >= 1 &&
         time.wMonth <= 12 && time.wDay >= 1 &&
         time.wDay <= days_in_month(time.wYear, time.wMonth) && time.wHour < 24 &&
         time.wMinute < 60 && time.wSecond < 60 && time.wMilliseconds < 1000;
}

/// Days since 1 January 1601.
uint64_t day_number(unsigned year, unsigned month, unsigned day) noexcept {
  const uint64_t march_year = month > 2 ? year : year - 1;
  const uint64_t march_month = month > 2 ? month - 3 : month + 9;
  const uint64_t day_of_year = (153 * march_month + 2) / 5 + day - 1;
  return march_year * 365 + march_year / 4 - march_year / 100 + march_year / 400 + day_of_year -
         kDaysBeforeEpoch;
}

void set_date(SystemTime& time, uint64_t days) noexcept {
  const uint64_t since_march = days + kDaysBeforeEpoch;
  const uint64_t era = since_march / kDaysPer400Years;
  const uint64_t day_of_era = since_march % kDaysPer400Years;
  const uint64_t year_of_era = (day_of_era - day_of_era / (kDaysPer4Years - 1) +
                                day_of_era / 36'524 - day_of_era / (kDaysPer400Years - 1)) /
                               365;
  const uint64_t day_of_year =
      day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  const uint64_t march_month = (5 * day_of_year + 2) / 153;
  const uint64_t month = march_month < 10 ? march_month + 3 : march_month - 9;
  time.wYear = static_cast<uint16_t>(era * 400 + year_of_era + (month <= 2 ? 1 : 0));
  time.wMonth = static_cast<uint16_t>(month);
  time.wDay = static_cast<uint16_t>(day_of_year - (153 * march_month + 2) / 5 + 1);
  // 1 January 1601 was a Monday.
  time.wDayOfWeek = static_cast<uint16_t>((days + 1) % 7);
}

}  // namespace

bool to_file_time(const SystemTime& time, FileTime& result) noexcept {
  if (!is_valid(time)) return false;
  const uint64_t seconds = (time.wHour * 60U + time.wMinute) * 60U + time.wSecond;
  result = day_number(time.wYear, time.wMonth, time.wDay) * kFileTimePerDay +
           seconds * kFileTimePerSecond + time.wMilliseconds * kFileTimePerMillisecond;
  return true;
}

bool to_system_time(FileTime time, SystemTime& result) noexcept {
  if (time >= FileTime{1} << 63) return false;
  const uint64_t rest = time % kFileTimePerDay;
  SystemTime converted;
  set_date(converted, time / kFileTimePerDay);
  converted.wHour = static_cast<uint16_t>(rest / (60 * kFileTimePerMinute));
  converted.wMinute = static_cast<uint16_t>(rest / kFileTimePerMinute % 60);
  converted.wSecond = static_cast<uint16_t>(rest / kFileTimePerSecond % 60);
  converted.wMilliseconds = static_cast<uint16_t>(rest / kFileTimePerMillisecond % 1000);
  result = converted;
  return true;
}

}  // namespace ORLO
