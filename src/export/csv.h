// Writing a sheet as text, its fields divided by semicolons.
#pragma once

#include "export/export_sheet.h"
#include "orlo/out_file.h"

/// Each field is followed by ";", each line by "\n"; a field with a ";" stands in quotes. A quote
/// or a line end in a field is written as it is, so not every sheet can be read back.
void write_csv(const ExportSheet& sheet, ORLO::OutFile& file);

/// Writes a file, which is created anew. Throws LWE if it can't be opened or written.
void writeCsv(const ExportSheet& sheet, const String& fileName);
