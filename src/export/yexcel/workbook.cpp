#include "export/yexcel/workbook.h"

#include <algorithm>

#include "export/yexcel/record.h"

namespace YExcel {
namespace {

// Formats below are built into whatever reads the workbook.
constexpr uint16_t kFirstCustomFormat = 164;
constexpr uint16_t kBuiltInStyle = 0x8000;

constexpr size_t kLongestShortText = 255;
constexpr size_t kLongestText = 65535;
constexpr uint32_t kShortTextHeader = 2;
constexpr uint32_t kTextHeader = 3;

/// How many characters are written of a text that has a length of one or two bytes.
size_t count_of(const RecordText& text, size_t longest) {
  return std::min(text.unicode ? text.wide.size() : text.name.size(), longest);
}

uint32_t bytes_of(const RecordText& text, size_t longest) {
  return static_cast<uint32_t>(count_of(text, longest) * (text.unicode ? 2 : 1));
}

void put_characters(std::string& body, const RecordText& text, size_t count) {
  put8(body, text.unicode ? 1 : 0);
  if (text.unicode)
    put_wide(body, std::u16string_view(text.wide).substr(0, count));
  else
    body.append(text.name, 0, count);
}

void put_short_text(std::string& body, const RecordText& text) {
  const size_t count = count_of(text, kLongestShortText);
  put8(body, static_cast<uint8_t>(count));
  put_characters(body, text, count);
}

void put_text(std::string& body, const RecordText& text) {
  const size_t count = count_of(text, kLongestText);
  put16(body, static_cast<uint16_t>(count));
  put_characters(body, text, count);
}

bool has_record(const Workbook::Format& format) {
  return format.index >= kFirstCustomFormat;
}

template <class Records>
uint32_t sizes_of(const Records& records) {
  uint32_t size = 0;
  for (const auto& record : records)
    size += record.RecordSize();
  return size;
}

template <class Records>
void write_all(const Records& records, std::string& buffer) {
  for (const auto& record : records)
    record.Write(buffer);
}

}  // namespace

void BOF::Write(std::string& buffer) const {
  std::string body;
  put16(body, version);
  put16(body, type);
  put16(body, buildIdentifier);
  put16(body, buildYear);
  put32(body, fileHistoryFlags);
  put32(body, lowestExcelVersion);
  write_record(buffer, 2057, body);
}

void YEOF::Write(std::string& buffer) const {
  write_record(buffer, 10, {});
}

void Workbook::Window1::Write(std::string& buffer) const {
  std::string body;
  for (const uint16_t field :
       {horizontalPos, verticalPos, width, height, options, activeWorksheetIndex,
        firstVisibleTabIndex, selectedWorksheetNumber, worksheetTabBarWidth})
    put16(body, field);
  write_record(buffer, 61, body);
}

uint32_t Workbook::Font::DataSize() const {
  return 14 + kShortTextHeader + bytes_of(name, kLongestShortText);
}

uint32_t Workbook::Font::RecordSize() const {
  return short_record_size(DataSize());
}

void Workbook::Font::Write(std::string& buffer) const {
  std::string body;
  for (const uint16_t field : {height, options, colourIndex, weight, escapementType})
    put16(body, field);
  for (const uint8_t field : {underlineType, family, characterSet, unused})
    put8(body, field);
  put_short_text(body, name);
  write_record(buffer, 49, body);
}

uint32_t Workbook::Format::DataSize() const {
  return 2 + kTextHeader + bytes_of(formatString, kLongestText);
}

uint32_t Workbook::Format::RecordSize() const {
  return short_record_size(DataSize());
}

void Workbook::Format::Write(std::string& buffer) const {
  std::string body;
  put16(body, index);
  put_text(body, formatString);
  write_record(buffer, 1054, body);
}

void Workbook::XF::Write(std::string& buffer) const {
  std::string body;
  for (const uint16_t field : {fontRecordIndex, formatRecordIndex, protectionType})
    put16(body, field);
  for (const uint8_t field : {alignment, rotation, textProperties, usedAttributes})
    put8(body, field);
  put32(body, borderLines);
  put32(body, colour1);
  put16(body, colour2);
  write_record(buffer, 224, body);
}

uint32_t Workbook::Style::DataSize() const {
  if ((XFRecordIndex & kBuiltInStyle) != 0) return 4;
  return 2 + kTextHeader + bytes_of(name, kLongestText);
}

uint32_t Workbook::Style::RecordSize() const {
  return short_record_size(DataSize());
}

void Workbook::Style::Write(std::string& buffer) const {
  std::string body;
  put16(body, XFRecordIndex);
  if ((XFRecordIndex & kBuiltInStyle) != 0) {
    put8(body, identifier);
    put8(body, level);
  } else {
    put_text(body, name);
  }
  write_record(buffer, 659, body);
}

uint32_t Workbook::BoundSheet::DataSize() const {
  return 6 + kShortTextHeader + bytes_of(name, kLongestShortText);
}

uint32_t Workbook::BoundSheet::RecordSize() const {
  return short_record_size(DataSize());
}

void Workbook::BoundSheet::Write(std::string& buffer) const {
  std::string body;
  put32(body, BOFpos);
  put8(body, visibility);
  put8(body, sheetType);
  put_short_text(body, name);
  write_record(buffer, 133, body);
}

Workbook::Workbook() : fonts(1), XFs(21), styles(6) {
  fonts.front().name = {.name = {}, .wide = u"Arial", .unicode = true};
}

uint32_t Workbook::RecordSize() {
  uint32_t size = bof.RecordSize() + window1.RecordSize() + sizes_of(fonts);
  for (const Format& format : formats) {
    if (has_record(format)) size += format.RecordSize();
  }
  size += sizes_of(XFs) + sizes_of(styles) + sizes_of(boundSheets);
  return size + sharedStringTable.RecordSize() + eof.RecordSize();
}

uint32_t Workbook::Write(std::string& buffer) {
  const size_t before = buffer.size();
  bof.Write(buffer);
  window1.Write(buffer);
  write_all(fonts, buffer);
  for (const Format& format : formats) {
    if (has_record(format)) format.Write(buffer);
  }
  write_all(XFs, buffer);
  write_all(styles, buffer);
  write_all(boundSheets, buffer);
  sharedStringTable.Write(buffer);
  eof.Write(buffer);
  return static_cast<uint32_t>(buffer.size() - before);
}

}  // namespace YExcel
