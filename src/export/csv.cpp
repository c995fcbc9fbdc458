#include "export/csv.h"

#include <cstring>
#include <string>
#include <utility>

#include "orlo/exception.h"
#include "orlo/overlapped_file.h"

namespace {

/// A line is put together first: the file takes one long piece at less cost than many short ones.
void append_field(std::string& line, const String& field) {
  const bool quoted = std::memchr(field.c_str(), ';', field.length()) != nullptr;
  if (quoted) line += '"';
  line.append(field.c_str(), field.length());
  line.append(quoted ? "\";" : ";");
}

void end_line(std::string& line, ORLO::OutFile& file) {
  line += '\n';
  file.write(line.data(), line.size());
  line.clear();
}

}  // namespace

void write_csv(const ExportSheet& sheet, ORLO::OutFile& file) {
  std::string line;
  for (const ExportColumn& column : sheet.columns)
    append_field(line, column.title);
  end_line(line, file);
  for (const std::vector<String>& row : sheet.rows) {
    for (const String& field : row)
      append_field(line, field);
    end_line(line, file);
  }
}

void writeCsv(const ExportSheet& sheet, const String& fileName) {
  const ORLO::ExceptionContext context("writing file", fileName);
  auto opened = ORLO::open_overlapped_raw_file(fileName.c_str(), ORLO::FileAccess::write,
                                               ORLO::kCreateAlways, ORLO::kShareRead, 0);
  if (opened == nullptr) throw ORLO::LWE();
  ORLO::OverlappedOutFile file(std::move(opened));
  write_csv(sheet, file);
  if (!file.flush()) throw ORLO::LWE(file.error());
}
