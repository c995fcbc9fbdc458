#include "export/yexcel/format_manager.h"

#include <algorithm>
#include <utility>

namespace YExcel {
namespace {

struct BuiltInFormat {
  uint16_t index;
  const char16_t* text;
};

constexpr BuiltInFormat kBuiltInFormats[] = {
    {0, u"General"},
    {1, u"0"},
    {2, u"0.00"},
    {3, u"#,##0"},
    {4, u"#,##0.00"},
    {5, u"\"$\"#,##0_);(\"$\"#,##0)"},
    {6, u"\"$\"#,##0_);[Red](\"$\"#,##0)"},
    {7, u"\"$\"#,##0.00_);(\"$\"#,##0.00)"},
    {8, u"\"$\"#,##0.00_);[Red](\"$\"#,##0.00)"},
    {9, u"0%"},
    {10, u"0.00%"},
    {11, u"0.00E+00"},
    {12, u"# ?/?"},
    {13, u"# ?\?/?\?"},
    {14, u"M/D/YY"},
    {15, u"D-MMM-YY"},
    {16, u"D-MMM"},
    {17, u"MMM-YY"},
    {18, u"h:mm AM/PM"},
    {19, u"h:mm:ss AM/PM"},
    {20, u"h:mm"},
    {21, u"h:mm:ss"},
    {22, u"M/D/YY h:mm"},
    {37, u"_(#,##0_);(#,##0)"},
    {38, u"_(#,##0_);[Red](#,##0)"},
    {39, u"_(#,##0.00_);(#,##0.00)"},
    {40, u"_(#,##0.00_);[Red](#,##0.00)"},
    {41, u"_(* #,##0_);_(* (#,##0);_(* \"-\"_);_(@_)"},
    {42, u"_($* #,##0_);_($* (#,##0);_($* \"-\"_);_(@_)"},
    {43, u"_(* #,##0.00_);_(* (#,##0.00);_(* \"-\"?\?_);_(@_)"},
    {44, u"_($* #,##0.00_);_($* (#,##0.00);_($* \"-\"?\?_);_(@_)"},
    {45, u"mm:ss"},
    {46, u"[h]:mm:ss"},
    {47, u"mm:ss.0"},
    {48, u"##0.0E+0"},
    {49, u"@"},
};

/// The text of a record, its 8-bit characters as the first 256 of the wide ones.
std::u16string wide_text(const RecordText& text) {
  if (text.unicode) return text.wide;
  std::u16string wide(text.name.size(), u'\0');
  std::ranges::transform(text.name, wide.begin(),
                         [](char byte) { return static_cast<unsigned char>(byte); });
  return wide;
}

RecordText record_text(const std::u16string& text) {
  return {.name = {}, .wide = text, .unicode = true};
}

bool is_same(const Workbook::Font& font, const CellFont& cell) {
  return font.height == cell.height && font.weight == cell.weight && font.options == cell.options &&
         font.colourIndex == cell.colourIndex && font.escapementType == cell.escapementType &&
         font.underlineType == cell.underlineType && font.family == cell.family &&
         font.characterSet == cell.characterSet && wide_text(font.name) == cell.name;
}

bool is_same(const Workbook::XF& xf, const CellFormat& cell) {
  return xf.fontRecordIndex == cell.fontIndex && xf.formatRecordIndex == cell.formatIndex &&
         xf.alignment == cell.alignment && xf.rotation == cell.rotation &&
         xf.textProperties == cell.textProperties && xf.borderLines == cell.borderLines &&
         xf.colour1 == cell.colour1 && xf.colour2 == cell.colour2;
}

/// Position of the first record that is the same, or how many there are.
template <class Record, class Cell>
uint16_t position_of(const std::vector<Record>& records, const Cell& cell) {
  const auto found =
      std::ranges::find_if(records, [&](const Record& record) { return is_same(record, cell); });
  return static_cast<uint16_t>(found - records.begin());
}

Workbook::Font font_record(const CellFont& cell) {
  Workbook::Font font;
  font.height = cell.height;
  font.options = cell.options;
  font.colourIndex = cell.colourIndex;
  font.weight = cell.weight;
  font.escapementType = cell.escapementType;
  font.underlineType = cell.underlineType;
  font.family = cell.family;
  font.characterSet = cell.characterSet;
  font.name = record_text(cell.name);
  return font;
}

Workbook::XF xf_record(const CellFormat& cell) {
  Workbook::XF xf;
  xf.fontRecordIndex = cell.fontIndex;
  xf.formatRecordIndex = cell.formatIndex;
  xf.protectionType = 120;
  xf.alignment = cell.alignment;
  xf.rotation = cell.rotation;
  xf.textProperties = cell.textProperties;
  xf.borderLines = cell.borderLines;
  xf.colour1 = cell.colour1;
  xf.colour2 = cell.colour2;
  return xf;
}

}  // namespace

void CellFormat::set_font(const CellFont& font) {
  fontIndex = manager_.FontIndex(font);
  xfIndex = -1;
}

void CellFormat::set_number_format(const std::u16string& format) {
  formatIndex = manager_.NumberFormatIndex(format);
  xfIndex = -1;
}

void CellFormat::set_alignment(uint8_t align) noexcept {
  constexpr uint8_t kAlignBits = 7;
  alignment = static_cast<uint8_t>((32 & ~kAlignBits) | (align & kAlignBits));
  xfIndex = -1;
}

uint32_t CellFormat::resolve() {
  if (xfIndex < 0) xfIndex = manager_.XFIndex(*this);
  return static_cast<uint32_t>(xfIndex);
}

FormatManager::FormatManager(Workbook& workbook) : workbook_(workbook) {
  for (const BuiltInFormat& format : kBuiltInFormats)
    enter(format.index, format.text);
  for (const Workbook::Format& format : workbook.formats) {
    enter(format.index, wide_text(format.formatString));
    nextIndex_ = std::max(nextIndex_, format.index + 1U);
  }
}

void FormatManager::enter(uint16_t index, const std::u16string& text) {
  formats_[index] = text;
  indices_[text] = index;
}

const std::u16string* FormatManager::NumberFormat(uint16_t index) const {
  const auto found = formats_.find(index);
  return found == formats_.end() ? nullptr : &found->second;
}

uint16_t FormatManager::FontIndex(const CellFont& cellFont) {
  // Fonts are numbered without 4, which this format doesn't use; the first ones aren't affected.
  constexpr uint16_t kUnusedIndex = 4;
  const uint16_t position = position_of(workbook_.fonts, cellFont);
  if (position < workbook_.fonts.size()) return position;
  workbook_.fonts.push_back(font_record(cellFont));
  return position < kUnusedIndex ? position : static_cast<uint16_t>(position + 1U);
}

uint16_t FormatManager::NumberFormatIndex(const std::u16string& text) {
  if (const auto known = indices_.find(text); known != indices_.end()) return known->second;
  const auto index = static_cast<uint16_t>(nextIndex_++);
  enter(index, text);
  workbook_.formats.push_back({.index = index, .formatString = record_text(text)});
  return index;
}

uint16_t FormatManager::XFIndex(const CellFormat& cellFormat) {
  const uint16_t position = position_of(workbook_.XFs, cellFormat);
  if (position == workbook_.XFs.size()) workbook_.XFs.push_back(xf_record(cellFormat));
  return position;
}

}  // namespace YExcel
