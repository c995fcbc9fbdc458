#include "export/yexcel/format_manager.h"

#include <gtest/gtest.h>

#include "export/yexcel/record_test_support.h"

namespace YExcel {
namespace {

CellFont arial(uint16_t height) {
  CellFont font;
  font.name = u"Arial";
  font.height = height;
  font.weight = 400;
  font.colourIndex = 32767;
  return font;
}

RecordText wide(const char16_t* text) {
  return {.name = {}, .wide = text, .unicode = true};
}

struct KnownFormat {
  uint16_t index;
  const char16_t* text;
};

// clang-format off
const KnownFormat kKnownFormats[] = {
    {0, u"General"}, {1, u"0"}, {2, u"0.00"}, {3, u"#,##0"}, {4, u"#,##0.00"},
    {5, uR"("$"#,##0_);("$"#,##0))"}, {6, uR"("$"#,##0_);[Red]("$"#,##0))"},
    {7, uR"("$"#,##0.00_);("$"#,##0.00))"}, {8, uR"("$"#,##0.00_);[Red]("$"#,##0.00))"},
    {9, u"0%"}, {10, u"0.00%"}, {11, u"0.00E+00"}, {12, u"# ?/?"}, {13, uR"(# ??/??)"},
    {14, u"M/D/YY"}, {15, u"D-MMM-YY"}, {16, u"D-MMM"}, {17, u"MMM-YY"}, {18, u"h:mm AM/PM"},
    {19, u"h:mm:ss AM/PM"}, {20, u"h:mm"}, {21, u"h:mm:ss"}, {22, u"M/D/YY h:mm"},
    {37, u"_(#,##0_);(#,##0)"}, {38, u"_(#,##0_);[Red](#,##0)"},
    {39, u"_(#,##0.00_);(#,##0.00)"}, {40, u"_(#,##0.00_);[Red](#,##0.00)"},
    {41, uR"(_(* #,##0_);_(* (#,##0);_(* "-"_);_(@_))"},
    {42, uR"(_($* #,##0_);_($* (#,##0);_($* "-"_);_(@_))"},
    {43, uR"(_(* #,##0.00_);_(* (#,##0.00);_(* "-"??_);_(@_))"},
    {44, uR"(_($* #,##0.00_);_($* (#,##0.00);_($* "-"??_);_(@_))"},
    {45, u"mm:ss"}, {46, u"[h]:mm:ss"}, {47, u"mm:ss.0"}, {48, u"##0.0E+0"}, {49, u"@"},
};
// clang-format on

TEST(FormatManager, KnowsTheBuiltInFormatsBothWays) {
  Workbook workbook;
  FormatManager manager(workbook);
  size_t known = 0;
  for (uint16_t index = 0; index < 200; ++index)
    known += manager.NumberFormat(index) != nullptr ? 1U : 0U;
  EXPECT_EQ(known, std::size(kKnownFormats));
  for (const auto& [index, text] : kKnownFormats) {
    SCOPED_TRACE(index);
    EXPECT_EQ(manager.NumberFormatIndex(text), index);
    ASSERT_NE(manager.NumberFormat(index), nullptr);
    EXPECT_EQ(*manager.NumberFormat(index), text);
  }
  EXPECT_TRUE(workbook.formats.empty());
}

TEST(FormatManager, AnUnknownFormatTakesTheNextIndexAndARecord) {
  Workbook workbook;
  FormatManager manager(workbook);
  EXPECT_EQ(manager.NumberFormatIndex(u"0.0"), 164);
  EXPECT_EQ(manager.NumberFormatIndex(u"0.000"), 165);
  EXPECT_EQ(manager.NumberFormatIndex(u"0.0"), 164);
  ASSERT_EQ(workbook.formats.size(), 2U);
  EXPECT_EQ(written(workbook.formats[0]), bytes_of("1E04 0B00 A400 0300 01 3000 2E00 3000"));
  EXPECT_EQ(workbook.formats[1].index, 165);
  ASSERT_NE(manager.NumberFormat(165), nullptr);
  EXPECT_EQ(*manager.NumberFormat(165), u"0.000");
}

TEST(FormatManager, TakesWhatTheWorkbookHasAndGoesOnAboveIt) {
  Workbook workbook;
  workbook.formats = {{200, wide(u"0.0")}, {170, {.name = "\xC4", .wide = {}, .unicode = false}}};
  FormatManager manager(workbook);
  EXPECT_EQ(manager.NumberFormatIndex(u"0.0"), 200);
  EXPECT_EQ(manager.NumberFormatIndex(u"\u00C4"), 170);
  EXPECT_EQ(manager.NumberFormatIndex(u"new"), 201);
  EXPECT_EQ(workbook.formats.size(), 3U);
}

TEST(FormatManager, FormatsBelow164DoNotMoveTheNextIndex) {
  Workbook workbook;
  workbook.formats = {{163, wide(u"0.0")}};
  FormatManager manager(workbook);
  EXPECT_EQ(manager.NumberFormatIndex(u"new"), 164);
}

TEST(FormatManager, FindsTheFontOfANewWorkbook) {
  Workbook workbook;
  FormatManager manager(workbook);
  EXPECT_EQ(manager.FontIndex(arial(200)), 0);
  EXPECT_EQ(workbook.fonts.size(), 1U);
}

TEST(FormatManager, EachFieldTellsAFontFromOthers) {
  const std::pair<const char*, void (*)(CellFont&)> changes[] = {
      {"name", [](CellFont& font) { font.name = u"Arial2"; }},
      {"height", [](CellFont& font) { font.height = 201; }},
      {"weight", [](CellFont& font) { font.weight = 700; }},
      {"options", [](CellFont& font) { font.options = 3; }},
      {"colour", [](CellFont& font) { font.colourIndex = 4; }},
      {"escapement", [](CellFont& font) { font.escapementType = 5; }},
      {"underline", [](CellFont& font) { font.underlineType = 6; }},
      {"family", [](CellFont& font) { font.family = 7; }},
      {"character set", [](CellFont& font) { font.characterSet = 8; }},
  };
  for (const auto& [field, change] : changes) {
    SCOPED_TRACE(field);
    Workbook workbook;
    FormatManager manager(workbook);
    CellFont font = arial(200);
    change(font);
    EXPECT_EQ(manager.FontIndex(font), 1);
    EXPECT_EQ(manager.FontIndex(font), 1);
    EXPECT_EQ(workbook.fonts.size(), 2U);
  }
}

TEST(FormatManager, AnAddedFontHasTheFieldsThatWereAskedFor) {
  Workbook workbook;
  FormatManager manager(workbook);
  manager.FontIndex({u"Az", 0x0102, 0x0708, 0x0304, 0x0506, 0x090A, 11, 12, 13});
  EXPECT_EQ(written(workbook.fonts.back()),
            bytes_of("3100 1400 0201 0403 0605 0807 0A09 0B 0C 0D 00 02 01 4100 7A00"));
}

TEST(FormatManager, AFontWithANarrowNameIsFound) {
  Workbook workbook;
  workbook.fonts.front().name = {.name = "Arial", .wide = u"Other", .unicode = false};
  FormatManager manager(workbook);
  EXPECT_EQ(manager.FontIndex(arial(200)), 0);
}

TEST(FormatManager, TheSixthFontIsNumberedOneAboveItsPositionAndFoundAtIt) {
  Workbook workbook;
  FormatManager manager(workbook);
  for (uint16_t position = 1; position < 4; ++position)
    EXPECT_EQ(manager.FontIndex(arial(static_cast<uint16_t>(200 + position))), position);
  EXPECT_EQ(manager.FontIndex(arial(204)), 5);
  EXPECT_EQ(manager.FontIndex(arial(205)), 6);
  ASSERT_EQ(workbook.fonts.size(), 6U);
  EXPECT_EQ(manager.FontIndex(arial(204)), 4);
  EXPECT_EQ(manager.FontIndex(arial(205)), 5);
  EXPECT_EQ(workbook.fonts.size(), 6U);
}

TEST(FormatManager, FindsTheFirstXFOfANewWorkbook) {
  Workbook workbook;
  FormatManager manager(workbook);
  EXPECT_EQ(manager.XFIndex(CellFormat(manager)), 0);
  EXPECT_EQ(workbook.XFs.size(), 21U);
}

TEST(FormatManager, EachFieldTellsAnXFFromOthers) {
  const std::pair<const char*, void (*)(CellFormat&)> changes[] = {
      {"font", [](CellFormat& format) { format.fontIndex = 1; }},
      {"format", [](CellFormat& format) { format.formatIndex = 1; }},
      {"alignment", [](CellFormat& format) { format.alignment = 35; }},
      {"rotation", [](CellFormat& format) { format.rotation = 1; }},
      {"text properties", [](CellFormat& format) { format.textProperties = 1; }},
      {"border lines", [](CellFormat& format) { format.borderLines = 1; }},
      {"colour1", [](CellFormat& format) { format.colour1 = 1; }},
      {"colour2", [](CellFormat& format) { format.colour2 = 1; }},
  };
  for (const auto& [field, change] : changes) {
    SCOPED_TRACE(field);
    Workbook workbook;
    FormatManager manager(workbook);
    CellFormat format(manager);
    change(format);
    EXPECT_EQ(manager.XFIndex(format), 21);
    EXPECT_EQ(manager.XFIndex(format), 21);
    EXPECT_EQ(workbook.XFs.size(), 22U);
  }
}

TEST(FormatManager, ProtectionAndUsedAttributesDoNotTellAnXFFromOthers) {
  Workbook workbook;
  workbook.XFs.front().protectionType = 120;
  workbook.XFs.front().usedAttributes = 1;
  FormatManager manager(workbook);
  EXPECT_EQ(manager.XFIndex(CellFormat(manager)), 0);
}

TEST(FormatManager, AnAddedXFHasTheFieldsThatWereAskedFor) {
  Workbook workbook;
  FormatManager manager(workbook);
  CellFormat format(manager);
  format.fontIndex = 0x0102;
  format.formatIndex = 0x0304;
  format.alignment = 7;
  format.rotation = 8;
  format.textProperties = 9;
  format.borderLines = 0x0B0C0D0E;
  format.colour1 = 0x0F101112;
  format.colour2 = 0x1314;
  EXPECT_EQ(manager.XFIndex(format), 21);
  EXPECT_EQ(written(workbook.XFs.back()),
            bytes_of("E000 1400 0201 0403 7800 07 08 09 00 0E0D0C0B 1211100F 1413"));
}

TEST(CellFormat, IsResolvedOnce) {
  Workbook workbook;
  FormatManager manager(workbook);
  CellFormat format(manager);
  EXPECT_EQ(format.xfIndex, -1);
  format.set_alignment(3);
  EXPECT_EQ(format.resolve(), 21U);
  EXPECT_EQ(format.xfIndex, 21);
  workbook.XFs.clear();
  EXPECT_EQ(format.resolve(), 21U);
  EXPECT_TRUE(workbook.XFs.empty());
}

TEST(CellFormat, AChangeHasItResolvedAgain) {
  Workbook workbook;
  FormatManager manager(workbook);
  CellFormat format(manager);
  EXPECT_EQ(format.resolve(), 0U);
  format.set_font(arial(300));
  EXPECT_EQ(format.xfIndex, -1);
  EXPECT_EQ(format.fontIndex, 1);
  EXPECT_EQ(format.resolve(), 21U);
  format.set_number_format(u"0.00");
  EXPECT_EQ(format.xfIndex, -1);
  EXPECT_EQ(format.formatIndex, 2);
  EXPECT_EQ(format.resolve(), 22U);
  format.set_alignment(3);
  EXPECT_EQ(format.xfIndex, -1);
  EXPECT_EQ(format.resolve(), 23U);
}

TEST(CellFormat, AlignmentReplacesTheLowestThreeBits) {
  Workbook workbook;
  FormatManager manager(workbook);
  CellFormat format(manager);
  EXPECT_EQ(format.alignment, 32);
  format.set_alignment(7);
  EXPECT_EQ(format.alignment, 39);
  format.set_alignment(3);
  EXPECT_EQ(format.alignment, 35);
  format.set_alignment(0);
  EXPECT_EQ(format.alignment, 32);
  format.set_alignment(0xFC);
  EXPECT_EQ(format.alignment, 36);
}

}  // namespace
}  // namespace YExcel
