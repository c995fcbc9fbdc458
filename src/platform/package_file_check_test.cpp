#include "platform/package_file_check.h"

#include <gtest/gtest.h>

#include <random>

#include "orlo/file_test_support.h"
#include "platform/package_file_test_support.h"

namespace {

constexpr uint32_t kEnd = TestCompoundFile::kEndOfChain;
constexpr unsigned kBothShifts[] = {9, 12};
constexpr std::optional<uint32_t> kWesternEurope = 1252;
const std::u16string kPool = table_stream("_StringPool");
const std::u16string kData = table_stream("_StringData");
const std::u16string kColumns = table_stream("_Columns");

std::optional<uint32_t> checked(const std::string& bytes) {
  MemoryFile file{bytes};
  RawMemoryFile raw(file);
  return check_package_file(raw);
}

std::optional<uint32_t> checked(const TestCompoundFile& file) {
  return checked(file.bytes);
}

std::string cut(const TestCompoundFile& file, size_t missing) {
  return file.bytes.substr(0, file.bytes.size() - missing);
}

/// A package with one stream more.
TestStreams with(TestStream stream) {
  TestStreams streams = package_streams();
  streams.push_back(std::move(stream));
  return streams;
}

/// A package with another content of one of its streams.
TestStreams changed(const std::u16string& name, const std::string& bytes) {
  TestStreams streams = package_streams();
  for (TestStream& stream : streams)
    if (stream.name == name) stream.bytes = bytes;
  return streams;
}

TestStreams without(const std::u16string& name) {
  TestStreams streams = package_streams();
  std::erase_if(streams, [&](const TestStream& stream) { return stream.name == name; });
  return streams;
}

std::optional<uint32_t> checked_columns(const std::vector<TestColumn>& columns) {
  return checked(compound_file(changed(kColumns, column_bytes(columns))));
}

/// All streams long, the strings last.
TestStreams long_streams() {
  TestStreams streams = package_streams();
  streams[0].bytes.resize(5000);
  std::vector<TestColumn> columns;
  for (uint32_t number = 1; number <= 600; ++number)
    columns.push_back({1, number});
  streams[3].bytes = column_bytes(columns);
  streams[1].bytes.resize(5000);
  std::swap(streams[1], streams[4]);
  return streams;
}

/// A file whose end is made up: zeros. Counts what is read.
class MadeUpFile final : public ORLO::RawFile {
 public:
  explicit MadeUpFile(const TestCompoundFile& file) : file_(file) {}

  ORLO::Transfer read(uint64_t offset, char* block, size_t size) override {
    ++reads;
    if (offset >= file_.size) return {};
    const auto count = static_cast<size_t>(std::min<uint64_t>(size, file_.size - offset));
    std::memset(block, 0, count);
    if (offset < file_.bytes.size()) file_.bytes.copy(block, count, static_cast<size_t>(offset));
    bytes += count;
    return {count, 0};
  }
  ORLO::Transfer write(uint64_t, const char*, size_t) override { return {0, 1}; }

  uint64_t bytes = 0;
  int reads = 0;

 private:
  const TestCompoundFile& file_;
};

/// A package whose cabinet is of this size.
TestCompoundFile with_cabinet(uint64_t size) {
  return compound_file(with({u"\u4840Cabinet", "", size}));
}

}  // namespace

TEST(PackageFileCheck, TakesNoOtherFileForADatabase) {
  EXPECT_EQ(checked(""), std::nullopt);
  EXPECT_EQ(checked("no database"), std::nullopt);
  EXPECT_EQ(checked(std::string(4096, '\0')), std::nullopt);
  EXPECT_EQ(checked(std::string(4096, '\xFF')), std::nullopt);
}

