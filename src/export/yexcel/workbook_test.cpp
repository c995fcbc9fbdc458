#include "export/yexcel/workbook.h"

#include <gtest/gtest.h>

#include "export/yexcel/record.h"
#include "export/yexcel/record_test_support.h"

namespace YExcel {
namespace {

constexpr char kBOF[] = "0908 1000 0006 0500 A019 CD07 C9C00000 06030000";
constexpr char kWindow1[] = "3D00 1200 7800 7800 1F3B 5424 3800 0000 0000 0100 5802";
constexpr char kFont[] =
    "3100 1A00 C800 0000 FF7F 9001 0000 00 00 00 00 05 01 4100 7200 6900 6100 6C00";
constexpr char kXF[] = "E000 1400 0000 0000 F5FF 20 00 00 00 00000000 00000000 C020";
constexpr char kStyle[] = "9302 0400 0080 00 FF";
constexpr char kSheet1[] = "8500 0E00 00000000 00 00 06 00 536865657431";
constexpr char kNoStrings[] = "FC00 0800 00000000 00000000";
constexpr char kYEOF[] = "0A00 0000";

std::string repeated(size_t count, std::string_view digits) {
  std::string bytes;
  for (; count > 0; --count)
    bytes += bytes_of(digits);
  return bytes;
}

/// What comes before the number formats, and what after.
std::string head() {
  return bytes_of(kBOF) + bytes_of(kWindow1) + bytes_of(kFont);
}

std::string tail(const std::string& sheets, const std::string& strings) {
  std::string bytes = repeated(21, kXF);
  bytes.append(repeated(6, kStyle)).append(sheets).append(strings).append(bytes_of(kYEOF));
  return bytes;
}

RecordText narrow(const char* text) {
  return {.name = text, .wide = {}, .unicode = false};
}

RecordText wide(const char16_t* text) {
  return {.name = {}, .wide = text, .unicode = true};
}

Workbook with_sheet() {
  Workbook workbook;
  workbook.boundSheets.emplace_back().name = narrow("Sheet1");
  return workbook;
}

template <class Record>
void expect_sizes(Record& record) {
  EXPECT_EQ(record.RecordSize(), written(record).size());
  EXPECT_EQ(record.DataSize() + 4, record.RecordSize());
}

TEST(BOF, OfTheGlobalPart) {
  const BOF bof;
  EXPECT_EQ(written(bof), bytes_of(kBOF));
  EXPECT_EQ(bof.RecordSize(), 20U);
}

TEST(BOF, OfAWorksheet) {
  const BOF bof{.type = BOF::kWorksheet};
  EXPECT_EQ(written(bof), bytes_of("0908 1000 0006 1000 A019 CD07 C9C00000 06030000"));
}

TEST(BOF, FieldsInOrder) {
  const BOF bof{0x0102, 0x0304, 0x0506, 0x0708, 0x090A0B0C, 0x0D0E0F10};
  EXPECT_EQ(written(bof), bytes_of("0908 1000 0201 0403 0605 0807 0C0B0A09 100F0E0D"));
}

TEST(YEOF, IsAHeaderAlone) {
  const YEOF eof;
  EXPECT_EQ(written(eof), bytes_of(kYEOF));
  EXPECT_EQ(eof.RecordSize(), 4U);
}

TEST(Window1, OfANewWorkbook) {
  const Workbook::Window1 window;
  EXPECT_EQ(written(window), bytes_of(kWindow1));
  EXPECT_EQ(window.RecordSize(), 22U);
}

TEST(Window1, FieldsInOrder) {
  const Workbook::Window1 window{1, 2, 3, 4, 5, 6, 7, 8, 0x0A09};
  EXPECT_EQ(written(window), bytes_of("3D00 1200 0100 0200 0300 0400 0500 0600 0700 0800 090A"));
}

TEST(Font, OfANewWorkbook) {
  const Workbook workbook;
  ASSERT_EQ(workbook.fonts.size(), 1U);
  EXPECT_EQ(written(workbook.fonts[0]), bytes_of(kFont));
  expect_sizes(workbook.fonts[0]);
}

TEST(Font, FieldsInOrder) {
  const Workbook::Font font{0x0102, 0x0304, 0x0506, 0x0708, 0x090A, 11, 12, 13, 14, narrow("Az")};
  EXPECT_EQ(written(font), bytes_of("3100 1200 0201 0403 0605 0807 0A09 0B 0C 0D 0E 02 00 417A"));
  expect_sizes(font);
}

TEST(Font, WithoutANameHas16Bytes) {
  const Workbook::Font font;
  EXPECT_EQ(font.DataSize(), 16U);
  expect_sizes(font);
}

TEST(Font, NameIsCutToWhatItsLengthCanTell) {
  Workbook::Font font;
  font.name = {.name = {}, .wide = std::u16string(256, u'w'), .unicode = true};
  EXPECT_EQ(font.DataSize(), 16U + 2 * 255);
  EXPECT_EQ(written(font).substr(18, 4), bytes_of("FF 01 7700"));
  expect_sizes(font);
}

TEST(Format, WideText) {
  const Workbook::Format format{164, wide(u"0.0")};
  EXPECT_EQ(written(format), bytes_of("1E04 0B00 A400 0300 01 3000 2E00 3000"));
  expect_sizes(format);
}

TEST(Format, NarrowText) {
  const Workbook::Format format{0x0201, narrow("0%")};
  EXPECT_EQ(written(format), bytes_of("1E04 0700 0102 0200 00 3025"));
  expect_sizes(format);
}

TEST(Format, TextIsCutToWhatItsLengthCanTell) {
  Workbook::Format format;
  format.formatString.name.assign(65537, 'n');
  EXPECT_EQ(format.DataSize(), 5U + 65535);
  EXPECT_EQ(written(format).substr(4, 5), bytes_of("0000 FFFF 00"));
}

TEST(XF, OfANewWorkbook) {
  const Workbook workbook;
  ASSERT_EQ(workbook.XFs.size(), 21U);
  for (const Workbook::XF& xf : workbook.XFs)
    EXPECT_EQ(written(xf), bytes_of(kXF));
  EXPECT_EQ(workbook.XFs[0].RecordSize(), 24U);
}

TEST(XF, FieldsInOrder) {
  const Workbook::XF xf{0x0102, 0x0304, 0x0506, 7, 8, 9, 10, 0x0B0C0D0E, 0x0F101112, 0x1314};
  EXPECT_EQ(written(xf), bytes_of("E000 1400 0201 0403 0605 07 08 09 0A 0E0D0C0B 1211100F 1413"));
}

TEST(Style, OfANewWorkbook) {
  const Workbook workbook;
  ASSERT_EQ(workbook.styles.size(), 6U);
  for (const Workbook::Style& style : workbook.styles)
    EXPECT_EQ(written(style), bytes_of(kStyle));
  expect_sizes(workbook.styles[0]);
}

TEST(Style, BuiltInHasNoName) {
  const Workbook::Style style{0x8011, 3, 4, narrow("Good")};
  EXPECT_EQ(written(style), bytes_of("9302 0400 1180 03 04"));
  expect_sizes(style);
}

TEST(Style, OfTheUserHasAName) {
  const Workbook::Style style{0x0010, 3, 4, narrow("Good")};
  EXPECT_EQ(written(style), bytes_of("9302 0900 1000 0400 00 476F6F64"));
  expect_sizes(style);
}

TEST(BoundSheet, NarrowName) {
  const Workbook::BoundSheet sheet{0x01020304, 5, 6, narrow("Sheet1")};
  EXPECT_EQ(written(sheet), bytes_of("8500 0E00 04030201 05 06 06 00 536865657431"));
  expect_sizes(sheet);
}

TEST(BoundSheet, WideName) {
  const Workbook::BoundSheet sheet{0, 0, 0, wide(u"\u00C4b")};
  EXPECT_EQ(written(sheet), bytes_of("8500 0C00 00000000 00 00 02 01 C400 6200"));
  expect_sizes(sheet);
}

TEST(BoundSheet, WithoutANameHas8Bytes) {
  const Workbook::BoundSheet sheet;
  EXPECT_EQ(sheet.DataSize(), 8U);
  expect_sizes(sheet);
}

TEST(BoundSheet, NameIsCutToWhatItsLengthCanTell) {
  Workbook::BoundSheet sheet;
  sheet.name.name.assign(300, 'n');
  EXPECT_EQ(sheet.DataSize(), 8U + 255);
  EXPECT_EQ(written(sheet).substr(10, 3), bytes_of("FF 00 6E"));
  expect_sizes(sheet);
}

TEST(Workbook, NewWithOneSheet) {
  Workbook workbook = with_sheet();
  EXPECT_EQ(written(workbook), head() + tail(bytes_of(kSheet1), bytes_of(kNoStrings)));
  EXPECT_EQ(workbook.RecordSize(), 658U);
}

TEST(Workbook, IsAppendedAndItsSizeReturned) {
  Workbook workbook = with_sheet();
  std::string buffer = "before";
  EXPECT_EQ(workbook.Write(buffer), 658U);
  EXPECT_EQ(buffer.size(), 664U);
  EXPECT_EQ(buffer.substr(0, 10), "before" + bytes_of("0908 1000"));
}

TEST(Workbook, HasNoFormatNorSheetAtFirst) {
  const Workbook workbook;
  EXPECT_TRUE(workbook.formats.empty());
  EXPECT_TRUE(workbook.boundSheets.empty());
}

TEST(Workbook, FormatsBelow164HaveNoRecord) {
  Workbook workbook = with_sheet();
  workbook.formats = {{0, wide(u"General")}, {163, wide(u"0")}, {164, narrow("a")}};
  EXPECT_EQ(written(workbook), head() + bytes_of("1E04 0600 A400 0100 00 61") +
                                   tail(bytes_of(kSheet1), bytes_of(kNoStrings)));
  EXPECT_EQ(workbook.RecordSize(), 658U + 10);
}

TEST(Workbook, AllRecordsOfAKindStandTogether) {
  Workbook workbook = with_sheet();
  workbook.fonts.emplace_back();
  workbook.formats = {{165, narrow("b")}, {164, narrow("a")}};
  workbook.boundSheets.emplace_back().name = narrow("Z");
  workbook.sharedStringTable.add("t");
  workbook.sharedStringTable.add("t");
  const std::string second_font = "3100 1000 C800 0000 FF7F 9001 0000 00 00 00 00 00 00";
  const std::string formats = "1E04 0600 A500 0100 00 62 1E04 0600 A400 0100 00 61";
  const std::string second_sheet = "8500 0900 00000000 00 00 01 00 5A";
  const std::string strings = "FC00 0C00 02000000 01000000 0100 00 74";
  EXPECT_EQ(written(workbook),
            head() + bytes_of(second_font) + bytes_of(formats) +
                tail(bytes_of(kSheet1) + bytes_of(second_sheet), bytes_of(strings)));
  EXPECT_EQ(workbook.RecordSize(), written(workbook).size());
}

TEST(Workbook, SizeCountsStringsByTheRuleForLongRecords) {
  Workbook workbook = with_sheet();
  const std::string first(8202, 'a');
  const std::string second(100, 'b');
  workbook.sharedStringTable.add(first);
  workbook.sharedStringTable.add(second);
  // One header for a full body, as many as are written.
  EXPECT_EQ(workbook.RecordSize(), 658U + 8205 + 103 + 4);
  EXPECT_EQ(workbook.RecordSize(), written(workbook).size());
}

}  // namespace
}  // namespace YExcel
