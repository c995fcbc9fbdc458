#include "persist/image_paths.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

#include "orlo/file_test_support.h"

namespace {

using Entries = std::map<std::string, int32_t>;

ImageIndexMap map_of(const Entries& entries) {
  ImageIndexMap map;
  for (const auto& [spec, image] : entries)
    map[String(spec.data(), spec.data() + spec.size())] = image;
  return map;
}

Entries entries_of(const ImageIndexMap& map) {
  Entries entries;
  for (const auto& [spec, image] : map)
    entries[std::string(spec.c_str(), spec.length())] = image;
  return entries;
}

class ImagePaths : public testing::TestWithParam<FileFamily> {
 protected:
  static Entries load(const std::string& content) {
    MemoryFile file{content};
    ImageIndexMap map;
    EXPECT_TRUE(LoadImagePaths(map, *GetParam().in_over(file)));
    return entries_of(map);
  }
  static std::string save(const Entries& entries) {
    MemoryFile file;
    EXPECT_TRUE(SaveImagePaths(map_of(entries), *GetParam().out_over(file)));
    return file.content;
  }
};

INSTANTIATE_TEST_SUITE_P(Files, ImagePaths, testing::ValuesIn(kFileFamilies), family_name);

TEST_P(ImagePaths, HaveALineForEachEntryInTheOrderOfTheMap) {
  EXPECT_EQ(save({{"b.exe", 0}, {"C:\\Program Files\\x\\y.exe,0", 17}, {"a.exe", -1}}),
            "17 C:\\Program Files\\x\\y.exe,0\n-1 a.exe\n0 b.exe\n");
  EXPECT_EQ(save({}), "");
}

TEST_P(ImagePaths, ReadBackAsTheyWereWritten) {
  const Entries map = {{"C:\\Program Files\\x\\y.exe,0", 17},
                       {"a", -1},
                       {"b", 0},
                       {"c", 2147483647},
                       {"\"quoted\",1", 1},
                       {"5 looks like a line", 2},
                       {"blanks at the end  ", 3},
                       {"\xC4pfel\xFF.exe", 4},
                       {"return\r", 5},
                       {"re\rturn", 6},
                       {std::string("null\0s", 6), 7}};
  EXPECT_EQ(load(save(map)), map);
}

TEST_P(ImagePaths, LeaveOutWhatNoLineCanHold) {
  EXPECT_EQ(save({{"a", 1}, {"b\n9 a", 2}, {"\n", 3}}), "1 a\n");
}

TEST_P(ImagePaths, SkipWhiteSpaceAroundTheNumberButNeverALineEndBehindIt) {
  EXPECT_EQ(load(" \t 1 \t a\n"), (Entries{{"a", 1}}));
  EXPECT_EQ(load("\n\n \n1 a\n\n"), (Entries{{"a", 1}}));
  EXPECT_EQ(load("1\n2 b\n"), (Entries{{"b", 2}}));
  EXPECT_EQ(load("1 \n2 b\n"), (Entries{{"b", 2}}));
}

TEST_P(ImagePaths, WithoutASpecificationAreIgnored) {
  EXPECT_EQ(load("1\n2 \n3 \t \n4 \r\n5 a\n6"), (Entries{{"a", 5}}));
}

TEST_P(ImagePaths, EndALineAtALineFeedOnly) {
  EXPECT_EQ(load("1 a\r\n2 b\r\n"), (Entries{{"a\r", 1}, {"b\r", 2}}));
  EXPECT_EQ(load("1 a\r2 b\v3 c\n"), (Entries{{"a\r2 b\v3 c", 1}}));
}

TEST_P(ImagePaths, NeedNoEndOfTheLastLine) {
  EXPECT_EQ(load("1 a\n2 b"), (Entries{{"a", 1}, {"b", 2}}));
}

TEST_P(ImagePaths, WithANumberThatIsNoneAreDropped) {
  const char* const lines[] = {"2147483648 a",
                               "4294967296 a",
                               "4294967297 a",
                               "99999999999999999999999999 a",
                               "-2 a",
                               "-2147483648 a",
                               "-4294967295 a",
                               "-99999999999999999999999999 a",
                               "a",
                               "x 1 a",
                               "1a a",
                               "1,2 a",
                               "0x1 a",
                               "1.5 a",
                               "- 1 a",
                               "--1 a",
                               "-",
                               "+",
                               "- a",
                               "-a",
                               "\x80 a",
                               "\"1\" a"};
  for (const char* line : lines) {
    SCOPED_TRACE(line);
    EXPECT_EQ(load(std::string("1 before\n") + line + "\n2 behind\n"),
              (Entries{{"before", 1}, {"behind", 2}}));
  }
}

TEST_P(ImagePaths, TakeEveryWayToWriteANumberThatIsOne) {
  EXPECT_EQ(load("2147483647 a\n-1 b\n007 c\n+8 d\n-0 e\n0000000000000000000009 f\n"),
            (Entries{{"a", 2147483647}, {"b", -1}, {"c", 7}, {"d", 8}, {"e", 0}, {"f", 9}}));
}

TEST_P(ImagePaths, OfOneSpecificationTheLastCounts) {
  MemoryFile file{"1 a\n2 a\n"};
  ImageIndexMap map = map_of({{"a", 7}, {"b", 8}});
  EXPECT_TRUE(LoadImagePaths(map, *GetParam().in_over(file)));
  EXPECT_EQ(entries_of(map), (Entries{{"a", 2}, {"b", 8}}));
}

TEST_P(ImagePaths, OfNoFileAreNone) {
  ImageIndexMap map = map_of({{"a", 7}});
  const TempFolder folder;
  EXPECT_FALSE(LoadImagePaths(map, *GetParam().open_in(folder.path("none"), 0)));
  EXPECT_EQ(entries_of(map), (Entries{{"a", 7}}));
  EXPECT_TRUE(LoadImagePaths(map, *GetParam().open_in(folder.make("empty", ""), 0)));
  EXPECT_EQ(entries_of(map), (Entries{{"a", 7}}));
}

TEST_P(ImagePaths, OfAFileThatBreaksOffAreThoseThatCame) {
  MemoryFile file{"1 a\n2 " + std::string(10000, 'b')};
  file.refuses_from = 4096;
  file.error = 23;
  ImageIndexMap map;
  EXPECT_TRUE(LoadImagePaths(map, *GetParam().in_over(file)));
  EXPECT_EQ(entries_of(map), (Entries{{"a", 1}, {std::string(4090, 'b'), 2}}));
}

TEST_P(ImagePaths, AreSavedWhateverTheFileSays) {
  MemoryFile file;
  file.disk_size = 3;
  EXPECT_TRUE(SaveImagePaths(map_of({{"abcdef", 1}}), *GetParam().out_over(file)));
  const TempFolder folder;
  EXPECT_TRUE(SaveImagePaths(map_of({{"a", 1}}), *GetParam().open_out(folder.path("no/folder"))));
}

TEST_P(ImagePaths, StandLinesThatCrossTheFilesBlocks) {
  Entries map;
  for (const size_t length : {4088U, 4093U, 4094U, 4095U, 4096U, 4097U, 8192U, 100000U})
    map[std::string(length, 'x') + std::to_string(length)] = static_cast<int32_t>(length);
  EXPECT_EQ(load(save(map)), map);
}

TEST_P(ImagePaths, KeepTenThousandSpecifications) {
  Entries map;
  for (int32_t i = 0; i < 10000; ++i)
    map["C:\\Program Files\\Product " + std::to_string(i) + "\\program.exe,1"] = i - 1;
  EXPECT_EQ(load(save(map)), map);
}

TEST_P(ImagePaths, StandMegabytesOfGarbage) {
  constexpr size_t kSize = 10U << 20;
  std::mt19937 random(1);
  std::string noise(kSize, '\0');
  for (size_t i = 0; i < kSize; ++i)
    noise[i] = static_cast<char>(random() >> 11);
  noise += "\n1 a\n";
  const Entries map = load(noise);
  ASSERT_NE(map.find("a"), map.end());
  EXPECT_EQ(load(save(map)), map);
  EXPECT_EQ(load(std::string(kSize, '\0')), Entries());
  EXPECT_EQ(load(std::string(kSize, '\n')), Entries());
  EXPECT_EQ(load(std::string(kSize, ' ')), Entries());
  EXPECT_EQ(load(std::string(kSize, '9')), Entries());
  const std::string longest(kSize, 'x');
  EXPECT_EQ(load("3 " + longest), (Entries{{longest, 3}}));
}

}  // namespace
