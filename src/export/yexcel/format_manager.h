// Number formats, fonts and cell formats as indices into a workbook's tables.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "export/yexcel/workbook.h"

namespace YExcel {

/// What a font is built from.
struct CellFont {
  std::u16string name;
  uint16_t height = 0;  ///< in twentieths of a point
  uint16_t weight = 0;  ///< 400 normal, 700 bold
  uint16_t options = 0;
  uint16_t colourIndex = 0;
  uint16_t escapementType = 0;
  uint8_t underlineType = 0;
  uint8_t family = 0;
  uint8_t characterSet = 0;
};

class FormatManager;

/// What a cell's style is built from. The manager must outlive it.
class CellFormat {
 public:
  explicit CellFormat(FormatManager& manager) noexcept : manager_(manager) {}

  void set_font(const CellFont& font);
  void set_number_format(const std::u16string& format);
  /// 0 as the program likes, 3 right; in the lowest three bits.
  void set_alignment(uint8_t align) noexcept;
  /// Position of the style among the workbook's XFs, which gain it if they lack it.
  uint32_t resolve();

  int32_t xfIndex = -1;  ///< -1 until it is resolved
  uint16_t fontIndex = 0;
  uint16_t formatIndex = 0;
  uint8_t alignment = 32;
  uint8_t rotation = 0;
  uint8_t textProperties = 0;
  uint32_t borderLines = 0;
  uint32_t colour1 = 0;
  uint16_t colour2 = 8384;

 private:
  FormatManager& manager_;
};

/// Lives no longer than its workbook, and is the only one that adds to its tables meanwhile.
class FormatManager {
 public:
  explicit FormatManager(Workbook& workbook);

  // Give the index of what is asked for, which the workbook gains if it lacks it.
  uint16_t FontIndex(const CellFont& cellFont);
  uint16_t NumberFormatIndex(const std::u16string& text);
  uint16_t XFIndex(const CellFormat& cellFormat);

  /// The text of a number format, null for an index that has none.
  const std::u16string* NumberFormat(uint16_t index) const;

 private:
  void enter(uint16_t index, const std::u16string& text);

  Workbook& workbook_;
  std::map<uint16_t, std::u16string> formats_;
  std::map<std::u16string, uint16_t> indices_;
  uint32_t nextIndex_ = 164;  ///< above all indices met
};

}  // namespace YExcel
