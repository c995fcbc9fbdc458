// Lines, numbers and blanks, on both families of files.
#include "orlo/read_line.h"

#include <algorithm>
#include <cstdlib>

#include "orlo/file_test_support.h"
#include "orlo/read_number.h"

namespace {

using namespace ORLO;

constexpr size_t kBlock = kFileBufferSize;
constexpr size_t kMegabyte = 1 << 20;

class ReadLine : public FileFamilyTest {};
INSTANTIATE_TEST_SUITE_P(Both, ReadLine, ::testing::ValuesIn(kFileFamilies), family_name);

class ReadNumber : public FileFamilyTest {};
INSTANTIATE_TEST_SUITE_P(Both, ReadNumber, ::testing::ValuesIn(kFileFamilies), family_name);

using Lines = std::vector<std::string>;

/// All lines, each as long as read_line() says.
Lines lines_of(InFile& file, size_t max = SIZE_MAX / 2) {
  Lines lines;
  LineBuffer line(1024);
  for (ptrdiff_t length = read_line(file, line, max); length != -1;
       length = read_line(file, line, max)) {
    EXPECT_EQ(line.data()[length], '\0');
    lines.emplace_back(line.data(), static_cast<size_t>(length));
  }
  return lines;
}

TEST_P(ReadLine, EveryKindOfLineEndCounts) {
  const struct {
    const char* content;
    Lines lines;
  } rows[] = {
      {"", {}},
      {"a", {"a"}},
      {"a\n", {"a"}},
      {"a\r", {"a"}},
      {"a\r\n", {"a"}},
      {"a\r\nb\rc\n", {"a", "b", "c"}},
      {"\n", {""}},
      {"\n\n", {"", ""}},
      {"\r\r", {"", ""}},
      {"\n\r", {"", ""}},
      {"\r\n\r\n", {"", ""}},
      {"a\r\r\nb", {"a", "", "b"}},
      {"\tA\x0B\x0C\x01 b\r\n", {"\tA\x0B\x0C\x01 b"}},
  };
  for (const int encoding : {kText8Bit, kText16Bit, kText16BitSwapped}) {
    for (const auto& row : rows) {
      SCOPED_TRACE(row.content);
      const std::string text = row.content;
      const auto file =
          open_content(encoding == kText8Bit ? text
                                             : wide_bytes(std::u16string(text.begin(), text.end()),
                                                          encoding != kText16Bit));
      file->encoding = encoding;
      EXPECT_EQ(lines_of(*file), row.lines);
      EXPECT_TRUE(file->eof());
    }
  }
}

TEST_P(ReadLine, AnEmptyFileGivesMinus1) {
  const auto file = open_content("");
  LineBuffer line(1024);
  EXPECT_EQ(read_line(*file, line), -1);
  EXPECT_EQ(read_line(*file, line, 10), -1);
  EXPECT_STREQ(line.c_str(), "");
}

TEST_P(ReadLine, AMissingFileGivesMinus1) {
  const auto file = GetParam().open_in(folder.path("none"), 0);
  LineBuffer line(1024);
  EXPECT_EQ(read_line(*file, line), -1);
}

TEST_P(ReadLine, ALineWithoutAnEndIsALineAndThenComesMinus1) {
  const auto file = open_content("only line");
  LineBuffer line(1024);
  EXPECT_EQ(read_line(*file, line), 9);
  EXPECT_STREQ(line.c_str(), "only line");
  EXPECT_EQ(read_line(*file, line), -1);
  EXPECT_STREQ(line.c_str(), "") << "nothing of the former line is left";
}

TEST_P(ReadLine, LinesMayLieInTwoBlocks) {
  for (const char* end : {"\n", "\r", "\r\n"}) {
    for (size_t length = kBlock - 3; length <= kBlock + 1; ++length) {
      SCOPED_TRACE(length);
      const std::string first = numbered_text(length);
      const std::string second = numbered_text(2 * kBlock);
      std::string content = first;
      content.append(end).append(second).append(end);
      const auto file = open_content(content);
      EXPECT_EQ(lines_of(*file), (Lines{first, second}));
    }
  }
}

TEST_P(ReadLine, FindsLineEndsWhereverTheyStand) {
  std::string text;
  Lines lines;
  for (size_t length = 0; length < 300; ++length) {
    lines.push_back(numbered_text(length));
    // Bytes that look like line ends to a hasty eye.
    if (length > 3) lines.back().replace(length / 2, 3, "\x8A\x8D\x09");
    text += lines.back() + (length % 2 == 0 ? "\n" : "\r");
  }
  EXPECT_EQ(lines_of(*open_content(text)), lines);
}

TEST_P(ReadLine, ALongLineLetsTheBufferGrow) {
  const struct {
    size_t start, length, capacity;
  } rows[] = {
      {1024, 1023, 1024}, {1024, 1024, 2048}, {1024, 2047, 2048},
      {1024, 2048, 4096}, {0, 1, 1024},       {0, 0, 0},
      {10, 9, 10},        {10, 10, 20},       {1, 100'000, 131072},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.length);
    const std::string text = numbered_text(row.length);
    const auto file = open_content(text + "\nx");
    LineBuffer line(row.start);
    EXPECT_EQ(read_line(*file, line), static_cast<ptrdiff_t>(row.length));
    EXPECT_EQ(line.c_str(), text);
    EXPECT_EQ(line.capacity(), row.capacity);
    EXPECT_EQ(file->peek(), 'x');
  }
}

TEST_P(ReadLine, WithoutABufferALineIsSkipped) {
  const auto file = open_content("first\r\n" + std::string(3 * kBlock, 'x') + "\nthird");
  LineBuffer none;
  EXPECT_EQ(read_line(*file, none), 5);
  EXPECT_EQ(read_line(*file, none), static_cast<ptrdiff_t>(3 * kBlock));
  EXPECT_FALSE(none.has_buffer());
  EXPECT_STREQ(none.c_str(), "");
  EXPECT_EQ(lines_of(*file), Lines{"third"});
  EXPECT_EQ(read_line(*file, none), -1);
}

TEST_P(ReadLine, ALimitCutsALineAndTheRestIsTheNext) {
  const auto file = open_content("abcdefg\r\nabc\nabcd");
  EXPECT_EQ(lines_of(*file, 3), (Lines{"abc", "def", "g", "abc", "abc", "d"}));
}

TEST_P(ReadLine, ALimitHoldsIn16BitTextToo) {
  const auto file = open_content(wide_bytes(u"abcdefg\r\nabc\nabcd"));
  file->encoding = kText16Bit;
  EXPECT_EQ(lines_of(*file, 3), (Lines{"abc", "def", "g", "abc", "abc", "d"}));
}

TEST_P(ReadLine, ALineAsLongAsItsLimitTakesItsEndWithIt) {
  const auto file = open_content("abc\n\nabc\r\nx");
  EXPECT_EQ(lines_of(*file, 3), (Lines{"abc", "", "abc", "x"}));
}

TEST_P(ReadLine, NulsArePartOfALine) {
  const std::string text("\0a\0\0b\0", 6);
  EXPECT_EQ(lines_of(*open_content(text + "\n" + text)), (Lines{text, text}));
}

/// Grants blocks of up to 2,048 bytes.
void* frugal_realloc(void* block, size_t size) {
  return size <= 2048 ? std::realloc(block, size) : nullptr;
}
void* no_realloc(void*, size_t) {
  return nullptr;
}

TEST_P(ReadLine, WhereMemoryGivesOutTheLineEnds) {
  const std::string text = numbered_text(5000);
  const auto file = open_content(text + "\nx");
  LineBuffer line(1024, &frugal_realloc);
  std::string all;
  for (const ptrdiff_t length : {2047, 2047, 906}) {
    EXPECT_EQ(read_line(*file, line), length);
    all += line.c_str();
  }
  EXPECT_EQ(all, text);
  EXPECT_EQ(read_line(*file, line), 1);
}

TEST_P(ReadLine, WithoutAnyMemoryItStillGetsOn) {
  for (const size_t capacity : {size_t{0}, size_t{1}}) {
    SCOPED_TRACE(capacity);
    const auto file = open_content("first\nsecond");
    LineBuffer line(capacity, &no_realloc);
    EXPECT_EQ(read_line(*file, line), 0);
    EXPECT_EQ(file->tell(), 6u);
    EXPECT_EQ(read_line(*file, line), 0);
    EXPECT_EQ(read_line(*file, line), -1);
    EXPECT_STREQ(line.c_str(), "");
  }
}

/// Megabytes of the long line; ZOLVANE_LONG_LINE_MB asks for more than a quick run wants.
size_t long_line_length() {
  const char* const asked = std::getenv("ZOLVANE_LONG_LINE_MB");
  return (asked != nullptr ? std::strtoul(asked, nullptr, 10) : 4) * kMegabyte;
}

TEST_P(ReadLine, AHugeLineTakesNoMoreMemoryThanItsLimitAsksFor) {
  const size_t length = long_line_length();
  {
    std::ofstream log(folder.path("log"), std::ios::binary);
    const std::string piece(kMegabyte, 'x');
    for (size_t done = 0; done < length; done += kMegabyte)
      log << piece;
    log << "\nlast";
  }
  const auto file = GetParam().open_in(folder.path("log"), 0);
  LineBuffer line(16);
  size_t all = 0;
  for (ptrdiff_t count = 50'000; count == 50'000;) {
    count = read_line(*file, line, 50'000);
    all += static_cast<size_t>(std::max<ptrdiff_t>(count, 0));
    ASSERT_EQ(line.data()[0], 'x');
  }
  EXPECT_EQ(all, length);
  EXPECT_LT(line.capacity(), 2 * 50'001u);
  EXPECT_EQ(lines_of(*file), Lines{"last"});
}

TEST_P(ReadLine, AHugeLineOfNulsIsReadWhole) {
  const size_t length = long_line_length();
  folder.make("log", "");
  std::filesystem::resize_file(folder.path("log"), length);
  const auto file = GetParam().open_in(folder.path("log"), 0);
  LineBuffer line(1024);
  EXPECT_EQ(read_line(*file, line), static_cast<ptrdiff_t>(length));
  EXPECT_EQ(std::count(line.data(), line.data() + length, '\0'), static_cast<ptrdiff_t>(length));
  EXPECT_EQ(read_line(*file, line), -1);
}

TEST_P(ReadLine, AFileThatShrinksUnderItEndsItsLine) {
  std::string text;
  while (text.size() < 20 * kBlock)
    text += "a line of some length\n";
  const auto file = open_content(text);
  LineBuffer line(1024);
  EXPECT_EQ(read_line(*file, line), 21);
  std::filesystem::resize_file(folder.path("in"), kBlock + 5);
  const Lines rest = lines_of(*file);
  EXPECT_TRUE(file->eof());
  // One block more if it was read ahead before.
  EXPECT_GE(rest.size(), kBlock / 22 - 1);
  EXPECT_LE(rest.size(), 2 * kBlock / 22 + 1);
}

TEST_P(ReadLine, ARefusingFileEndsTheLineThere) {
  MemoryFile memory{
      .content = std::string(3 * kBlock, 'x'), .refuses_from = 2 * kBlock, .error = 33};
  const auto file = GetParam().in_over(memory);
  const ScopedExceptionMode mode;
  EXPECT_EQ(lines_of(*file), Lines{std::string(2 * kBlock, 'x')});
}

TEST_P(ReadNumber, SkipsWhiteSpaceOnly) {
  const auto file = open_content(" \t\r\n\v\f\xA0x");
  skip_white(*file);
  EXPECT_EQ(file->peek(), 0xA0);
  skip_white(*file);
  EXPECT_EQ(file->tell(), 6u);
  const auto blanks = open_content(std::string(2 * kBlock, ' '));
  skip_white(*blanks);
  EXPECT_TRUE(blanks->eof());
}

TEST_P(ReadNumber, ReadsIntegersInTheirBase) {
  const struct {
    const char* content;
    bool found;
    int32_t number;
    int next;
  } rows[] = {
      {"17 C:\\x.exe,0", true, 17, ' '},
      {" \r\n-1 x", true, -1, ' '},
      {"+5", true, 5, -1},
      {"0", true, 0, -1},
      {"010", true, 8, -1},
      {"0x10", true, 16, -1},
      {"-0X7f,", true, -127, ','},
      {"019", true, 1, -1},
      {"2147483647", true, INT32_MAX, -1},
      {"2147483648", true, INT32_MAX, -1},
      {"-2147483649", true, INT32_MIN, -1},
      {"0xFFFFFFFF", true, INT32_MAX, -1},
      {"999999999999999", true, INT32_MAX, -1},
      {"1234567890123456", true, INT32_MAX, '6'},
      {"", false, 0, -1},
      {"  -x", false, 0, '-'},
      {"x", false, 0, 'x'},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.content);
    const auto file = open_content(row.content);
    int32_t number = 99;
    EXPECT_EQ(read_number(*file, number), row.found);
    EXPECT_EQ(number, row.number);
    EXPECT_EQ(file->peek(), row.next);
  }
}

TEST_P(ReadNumber, ReadsNumbersIn16BitText) {
  const auto file = open_content(wide_bytes(u" 42 -7", true));
  file->encoding = kText16BitSwapped;
  int32_t number = 0;
  EXPECT_TRUE(read_number(*file, number));
  EXPECT_EQ(number, 42);
  EXPECT_TRUE(read_number(*file, number));
  EXPECT_EQ(number, -7);
  EXPECT_TRUE(file->eof());
}

}  // namespace
