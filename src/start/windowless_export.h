// The inventory written to a file by a run that shows nothing and asks nobody.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "export/export_sheet.h"
#include "export/json_lines.h"
#include "export/package_list.h"
#include "export/workbook.h"
#include "inventory/reader.h"
#include "orlo/raw_file.h"

/// The process's exit codes.
inline constexpr int kExportDone = 0;
inline constexpr int kExportFailed = 2;

/// What such a run stands on; all must outlive it.
struct WindowlessServices {
  const UninstallReader::Services& reader;
  TextOf text_of;
  std::string host_name;  ///< UTF-8
  std::string program_version;
  /// As writeWorkbook(): 0, or the platform's code of the failure.
  std::function<int32_t(const ExportSheet& sheet, const String& file_name)> write_workbook;
  std::function<std::unique_ptr<ORLO::RawFile>()> open_output;
  size_t most_workbook_rows = kMostWorkbookRows;
  /// Waits while messages flow; see RefreshCycle.
  RefreshCycle::Wait wait = &ORLO::wait_with_messages;
};

/// Which kind of file a name stands for.
enum class ExportFormat { workbook, csv, json_lines, standard_output };
ExportFormat export_format(const String& file_name);

/// Makes one pass over all sources and writes the file: whole, or not at all, and then what was
/// there stays. "-" is the standard output. Nothing else is read or written. Empty, or what has
/// failed, in one line.
String export_without_window(const String& file_name, const WindowlessServices& services);

/// The text with a blank for each line end and other control character, so that it is one line.
String in_one_line(const String& text);
