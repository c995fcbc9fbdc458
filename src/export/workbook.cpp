#include "export/workbook.h"

#include <algorithm>
#include <string>
#include <vector>

#include "export/yexcel/document.h"
#include "export/yexcel/format_manager.h"

namespace {

using YExcel::CellFormat;
using YExcel::FormatManager;

/// E_INVALIDARG: the sheet is larger than a workbook's.
constexpr auto kTooLarge = static_cast<StorageStatus>(0x80070057);

YExcel::CellFont title_font() {
  return {.name = u"Arial", .height = 200, .weight = 700, .colourIndex = 0x7FFF};
}

CellFormat format_of(const ExportColumn& column, FormatManager& manager) {
  CellFormat format(manager);
  format.set_number_format(column.format);
  format.set_alignment(static_cast<uint8_t>(column.align));
  return format;
}

/// As much of a text as a cell takes.
void set_text(YExcel::SheetCell& cell, const String& text) {
  if (text.length() <= kLongestCellText) {
    cell.SetText(text);
  } else {
    cell.SetText(String(text.c_str(), text.c_str() + kLongestCellText));
  }
}

/// Has the blocks of a row's texts fetched all at once. To share a text is an atomic step, which
/// would wait for each block in turn.
void prefetch(const std::vector<String>& row) {
  for (const String& text : row)
    __builtin_prefetch(text.c_str(), 1);
}

/// A style is resolved for the first cell that takes it, so that unused ones leave no record.
void set_cell(YExcel::Sheet& to, size_t row, size_t column, const String& text,
              CellFormat& format) {
  YExcel::SheetCell* const cell = to.CellAt(row, column);
  if (cell == nullptr) return;
  set_text(*cell, text);
  cell->xfIndex = format.resolve();
}

void fill(YExcel::Sheet& to, const ExportSheet& sheet, FormatManager& manager) {
  CellFormat titles(manager);
  titles.set_font(title_font());
  std::vector<CellFormat> formats;
  formats.reserve(sheet.columns.size());
  for (size_t i = 0; i < sheet.columns.size(); ++i) {
    formats.push_back(format_of(sheet.columns[i], manager));
    set_cell(to, 0, i, sheet.columns[i].title, titles);
  }
  for (size_t i = 0; i < sheet.rows.size(); ++i) {
    const std::vector<String>& row = sheet.rows[i];
    prefetch(row);
    for (size_t column = 0; column < std::min(row.size(), formats.size()); ++column)
      set_cell(to, i + 1, column, row[column], formats[column]);
  }
}

}  // namespace

StorageStatus writeWorkbook(const ExportSheet& sheet, const String& fileName,
                            CompoundStorage& storage) {
  if (sheet.rows.size() > kMostWorkbookRows || sheet.columns.size() > YExcel::kMostColumns)
    return kTooLarge;
  YExcel::Document document(storage);
  document.New(1);
  FormatManager manager(document.workbook());
  fill(*document.SheetAt(0), sheet, manager);
  return document.SaveAs(fileName.c_str()) ? 0 : document.status();
}
