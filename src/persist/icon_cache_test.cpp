#include "persist/icon_cache.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orlo/file_test_support.h"
#include "platform/memory_icons.h"
#include "platform/memory_image_list.h"

namespace {

using Calls = std::vector<std::string>;
using Written = ImageList::Written;
constexpr const char* kImages = "Quillmere/zolvane-imagelist.dat";
constexpr const char* kPaths = "Quillmere/zolvane-imagepaths.txt";

class IconCacheTest : public testing::Test {
 protected:
  IconCacheTest() {
    para_.imageListPath = folder_.path(kImages);
    para_.imagePathsPath = folder_.path(kPaths);
  }

  void put(const char* name, const std::string& content) {
    std::filesystem::create_directories(folder_.path("Quillmere"));
    folder_.make(name, content);
  }
  bool exists(const char* name) const { return std::filesystem::exists(folder_.path(name)); }
  /// How many images the list has that is read.
  int read() { return read_icon_cache(para_, map_, lists_)->count(); }
  void write(Written result = Written::yes) {
    MemoryImageList list(16, {0, 0xA, 0xB});
    list.set_written(result);
    write_icon_cache(para_, {{"a", 1}, {"b", 2}}, list);
  }
  /// A list of two images.
  static std::string image_bytes(uint32_t size = 16) {
    std::string bytes;
    EXPECT_EQ(MemoryImageList(size, {0, 0xA}).write(bytes), Written::yes);
    return bytes;
  }

