#include "export/yexcel/shared_string_table.h"

#include <gtest/gtest.h>

#include <random>

#include "export/yexcel/record.h"
#include "export/yexcel/record_test_support.h"
#include "export/yexcel/string_table_test_support.h"

namespace YExcel {
namespace {

using Indices = std::vector<uint32_t>;

struct Length {
  bool wide;
  size_t count;
};
Length narrow(size_t count) {
  return {false, count};
}
Length wide(size_t count) {
  return {true, count};
}

/// A string after which a first record has room for so many bytes.
Length up_to_room(size_t room) {
  return narrow(8213 - room);
}

void add_all(Texts& texts, const std::vector<Length>& lengths) {
  for (const auto& [is_wide, count] : lengths)
    texts.add(is_wide, count);
}

/// The bodies of all records, one after the other.
std::string body_of(SharedStringTable& table) {
  const std::string bytes = written(table);
  const StringTableReader reader(bytes);
  std::string body;
  for (const std::string_view piece : reader.pieces)
    body += piece;
  return body;
}

char option(const KeptString& string) {
  return string.wide ? '\1' : '\0';
}

/// A string as it stands in a table if it isn't split.
std::string plain(const KeptString& string) {
  std::string bytes;
  put16(bytes, static_cast<uint16_t>(string.text.size()));
  bytes += option(string);
  for (const char16_t unit : string.text) {
    if (string.wide)
      put16(bytes, unit);
    else
      put8(bytes, static_cast<uint8_t>(unit));
  }
  return bytes;
}

/// The body as the rules tell, step by step, with an insertion for each option byte.
std::string inserted(Texts& texts) {
  std::string data;
  const size_t size = texts.table().DataSize();
  put32(data, texts.table().stringsTotal());
  put32(data, texts.table().uniqueStringsTotal());
  data.resize(size);
  const Indices indices = texts.table().continueIndices();
  size_t position = 8;
  size_t at = 0;
  for (const KeptString& string : texts.kept()) {
    const std::string bytes = plain(string);
    if (position + bytes.size() > data.size()) data.resize(position + bytes.size());
    data.replace(position, bytes.size(), bytes);
    position += bytes.size();
    if (at < indices.size() && indices[at] < position) {
      data.insert(indices[at++], 1, option(string));
      data.pop_back();
      ++position;
    }
    if (at < indices.size() && position == indices[at]) ++at;
  }
  data.resize(size);
  return data;
}

/// The first strings at least.
void expect_read_back(const StringTableReader& reader, const Texts& texts, size_t count) {
  EXPECT_EQ(reader.unique, texts.kept().size());
  ASSERT_GE(reader.strings.size(), count);
  for (size_t at = 0; at < count; ++at)
    EXPECT_TRUE(reader.strings[at] == texts.kept()[at]) << at;
}

void expect_read_back(Texts& texts) {
  const std::string bytes = written(texts.table());
  const StringTableReader reader(bytes);
  EXPECT_TRUE(reader.whole);
  expect_read_back(reader, texts, texts.kept().size());
}

TEST(SharedStringTable, WithNoStringsHas8BytesWithTwoZeroTotals) {
  SharedStringTable table;
  EXPECT_EQ(table.DataSize(), 8U);
  EXPECT_EQ(table.RecordSize(), 12U);
  EXPECT_TRUE(table.continueIndices().empty());
  EXPECT_EQ(written(table), bytes_of("FC00 0800 00000000 00000000"));
}

TEST(SharedStringTable, StringsStandWithLengthOptionAndCharacters) {
  SharedStringTable table;
  table.add("ab\xC4");
  table.add(u"\u20ACz");
  table.add("");
  EXPECT_EQ(written(table), bytes_of("FC00 1800 03000000 03000000 0300 00 6162C4 "
                                     "0200 01 AC20 7A00 0000 00"));
  EXPECT_EQ(table.DataSize(), 24U);
  EXPECT_EQ(table.RecordSize(), 28U);
}

TEST(SharedStringTable, IsAppendedAndItsSizeReturned) {
  SharedStringTable table;
  table.add("a");
  std::string buffer = "before";
  EXPECT_EQ(table.Write(buffer), 16U);
  EXPECT_EQ(buffer, "before" + bytes_of("FC00 0C00 01000000 01000000 0100 00 61"));
}

TEST(SharedStringTable, AKnownTextCountsOnceMoreAndKeepsItsIndex) {
  SharedStringTable table;
  const std::string again = "first";
  EXPECT_EQ(table.add("first"), 0U);
  EXPECT_EQ(table.add("second"), 1U);
  EXPECT_EQ(table.add(again), 0U);
  EXPECT_EQ(table.stringsTotal(), 3U);
  EXPECT_EQ(table.uniqueStringsTotal(), 2U);
}

TEST(SharedStringTable, NarrowAndWideTextsAreDifferentStrings) {
  SharedStringTable table;
  EXPECT_EQ(table.add("ab"), 0U);
  EXPECT_EQ(table.add(u"ab"), 1U);
  // The same bytes in memory as the wide text.
  EXPECT_EQ(table.add(std::string_view("a\0b\0", 4)), 2U);
  EXPECT_EQ(table.add(u"ab"), 1U);
  EXPECT_EQ(table.add(""), 3U);
  EXPECT_EQ(table.add(u""), 4U);
  EXPECT_EQ(table.add(std::string_view()), 3U);
  EXPECT_EQ(table.uniqueStringsTotal(), 5U);
}

TEST(SharedStringTable, FindsEachOfManyTextsAgain) {
  // So many that some of them have the same hash of 32 bits.
  constexpr uint32_t kMany = 300000;
  std::vector<std::string> texts(kMany);
  for (uint32_t index = 0; index < kMany; ++index)
    texts[index] = std::to_string(index);
  SharedStringTable table;
  for (uint32_t round = 1; round <= 2; ++round) {
    for (uint32_t index = 0; index < kMany; ++index)
      ASSERT_EQ(table.add(texts[index]), index);
    EXPECT_EQ(table.stringsTotal(), kMany * round);
    EXPECT_EQ(table.uniqueStringsTotal(), kMany);
  }
}

TEST(SharedStringTable, OnlyWhatALengthCanTellCounts) {
  const std::string most(65535, 'a');
  const std::u16string widest(65536, u'w');
  SharedStringTable table;
  EXPECT_EQ(table.add(most), 0U);
  EXPECT_EQ(table.add(most + "b"), 0U);
  EXPECT_EQ(table.add(widest), 1U);
  EXPECT_EQ(table.add(std::u16string_view(widest).substr(1)), 1U);
}

TEST(SharedStringTable, IsEmptyAfterItWasCleared) {
  const std::string text(9000, 'a');
  SharedStringTable table;
  table.add("first");
  table.add(text);
  table.DataSize();
  table.clear();
  EXPECT_EQ(table.stringsTotal(), 0U);
  EXPECT_EQ(table.uniqueStringsTotal(), 0U);
  EXPECT_TRUE(table.continueIndices().empty());
  EXPECT_EQ(table.DataSize(), 8U);
  EXPECT_EQ(table.add(text), 0U);
  EXPECT_EQ(table.add("first"), 1U);
  EXPECT_EQ(table.uniqueStringsTotal(), 2U);
}

struct Layout {
  const char* what;
  std::vector<Length> strings;
  uint32_t size;
  Indices indices;
};

const Layout kLayouts[] = {
    {"one byte less than full", {narrow(8212)}, 8223, {}},
    {"exactly full", {narrow(8213)}, 8224, {}},
    {"exactly full, then another", {narrow(8213), narrow(2)}, 8229, {8224}},
    {"one byte too many", {narrow(8214)}, 8226, {8224}},
    {"wide, exactly full", {narrow(0), wide(4105), narrow(2)}, 8224 + 5, {8224}},
    {"wide, too long by one character", {wide(4107)}, 8226, {8223}},

    {"room for 11: begins later", {up_to_room(11), narrow(10)}, 8213 + 13, {8213}},
    {"room for 11, filled", {up_to_room(11), narrow(8)}, 8224, {}},
    {"room for 12: is split", {up_to_room(12), narrow(10)}, 8226, {8224}},
    {"room for 13: is split", {up_to_room(13), narrow(11)}, 8226, {8224}},
    {"room for 0", {up_to_room(0), wide(1)}, 8229, {8224}},

    {"8,220 bytes, room for 11", {up_to_room(11), narrow(8220)}, 16436, {8213}},
    {"8,221 bytes, room for 11", {up_to_room(11), narrow(8221)}, 16438, {8213, 16437}},
    {"8,222 bytes, room for 11", {up_to_room(11), narrow(8222)}, 16439, {8213, 16437}},
    {"8,223 bytes, room for 11", {up_to_room(11), narrow(8223)}, 16440, {8213, 16437}},
    {"8,224 bytes, room for 11", {up_to_room(11), narrow(8224)}, 16441, {8213, 16437}},
    {"8,225 bytes, room for 11", {up_to_room(11), narrow(8225)}, 16442, {8213, 16437}},
    {"8,223 bytes, room for 12", {up_to_room(12), narrow(8223)}, 16439, {8224}},
    {"8,224 bytes, room for 12", {up_to_room(12), narrow(8224)}, 16440, {8224}},
    {"8,225 bytes, room for 12", {up_to_room(12), narrow(8225)}, 16441, {8224}},
    {"8,223 bytes, room for 13", {up_to_room(13), narrow(8223)}, 16438, {8224}},
    {"8,224 bytes, room for 13", {up_to_room(13), narrow(8224)}, 16439, {8224}},
    {"8,225 bytes, room for 13", {up_to_room(13), narrow(8225)}, 16440, {8224}},

    {"8,220 wide bytes, room for 11", {up_to_room(11), wide(4110)}, 16436, {8213}},
    {"8,222 wide bytes, room for 11", {up_to_room(11), wide(4111)}, 16439, {8213, 16436}},
    {"8,224 wide bytes, room for 11", {up_to_room(11), wide(4112)}, 16441, {8213, 16436}},
    {"8,224 wide bytes, even room", {up_to_room(12), wide(4112)}, 16440, {8223}},
    {"8,224 wide bytes, odd room", {up_to_room(13), wide(4112)}, 16439, {8224}},

    {"narrow, a full second record", {up_to_room(12), narrow(8231)}, 16447, {8224}},
    {"narrow, two records, none left", {up_to_room(12), narrow(8232)}, 16449, {8224, 16448}},
    {"narrow, three records", {up_to_room(12), narrow(8233)}, 16450, {8224, 16448}},
    {"narrow, many", {up_to_room(13), narrow(25000)}, 33218, {8224, 16448, 24672, 32896}},
    {"wide, a full second record", {up_to_room(13), wide(4115)}, 16445, {8224}},
    {"wide, two records, none left", {up_to_room(13), wide(4116)}, 16448, {8224, 16447}},
    {"wide, three records", {up_to_room(13), wide(4117)}, 16450, {8224, 16447}},
    {"wide, many", {up_to_room(13), wide(12000)}, 32217, {8224, 16447, 24669}},

    // Pieces of a wide string move the limit less than the size.
    {"wide, beyond the limit",
     {up_to_room(13), wide(20559)},
     49337,
     {8224, 16447, 24669, 32891, 41113}},
    {"wide, beyond the limit, then another",
     {up_to_room(13), wide(20559), narrow(1)},
     49341,
     {8224, 16447, 24669, 32891, 41113, 49337}},
    {"what follows keeps the limit",
     {up_to_room(13), wide(12000), narrow(672)},
     32892,
     {8224, 16447, 24669}},
    {"what follows is split at the limit",
     {up_to_room(13), wide(12000), narrow(673)},
     32894,
     {8224, 16447, 24669, 32892}},
};

TEST(SharedStringTable, SizeAndBeginningsFollowTheRules) {
  for (const Layout& layout : kLayouts) {
    SCOPED_TRACE(layout.what);
    Texts texts;
    add_all(texts, layout.strings);
    EXPECT_EQ(texts.table().DataSize(), layout.size);
    EXPECT_EQ(texts.table().continueIndices(), layout.indices);
    // Once more, with nothing left of the first time.
    EXPECT_EQ(texts.table().RecordSize(), layout.size + 4 + 4 * (layout.size / 8224));
    EXPECT_EQ(texts.table().continueIndices(), layout.indices);
  }
}

TEST(SharedStringTable, RecordsBeginWhereTheSizeHasFound) {
  for (const Layout& layout : kLayouts) {
    SCOPED_TRACE(layout.what);
    Texts texts;
    add_all(texts, layout.strings);
    std::string bytes;
    EXPECT_EQ(texts.table().Write(bytes), layout.size + 4 * (layout.indices.size() + 1));
    const StringTableReader reader(bytes);
    Indices ends;
    uint32_t end = 0;
    for (const std::string_view piece : reader.pieces)
      ends.push_back(end += static_cast<uint32_t>(piece.size()));
    Indices expected = layout.indices;
    expected.push_back(layout.size);
    EXPECT_EQ(ends, expected);
    EXPECT_EQ(reader.codes[0], 252);
    EXPECT_EQ(std::ranges::count(reader.codes, 60), std::ssize(layout.indices));
  }
}

TEST(SharedStringTable, WritesWhatTheRulesTellStepByStep) {
  for (const Layout& layout : kLayouts) {
    SCOPED_TRACE(layout.what);
    Texts texts;
    add_all(texts, layout.strings);
    EXPECT_TRUE(body_of(texts.table()) == inserted(texts));
    texts.narrow(500);
    texts.wide(300);
    EXPECT_TRUE(body_of(texts.table()) == inserted(texts));
  }
}

TEST(SharedStringTable, StringsReadBackEqualUpToOneThatReadersTakeForAnother) {
  for (const Layout& layout : kLayouts) {
    SCOPED_TRACE(layout.what);
    Texts texts;
    add_all(texts, layout.strings);
    const std::string bytes = written(texts.table());
    expect_read_back(StringTableReader(bytes), texts,
                     readable(texts.kept(), texts.table().continueIndices()));
  }
}

TEST(SharedStringTable, AStringThatFitsExactlyIsNotSplit) {
  Texts texts;
  add_all(texts, {narrow(4000), narrow(4210), narrow(50)});
  expect_read_back(texts);
  const std::string bytes = written(texts.table());
  const StringTableReader reader(bytes);
  ASSERT_EQ(reader.pieces.size(), 2U);
  EXPECT_EQ(reader.pieces[0].size(), 8224U);
  EXPECT_EQ(reader.pieces[1], plain(texts.kept()[2]));
}

TEST(SharedStringTable, AShortStringBeginsInANewRecordIfThereIsRoomForLessThan12Bytes) {
  Texts texts;
  add_all(texts, {up_to_room(11), narrow(9), narrow(50)});
  expect_read_back(texts);
  const std::string bytes = written(texts.table());
  const StringTableReader reader(bytes);
  ASSERT_EQ(reader.pieces.size(), 2U);
  EXPECT_EQ(reader.pieces[0].size(), 8213U);
  EXPECT_EQ(reader.pieces[1], plain(texts.kept()[1]) + plain(texts.kept()[2]));
}

TEST(SharedStringTable, ASplitStringGoesOnAfterAnOptionByte) {
  Texts texts;
  add_all(texts, {up_to_room(12), narrow(12), wide(3)});
  const std::string bytes = written(texts.table());
  const StringTableReader reader(bytes);
  const std::string split = plain(texts.kept()[1]);
  EXPECT_EQ(reader.codes, (std::vector<uint16_t>{0xFC, 0x3C}));
  EXPECT_EQ(reader.pieces[0].substr(8212), split.substr(0, 12));
  EXPECT_EQ(reader.pieces[1], std::string(1, '\0') + split.substr(12) + plain(texts.kept()[2]));
}

TEST(SharedStringTable, AWideStringIsNeverSplitBetweenTheBytesOfACharacter) {
  for (size_t room = 0; room < 64; ++room) {
    SCOPED_TRACE(room);
    Texts texts;
    add_all(texts, {up_to_room(room), wide(100), wide(4060), wide(300), narrow(7)});
    expect_read_back(texts);
  }
}

TEST(SharedStringTable, AStringOverTwoBeginningsHasAnOptionByteOnlyAtTheFirst) {
  Texts texts;
  add_all(texts, {up_to_room(12), wide(9000)});
  const std::string split = plain(texts.kept()[1]);
  ASSERT_EQ(texts.table().DataSize(), 8212U + split.size() + 3);
  ASSERT_EQ(texts.table().continueIndices(), (Indices{8223, 16446, 24668}));
  // The two bytes that were counted for the others are left at the end.
  EXPECT_TRUE(body_of(texts.table()).substr(8212) ==
              split.substr(0, 11) + '\1' + split.substr(11) + std::string(2, '\0'));
}

TEST(SharedStringTable, TheNextStringLeavesItsOptionByteAtTheSecondOfTwoBeginnings) {
  Texts texts;
  add_all(texts, {up_to_room(12), narrow(9000), wide(5)});
  const std::string split = plain(texts.kept()[1]);
  ASSERT_EQ(texts.table().DataSize(), 8212U + split.size() + 2 + 13);
  ASSERT_EQ(texts.table().continueIndices(), (Indices{8224, 16448}));
  EXPECT_TRUE(body_of(texts.table()).substr(8212) ==
              split.substr(0, 12) + '\0' + split.substr(12, 8223) + '\1' + split.substr(8235) +
                  plain(texts.kept()[2]));
}

TEST(SharedStringTable, AStringThatFillsARecordOfItsOwnHasAByteMoreThanItNeeds) {
  Texts texts;
  add_all(texts, {up_to_room(0), narrow(8221), wide(5)});
  ASSERT_EQ(texts.table().DataSize(), 16448U + 1 + 13);
  ASSERT_EQ(texts.table().continueIndices(), (Indices{8224, 16448}));
  EXPECT_TRUE(body_of(texts.table()).substr(8224) ==
              plain(texts.kept()[1]) + plain(texts.kept()[2]) + '\0');
}

TEST(SharedStringTable, AStringAfterASplitOneBeginsARecordOfItsOwnWithoutAnOptionByte) {
  Texts texts;
  add_all(texts, {up_to_room(12), narrow(8223), wide(5), narrow(4)});
  ASSERT_EQ(texts.table().DataSize(), 16439U + 13 + 7);
  ASSERT_EQ(texts.table().continueIndices(), (Indices{8224, 16439}));
  EXPECT_TRUE(body_of(texts.table()).substr(16439) ==
              plain(texts.kept()[2]) + plain(texts.kept()[3]));
  expect_read_back(texts);
}

TEST(SharedStringTable, StringsAroundAWholeRecordReadBackWhateverRoomThereIs) {
  for (const bool is_wide : {false, true}) {
    for (size_t room = 0; room <= 40; ++room) {
      for (const size_t bytes : {8222U, 8223U, 8224U, 8225U}) {
        SCOPED_TRACE(testing::Message() << is_wide << ' ' << room << ' ' << bytes);
        // Then such as fit into what is left, and such as don't.
        Texts texts;
        add_all(texts, {up_to_room(room),
                        {is_wide, is_wide ? bytes / 2 : bytes},
                        narrow(30),
                        wide(20),
                        narrow(8000),
                        narrow(300),
                        wide(30)});
        expect_read_back(texts);
      }
    }
  }
}

/// Lengths of all kinds, with many near the edges of records.
size_t any_count(std::mt19937& random, size_t most) {
  const size_t scale[] = {3, 30, 300, 3000, most};
  return std::uniform_int_distribution<size_t>(0, scale[random() % std::size(scale)])(random);
}

TEST(SharedStringTable, AnyStringsThatCrossAtMostOneBeginningReadBackEqual) {
  std::mt19937 random(13);
  for (int table = 0; table < 200; ++table) {
    SCOPED_TRACE(table);
    Texts texts;
    for (size_t count = 1 + random() % 60; count > 0; --count) {
      const bool is_wide = random() % 2 == 0;
      texts.add(is_wide, any_count(random, is_wide ? 4105 : 8210));
    }
    texts.table().DataSize();
    ASSERT_EQ(readable(texts.kept(), texts.table().continueIndices()), texts.kept().size());
    expect_read_back(texts);
  }
}

TEST(SharedStringTable, AnyStringsAreWrittenAsTheRulesTellStepByStep) {
  std::mt19937 random(14);
  for (int table = 0; table < 100; ++table) {
    SCOPED_TRACE(table);
    Texts texts;
    for (size_t count = 1 + random() % 24; count > 0; --count) {
      const bool is_near = random() % 4 == 0;
      texts.add(random() % 2 == 0, is_near ? 8190 + random() % 50 : any_count(random, 40000));
    }
    ASSERT_TRUE(body_of(texts.table()) == inserted(texts));
    ASSERT_EQ(body_of(texts.table()).size(), texts.table().DataSize());
  }
}

}  // namespace
}  // namespace YExcel
