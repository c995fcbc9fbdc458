#include "export/csv.h"

#include <cstring>
#include <utility>

#include "orlo/exception.h"
#include "orlo/overlapped_file.h"

namespace {

void write_field(const String& field, ORLO::OutFile& file) {
  const bool quoted = std::memchr(field.c_str(), ';', field.length()) != nullptr;
  if (quoted) file.put('"');
  file.write(field.c_str(), field.length());
  if (quoted) file.put('"');
  file.put(';');
}

}  // namespace

void write_csv(const ExportSheet& sheet, ORLO::OutFile& file) {
  for (const ExportColumn& column : sheet.columns)
    write_field(column.title, file);
  file.put('\n');
  for (const std::vector<String>& row : sheet.rows) {
    for (const String& field : row)
      write_field(field, file);
    file.put('\n');
  }
}

void writeCsv(const ExportSheet& sheet, const String& fileName) {
  const ORLO::ExceptionContext context("Writing file", fileName);
  auto opened = ORLO::open_overlapped_raw_file(fileName.c_str(), ORLO::FileAccess::write,
                                               ORLO::kCreateAlways, ORLO::kShareRead, 0);
  if (opened == nullptr) throw ORLO::LWE();
  ORLO::OverlappedOutFile file(std::move(opened));
  write_csv(sheet, file);
  if (!file.flush()) throw ORLO::LWE(file.error());
}
