// A date text: what it is read as makes sense, and what is printed of it is read as the same
// moment.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "orlo/datetime.h"
#include "orlo/fixed_clock.h"

namespace {

void demand(bool holds) {
  if (!holds) std::abort();
}

/// Without daylight time, as the hour that winter begins with comes twice.
const ORLO::FixedClock& clock_without_seasons() {
  static const ORLO::FixedClock clock = [] {
    ORLO::TimeZoneInfo zone;
    zone.Bias = -90;
    return ORLO::FixedClock({2026, 1, 4, 15, 12, 0, 0, 0}, zone);
  }();
  return clock;
}

void read(const std::string& text) {
  const ORLO::FixedClock& clock = clock_without_seasons();
  DateTime date;
  date.parse(text.c_str(), clock);
  demand(date.zone >= -1439 && date.zone <= 1439);
  demand(date.empty() == date.text(clock).empty());
  demand(!date.empty() || date.display(clock).empty());
  ORLO::FileTime moment = 0;
  if (!ORLO::to_file_time(date.time, moment)) {
    demand(DateTime::compare(date, date) == 1);
    return;
  }
  demand(DateTime::compare(date, date) == 0);
  // At the ends of the calendar the local time may not exist.
  if (date.time.wYear < 1700 || date.time.wYear > 9000) return;
  DateTime again;
  again.parse(date.text(clock).c_str(), clock);
  demand(DateTime::compare(date, again) == 0);
}

void read_in_berlin(const std::string& text) {
  const ORLO::FixedClock berlin({2026, 7, 3, 15, 12, 0, 0, 0});
  DateTime date;
  date.parse(text.c_str(), berlin);
  demand(date.empty() == date.text(berlin).empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  read(text);
  read_in_berlin(text);
  return 0;
}
