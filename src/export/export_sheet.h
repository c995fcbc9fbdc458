// The inventory as a sheet of texts, ready for a writer.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "inventory/entry.h"

struct ExportColumn {
  String title;
  std::u16string format;  ///< number format of the column's cells in a workbook
  unsigned align = 0;     ///< of the cells in a workbook: 0 as the program likes, 3 right
};

struct ExportSheet {
  std::vector<ExportColumn> columns;
  /// Each with a text for each column. The texts are shared with the entries.
  std::vector<std::vector<String>> rows;
};

/// Which packages are left out unless these say otherwise. The other switches of the list and its
/// search play no part.
struct ExportFilter {
  bool showUnnamed = false;
  bool showSystemComponents = false;

  bool accepts(const UninstallEntry& entry) const noexcept {
    return (showUnnamed || !entry.displayName.empty()) &&
           (showSystemComponents || entry.systemComponent == 0);
  }
};

/// The text with this id, in the language of the user interface.
using TextOf = std::function<String(unsigned id)>;

/// Fills a sheet, package by package.
class ExportSheetBuilder {
 public:
  ExportSheetBuilder(const TextOf& text_of, const ExportFilter& filter);

  /// Appends a row for the package, unless the filter leaves it out.
  void add(const UninstallEntry& entry);
  ExportSheet take() { return std::move(sheet_); }

 private:
  String change_text(const UninstallEntry& entry) const;
  const String& shared(const String& text) const { return text.empty() ? empty_ : text; }
  const String& number_text(int32_t number);

  const ExportFilter filter_;
  const String changed_;
  const String new_;
  /// Most cells are empty. With one block for all of them a writer has less memory to go over.
  const String empty_;
  std::map<int32_t, String> numbers_;
  ExportSheet sheet_;
};
