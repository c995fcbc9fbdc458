// How records of a workbook are written: code, length, body, all numbers little-endian. The format
// is BIFF8 as its maker publishes it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace YExcel {

/// A record's body takes no more bytes; what is beyond follows in CONTINUE records.
inline constexpr uint32_t kLongestBody = 8224;
inline constexpr uint32_t kRecordHeader = 4;
inline constexpr uint16_t kContinueCode = 60;

// Append a number to a body.
void put8(std::string& to, uint8_t number);
void put16(std::string& to, uint16_t number);
void put32(std::string& to, uint32_t number);
/// IEEE 754.
void put_double(std::string& to, double number);
/// Two bytes for each unit.
void put_wide(std::string& to, std::u16string_view text);

/// Appends a record. The body goes on in a CONTINUE record after each full 8,224 bytes. Returns how
/// many bytes were appended.
uint32_t write_record(std::string& buffer, uint16_t code, std::string_view body);

/// Bytes of a record with its header, by the size of its body.
constexpr uint32_t short_record_size(uint32_t body) {
  return body + kRecordHeader;
}
/// One that may be continued. Counts a header for each full body, though a table of strings may
/// need more of them; all positions in the stream are told by this rule.
constexpr uint32_t long_record_size(uint32_t body) {
  return body + kRecordHeader + kRecordHeader * (body / kLongestBody);
}

}  // namespace YExcel
