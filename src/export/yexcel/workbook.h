// The global part of a workbook: window, fonts, formats, styles, sheets and strings.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "export/yexcel/shared_string_table.h"

namespace YExcel {

/// Begins the global part and each worksheet.
struct BOF {
  static constexpr uint16_t kWorkbook = 5;
  static constexpr uint16_t kWorksheet = 16;

  uint16_t version = 1536;
  uint16_t type = kWorkbook;
  uint16_t buildIdentifier = 6560;
  uint16_t buildYear = 1997;
  uint32_t fileHistoryFlags = 49353;
  uint32_t lowestExcelVersion = 774;

  uint32_t RecordSize() const noexcept { return 20; }
  void Write(std::string& buffer) const;
};

/// Ends the global part and each worksheet.
struct YEOF {
  uint32_t RecordSize() const noexcept { return 4; }
  void Write(std::string& buffer) const;
};

/// A text of a record, in 8 or 16 bits to a character; `name` counts where `unicode` is false.
struct RecordText {
  std::string name;
  std::u16string wide;
  bool unicode = false;
};

struct Workbook {
  struct Window1 {
    uint16_t horizontalPos = 120;
    uint16_t verticalPos = 120;
    uint16_t width = 15135;
    uint16_t height = 9300;
    uint16_t options = 56;
    uint16_t activeWorksheetIndex = 0;
    uint16_t firstVisibleTabIndex = 0;
    uint16_t selectedWorksheetNumber = 1;
    uint16_t worksheetTabBarWidth = 600;

    uint32_t RecordSize() const noexcept { return 22; }
    void Write(std::string& buffer) const;
  };

  struct Font {
    uint16_t height = 200;
    uint16_t options = 0;
    uint16_t colourIndex = 32767;
    uint16_t weight = 400;
    uint16_t escapementType = 0;
    uint8_t underlineType = 0;
    uint8_t family = 0;
    uint8_t characterSet = 0;
    uint8_t unused = 0;
    RecordText name;

    uint32_t DataSize() const;
    uint32_t RecordSize() const;
    void Write(std::string& buffer) const;
  };

  /// A number format.
  struct Format {
    uint16_t index = 0;
    RecordText formatString;

    uint32_t DataSize() const;
    uint32_t RecordSize() const;
    void Write(std::string& buffer) const;
  };

  /// How cells look.
  struct XF {
    uint16_t fontRecordIndex = 0;
    uint16_t formatRecordIndex = 0;
    uint16_t protectionType = 65525;
    uint8_t alignment = 32;
    uint8_t rotation = 0;
    uint8_t textProperties = 0;
    uint8_t usedAttributes = 0;
    uint32_t borderLines = 0;
    uint32_t colour1 = 0;
    uint16_t colour2 = 8384;

    uint32_t RecordSize() const noexcept { return 24; }
    void Write(std::string& buffer) const;
  };

  struct Style {
    uint16_t XFRecordIndex = 32768;
    uint8_t identifier = 0;
    uint8_t level = 255;
    RecordText name;

    uint32_t DataSize() const;
    uint32_t RecordSize() const;
    void Write(std::string& buffer) const;
  };

  /// A sheet, and where its part of the stream begins.
  struct BoundSheet {
    uint32_t BOFpos = 0;
    uint8_t visibility = 0;
    uint8_t sheetType = 0;
    RecordText name;

    uint32_t DataSize() const;
    uint32_t RecordSize() const;
    void Write(std::string& buffer) const;
  };

  /// A new workbook: one font, 21 XFs and 6 styles that are alike, no format, no sheet.
  Workbook();

  /// Bytes of the global part by the rules for records. What is written may be longer, as
  /// SharedStringTable tells.
  uint32_t RecordSize();
  /// Appends the global part and returns its size.
  uint32_t Write(std::string& buffer);

  BOF bof;
  Window1 window1;
  std::vector<Font> fonts;
  std::vector<XF> XFs;
  std::vector<Style> styles;
  std::vector<Format> formats;
  std::vector<BoundSheet> boundSheets;
  SharedStringTable sharedStringTable;
  YEOF eof;
};

}  // namespace YExcel
