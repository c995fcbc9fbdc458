#include "orlo/datetime.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "orlo/ascii.h"
#include "orlo/scan.h"

namespace ORLO {
namespace {

constexpr int16_t kUnsetZone = -32768;
constexpr int kLargestZone = 1439;
constexpr uint16_t kNoDayOfWeek = 65535;

bool is_space(char c) noexcept {
  return c == ' ' || (c >= '\t' && c <= '\r');
}
bool is_digit(char c) noexcept {
  return c >= '0' && c <= '9';
}

/// Compares up to `length` characters without regard to the case of ASCII letters.
bool same_letters(const char* a, const char* b, size_t length) noexcept {
  for (size_t i = 0; i < length; ++i) {
    if (ascii_lower(a[i]) != ascii_lower(b[i])) return false;
    if (a[i] == '\0') return true;
  }
  return true;
}

bool same_word(const char* a, const char* b) noexcept {
  return same_letters(a, b, std::strlen(a) + 1);
}

bool in_zone_range(int zone) noexcept {
  return zone >= -kLargestZone && zone <= kLargestZone;
}

struct NamedNumber {
  const char* name;
  int number;
};

constexpr NamedNumber kMonths[] = {{"Jan", 1},  {"Feb", 2},  {"Mar", 3}, {"Apr", 4},  {"May", 5},
                                   {"Jun", 6},  {"Jul", 7},  {"Aug", 8}, {"Sep", 9},  {"Oct", 10},
                                   {"Nov", 11}, {"Dec", 12}, {"Mai", 5}, {"Okt", 10}, {"Dez", 12}};

constexpr NamedNumber kZones[] = {
    {"UT", 0},     {"GMT", 0},       {"WET", 0},      {"LCL", 0},    {"BST", 60},   {"CET", 60},
    {"MET", 60},   {"WEST", 60},     {"WEDT", 60},    {"EET", 120},  {"EEST", 120}, {"EEDT", 120},
    {"IST", 120},  {"MET DST", 120}, {"METDST", 120}, {"CEST", 120}, {"HKT", 480},  {"JST", 540},
    {"EDT", -240}, {"EST", -300},    {"CDT", -300},   {"CST", -360}, {"MDT", -360}, {"MST", -420},
    {"PDT", -420}, {"PST", -480}};

/// What the patterns fill. A field that a pattern doesn't reach keeps what the one before put
/// there, and some texts are understood only thanks to that.
class DateReader {
 public:
  explicit DateReader(const char* text) noexcept : text_(text) {}

  /// Fills the local fields; returns false if the text isn't understood.
  bool read(SystemTime& local) noexcept;
  bool has_time_of_day() const noexcept { return filled_ >= 4; }
  /// Minutes east of UTC, or kUnsetZone.
  int16_t zone() const noexcept;

 private:
  void skip_space() noexcept;
  void skip_weekday() noexcept;
  void read_month_first() noexcept;
  void read_day_first() noexcept;
  bool read_by_separator() noexcept;
  void name_month() noexcept;
  void complete_year() noexcept;

