// The log of the system's update service.
#pragma once

#include <optional>
#include <set>
#include <string_view>

#include "inventory/source_rows.h"

/// What a line of the log says of an update that was installed.
struct LoggedUpdate {
  String title;    ///< in the code page
  String name;     ///< "KB" and digits, or else the title
  String version;  ///< often empty
  DateTime installed;
};

/// None for a line that tells of no success. Its first two words are the date and the time; where
/// they are none the date is empty. Takes any bytes, up to a NUL.
std::optional<LoggedUpdate> parse_update_line(std::string_view line, const ORLO::Clock& clock);

/// Delivers a row for each update that was installed according to the log at `path`, once for each
/// time that it was. A log that can't be opened gives none; one that can't be read to its end those
/// before. What a line has beyond a megabyte counts as the next one.
void ReadUpdateLog(const String& path, const ORLO::Clock& clock, std::set<RowKey>& unseenKeys,
                   const RowSink& deliver);
