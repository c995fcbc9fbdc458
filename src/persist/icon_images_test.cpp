#include "persist/icon_images.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/memory_files.h"
#include "platform/memory_icons.h"
#include "platform/memory_image_list.h"

namespace {

using Calls = std::vector<std::string>;

class IconImagesTest : public testing::Test {
 protected:
  IconImagesTest() {
    icons_.add_icon("a.exe", 0, 0xA);
    icons_.add_icon("b.exe", 0, 0xB);
    icons_.add_icon("b.exe", 3, 0xB3);
  }
  static UninstallEntry entry(const char* displayIcon) {
    UninstallEntry entry;
    entry.displayIcon = displayIcon;
    return entry;
  }
  /// In a pass of its own.
  int32_t image(const char* displayIcon) { return image(entry(displayIcon)); }
  int32_t image(const UninstallEntry& entry) {
    return IconImages(map_, images_, icons_, files_).ImageIndexOf(entry);
  }
  int32_t drawn(const char* displayIcon) {
    return IconImages(map_, images_, icons_, files_).drawn_image(entry(displayIcon));
  }

  ImageIndexMap map_;
  MemoryImageList images_{16, {MemoryImageList::kDefaultColor}};
  MemoryIcons icons_;
  MemoryFiles files_;
};

TEST_F(IconImagesTest, PackagesWithoutAnIconShareTheDefaultImage) {
  UninstallEntry without;
  without.uninstallCmd = "a.exe";
  EXPECT_EQ(image(without), 0);
  EXPECT_TRUE(map_.empty());
  EXPECT_EQ(icons_.calls(), Calls());
}

TEST_F(IconImagesTest, TwoPackagesWithOneIconShareOneImageAndOneExtraction) {
  EXPECT_EQ(image("a.exe"), 1);
  EXPECT_EQ(image("b.exe,3"), 2);
  EXPECT_EQ(image("a.exe"), 1);
  EXPECT_EQ(icons_.calls(), (Calls{"a.exe 0 small", "b.exe 3 small"}));
  EXPECT_EQ(images_.colors(), (std::vector<uint32_t>{MemoryImageList::kDefaultColor, 0xA, 0xB3}));
}

TEST_F(IconImagesTest, SpecificationsAreComparedByteByByte) {
  EXPECT_EQ(image("a.exe"), 1);
  EXPECT_EQ(image("A.EXE"), 2);
  EXPECT_EQ(image("a.exe,0"), 3);
}

TEST_F(IconImagesTest, WhatIsKnownIsNotLoaded) {
  map_["a.exe"] = 0;
  map_["b.exe"] = 7;
  EXPECT_EQ(image("a.exe"), 0);
  EXPECT_EQ(image("b.exe"), 7);
  EXPECT_EQ(icons_.calls(), Calls());
}

TEST_F(IconImagesTest, WhatYieldsNothingHasTheDefaultImageForGood) {
  EXPECT_EQ(image("none.exe"), 0);
  icons_.add_icon("none.exe", 0, 1);
  EXPECT_EQ(image("none.exe"), 0);
  EXPECT_EQ(map_.at("none.exe"), 0);
  EXPECT_EQ(icons_.calls().size(), 1U);
}

TEST_F(IconImagesTest, TheImageOfACommandIsKeptUnderTheIconsText) {
  UninstallEntry package = entry("none.exe,4");
  package.uninstallCmd = "none either";
  package.modifyCmd = "b.exe";
  EXPECT_EQ(image(package), 1);
  EXPECT_EQ(map_.size(), 1U);
  EXPECT_EQ(map_.at("none.exe,4"), 1);
  EXPECT_EQ(images_.colors().back(), 0xBU);
}

TEST_F(IconImagesTest, AnImageWithoutRoomIsTriedAgain) {
  images_.refuse_images();
  EXPECT_EQ(image("a.exe"), 0);
  EXPECT_EQ(map_.at("a.exe"), -1);
  images_.refuse_images(false);
  EXPECT_EQ(image("a.exe"), 1);
  EXPECT_EQ(icons_.calls().size(), 2U);
}

TEST_F(IconImagesTest, IconsGoOnceTheyAreInTheList) {
  const int before = MemoryIcon::live();
  image("a.exe");
  images_.refuse_images();
  image("b.exe");
  EXPECT_EQ(MemoryIcon::live(), before);
}

TEST_F(IconImagesTest, AnIndexBeyondTheListIsDrawnAsTheDefaultImage) {
  map_["a.exe"] = 1;
  EXPECT_EQ(drawn("a.exe"), 0);
  EXPECT_EQ(image("a.exe"), 1);
  EXPECT_EQ(map_.at("a.exe"), 1) << "the map forgets nothing";
  map_["b.exe"] = 2147483647;
  EXPECT_EQ(drawn("b.exe"), 0);
}

TEST_F(IconImagesTest, ANewImageIsDrawnAtOnce) {
  IconImages icons(map_, images_, icons_, files_);
  map_["stale"] = 2;
  EXPECT_EQ(icons.drawn_image(entry("a.exe")), 1);
  EXPECT_EQ(icons.drawn_image(entry("stale")), 0);
  EXPECT_EQ(icons.drawn_image(entry("b.exe")), 2);
  EXPECT_EQ(icons.drawn_image(entry("stale")), 2);
  EXPECT_EQ(icons.drawn_image(entry("a.exe")), 1);
}

TEST_F(IconImagesTest, TheListIsAskedForItsSizeOnceAPass) {
  int counts = 0;
  images_.on_call = [&](const char* operation) { counts += std::string(operation) == "count"; };
  IconImages icons(map_, images_, icons_, files_);
  for (int i = 0; i < 10; ++i)
    icons.drawn_image(entry("a.exe"));
  EXPECT_EQ(counts, 1);
}

}  // namespace