  const char* text_;
  int filled_ = 0;
  int year_ = -1;
  int month_ = 0;
  int day_ = 0;
  int hour_ = 0;
  int minute_ = 0;
  int second_ = 0;
  char month_name_[4] = "";
  char zone_text_[7] = "";
};

void DateReader::skip_space() noexcept {
  while (is_space(*text_))
    ++text_;
}

void DateReader::skip_weekday() noexcept {
  constexpr const char* kEnglish[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  constexpr const char* kGerman[] = {"So", "Mo", "Di", "Mi", "Do", "Fr", "Sa"};
  const auto begins_with = [this](const char* name) {
    return same_letters(text_, name, std::strlen(name));
  };
  if (std::any_of(std::begin(kEnglish), std::end(kEnglish), begins_with)) {
    text_ += 3;
  } else if (std::any_of(std::begin(kGerman), std::end(kGerman), begins_with)) {
    text_ += 2;
  }
}

void DateReader::read_month_first() noexcept {
  filled_ = scan(text_, "%3s %d %d %d:%d:%d %5s",
                 {month_name_, day_, year_, hour_, minute_, second_, zone_text_});
  // A third number that can't be a year was an hour: the year stands at the end.
  if (filled_ != 3 || year_ >= 25) return;
  filled_ = scan(text_, "%3s %d %d:%d:%d %d %5s",
                 {month_name_, day_, hour_, minute_, second_, year_, zone_text_});
  if (filled_ > 6 || (filled_ == 6 && year_ > 1899)) return;
  filled_ = scan(text_, "%3s %d %d:%d:%d %5s %d",
                 {month_name_, day_, hour_, minute_, second_, zone_text_, year_});
  if (filled_ == 2) filled_ = 3;
}

void DateReader::read_day_first() noexcept {
  filled_ = scan(text_, "%d %3s %d %d:%d:%d %5s",
                 {day_, month_name_, year_, hour_, minute_, second_, zone_text_});
  if (read_by_separator()) {
    month_name_[0] = '\0';
  } else if (filled_ != 2 && std::strlen(text_) == 8) {
    filled_ = scan(text_, "%4d%2d%2d", {year_, month_, day_});
  }
}

bool DateReader::read_by_separator() noexcept {
  const auto holds = [this](char c) { return std::strchr(text_, c) != nullptr; };
  if (filled_ < 2) return false;
  if (day_ >= 101 && holds('T')) {
    filled_ = scan(text_, "%d-%d-%dT%d:%d:%d%6s",
                   {year_, month_, day_, hour_, minute_, second_, zone_text_});
  } else if (holds('/')) {
    filled_ = scan(text_, "%d/%d/%d %d:%d:%d %5s",
                   {month_, day_, year_, hour_, minute_, second_, zone_text_});
  } else if (holds('-')) {
    filled_ = scan(text_, "%d-%d-%d %d:%d:%d %5s",
                   {day_, month_, year_, hour_, minute_, second_, zone_text_});
  } else if (filled_ == 2) {
    filled_ = scan(text_, "%d.%d.%d %d:%d:%d %5s",
                   {day_, month_, year_, hour_, minute_, second_, zone_text_});
  } else {
    return false;
  }
  return true;
}

void DateReader::name_month() noexcept {
  if (month_name_[0] == '\0') return;
  for (const NamedNumber& month : kMonths) {
    if (same_word(month_name_, month.name)) month_ = month.number;
  }
}

void DateReader::complete_year() noexcept {
  if (year_ >= 0 && year_ <= 79) {
    year_ += 2000;
  } else if (year_ >= 80 && year_ <= 99) {
    year_ += 1900;
  }
}

bool DateReader::read(SystemTime& local) noexcept {
  skip_space();
  skip_weekday();
  if (*text_ == ',') ++text_;
  skip_space();
  if (is_digit(*text_)) {
    read_day_first();
  } else {
    read_month_first();
  }
  // A year in front was read through a pattern that begins with the day.
  if (day_ > 100 && year_ < 32) std::swap(day_, year_);
  if (filled_ < 3) return false;
  name_month();
  complete_year();
  local.wYear = static_cast<uint16_t>(year_);
  local.wMonth = static_cast<uint16_t>(month_);
  local.wDayOfWeek = kNoDayOfWeek;
  local.wDay = static_cast<uint16_t>(day_);
  local.wHour = static_cast<uint16_t>(hour_);
  local.wMinute = static_cast<uint16_t>(minute_);
  local.wSecond = static_cast<uint16_t>(second_);
  local.wMilliseconds = 0;
  return true;
}

int16_t DateReader::zone() const noexcept {
  if (zone_text_[0] == '\0') return kUnsetZone;
  int hours = 0;
  int minutes = 0;
  const bool colon = std::strchr(zone_text_, ':') != nullptr;
  if (scan(zone_text_, colon ? "%03d:%02d" : "%03d%02d", {hours, minutes}) >= 1) {
    if (hours < 0) minutes = -minutes;
    return static_cast<int16_t>(hours * 60 + minutes);
  }
  const auto* const named =
      std::find_if(std::begin(kZones), std::end(kZones),
                   [this](const NamedNumber& zone) { return same_word(zone_text_, zone.name); });
  return named != std::end(kZones) ? static_cast<int16_t>(named->number) : kUnsetZone;
}

/// The last day of the date's month; false if it lies beyond the calendar.
bool last_of_month(const SystemTime& date, SystemTime& last) noexcept {
  SystemTime next = date;
  next.wDay = 1;
  next.wMonth = static_cast<uint16_t>(date.wMonth % 12 + 1);
  if (next.wMonth == 1) ++next.wYear;
  FileTime moment = 0;
  return to_file_time(next, moment) && to_system_time(moment - kFileTimePerDay, last);
}

/// The first day of the date's month.
bool first_of_month(const SystemTime& date, SystemTime& first) noexcept {
  SystemTime copy = date;
  copy.wDay = 1;
  FileTime moment = 0;
  return to_file_time(copy, moment) && to_system_time(moment, first);
}

constexpr int kNoComparison = -2;

int sign_of(int difference) noexcept {
  return (difference > 0) - (difference < 0);
}

/// Order of a date and a transition rule by month and day, whatever the time of day and the year:
/// -1, 0, 1, or kNoComparison.
int compare_with_rule(const SystemTime& date, const SystemTime& rule) noexcept {
  if (date.wMonth != rule.wMonth) return date.wMonth < rule.wMonth ? -1 : 1;
  if (rule.wDayOfWeek > 6) return sign_of(date.wDay - rule.wDay);
  const bool in_last_week = rule.wDay == 5;
  SystemTime anchor;
  if (!(in_last_week ? last_of_month(date, anchor) : first_of_month(date, anchor))) {
    return kNoComparison;
  }
  const int days =
      in_last_week ? anchor.wDayOfWeek - rule.wDayOfWeek : rule.wDayOfWeek - anchor.wDayOfWeek;
  const int distance = days < 0 ? days + 7 : days;
  const int target =
      in_last_week ? anchor.wDay - distance : distance + rule.wDay * 7 + anchor.wDay - 7;
  return sign_of(date.wDay - target);
}

/// False for rules that make no sense. Daylight time is looked for within one year only, so the
/// southern hemisphere never has it.
bool bias_for_date(const TimeZoneInfo& zone, const SystemTime& date, int& bias) noexcept {
  const auto is_week = [](const SystemTime& rule) { return rule.wDay >= 1 && rule.wDay <= 5; };
  const int standard = zone.Bias + (zone.StandardDate.wMonth != 0 ? zone.StandardBias : 0);
  bias = standard;
  if (zone.DaylightDate.wMonth == 0) return true;
  if (zone.StandardDate.wMonth == 0 || !is_week(zone.StandardDate) || !is_week(zone.DaylightDate)) {
    return false;
  }
  if (compare_with_rule(date, zone.DaylightDate) >= 0 &&
      compare_with_rule(date, zone.StandardDate) < 0) {
    bias = zone.Bias + zone.DaylightBias;
  }
  return true;
}

TimeZoneInfo fixed_zone(int16_t zone) noexcept {
  TimeZoneInfo info;
  info.Bias = -zone;
  return info;
}

}  // namespace

int current_bias(const Clock& clock, TimeZoneInfo& zone) {
  switch (clock.zone(zone)) {
    case ZoneState::standard:
      return zone.Bias + zone.StandardBias;
    case ZoneState::daylight:
      return zone.Bias + zone.DaylightBias;
    default:
      return zone.Bias;
  }
}

bool local_to_utc(const TimeZoneInfo& zone, const SystemTime& local, SystemTime& result) noexcept {
  FileTime moment = 0;
  int bias = 0;
  if (!to_file_time(local, moment) || !bias_for_date(zone, local, bias)) return false;
  // Before the calendar's first hour this wraps to a time that can't be converted.
  return to_system_time(moment + static_cast<FileTime>(int64_t{bias}) * kFileTimePerMinute, result);
}

DateTime DateTime::now(const Clock& clock) {
  TimeZoneInfo zone;
  DateTime date;
  date.time = clock.now();
  date.zone = static_cast<int16_t>(-current_bias(clock, zone));
  return date;
}

void DateTime::parse(const char* text, const Clock& clock) {
  clear();
  DateReader reader(text);
  SystemTime local;
  if (!reader.read(local)) return;
  TimeZoneInfo info;
  zone = reader.zone();
  if (in_zone_range(zone)) {
    info = fixed_zone(zone);
  } else if (!reader.has_time_of_day()) {
    zone = 0;
    time = local;
    return;
  } else {
    zone = static_cast<int16_t>(-current_bias(clock, info));
  }
  if (!local_to_utc(info, local, time)) time = local;
}

int DateTime::compare(const DateTime& a, const DateTime& b) noexcept {
  FileTime first = 0;
  FileTime second = 0;
  if (!to_file_time(a.time, first)) return 1;
  if (!to_file_time(b.time, second)) return 0;
  return (first > second) - (first < second);
}

String DateTime::format(const char* format_text, const Clock& clock) const {
  if (empty()) return String();
  const TimeZoneInfo info = fixed_zone(zone);
  SystemTime local = time;
  if (!clock.to_local(&info, time, local)) local = time;
  const SystemTime* const argument = &local;
  return String::formatted(format_text, argument, argument);
}

String DateTime::text(const Clock& clock) const {
  if (empty()) return String();
  SystemTime local = time;
  if (!clock.to_local(nullptr, time, local)) local = time;
  return String::formatted("%02d.%02d.%04d %02d:%02d:%02d", local.wDay, local.wMonth, local.wYear,
                           local.wHour, local.wMinute, local.wSecond);
}

String DateTime::display(const Clock& clock) const {
  const bool midnight = time.wHour == 0 && time.wMinute == 0 && time.wSecond == 0;
  return format(midnight ? "%D" : "%D %#THH:mm#", clock);
}

}  // namespace ORLO
