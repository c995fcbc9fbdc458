// What the list knows of its icons, and what the thread that loads them sees.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/memory_icons.h"
#include "platform/memory_image_list.h"
#include "view/entry_test_support.h"
#include "view/list_model.h"
#include "view/recording_list_test_support.h"

namespace {

struct Visited {
  std::string name;
  int line;
  int image;
  bool operator==(const Visited&) const = default;
};

UninstallEntry with_icon(const char* name, const char* date, const char* icon) {
  UninstallEntry entry = make_entry(name, date);
  entry.displayIcon = icon;
  return entry;
}

class ListModelIconsTest : public testing::Test {
 protected:
  std::vector<Visited> visited() {
    std::vector<Visited> all;
    model_.visit_icons([&](IconRows::Row& row) {
      all.push_back({row.entry.name.c_str(), row.line, row.image});
      return true;
    });
    return all;
  }
  int image_of(size_t line) const { return list_.lines.at(line).image; }

  RecordingList list_;
  ListModel model_{list_, CellTexts{"changed", "new"}};
};

TEST_F(ListModelIconsTest, AllPackagesAreVisitedInTheOrderOfTheirArrivalWithTheirLines) {
  model_.applyEntry(with_icon("old", "01.02.2003", "C:\\a.exe"));
  UninstallEntry part = with_icon("part", "01.02.2004", "C:\\a.exe");
  part.parent = "whole";
  model_.applyEntry(part);
  model_.applyEntry(with_icon("new", "01.02.2013", ""));
  EXPECT_EQ(visited(), (std::vector<Visited>{{"old", 1, 0}, {"part", -1, 0}, {"new", 0, 0}}));
}

TEST_F(ListModelIconsTest, LinesAreThoseOfTheMoment) {
  model_.applyEntry(with_icon("old", "01.02.2003", ""));
  model_.applyEntry(with_icon("new", "01.02.2013", ""));
  visited();
  // Sorted by name, then turned.
  model_.sortByColumn(kProgramNameColumn);
  EXPECT_EQ(visited(), (std::vector<Visited>{{"old", 1, 0}, {"new", 0, 0}}));
  model_.sortByColumn(kProgramNameColumn);
  EXPECT_EQ(visited(), (std::vector<Visited>{{"old", 0, 0}, {"new", 1, 0}}));
  model_.searchChanged("new");
  EXPECT_EQ(visited(), (std::vector<Visited>{{"old", -1, 0}, {"new", 0, 0}}));
}

TEST_F(ListModelIconsTest, WhatAVisitorHasShownIsRemembered) {
  model_.applyEntry(with_icon("a", "01.02.2003", "C:\\a.exe"));
  model_.visit_icons([](IconRows::Row& row) {
    row.image = 7;
    return true;
  });
  EXPECT_EQ(visited(), (std::vector<Visited>{{"a", 0, 7}}));
}

TEST_F(ListModelIconsTest, AVisitorEndsTheWalk) {
  model_.applyEntry(make_entry("a"));
  model_.applyEntry(make_entry("b"));
  int calls = 0;
  model_.visit_icons([&](IconRows::Row& row) {
    ++calls;
    row.image = 3;
    return false;
  });
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(visited(), (std::vector<Visited>{{"a", 0, 3}, {"b", 1, 0}}));
}

TEST_F(ListModelIconsTest, ARowThatTheFilterShowsAgainHasTheImageThatTheMapKnows) {
  model_.applyEntry(with_icon("a", "01.02.2003", "C:\\a.exe"));
  EXPECT_EQ(image_of(0), 0);
  model_.images()["C:\\a.exe"] = 5;
  model_.rebuildList();
  EXPECT_EQ(image_of(0), 5);
  EXPECT_EQ(visited(), (std::vector<Visited>{{"a", 0, 5}}));
}

TEST_F(ListModelIconsTest, AnImageBeyondTheListIsDrawnAsTheFirst) {
  MemoryImageList images(16, {MemoryImageList::kDefaultColor, 0xff0000});
  model_.use_images(&images);
  model_.images()["C:\\known.exe"] = 1;
  model_.images()["C:\\stale.exe"] = 2;
  model_.images()["C:\\huge.exe"] = 0x7fffffff;
  model_.applyEntry(with_icon("a", "01.02.2013", "C:\\known.exe"));
  model_.applyEntry(with_icon("b", "01.02.2012", "C:\\stale.exe"));
  model_.applyEntry(with_icon("c", "01.02.2011", "C:\\huge.exe"));
  EXPECT_EQ(image_of(0), 1);
  EXPECT_EQ(image_of(1), 0);
  EXPECT_EQ(image_of(2), 0);
  // The number itself stays: an image may come to stand there.
  images.append(MemoryIcon(0x00ff00));
  model_.rebuildList();
  EXPECT_EQ(image_of(1), 2);
}

}  // namespace
