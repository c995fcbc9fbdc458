#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string_view>

#include "orlo/codepage_host.h"
#include "orlo/collation_host.h"
#include "orlo/locale.h"

// The stand-in of build machines: Windows-1252, and the conventions of one of two languages.

namespace ORLO {
namespace {

struct Language {
  const char* short_date;
  const char* time;
  const char* morning;
  const char* afternoon;
  const char* days[7];
  size_t short_day;  // characters of the name
  const char* months[12];
  const char* short_months[12];
};

constexpr Language kEnglish = {
    "dd/MM/yyyy",
    "HH:mm:ss",
    "am",
    "pm",
    {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"},
    3,
    {"January", "February", "March", "April", "May", "June", "July", "August", "September",
     "October", "November", "December"},
    {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"}};

constexpr Language kGerman = {
    "dd.MM.yyyy",
    "HH:mm:ss",
    "",
    "",
    {"Sonntag", "Montag", "Dienstag", "Mittwoch", "Donnerstag", "Freitag", "Samstag"},
    2,
    {"Januar", "Februar", "M\xe4rz", "April", "Mai", "Juni", "Juli", "August", "September",
     "Oktober", "November", "Dezember"},
    {"Jan", "Feb", "Mrz", "Apr", "Mai", "Jun", "Jul", "Aug", "Sep", "Okt", "Nov", "Dez"}};

std::string number(unsigned value, size_t digits) {
  std::string text = std::to_string(value);
  if (text.size() < digits) text.insert(0, digits - text.size(), '0');
  return text;
}

/// What `count` times the letter of a date picture stands for; empty optional for other letters.
std::optional<std::string> date_field(const Language& language, const SystemTime& time, char letter,
                                      size_t count) {
  const std::string_view day = language.days[time.wDayOfWeek];
  switch (letter) {
    case 'd':
      if (count <= 2) return number(time.wDay, count);
      return std::string(count == 3 ? day.substr(0, language.short_day) : day);
    case 'M':
      if (count <= 2) return number(time.wMonth, count);
      return (count == 3 ? language.short_months : language.months)[time.wMonth - 1];
    case 'y':
      return count <= 2 ? number(time.wYear % 100, 2) : number(time.wYear, 4);
    default:
      return std::nullopt;
  }
}

std::optional<std::string> time_field(const Language& language, const SystemTime& time, char letter,
                                      size_t count) {
  const size_t digits = count == 1 ? 1 : 2;
  const std::string_view half = time.wHour < 12 ? language.morning : language.afternoon;
  switch (letter) {
    case 'h':
      return number((time.wHour + 11U) % 12 + 1, digits);
    case 'H':
      return number(time.wHour, digits);
    case 'm':
      return number(time.wMinute, digits);
    case 's':
      return number(time.wSecond, digits);
    case 't':
      return std::string(count == 1 ? half.substr(0, 1) : half);
    default:
      return std::nullopt;
  }
}

using FieldText = decltype(&date_field);

/// Reads past a quoted piece; a doubled quote in it stands for one quote.
void add_quoted(std::string& text, const char*& at) {
  for (++at; *at != '\0'; ++at) {
    if (*at == '\'' && *++at != '\'') return;
    text += *at;
  }
}

std::optional<std::string> in_picture(const Language& language, const SystemTime& time,
                                      const char* picture, FieldText field_text) {
  constexpr size_t kRoom = 512;
  std::string text;
  for (const char* at = picture; *at != '\0';) {
    if (*at == '\'') {
      add_quoted(text, at);
      continue;
    }
    const size_t count = std::strspn(at, std::string(1, *at).c_str());
    const std::optional<std::string> field = field_text(language, time, *at, count);
    text += field ? *field : std::string(count, *at);
    at += count;
  }
  if (text.size() >= kRoom) return std::nullopt;
  return text;
}

class StandInLocale final : public Locale {
 public:
  explicit StandInLocale(const Language& language) noexcept : language_(language) {}

  std::optional<std::string> date_text(const SystemTime& time, const char* picture) const override {
    SystemTime date;
    date.wYear = time.wYear;
    date.wMonth = time.wMonth;
    date.wDay = time.wDay;
    FileTime moment = 0;
    if (!to_file_time(date, moment) || !to_system_time(moment, date)) return std::nullopt;
    return in_picture(language_, date, picture != nullptr ? picture : language_.short_date,
                      date_field);
  }

  std::optional<std::string> time_text(const SystemTime& time, const char* picture) const override {
    if (time.wHour > 23 || time.wMinute > 59 || time.wSecond > 59 || time.wMilliseconds > 999) {
      return std::nullopt;
    }
    return in_picture(language_, time, picture != nullptr ? picture : language_.time, time_field);
  }

  int collate(const char* a, const char* b, bool ignore_case) const override {
    return stand_in_collate(a, b, ignore_case);
  }

  std::string narrow(const char16_t* wide, size_t length) const override {
    return stand_in_narrow(wide, length);
  }

  std::u16string widen(const char* text, size_t length) const override {
    return stand_in_widen(text, length);
  }

 private:
  const Language& language_;
};

}  // namespace

const Locale& system_locale() {
  static const StandInLocale english(kEnglish);
  static const StandInLocale german(kGerman);
  const char* const name = std::getenv("LC_ALL");
  return name != nullptr && std::strncmp(name, "de", 2) == 0 ? german : english;
}

}  // namespace ORLO
