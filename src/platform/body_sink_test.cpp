#include "platform/body_sink.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

namespace {

TEST(ContentLength, IsReadAsANumberThatFitsIntoAnInt) {
  const std::pair<const char*, int> rows[] = {
      {"", 0},       {"0", 0},
      {"17", 17},    {" 17", 17},
      {"+17", 17},   {"abc", 0},
      {"17abc", 17}, {"017", 17},
      {"0x11", 0},   {"2147483647", 2147483647},
      {"-0", 0},     {"1.9", 1},
      {"1,900", 1},  {"- 5", 0},
      {"-5", -5},    {"-2147483648", -2147483647 - 1},
  };
  for (const auto& [text, length] : rows)
    EXPECT_EQ(content_length(text), length) << text;
}

TEST(ContentLength, IsNoneIfItIsMinus1OrNoIntHoldsIt) {
  for (const char* text :
       {"-1", "-2147483649", "2147483648", "4294967295", "4294967296", "4294967299",
        "9223372036854775807", "9223372036854775808", "18446744073709551617",
        "-9223372036854775809", "99999999999999999999999999999999"})
    EXPECT_FALSE(content_length(text).has_value()) << text;
}

class Positions final : public TransferProgress {
 public:
  void set_range(int kilobytes) override { ranges.push_back(kilobytes); }
  void set_position(int kilobytes) override { positions.push_back(kilobytes); }
  std::vector<int> ranges;
  std::vector<int> positions;
};

TEST(BodySink, WritesUpToTheLimitAndNoFurther) {
  std::ostringstream stream;
  Positions progress;
  BodySink sink(1500, stream, &progress);
  const std::string block(1024, 'x');
  EXPECT_TRUE(sink.write(block.data(), 1024));
  EXPECT_FALSE(sink.write(block.data(), 1024));
  EXPECT_FALSE(sink.write(block.data(), 1));
  EXPECT_EQ(stream.str().size(), 1500u);
  EXPECT_EQ(progress.positions, (std::vector<int>{1, 1, 1}));
}

TEST(BodySink, IsCompleteAtTheLengthAlone) {
  std::ostringstream stream;
  BodySink sink(100, stream, nullptr);
  sink.announce(2);
  EXPECT_FALSE(sink.complete());
  sink.write("x", 1);
  EXPECT_FALSE(sink.complete());
  sink.write("x", 1);
  EXPECT_TRUE(sink.complete());
  sink.write("x", 1);
  EXPECT_FALSE(sink.complete());
}

TEST(BodySink, IsNeverCompleteAtALengthBelowZero) {
  std::ostringstream stream;
  Positions progress;
  BodySink sink(100, stream, &progress);
  sink.announce(-5000);
  EXPECT_FALSE(sink.complete());
  sink.write("x", 1);
  EXPECT_FALSE(sink.complete());
  EXPECT_EQ(progress.ranges, std::vector<int>{-4});
}

TEST(BodySink, IsCompleteWithoutLength) {
  std::ostringstream stream;
  Positions progress;
  BodySink sink(100, stream, &progress);
  sink.announce(std::nullopt);
  EXPECT_TRUE(sink.complete());
  EXPECT_TRUE(progress.ranges.empty());
}

}  // namespace
