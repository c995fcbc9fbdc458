// Lines as the update service writes them, and what the source makes of a log of them.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "inventory/update_log.h"
#include "orlo/fixed_clock.h"

inline constexpr char kUpdateLogFrame[] =
    "\t 992\ta4\tReport\tREPORT EVENT: {00000000-0000-0000-0000-000000000000}\t"
    "2011-01-08 22:54:25:000+0000\t1\t183\t101\t{00000000-0000-0000-0000-000000000000}\t200\t0\t"
    "AutomaticUpdates\tSuccess\tContent Install\tInstallation Successful: Windows successfully "
    "installed the following update: ";

/// A line that tells of a success, without its end.
inline std::string success_line(const std::string& title,
                                const std::string& moment = "2011-01-08\t22:54:25:015") {
  return moment + kUpdateLogFrame + title;
}

/// Read in Greenwich, whose clock stands still: what a log says is shown as it says it.
inline const ORLO::FixedClock& update_log_clock() {
  static const ORLO::FixedClock clock({2026, 11, 5, 20, 12}, ORLO::TimeZoneInfo());
  return clock;
}

inline std::vector<Row> read_update_log(const std::string& path,
                                        const ORLO::Clock& clock = update_log_clock()) {
  std::vector<Row> rows;
  std::set<RowKey> unseen;
  ReadUpdateLog(path, clock, unseen, [&rows](const Row& row) { rows.push_back(row); });
  return rows;
}
