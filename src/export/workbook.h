// Writing a sheet as a workbook.
#pragma once

#include <cstddef>

#include "export/export_sheet.h"
#include "platform/compound_storage.h"

/// A workbook's sheet has 65,536 rows, the first of which holds the titles.
inline constexpr size_t kMostWorkbookRows = 65535;
/// A cell takes no longer text; what is beyond is left out.
inline constexpr size_t kLongestCellText = 32767;

/// Writes a file, or replaces it: 0, or the platform's code of the failure. The sheet must have no
/// more than kMostWorkbookRows rows and 256 columns.
StorageStatus writeWorkbook(const ExportSheet& sheet, const String& fileName,
                            CompoundStorage& storage);