TEST(PackageFileCheck, EndsWithAnyBytesAfterTheRightBeginning) {
  std::mt19937 random(1);
  for (int round = 0; round < 2000; ++round) {
    std::string bytes("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
    while (bytes.size() < 4096)
      bytes += static_cast<char>(random() % (round % 2 == 0 ? 256 : 4));
    bytes[30] = 9;
    bytes[31] = 0;
    EXPECT_EQ(checked(bytes), std::nullopt);
  }
}

TEST(PackageFileCheck, TakesSoundFilesWithSectorsOfBothSizes) {
  for (const unsigned shift : kBothShifts) {
    EXPECT_EQ(checked(compound_file(package_streams(), shift)), kWesternEurope);
    EXPECT_EQ(checked(compound_file(long_streams(), shift)), kWesternEurope);
  }
}

TEST(PackageFileCheck, TakesNoSectorsOfOtherSizes) {
  for (const unsigned shift : {0U, 8U, 10U, 13U, 64U, 0xFFFFU})
    EXPECT_EQ(checked(compound_file(package_streams()).put(30, shift, 2)), std::nullopt);
  for (const unsigned shift : {10U, 11U, 13U})
    EXPECT_EQ(checked(compound_file(package_streams(), shift)), std::nullopt);
}

TEST(PackageFileCheck, TakesNoSmallSectorsOfOtherSizes) {
  EXPECT_EQ(checked(compound_file(package_streams()).put(32, 5, 2)), std::nullopt);
  EXPECT_EQ(checked(compound_file(package_streams()).put(56, 2048)), std::nullopt);
}

TEST(PackageFileCheck, TakesNothingForASoundFileOfAnotherMark) {
  for (const size_t at : {0U, 3U, 4U, 7U})
    EXPECT_EQ(checked(compound_file(package_streams()).put(at, 0, 1)), std::nullopt);
}

TEST(PackageFileCheck, TellsTheCodePageOfTheStrings) {
  for (const uint32_t code_page : {0U, 932U, 65001U, 0x7FFFFFFFU})
    EXPECT_EQ(checked(compound_file(package_streams(code_page))), code_page);
  EXPECT_EQ(checked(compound_file(changed(kPool, ""))), 0U);
}

TEST(PackageFileCheck, TakesAFileThatEndsWithinItsLastSector) {
  for (const unsigned shift : kBothShifts) {
    const TestCompoundFile file = compound_file(long_streams(), shift);
    const size_t filler = file.bytes.size() - file.sector(file.start_of(kData)) - 5000;
    EXPECT_EQ(checked(cut(file, filler)), kWesternEurope);
    EXPECT_EQ(checked(cut(file, filler + 1)), std::nullopt);
  }
}

TEST(PackageFileCheck, TakesAFileThatEndsAfterItsLastSmallStream) {
  TestStreams streams = package_streams();
  std::swap(streams[1], streams[4]);
  const TestCompoundFile file = compound_file(streams);
  EXPECT_EQ(file.number(file.entry(0) + 120), 5U * 64);
  const size_t after = 512 - (4 * 64 + 4);
  EXPECT_EQ(checked(cut(file, after)), kWesternEurope);
  EXPECT_EQ(checked(cut(file, after + 1)), std::nullopt);
}

TEST(PackageFileCheck, TakesAPackageWhoseCabinetIsCutOff) {
  const TestCompoundFile file = compound_file(with({u"\u4840Cabinet", std::string(100000, 'c')}));
  EXPECT_EQ(checked(file), kWesternEurope);
  EXPECT_EQ(checked(cut(file, 90000)), kWesternEurope);
}

TEST(PackageFileCheck, TakesAFileWithoutSmallStreams) {
  TestStreams streams = long_streams();
  std::erase_if(streams, [](const TestStream& stream) { return stream.size() < 4096; });
  const TestCompoundFile file = compound_file(streams);
  EXPECT_EQ(file.number(64), 0U);
  EXPECT_EQ(file.number(file.entry(0) + 116), kEnd);
  EXPECT_EQ(checked(file), kWesternEurope);
  TestCompoundFile odd = file;
  EXPECT_EQ(checked(odd.put(60, TestCompoundFile::kNone)), kWesternEurope);
}

TEST(PackageFileCheck, TakesADatabaseWithoutTables) {
  EXPECT_EQ(checked(compound_file(without(kColumns))), kWesternEurope);
  EXPECT_EQ(checked(compound_file(changed(kColumns, ""))), kWesternEurope);
}

TEST(PackageFileCheck, NeedsTheStrings) {
  EXPECT_EQ(checked(compound_file(without(kPool))), std::nullopt);
  EXPECT_EQ(checked(compound_file(without(kData))), std::nullopt);
  EXPECT_EQ(checked(compound_file({})), std::nullopt);
  EXPECT_EQ(checked(compound_file(changed(kData, ""))), kWesternEurope);
}

TEST(PackageFileCheck, FindsTheStringsAmongManyStreams) {
  TestStreams streams = package_streams();
  for (int i = 0; i < 3000; ++i) {
    std::u16string name = u"\x4840";
    for (const char digit : std::to_string(i * 7919))
      name += static_cast<char16_t>(i % 3 == 0 ? 0x3F00 + digit : digit);
    streams.push_back({name, std::string(static_cast<size_t>(i % 70), 'x')});
  }
  for (const unsigned shift : kBothShifts)
    EXPECT_EQ(checked(compound_file(streams, shift)), kWesternEurope);
}

TEST(PackageFileCheck, LooksForTheStringsWhereThePlatformDoes) {
  TestCompoundFile file = compound_file(package_streams());
  const size_t top = file.entry(file.number(file.entry(0) + 76));
  const uint32_t left = file.number(top + 68);
  const uint32_t right = file.number(top + 72);
  EXPECT_EQ(checked(file.put(top + 68, right).put(top + 72, left)), std::nullopt);
}

TEST(PackageFileCheck, NeedsStringsThatAreAStream) {
  TestCompoundFile file = compound_file(package_streams());
  EXPECT_EQ(checked(file.put(file.entry(kPool) + 66, 1, 1)), std::nullopt);
}

TEST(PackageFileCheck, NeedsNamesAsLongAsTheySay) {
  TestCompoundFile file = compound_file(package_streams());
  const size_t length = file.entry(kPool) + 64;
  const uint32_t right = file.number(length) & 0xFFFF;
  EXPECT_EQ(checked(file.put(length, right, 2)), kWesternEurope);
  for (const uint32_t wrong : {0U, right - 2, right + 2, 0xFFFFU})
    EXPECT_EQ(checked(file.put(length, wrong, 2)), std::nullopt);
}

TEST(PackageFileCheck, SurvivesNamesWithoutAnEnd) {
  TestCompoundFile file = compound_file(package_streams());
  for (size_t at = 0; at < 64; ++at)
    file.put(file.entry(kPool) + at, 'x', 1);
  EXPECT_EQ(checked(file), std::nullopt);
}

TEST(PackageFileCheck, TakesNoCircleInTheDirectory) {
  for (const size_t link : {68U, 72U, 76U}) {
    TestCompoundFile file = compound_file(package_streams());
    for (size_t entry = 1; entry <= 5; ++entry) {
      TestCompoundFile broken = file;
      broken.put(file.entry(entry) + link, entry);
      EXPECT_EQ(checked(broken), std::nullopt) << entry;
      broken.put(file.entry(entry) + link, 0);
      EXPECT_EQ(checked(broken), std::nullopt) << entry;
    }
  }
}

TEST(PackageFileCheck, TakesNoEntryThatTwoLeadTo) {
  TestCompoundFile file = compound_file(package_streams());
  const uint32_t top = file.number(file.entry(0) + 76);
  EXPECT_EQ(checked(file.put(file.entry(0) + 68, top)), std::nullopt);
}

TEST(PackageFileCheck, TakesNoLinkOutOfTheDirectory) {
  for (const size_t link : {68U, 72U, 76U}) {
    for (const uint32_t target : {8U, 1000U, 0x02000000U, 0xFFFFFFFEU}) {
      TestCompoundFile file = compound_file(package_streams());
      EXPECT_EQ(checked(file.put(file.entry(kData) + link, target)), std::nullopt) << target;
    }
  }
}

TEST(PackageFileCheck, TakesNoCircleInAChain) {
  const TestCompoundFile whole = compound_file(long_streams());
  const size_t directory = whole.place_of(whole.directory);
  const size_t small = whole.place_of(whole.small_table);
  for (const size_t start : {directory, small, small + 1, size_t{whole.start_of(kPool)},
                             size_t{whole.start_of(kData)}, size_t{whole.start_of(kColumns)}}) {
    TestCompoundFile file = whole;
    EXPECT_EQ(checked(file.put(file.successor(start), start)), std::nullopt) << start;
  }
}

TEST(PackageFileCheck, TakesNoCircleInASmallChain) {
  for (const std::u16string& name : {kPool, kData, kColumns}) {
    TestCompoundFile file = compound_file(package_streams());
    const uint32_t start = file.start_of(name);
    EXPECT_EQ(checked(file.put(file.small_successor(start), start)), std::nullopt);
  }
}

TEST(PackageFileCheck, TakesNoCircleInAStreamOfNoInterest) {
  TestCompoundFile file = compound_file(with({u"other", std::string(9000, 'o')}));
  const uint32_t start = file.start_of(u"other");
  EXPECT_EQ(checked(file), kWesternEurope);
  EXPECT_EQ(checked(file.put(file.successor(start + 9), start + 3)), std::nullopt);
}

TEST(PackageFileCheck, LeavesAStreamThatBreaksOffToThePlatform) {
  TestCompoundFile file = compound_file(with({u"other", std::string(9000, 'o')}));
  for (const uint32_t target : {kEnd, 0xFFFFFFFFU, 70000U, 0x7FFFFFFFU})
    EXPECT_EQ(checked(file.put(file.successor(file.start_of(u"other") + 5), target)),
              kWesternEurope);
}

TEST(PackageFileCheck, TakesNoSectorOfTwoStreams) {
  TestCompoundFile file = compound_file(long_streams());
  const uint32_t start = file.start_of(kData);
  EXPECT_EQ(checked(file.put(file.entry(kPool) + 116, start)), std::nullopt);
}

TEST(PackageFileCheck, LeavesTheStartOfAnEmptyStreamAlone) {
  TestCompoundFile file = compound_file(changed(kData, ""));
  EXPECT_EQ(checked(file.put(file.entry(kData) + 116, 12345678)), kWesternEurope);
}

TEST(PackageFileCheck, TakesNoChainOutOfTheTable) {
  for (const std::u16string& name : {kPool, kData, kColumns}) {
    for (const uint32_t target : {100000U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
      TestCompoundFile file = compound_file(long_streams());
      EXPECT_EQ(checked(file.put(file.entry(name) + 116, target)), std::nullopt);
      TestCompoundFile small = compound_file(package_streams());
      EXPECT_EQ(checked(small.put(small.entry(name) + 116, target)), std::nullopt);
    }
  }
}

TEST(PackageFileCheck, TakesNoChainThatBreaksOffAtNothing) {
  TestCompoundFile file = compound_file(long_streams());
  const uint32_t start = file.start_of(kData);
  EXPECT_EQ(checked(file.put(file.successor(start + 9), 0xFFFFFFFF)), std::nullopt);
}

TEST(PackageFileCheck, TakesNoChainShorterThanItsStream) {
  for (const std::u16string& name : {kPool, kData, kColumns}) {
    TestCompoundFile file = compound_file(long_streams());
    EXPECT_EQ(checked(file.put(file.successor(file.start_of(name)), kEnd)), std::nullopt);
    TestCompoundFile small = compound_file(package_streams());
    EXPECT_EQ(checked(small.put(small.entry(name) + 120, 65)), std::nullopt);
  }
}

TEST(PackageFileCheck, TakesAChainLongerThanItsStream) {
  TestCompoundFile file = compound_file(long_streams());
  EXPECT_EQ(checked(file.put(file.entry(kData) + 120, 4096)), kWesternEurope);
}

TEST(PackageFileCheck, TakesNoStreamsOfBytesThatNoFileHas) {
  for (const std::u16string& name : {kPool, kData, kColumns}) {
    TestCompoundFile file = compound_file(long_streams());
    EXPECT_EQ(checked(file.put(file.entry(name) + 120, 0xFFFFFFFF)), std::nullopt);
    TestCompoundFile other = compound_file(long_streams());
    EXPECT_EQ(checked(other.put(other.entry(name) + 124, 1)), std::nullopt);
  }
}

TEST(PackageFileCheck, TakesNoSmallStreamsBeyondTheirSectors) {
  TestCompoundFile file = compound_file(package_streams());
  const size_t size = file.entry(0) + 120;
  EXPECT_EQ(checked(file.put(size, 512)), kWesternEurope);
  EXPECT_EQ(checked(file.put(size, 513)), std::nullopt);
  EXPECT_EQ(checked(file.put(size, 0)), std::nullopt);
  EXPECT_EQ(checked(file.put(size, 512).put(size + 4, 1)), std::nullopt);
}

TEST(PackageFileCheck, TakesNoSmallSectorBeyondTheSmallStreams) {
  TestCompoundFile file = compound_file(package_streams());
  const size_t size = file.entry(0) + 120;
  EXPECT_EQ(checked(file.put(size, 256)), kWesternEurope);
  EXPECT_EQ(checked(file.put(size, 192)), std::nullopt);
}

TEST(PackageFileCheck, TakesNoColumnsWithGaps) {
  EXPECT_EQ(checked_columns({{1, 1}, {1, 2}, {1, 3}}), kWesternEurope);
  EXPECT_EQ(checked_columns({{1, 1}, {1, 3}}), std::nullopt);
  EXPECT_EQ(checked_columns({{1, 2}}), std::nullopt);
  EXPECT_EQ(checked_columns({{1, 0}}), std::nullopt);
  EXPECT_EQ(checked_columns({{1, 0}, {1, 1}}), std::nullopt);
  EXPECT_EQ(checked_columns({{1, 1}, {2, 2}}), std::nullopt);
  EXPECT_EQ(checked_columns({{1, 1}, {1, 0x8000}}), std::nullopt);
}

TEST(PackageFileCheck, TakesNoColumnTwice) {
  EXPECT_EQ(checked_columns({{1, 1}, {1, 1}}), std::nullopt);
  EXPECT_EQ(checked_columns({{1, 1}, {2, 1}, {1, 1}}), std::nullopt);
}

TEST(PackageFileCheck, TakesColumnsInAnyOrder) {
  EXPECT_EQ(checked_columns({{2, 2}, {1, 1}, {2, 1}, {0, 1}, {0xFFFF, 1}}), kWesternEurope);
}

TEST(PackageFileCheck, ReadsReferencesOfThreeBytesWhereThePoolSaysSo) {
  TestStreams streams = package_streams(0x80000000 | 1252);
  streams[3].bytes = column_bytes({{0x10001, 1}, {1, 1}, {1, 2}}, 3);
  EXPECT_EQ(checked(compound_file(streams)), kWesternEurope);
  streams[3].bytes = column_bytes({{0x10001, 1}, {1, 2}}, 3);
  EXPECT_EQ(checked(compound_file(streams)), std::nullopt);
}

TEST(PackageFileCheck, LooksAtWholeColumnsOnly) {
  const std::string one = column_bytes({{1, 1}});
  for (size_t more = 1; more < 8; ++more)
    EXPECT_EQ(checked(compound_file(changed(kColumns, one + std::string(more, '\0')))),
              kWesternEurope);
}

TEST(PackageFileCheck, ReadsATableOfSectorsThatTheHeaderCannotList) {
  // The last ones of 109 and more tables are those of the strings.
  TestStreams streams = long_streams();
  streams.insert(streams.begin(), {u"large", std::string(size_t{16} << 20, 'l')});
  const TestCompoundFile file = compound_file(streams);
  ASSERT_GT(file.number(72), 1U);
  EXPECT_EQ(checked(file), kWesternEurope);
  const size_t listing = file.sector(file.number(68));
  for (const uint32_t target : {kEnd, 0xFFFFFFFFU, 0x00FFFFFFU}) {
    TestCompoundFile broken = file;
    EXPECT_EQ(checked(broken.put(68, target)), std::nullopt);
    broken = file;
    EXPECT_EQ(checked(broken.put(listing + size_t{127} * 4, target)), std::nullopt);
  }
}

TEST(PackageFileCheck, EndsWhereTheListOfTheTableRunsInACircle) {
  TestStreams streams = package_streams();
  streams.insert(streams.begin(), {u"large", std::string(size_t{16} << 20, 'l')});
  TestCompoundFile file = compound_file(streams);
  const uint32_t first = file.number(68);
  file.put(file.sector(first) + size_t{127} * 4, first);
  MadeUpFile raw(file);
  check_package_file(raw);
  EXPECT_LT(raw.reads, 1000);
  file.put(44, 0x00800000);
  MadeUpFile absurd(file);
  EXPECT_EQ(check_package_file(absurd), std::nullopt);
  EXPECT_LT(absurd.reads, 4);
}

TEST(PackageFileCheck, RefusesAbsurdCountsAtOnce) {
  for (const size_t count : {44U, 72U}) {
    for (const uint32_t absurd : {0x8001U, 0x00800000U, 0x20000001U, 0xFFFFFFFFU}) {
      TestCompoundFile file = compound_file(package_streams());
      file.put(count, absurd).size = uint64_t{500} << 20;
      MadeUpFile raw(file);
      EXPECT_EQ(check_package_file(raw), std::nullopt) << count;
      EXPECT_LT(raw.reads, 4) << count;
    }
  }
}

TEST(PackageFileCheck, NeedsNoCountsThatNobodyUses) {
  TestCompoundFile file = compound_file(package_streams());
  EXPECT_EQ(checked(file.put(40, 0xFFFFFFFF).put(64, 0xFFFFFFFF)), kWesternEurope);
}

TEST(PackageFileCheck, RefusesAnAbsurdDirectoryWithoutReadingIt) {
  TestCompoundFile file = with_cabinet(uint64_t{17} << 20);
  file.put(48, file.start_of(u"\u4840Cabinet"));
  MadeUpFile raw(file);
  EXPECT_EQ(check_package_file(raw), std::nullopt);
  EXPECT_LT(raw.bytes, uint64_t{1} << 20);
}

TEST(PackageFileCheck, ReadsLittleOfALargePackage) {
  const TestCompoundFile file = with_cabinet(uint64_t{500} << 20);
  MadeUpFile raw(file);
  EXPECT_EQ(check_package_file(raw), kWesternEurope);
  EXPECT_LT(raw.bytes, uint64_t{6} << 20);
  EXPECT_LT(raw.reads, 120);
}

TEST(PackageFileCheck, ReadsAPackageWithoutACabinetInTwoSteps) {
  const TestCompoundFile file = compound_file(long_streams());
  MadeUpFile raw(file);
  EXPECT_EQ(check_package_file(raw), kWesternEurope);
  EXPECT_LE(raw.reads, 2);
}

TEST(PackageFileCheck, ReadsOnWhereAReadGivesLessThanItsSize) {
  MemoryFile file{compound_file(long_streams()).bytes};
  file.longest_read = 100;
  RawMemoryFile raw(file);
  EXPECT_EQ(check_package_file(raw), kWesternEurope);
}

TEST(PackageFileCheck, RefusesAFileThatCannotBeRead) {
  MemoryFile file{compound_file(package_streams()).bytes};
  file.refuses_from = 0;
  file.error = 5;
  RawMemoryFile raw(file);
  EXPECT_EQ(check_package_file(raw), std::nullopt);
}

TEST(PackageFileCheck, LooksOnceAtALongChainOfManyStreams) {
  TestStreams streams = package_streams();
  for (int i = 0; i < 4000; ++i) {
    std::u16string name;
    for (const char digit : std::to_string(i))
      name += static_cast<char16_t>(digit);
    streams.push_back({name, std::string(i == 0 ? 8000000 : 1, 'x')});
  }
  TestCompoundFile file = compound_file(streams);
  for (size_t i = 6; i <= streams.size(); ++i)
    file.put(file.entry(i) + 116, file.start_of(u"0")).put(file.entry(i) + 120, 8000000);
  EXPECT_EQ(checked(file), std::nullopt);
}

TEST(PackageFileCheck, RefusesAFileThatIsCutOffInItsTables) {
  const TestCompoundFile file = compound_file(long_streams());
  const size_t end = file.sector(file.start_of(kPool)) + 5000;
  for (size_t size = 0; size < end; size += 64)
    EXPECT_EQ(checked(file.bytes.substr(0, size)), std::nullopt) << size;
}

TEST(PackageFileCheck, EndsWithAnOddByteInEverySector) {
  std::mt19937 random(1);
  const TestCompoundFile whole = compound_file(long_streams());
  for (int round = 0; round < 3000; ++round) {
    std::string bytes = whole.bytes;
    for (size_t at = random() % 512; at < bytes.size(); at += 512)
      bytes[at] = static_cast<char>(random());
    checked(bytes);
  }
}
