#include "export/yexcel/record.h"

#include <gtest/gtest.h>

#include "export/yexcel/record_test_support.h"

namespace YExcel {
namespace {

std::string record(std::string_view body) {
  std::string buffer;
  write_record(buffer, 0x1234, body);
  return buffer;
}

TEST(Record, NumbersAreLittleEndian) {
  std::string body;
  put8(body, 0xF1);
  put16(body, 0xF2E3);
  put32(body, 0xF4E5D6C7);
  put_double(body, 1.5);
  EXPECT_EQ(body, bytes_of("F1 E3F2 C7D6E5F4 000000000000F83F"));
}

TEST(Record, DoublesAreIeee754) {
  std::string body;
  put_double(body, -1234.56);
  EXPECT_EQ(body, bytes_of("0AD7A3703D4A93C0"));
}

TEST(Record, WideTextIsTwoBytesToAUnit) {
  std::string body = "x";
  put_wide(body, u"A\u20AC\uFFFE");
  EXPECT_EQ(body, bytes_of("78 4100 AC20 FEFF"));
}

TEST(Record, StandsAfterCodeAndLength) {
  EXPECT_EQ(record("abc"), bytes_of("3412 0300 616263"));
  EXPECT_EQ(record(""), bytes_of("3412 0000"));
}

TEST(Record, IsAppendedAndItsSizeReturned) {
  std::string buffer = "before";
  EXPECT_EQ(write_record(buffer, 10, "xy"), 6U);
  EXPECT_EQ(buffer, "before" + bytes_of("0A00 0200 7879"));
}

TEST(Record, ABodyOf8224BytesIsNotContinued) {
  const std::string body(8224, 'b');
  EXPECT_EQ(record(body), bytes_of("3412 2020") + body);
}

TEST(Record, WhatIsBeyond8224BytesIsContinued) {
  const std::string full(8224, 'b');
  EXPECT_EQ(record(full + "c"), bytes_of("3412 2020") + full + bytes_of("3C00 0100") + "c");
}

TEST(Record, AMultipleOf8224BytesEndsWithAFullPiece) {
  const std::string first(8224, 'b');
  const std::string second(8224, 'c');
  const std::string bytes = record(first + second);
  EXPECT_EQ(bytes, bytes_of("3412 2020") + first + bytes_of("3C00 2020") + second);
}

TEST(Record, SizeOfAShortRecordHasOneHeader) {
  EXPECT_EQ(short_record_size(0), 4U);
  EXPECT_EQ(short_record_size(9000), 9004U);
}

TEST(Record, SizeOfALongRecordHasAHeaderMoreForEachFullBody) {
  EXPECT_EQ(long_record_size(0), 4U);
  EXPECT_EQ(long_record_size(8223), 8227U);
  EXPECT_EQ(long_record_size(8224), 8232U);
  EXPECT_EQ(long_record_size(16447), 16455U);
  EXPECT_EQ(long_record_size(16448), 16460U);
}

}  // namespace
}  // namespace YExcel
