// An inventory of any number of rows as a sheet, and where its workbook may go.
#pragma once

#include <cstdint>
#include <iterator>
#include <memory>

#include "export/workbook.h"

namespace bench {

/// A column's cells: every so-many-th row has a text, and so many different ones there are.
struct Column {
  const char* text;
  int used_every;
  int different;
};

// About what an inventory holds.
inline constexpr Column kColumns[29] = {
    {"Program Number %d", 1, 1 << 30},
    {"{4D5B1D7C-0F4C-4E0A-9E5C-%012d}", 1, 1 << 30},
    {"Source %d", 1, 4},
    {"1.%d.0", 1, 3000},
    {"Parent entry %d", 10, 500},
    {"Parent %d", 10, 500},
    {"%d.01.2009 12:34", 1, 2000},
    {"%d.02.2009 12:34", 50, 50},
    {"%d KB", 2, 1 << 30},
    {"\"C:\\Program Files\\Maker\\Program %d\\uninstall.exe\" /remove", 1, 1 << 30},
    {"\"C:\\Program Files\\Maker\\Program %d\\setup.exe\" /modify", 4, 1 << 30},
    {"C:\\Program Files\\Maker\\Program %d\\program.exe,0", 2, 1 << 30},
    {"C:\\Program Files\\Maker\\Program %d\\", 2, 1 << 30},
    {"%d.03.2009 12:34", 4, 1000},
    {"C:\\Windows\\Installer\\%x.msi", 4, 1 << 30},
    {"%d", 1, 5},
    {"%d", 1, 3},
    {"Yes %d", 3, 1},
    {"No %d", 1, 2},
    {"%d", 1, 6},
    {"A remark about program %d", 10, 1 << 30},
    {"User %d", 1, 3},
    {"Publisher %d", 1, 400},
    {"Contact %d", 4, 300},
    {"http://help.example/%d", 4, 2000},
    {"0800 %d", 20, 200},
    {"http://about.example/%d", 3, 2000},
    {"http://update.example/%d", 5, 2000},
    {"new", 100, 1},
};

inline String cell_text(const Column& column, int row) {
  if (row % column.used_every != 0) return String();
  return String::formatted(column.text, row % column.different);
}

inline ExportSheet inventory(int rows) {
  ExportSheet sheet;
  sheet.columns.resize(std::size(kColumns));
  for (ExportColumn& column : sheet.columns) {
    column.title = "Title";
    column.format = u"General";
  }
  sheet.rows.reserve(static_cast<size_t>(rows));
  for (int row = 0; row < rows; ++row) {
    auto& cells = sheet.rows.emplace_back();
    cells.reserve(std::size(kColumns));
    for (const Column& column : kColumns)
      cells.push_back(cell_text(column, row));
  }
  return sheet;
}

/// Keeps nothing but how much was written.
class CountingStorage final : public CompoundStorage {
 public:
  size_t written = 0;

  std::unique_ptr<CompoundFile> create(const char16_t* /*path*/, StorageStatus& status) override {
    status = 0;
    return std::make_unique<File>(written);
  }

 private:
  struct Stream final : StorageStream {
    explicit Stream(size_t& count) : written(count) {}
    StorageStatus write(const void* /*data*/, size_t size) override {
      written += size;
      return 0;
    }
    size_t& written;
  };
  struct File final : CompoundFile {
    explicit File(size_t& count) : written(count) {}
    StorageStatus create_stream(const char16_t* /*name*/) override { return 0; }
    StorageStatus commit() override { return 0; }
    std::unique_ptr<StorageStream> open_stream(const char16_t* /*name*/,
                                               StorageStatus& status) override {
      status = 0;
      return std::make_unique<Stream>(written);
    }
    size_t& written;
  };
};

}  // namespace bench
