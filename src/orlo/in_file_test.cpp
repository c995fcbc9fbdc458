// What reading promises, on both families of files.
#include "orlo/in_file.h"

#include <optional>

#include "orlo/file_test_support.h"

namespace {

using namespace ORLO;

constexpr size_t kBlock = kFileBufferSize;

class InFileContract : public FileFamilyTest {};
INSTANTIATE_TEST_SUITE_P(Both, InFileContract, ::testing::ValuesIn(kFileFamilies), family_name);

std::string read_all(InFile& file) {
  std::string text;
  for (int c = file.get(); c != -1; c = file.get())
    text += static_cast<char>(c);
  return text;
}

std::string word_of(InFile& file) {
  String word;
  const size_t length = file.read_word(word);
  EXPECT_EQ(length, word.length());
  return std::string(word.c_str(), word.length());
}

TEST_P(InFileContract, AMissingFileHasFailedAndIsAtItsEndAtOnce) {
  const auto file = GetParam().open_in(folder.path("none"), 0);
  EXPECT_TRUE(file->failed());
  EXPECT_TRUE(file->eof());
  EXPECT_FALSE(file->good());
  char buffer[8] = "xxxxxxx";
  char number[kIntTextRoom];
  char real[kFloatTextRoom];
  EXPECT_EQ(file->get(), -1);
  EXPECT_EQ(file->peek(), -1);
  EXPECT_EQ(file->peek_at(0), -1);
  EXPECT_EQ(file->peek_at(5), -1);
  EXPECT_EQ(file->read(buffer, 4), 0u);
  EXPECT_EQ(file->read_until(buffer, 4, 'x'), 0u);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(file->read_int_text(number), 0);
  EXPECT_EQ(file->read_float_text(real), 0u);
  EXPECT_EQ(word_of(*file), "");
  file->skip();
  file->seek(3);
  EXPECT_TRUE(file->failed() && file->eof()) << "a seek changes nothing";
  EXPECT_EQ(file->tell(), 0u);
  file->encoding = kText16Bit;
  EXPECT_EQ(file->get(), -1);
}

TEST_P(InFileContract, AFolderCannotBeOpened) {
  EXPECT_TRUE(GetParam().open_in(folder.path(""), 0)->failed());
}

TEST_P(InFileContract, TheEndShowsOnlyWhenItHasBeenSeen) {
  const auto file = open_content("ab");
  EXPECT_FALSE(file->failed());
  EXPECT_EQ(file->get(), 'a');
  EXPECT_EQ(file->get(), 'b');
  EXPECT_TRUE(file->good());
  EXPECT_EQ(file->peek(), -1);
  EXPECT_TRUE(file->eof());
  EXPECT_FALSE(file->good());
  EXPECT_FALSE(file->failed());
  EXPECT_EQ(file->get(), -1);
  EXPECT_EQ(file->tell(), 2u);
}

TEST_P(InFileContract, AnEmptyFileIsGoodUntilItIsRead) {
  const auto file = open_content("");
  EXPECT_FALSE(file->failed());
  EXPECT_TRUE(file->good());
  EXPECT_EQ(file->get(), -1);
  EXPECT_TRUE(file->eof());
}

TEST_P(InFileContract, PeekDoesNotMoveAndSkipDoes) {
  const auto file = open_content("a\xE4");
  EXPECT_EQ(file->peek(), 'a');
  EXPECT_EQ(file->peek(), 'a');
  EXPECT_EQ(file->tell(), 0u);
  file->skip();
  EXPECT_EQ(file->tell(), 1u);
  EXPECT_EQ(file->peek(), 0xE4) << "no sign is extended";
  file->skip();
  file->skip();
  EXPECT_EQ(file->tell(), 2u) << "there is nothing to skip at the end";
}

TEST_P(InFileContract, ReadsFilesOfEveryLengthAroundItsBlocks) {
  for (const size_t length : {size_t{1}, kBlock - 1, kBlock, kBlock + 1, 2 * kBlock - 1, 2 * kBlock,
                              2 * kBlock + 1, 5 * kBlock + 17}) {
    SCOPED_TRACE(length);
    const std::string text = numbered_text(length);
    EXPECT_EQ(read_all(*open_content(text)), text);
    std::string block(length + 10, '\0');
    const auto file = open_content(text);
    EXPECT_EQ(file->read(block.data(), block.size()), length);
    EXPECT_EQ(block.substr(0, length), text);
    EXPECT_TRUE(file->eof());
  }
}

TEST_P(InFileContract, ReadsPiecesAsTheyAreAskedFor) {
  const std::string text = numbered_text(3 * kBlock);
  const auto file = open_content(text);
  std::string all;
  char piece[700];
  for (size_t size = 0; size < sizeof piece; size += 7) {
    const size_t count = file->read(piece, size);
    all.append(piece, count);
    EXPECT_EQ(file->tell(), all.size());
    if (count < size) break;
  }
  EXPECT_EQ(all, text);
}

TEST_P(InFileContract, BeginsAtItsStartOffset) {
  const std::string text = numbered_text(3 * kBlock);
  for (const size_t start : {size_t{1}, kBlock, kBlock + 3, text.size()}) {
    SCOPED_TRACE(start);
    const auto file = open_content(text, start);
    EXPECT_EQ(file->tell(), start);
    EXPECT_EQ(read_all(*file), text.substr(start));
    file->seek(0);
    EXPECT_EQ(file->get(), text[0]);
  }
}

TEST_P(InFileContract, SeeksForwardsAndBackwards) {
  const std::string text = numbered_text(4 * kBlock);
  const auto file = open_content(text);
  for (const size_t offset : {size_t{5}, 3 * kBlock, size_t{0}, kBlock, kBlock - 1, 2 * kBlock + 7,
                              2 * kBlock + 3, 4 * kBlock - 1}) {
    SCOPED_TRACE(offset);
    file->seek(offset);
    EXPECT_EQ(file->tell(), offset);
    EXPECT_EQ(file->get(), text[offset]);
    EXPECT_EQ(file->tell(), offset + 1);
  }
  file->seek(10);
  EXPECT_EQ(read_all(*file), text.substr(10));
}

TEST_P(InFileContract, ASeekBackFromTheEndMakesTheFileGoodAgain) {
  const std::string text = numbered_text(2 * kBlock + 5);
  const auto file = open_content(text);
  EXPECT_EQ(read_all(*file), text);
  for (const size_t offset : {2 * kBlock + 1, kBlock + 1, size_t{0}}) {
    SCOPED_TRACE(offset);
    file->seek(offset);
    EXPECT_TRUE(file->good());
    EXPECT_EQ(read_all(*file), text.substr(offset));
    EXPECT_TRUE(file->eof());
  }
}

TEST_P(InFileContract, ASeekBeyondTheEndFindsTheEnd) {
  const auto file = open_content("abc");
  for (const uint64_t offset : {uint64_t{3}, uint64_t{4}, uint64_t{1} << 20, uint64_t{1} << 33,
                                UINT64_MAX, UINT64_MAX - 1}) {
    SCOPED_TRACE(offset);
    file->seek(offset);
    EXPECT_EQ(file->peek(), -1);
    EXPECT_EQ(file->peek_at(1), -1);
    EXPECT_TRUE(file->eof());
    EXPECT_EQ(file->tell(), offset);
    file->seek(2);
    EXPECT_EQ(file->get(), 'c');
  }
}

TEST_P(InFileContract, ASeekInsideTheBufferMovesOnlyThePosition) {
  MemoryFile memory{.content = numbered_text(3 * kBlock)};
  const auto file = GetParam().in_over(memory);
  file->get();
  const auto log = memory.log;
  for (const size_t offset : {size_t{100}, size_t{0}, kBlock - 1, kBlock}) {
    SCOPED_TRACE(offset);
    file->seek(offset);
    EXPECT_EQ(file->tell(), offset);
  }
  EXPECT_EQ(memory.log, log);
  file->seek(kBlock + 1);
  EXPECT_EQ(file->get(), memory.content[kBlock + 1]);
  EXPECT_NE(memory.log, log);
}

TEST_P(InFileContract, LooksAtADistanceWithoutMoving) {
  const std::string text = numbered_text(3 * kBlock);
  const auto file = open_content(text);
  const size_t here = kBlock - 2;
  file->seek(here);
  for (const ptrdiff_t distance : {0, 1, 2, 3, 28, -1, -4000, 5000, 1, 0, 8000, -2}) {
    SCOPED_TRACE(distance);
    const auto place = static_cast<size_t>(static_cast<ptrdiff_t>(here) + distance);
    EXPECT_EQ(file->peek_at(distance), text[place]);
    EXPECT_EQ(file->tell(), here);
    EXPECT_TRUE(file->good());
  }
  EXPECT_EQ(read_all(*file), text.substr(here));
}

TEST_P(InFileContract, LookingOutsideTheFileFindsNothingAndChangesNothing) {
  const auto file = open_content("abc");
  file->get();
  for (const ptrdiff_t distance : {ptrdiff_t{2}, ptrdiff_t{3}, ptrdiff_t{100'000}, ptrdiff_t{-2},
                                   ptrdiff_t{PTRDIFF_MAX}, ptrdiff_t{PTRDIFF_MIN}}) {
    SCOPED_TRACE(distance);
    EXPECT_EQ(file->peek_at(distance), -1);
    EXPECT_TRUE(file->good());
    EXPECT_EQ(file->tell(), 1u);
  }
  EXPECT_EQ(file->peek_at(-1), 'a');
  EXPECT_EQ(read_all(*file), "bc");
  EXPECT_EQ(file->peek_at(-1), 'c');
  EXPECT_TRUE(file->eof()) << "an end that was seen stays so";
}

TEST_P(InFileContract, LookingWithinTheBufferDoesNotTouchTheFile) {
  MemoryFile memory{.content = numbered_text(3 * kBlock)};
  const auto file = GetParam().in_over(memory);
  file->get();
  const auto log = memory.log;
  EXPECT_EQ(file->peek_at(ptrdiff_t{kBlock} - 2), memory.content[kBlock - 1]);
  EXPECT_EQ(file->peek_at(-1), memory.content[0]);
  EXPECT_EQ(memory.log, log);
  EXPECT_EQ(file->peek_at(ptrdiff_t{2 * kBlock}), memory.content[2 * kBlock + 1]);
  EXPECT_NE(memory.log, log);
}

TEST_P(InFileContract, CopiesUpToAStopCharacter) {
  const struct {
    const char* content;
    size_t max;
    const char* expected;
    int next;
  } rows[] = {
      {"key=value", 20, "key", '='}, {"key=value", 3, "key", '='}, {"key=value", 2, "ke", 'y'},
      {"=x", 20, "", '='},           {"value", 20, "value", -1},   {"", 20, "", -1},
      {"key=value", 0, "", 'k'},
  };
  for (const int encoding : {kText8Bit, kText16Bit}) {
    for (const auto& row : rows) {
      SCOPED_TRACE(row.content);
      const std::string text = row.content;
      const auto file = open_content(
          encoding == kText8Bit ? text : wide_bytes(std::u16string(text.begin(), text.end())));
      file->encoding = encoding;
      std::vector<char> buffer(row.max + 1, '#');
      EXPECT_EQ(file->read_until(buffer.data(), row.max, '='), std::strlen(row.expected));
      EXPECT_STREQ(buffer.data(), row.expected);
      EXPECT_EQ(file->peek(), row.next);
    }
  }
}

TEST_P(InFileContract, CopiesAcrossBlocks) {
  std::string text(2 * kBlock + 100, 'x');
  text += "\xE4rest";
  const auto file = open_content(text);
  std::vector<char> buffer(3 * kBlock);
  EXPECT_EQ(file->read_until(buffer.data(), buffer.size() - 1, '\xE4'), 2 * kBlock + 100);
  EXPECT_EQ(file->get(), 0xE4);
}

TEST_P(InFileContract, ReadsBothKindsOf16BitText) {
  const std::u16string text = u"A\u00E4\u20AC\u4E2D\r\n";
  for (const bool swapped : {false, true}) {
    SCOPED_TRACE(swapped);
    const auto file = open_content(wide_bytes(text, swapped));
    file->encoding = swapped ? kText16BitSwapped : kText16Bit;
    EXPECT_EQ(file->peek(), 'A');
    file->skip();
    EXPECT_EQ(file->tell(), 2u);
    EXPECT_EQ(file->peek_at(1), 0x80);
    EXPECT_EQ(file->peek_at(-1), 'A');
    EXPECT_EQ(file->get(), 0xE4);
    char rest[10];
    EXPECT_EQ(file->read(rest, sizeof rest), 4u);
    EXPECT_EQ(std::string(rest, 4), "\x80?\r\n") << "what the code page lacks";
    EXPECT_TRUE(file->eof());
  }
}

TEST_P(InFileContract, AnyOtherEncodingIs16BitText) {
  for (const int encoding : {0, 1, 3, 6, 8, -1}) {
    SCOPED_TRACE(encoding);
    const auto file = open_content(wide_bytes(u"xy"));
    file->encoding = encoding;
    EXPECT_EQ(read_all(*file), "xy");
  }
}

TEST_P(InFileContract, ALoneByteAtTheEndOf16BitTextIsNoCharacter) {
  for (const size_t units : {size_t{0}, size_t{1}, kBlock / 2, kBlock}) {
    SCOPED_TRACE(units);
    const auto file = open_content(wide_bytes(std::u16string(units, u'x')) + "y");
    file->encoding = kText16Bit;
    std::string text(units + 5, '\0');
    EXPECT_EQ(file->read(text.data(), text.size()), units);
    EXPECT_EQ(text.substr(0, units), std::string(units, 'x'));
    EXPECT_TRUE(file->eof());
    EXPECT_EQ(file->get(), -1);
    EXPECT_EQ(file->peek(), -1);
    file->skip();
    EXPECT_EQ(file->tell(), 2 * units) << "it stays unread";
    file->encoding = kText8Bit;
    EXPECT_EQ(file->get(), 'y');
  }
}

TEST_P(InFileContract, ACharacterMayLieInTwoBlocks) {
  std::u16string text;
  for (char16_t c = 0; c < 3 * kBlock; ++c)
    text += static_cast<char16_t>('A' + c % 26);
  const std::string expected(text.begin(), text.end());
  const auto odd = open_content('-' + wide_bytes(text), 1);
  odd->encoding = kText16Bit;
  EXPECT_EQ(read_all(*odd), expected);
  odd->seek(kBlock + 1);
  EXPECT_EQ(odd->peek_at(-1), expected[kBlock / 2 - 1]);
  EXPECT_EQ(odd->get(), expected[kBlock / 2]);

  MemoryFile memory{.content = wide_bytes(text), .longest_read = 7};
  const auto pieces = GetParam().in_over(memory);
  pieces->encoding = kText16Bit;
  EXPECT_EQ(read_all(*pieces), expected);
}

TEST_P(InFileContract, AWordEndsAtWhiteSpace) {
  const auto file = open_content("one\ttwo  " + std::string("a\0b", 3) + "\x0B\xE4\xA0z");
  EXPECT_EQ(word_of(*file), "one");
  EXPECT_EQ(file->peek(), '\t') << "the blank stays";
  EXPECT_EQ(word_of(*file), "") << "blanks aren't passed";
  file->skip();
  EXPECT_EQ(word_of(*file), "two");
  file->skip();
  file->skip();
  EXPECT_EQ(word_of(*file), std::string("a\0b", 3));
  file->skip();
  EXPECT_EQ(word_of(*file), "\xE4\xA0z");
  EXPECT_TRUE(file->eof());
  EXPECT_EQ(word_of(*file), "");
}

TEST_P(InFileContract, AWordMayBeLongAndTakesNoMoreThanItNeeds) {
  for (const size_t length : {size_t{1023}, size_t{1024}, size_t{1025}, size_t{100'000}}) {
    SCOPED_TRACE(length);
    const std::string text(length, 'w');
    const auto file = open_content(text + " next");
    String word;
    EXPECT_EQ(file->read_word(word), length);
    EXPECT_EQ(word.c_str(), text);
    EXPECT_LT(word.capacity(), length + 100);
  }
}

TEST_P(InFileContract, AWordIntoABufferStaysInItsRoom) {
  const auto file = open_content("abcdef gh");
  char buffer[5] = "####";
  EXPECT_EQ(file->read_word(buffer, 0), 0u);
  EXPECT_STREQ(buffer, "####");
  EXPECT_EQ(file->read_word(buffer, 1), 0u);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(file->read_word(buffer, sizeof buffer), 4u);
  EXPECT_STREQ(buffer, "abcd");
  EXPECT_EQ(file->read_word(buffer, sizeof buffer), 2u);
  EXPECT_STREQ(buffer, "ef");
}

TEST_P(InFileContract, AnIntegersTextTellsItsBase) {
  const struct {
    const char* content;
    const char* text;
    int base;
    int next;
  } rows[] = {
      {"42,", "42", 10, ','},
      {"-42", "-42", 10, -1},
      {"+7 ", "+7", 10, ' '},
      {"0", "0", 0, -1},
      {"-0;", "-0", 0, ';'},
      {"017", "017", 8, -1},
      {"019z", "019", 8, 'z'},
      {"00", "00", 8, -1},
      {"0x1Fg", "0x1F", 16, 'g'},
      {"-0XaB", "-0XaB", 16, -1},
      {"0xg", "0", 0, 'x'},
      {"0x", "0", 0, 'x'},
      {"", "", 0, -1},
      {"-", "", 0, '-'},
      {"+x1", "", 0, '+'},
      {"--1", "", 0, '-'},
      {" 1", "", 0, ' '},
      {"abc", "", 0, 'a'},
      {"\xB2", "", 0, 0xB2},
      {"123456789012345", "123456789012345", 10, -1},
      {"1234567890123456", "123456789012345", 10, '6'},
      {"-12345678901234567", "-12345678901234", 10, '5'},
      {"0x123456789abcdef0", "0x123456789abcd", 16, 'e'},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.content);
    const auto file = open_content(row.content);
    char text[kIntTextRoom];
    EXPECT_EQ(file->read_int_text(text), row.base);
    EXPECT_STREQ(text, row.text);
    EXPECT_EQ(file->peek(), row.next);
  }
}

TEST_P(InFileContract, ARealNumbersTextIsReadAsFarAsItGoes) {
  const struct {
    const char* content;
    const char* text;
    int next;
  } rows[] = {
      {"3.14 ", "3.14", ' '},
      {"-1", "-1", -1},
      {"+.5x", "+.5", 'x'},
      {"1.2.3", "1.2", '.'},
      {"5.", "5.", -1},
      {"1e5", "1e5", -1},
      {"1E-5;", "1E-5", ';'},
      {"1e+", "1", 'e'},
      {"1else", "1", 'e'},
      {"1e5.5", "1e5", '.'},
      {"e5", "", 'e'},
      {".", "", '.'},
      {"-.e1", "", '-'},
      {"", "", -1},
      {"1234567890123456789012345678", "1234567890123456789012345678", -1},
      {"12345678901234567890123456789", "1234567890123456789012345678", '9'},
      {"12345678901234567890123456.789", "12345678901234567890123456.7", '8'},
      {"123456789012345678901234567e5", "123456789012345678901234567", 'e'},
      {"12345678901234567890123456e51", "12345678901234567890123456e5", '1'},
      {"1234567890123456789012345e-51", "1234567890123456789012345e-5", '1'},
      {"12345678901234567890123456e-5", "12345678901234567890123456", 'e'},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.content);
    const auto file = open_content(row.content);
    char text[kFloatTextRoom];
    EXPECT_EQ(file->read_float_text(text), std::strlen(row.text));
    EXPECT_STREQ(text, row.text);
    EXPECT_EQ(file->peek(), row.next);
  }
}

TEST_P(InFileContract, NumbersMayLieInTwoBlocks) {
  for (const int encoding : {kText8Bit, kText16Bit}) {
    for (size_t before = kBlock - 6; before <= kBlock; ++before) {
      SCOPED_TRACE(before);
      const size_t blanks = encoding == kText8Bit ? before : before / 2;
      const std::string text = std::string(blanks, ' ') + "-0x12ab 1.5e+10";
      const auto file = open_content(
          encoding == kText8Bit ? text : wide_bytes(std::u16string(text.begin(), text.end())));
      file->encoding = encoding;
      for (size_t i = 0; i < blanks; ++i)
        EXPECT_EQ(file->get(), ' ');
      char number[kIntTextRoom];
      EXPECT_EQ(file->read_int_text(number), 16);
      EXPECT_STREQ(number, "-0x12ab");
      EXPECT_EQ(file->get(), ' ');
      char real[kFloatTextRoom];
      EXPECT_EQ(file->read_float_text(real), 7u);
      EXPECT_STREQ(real, "1.5e+10");
      EXPECT_TRUE(file->eof());
    }
  }
}

TEST_P(InFileContract, WithoutExceptionModeAShortReadTellsItsCount) {
  const auto file = open_content("abc");
  char buffer[10];
  EXPECT_EQ(file->read(buffer, sizeof buffer), 3u);
  EXPECT_EQ(file->read(buffer, sizeof buffer), 0u);
}

/// The code of what a read of ten characters throws; none if it doesn't.
template <typename Error>
std::optional<uint32_t> thrown_by_read(InFile& file) {
  char buffer[10];
  try {
    file.read(buffer, sizeof buffer);
  } catch (const Error& error) {
    return error.code;
  }
  return std::nullopt;
}

TEST_P(InFileContract, InExceptionModeAReadBeyondTheEndThrows) {
  const ScopedExceptionMode mode;
  const auto file = open_content("0123456789abc");
  EXPECT_EQ(thrown_by_read<ORLOException>(*file), std::nullopt);
  EXPECT_EQ(thrown_by_read<ORLOException>(*file), 0x42FF0005u);
  EXPECT_EQ(thrown_by_read<ORLOException>(*file), 0x42FF0005u);
  EXPECT_EQ(file->get(), -1) << "single characters never throw";
  EXPECT_EQ(file->peek(), -1);
  const auto missing = GetParam().open_in(folder.path("none"), 0);
  EXPECT_EQ(thrown_by_read<ORLOException>(*missing), 0x42FF0005u);
  EXPECT_EQ(missing->get(), -1);
}

TEST_P(InFileContract, AFileThatRefusesIsAtItsEndThere) {
  for (const size_t good_blocks : {size_t{0}, size_t{1}, size_t{2}}) {
    SCOPED_TRACE(good_blocks);
    MemoryFile memory{
        .content = numbered_text(4 * kBlock), .refuses_from = good_blocks * kBlock, .error = 33};
    const auto file = GetParam().in_over(memory);
    EXPECT_FALSE(file->failed());
    EXPECT_TRUE(file->good());
    EXPECT_EQ(read_all(*file), memory.content.substr(0, good_blocks * kBlock));
    EXPECT_TRUE(file->eof());
    EXPECT_FALSE(file->failed()) << "it is open";
    const size_t transfers = memory.log.size();
    EXPECT_EQ(file->get(), -1);
    EXPECT_EQ(memory.log.size(), transfers) << "it isn't asked again";
  }
}

TEST_P(InFileContract, ARefusalLeavesHalfACharacterUnread) {
  MemoryFile memory{.content = wide_bytes(std::u16string(kBlock, u'x')),
                    .refuses_from = 3,
                    .error = 33,
                    .longest_read = 3};
  const auto file = GetParam().in_over(memory);
  file->encoding = kText16Bit;
  EXPECT_EQ(read_all(*file), "x") << "the second block would begin at offset 3";
  EXPECT_TRUE(file->eof());
  EXPECT_EQ(file->tell(), 2u);
}

TEST_P(InFileContract, ARefusalThatEndsMayBeTriedAgainBySeeking) {
  MemoryFile memory{.content = numbered_text(3 * kBlock), .refuses_from = kBlock, .error = 33};
  const auto file = GetParam().in_over(memory);
  read_all(*file);
  memory.refuses_from = UINT64_MAX;
  file->seek(kBlock);
  EXPECT_EQ(read_all(*file), memory.content.substr(kBlock));
}

TEST_P(InFileContract, ARefusalMayHaveSpoiltTheBlockBeforeItWhichIsNotSeen) {
  MemoryFile memory{.content = numbered_text(3 * kBlock), .refuses_from = kBlock, .error = 33};
  const auto file = GetParam().in_over(memory);
  read_all(*file);
  memory.refuses_from = UINT64_MAX;
  for (const size_t offset : {kBlock - 1, size_t{10}, size_t{0}}) {
    SCOPED_TRACE(offset);
    file->seek(offset);
    EXPECT_EQ(file->get(), memory.content[offset]);
  }
  file->seek(0);
  EXPECT_EQ(read_all(*file), memory.content);
}

TEST_P(InFileContract, InExceptionModeARefusalThrowsTheSystemsCode) {
  const ScopedExceptionMode mode;
  MemoryFile memory{.content = numbered_text(kBlock), .refuses_from = 0, .error = 33};
  const auto file = GetParam().in_over(memory);
  const bool sync = std::string(GetParam().name) == "Sync";
  const auto code = sync ? thrown_by_read<LWE>(*file) : thrown_by_read<SDKException>(*file);
  EXPECT_EQ(code, 33u);
  EXPECT_EQ(file->get(), -1);
}

TEST_P(InFileContract, AFileThatShrinksWhileItIsReadEndsThere) {
  const std::string text = numbered_text(10 * kBlock);
  const auto file = open_content(text);
  EXPECT_EQ(file->get(), text[0]);
  constexpr size_t kLeft = kBlock + 100;
  std::filesystem::resize_file(folder.path("in"), kLeft);
  const std::string got = text[0] + read_all(*file);
  // What was read ahead before it shrank still counts.
  EXPECT_GE(got.size(), kLeft);
  EXPECT_LE(got.size(), 2 * kBlock);
  EXPECT_EQ(got, text.substr(0, got.size()));
  EXPECT_TRUE(file->eof());
  EXPECT_FALSE(file->failed());
  file->seek(5 * kBlock);
  EXPECT_EQ(file->get(), -1);
}

TEST_P(InFileContract, AFileThatGrowsIsSeenAfterASeek) {
  const auto file = open_content("abc");
  EXPECT_EQ(read_all(*file), "abc");
  std::ofstream(folder.path("in"), std::ios::binary | std::ios::app) << "def";
  EXPECT_EQ(file->get(), -1) << "the end was seen";
  file->seek(file->tell());
  EXPECT_EQ(read_all(*file), "def");
}

TEST_P(InFileContract, AFileThatVanishesCanBeReadToItsEnd) {
  const std::string text = numbered_text(10 * kBlock);
  const auto file = open_content(text);
  EXPECT_EQ(file->get(), text[0]);
  // The target's system refuses this while the file is open; the result is the same.
  std::error_code ignored;
  std::filesystem::remove(folder.path("in"), ignored);
  EXPECT_EQ(text[0] + read_all(*file), text);
}

TEST_P(InFileContract, CanBeClosedAtAnyTime) {
  const std::string text = numbered_text(4 * kBlock);
  for (const size_t count : {size_t{0}, size_t{1}, kBlock, kBlock + 1, text.size() + 1}) {
    const auto file = open_content(text);
    std::string piece(count, '\0');
    EXPECT_EQ(file->read(piece.data(), count), std::min(count, text.size()));
  }
}

TEST(OverlappedInFile, StartsTheNextReadBeforeABlockIsSeen) {
  MemoryFile memory{.content = numbered_text(3 * kBlock)};
  OverlappedInFile file(transfer_at_once(std::make_unique<RawMemoryFile>(memory)));
  EXPECT_EQ(memory.log, std::vector<std::string>({"read 0+4096"}));
  file.peek();
  EXPECT_EQ(memory.log, std::vector<std::string>({"read 0+4096", "read 4096+4096"}));
  read_all(file);
  EXPECT_EQ(memory.log, std::vector<std::string>({"read 0+4096", "read 4096+4096", "read 8192+4096",
                                                  "read 12288+4096"}));
}

TEST(SyncInFile, ReadsNothingBeforeItIsAsked) {
  MemoryFile memory{.content = numbered_text(kBlock + 1)};
  SyncInFile file(std::make_unique<RawMemoryFile>(memory));
  EXPECT_TRUE(memory.log.empty());
  read_all(file);
  EXPECT_EQ(memory.log,
            std::vector<std::string>({"read 0+4096", "read 4096+4096", "read 4097+4096"}));
}

TEST(SyncInFile, DropsItsBufferAfterARefusalOnly) {
  MemoryFile memory{.content = numbered_text(kBlock), .refuses_from = kBlock, .error = 33};
  SyncInFile file(std::make_unique<RawMemoryFile>(memory));
  read_all(file);
  memory.log.clear();
  file.seek(0);
  file.peek();
  EXPECT_EQ(memory.log, std::vector<std::string>({"read 0+4096"})) << "nothing of it is left";
  memory.refuses_from = UINT64_MAX;
  read_all(file);
  memory.log.clear();
  file.seek(0);
  file.peek();
  EXPECT_TRUE(memory.log.empty()) << "the end leaves it whole";
}

/// A file whose reads can't even be started from an offset on.
class UnstartableFile final : public OverlappedRawFile {
 public:
  explicit UnstartableFile(uint64_t offset) : offset_(offset) {}
  uint32_t start_read(uint64_t offset, char* block, size_t size) override {
    if (offset >= offset_) return 1450;
    std::memset(block, 'x', size);
    size_ = size;
    return 0;
  }
  uint32_t start_write(uint64_t, const char*, size_t) override { return 1450; }
  Transfer wait() override { return {std::exchange(size_, 0), 0}; }
  void cancel() noexcept override { size_ = 0; }

 private:
  const uint64_t offset_;
  size_t size_ = 0;
};

TEST(OverlappedInFile, AReadThatCannotBeStartedCountsWhenTheBlockBeforeItIsUsedUp) {
  const ScopedExceptionMode mode;
  OverlappedInFile file(std::make_unique<UnstartableFile>(kBlock));
  EXPECT_EQ(read_all(file), std::string(kBlock, 'x'));
  EXPECT_EQ(thrown_by_read<SDKException>(file), 1450u);
  OverlappedInFile none(std::make_unique<UnstartableFile>(0));
  EXPECT_TRUE(none.good());
  EXPECT_EQ(thrown_by_read<SDKException>(none), 1450u);
  EXPECT_TRUE(none.eof());
}

}  // namespace