  const TempFolder folder_;
  UninstallPara para_;
  ImageIndexMap map_;
  MemoryImageLists lists_;
};

TEST_F(IconCacheTest, WhatWasWrittenIsRead) {
  write();
  EXPECT_EQ(read(), 3);
  EXPECT_EQ(map_.at("a"), 1);
  EXPECT_EQ(map_.at("b"), 2);
  EXPECT_EQ(lists_.calls(), Calls{"read"});
}

TEST_F(IconCacheTest, TheFirstRunHasAFreshListAndAnEmptyMap) {
  EXPECT_EQ(read(), 1);
  EXPECT_TRUE(map_.empty());
  EXPECT_EQ(lists_.calls(), Calls{"fresh"});
}

TEST_F(IconCacheTest, WithoutThePathsFileTheImageFileIsNotEvenOpened) {
  put(kImages, image_bytes());
  EXPECT_EQ(read(), 1);
  EXPECT_EQ(lists_.calls(), Calls{"fresh"});
}

TEST_F(IconCacheTest, APathsFileWithoutItsImageFileYieldsAFreshListAndStaleIndices) {
  put(kPaths, "7 a\n-1 b\n0 c\n");
  EXPECT_EQ(read(), 1);
  EXPECT_EQ(map_.at("a"), 7);
  EXPECT_EQ(map_.at("b"), -1);
  EXPECT_EQ(map_.at("c"), 0);
}

TEST_F(IconCacheTest, AnImageFileThatIsNoneYieldsAFreshList) {
  std::string changed = image_bytes();
  changed[0] = 'x';
  for (const std::string& bytes : {std::string(), std::string(1, '\0'), std::string("text"),
                                   image_bytes().substr(0, 20), changed}) {
    SCOPED_TRACE(bytes);
    put(kPaths, "7 a\n");
    put(kImages, bytes);
    EXPECT_EQ(read(), 1);
    EXPECT_EQ(map_.at("a"), 7);
  }
}

TEST_F(IconCacheTest, AnEmptyImageFileIsNotTriedAsAList) {
  put(kPaths, "7 a\n");
  put(kImages, "");
  EXPECT_EQ(read(), 1);
  EXPECT_EQ(lists_.calls(), Calls{"fresh"});
}

TEST_F(IconCacheTest, AFolderInThePlaceOfAFileIsAsGoodAsNone) {
  std::filesystem::create_directories(folder_.path(kPaths));
  EXPECT_EQ(read(), 1);
  std::filesystem::remove(folder_.path(kPaths));
  put(kPaths, "7 a\n");
  std::filesystem::create_directories(folder_.path(kImages));
  EXPECT_EQ(read(), 1);
  EXPECT_EQ(map_.at("a"), 7);
  write();
  EXPECT_EQ(folder_.content(kPaths), "1 a\n2 b\n");
}

TEST_F(IconCacheTest, ImagesOfAnotherSizeAreAllToBeLoadedAnew) {
  put(kPaths, "1 a\n7 b\n-1 c\n0 d\n");
  put(kImages, image_bytes(24));
  EXPECT_EQ(read(), 1);
  EXPECT_EQ(map_.at("a"), -1);
  EXPECT_EQ(map_.at("b"), -1);
  EXPECT_EQ(map_.at("c"), -1);
  EXPECT_EQ(map_.at("d"), 0) << "what has no icon has none in any size";
  EXPECT_EQ(lists_.calls(), (Calls{"read", "fresh"}));
}

TEST_F(IconCacheTest, AnImageFileOfManyBlocksIsReadWhole) {
  std::string bytes;
  put(kPaths, "1 a\n");
  for (const size_t count : {37449U, 80000U}) {
    ASSERT_EQ(MemoryImageList(16, std::vector<uint32_t>(count, 0xA)).write(bytes), Written::yes);
    put(kImages, bytes);
    EXPECT_EQ(read(), static_cast<int>(count));
  }
}

TEST_F(IconCacheTest, AnImageFileOfAHundredMegabytesIsStood) {
  put(kPaths, "1 a\n");
  put(kImages, std::string(100U << 20, 'x'));
  EXPECT_EQ(read(), 1);
}

TEST_F(IconCacheTest, AnImageFileBeyondAnySizeIsNotRead) {
  put(kPaths, "1 a\n");
  put(kImages, "");
  std::filesystem::resize_file(folder_.path(kImages), uint64_t{3} << 30);
  EXPECT_EQ(read(), 1);
  EXPECT_EQ(lists_.calls(), Calls{"fresh"});
}

TEST_F(IconCacheTest, WithNoPersistNeitherFileIsReadNorWritten) {
  put(kPaths, "1 a\n");
  put(kImages, image_bytes());
  para_.noPersist = true;
  EXPECT_EQ(read(), 1);
  EXPECT_TRUE(map_.empty());
  EXPECT_EQ(lists_.calls(), Calls{"fresh"});
  for (const Written result : {Written::yes, Written::no, Written::no_stream})
    write(result);
  EXPECT_EQ(folder_.content(kPaths), "1 a\n");
  EXPECT_EQ(folder_.content(kImages), image_bytes());
}

TEST_F(IconCacheTest, WithoutPathsNothingIsReadOrWritten) {
  const UninstallPara whole = para_;
  put(kPaths, "1 a\n");
  put(kImages, image_bytes());
  for (const bool paths : {false, true}) {
    para_ = whole;
    (paths ? para_.imagePathsPath : para_.imageListPath) = String();
    EXPECT_EQ(read(), 1);
    EXPECT_TRUE(map_.empty());
    write();
    write(Written::no_stream);
    EXPECT_EQ(folder_.content(kPaths), "1 a\n");
    EXPECT_EQ(folder_.content(kImages), image_bytes());
  }
}

TEST_F(IconCacheTest, BothFilesAreWrittenInFoldersThatWereMissing) {
  write();
  EXPECT_EQ(folder_.content(kPaths), "1 a\n2 b\n");
  EXPECT_EQ(folder_.content(kImages), "16 pixels, 3 images\n000000\n00000a\n00000b\n");
}

TEST_F(IconCacheTest, OldFilesAreReplacedWhole) {
  put(kPaths, std::string(10000, 'x'));
  put(kImages, std::string(10000, 'x'));
  write();
  EXPECT_EQ(folder_.content(kPaths), "1 a\n2 b\n");
  EXPECT_EQ(folder_.content(kImages), "16 pixels, 3 images\n000000\n00000a\n00000b\n");
}

TEST_F(IconCacheTest, WithoutAStreamThePathsFileGoesAndNothingIsWritten) {
  put(kPaths, "1 a\n");
  put(kImages, "old");
  write(Written::no_stream);
  EXPECT_FALSE(exists(kPaths));
  EXPECT_EQ(folder_.content(kImages), "old");
  write(Written::no_stream);
  EXPECT_FALSE(exists(kPaths));
}

TEST_F(IconCacheTest, AListThatCannotBeWrittenKeepsTheOldImagesButNotThePaths) {
  put(kPaths, "7 old\n");
  put(kImages, "old");
  write(Written::no);
  EXPECT_EQ(folder_.content(kPaths), "1 a\n2 b\n");
  EXPECT_EQ(folder_.content(kImages), "old");
}

TEST_F(IconCacheTest, PathsAreWrittenThoughTheImageFileCannotBe) {
  std::filesystem::create_directories(folder_.path(kImages));
  write();
  EXPECT_EQ(folder_.content(kPaths), "1 a\n2 b\n");
}

TEST_F(IconCacheTest, WhatCannotBeWrittenIsPassedOver) {
  folder_.make("Quillmere", "a file in the way of the folder");
  write();
  EXPECT_EQ(folder_.content("Quillmere"), "a file in the way of the folder");
}

}  // namespace
