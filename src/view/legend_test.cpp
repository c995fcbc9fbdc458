#include "view/legend.h"

#include <gtest/gtest.h>

#include <optional>

#include "platform/resource_ids.h"

namespace {

constexpr SystemColors kSystem = {0x112233, 0x445566};
const String kSearchString = "Suchtext";

TEST(Legend, HasThreeColumns) {
  const struct {
    unsigned title;
    int width;
    ListControl::Align align;
  } columns[] = {{IDS_NAME, 120, ListControl::Align::left},
                 {IDS_SORT_COLUMN, 80, ListControl::Align::right},
                 {IDS_SIZE, 100, ListControl::Align::right}};
  for (int i = 0; i < kLegendColumns; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(legend_column(i).title, columns[i].title);
    EXPECT_EQ(legend_column(i).width, columns[i].width);
    EXPECT_EQ(legend_column(i).align, columns[i].align);
  }
}

TEST(Legend, HasFiveRowsOfFixedTexts) {
  const char* const texts[kLegendRows][kLegendColumns] = {
      {"new Application", "0", ""},
      {"Background Service", "1", "2.43 MB"},
      {"Hotfix Patch", "2", ""},
      {"Application", "3", "Suchtext"},
      {"Microsoft Windows", "4", "13.75 MB"},
  };
  for (int row = 0; row < kLegendRows; ++row) {
    for (int column = 0; column < kLegendColumns; ++column)
      EXPECT_STREQ(legend_text(row, column, kSearchString).c_str(), texts[row][column]);
  }
}

TEST(Legend, HasNoTextBeyondItsCells) {
  EXPECT_TRUE(legend_text(-1, 0, kSearchString).empty());
  EXPECT_TRUE(legend_text(kLegendRows, 0, kSearchString).empty());
  EXPECT_TRUE(legend_text(0, -1, kSearchString).empty());
  EXPECT_TRUE(legend_text(0, kLegendColumns, kSearchString).empty());
}

struct Wanted {
  Color text;
  std::optional<Color> background;
  CellFont font;
};

void expect_paint(const char* name, const char* text, int column, const Wanted& wanted) {
  SCOPED_TRACE(testing::Message() << name << ", " << text << ", column " << column);
  const CellPaint paint = legend_paint(name, text, column, kSearchString, kSystem);
  EXPECT_EQ(paint.text, wanted.text);
  EXPECT_EQ(paint.background, wanted.background);
  EXPECT_EQ(paint.font, wanted.font);
}

TEST(Legend, PaintsItsSamplesByTheRules) {
  constexpr auto kAny = CellFont::any;
  constexpr auto kBold = CellFont::bold;
  constexpr Color kText = kSystem.window_text;
  const std::optional<Color> none;
  const Wanted cells[kLegendRows][kLegendColumns] = {
      {{kText, kChangeYellow, kBold}, {kText, kChangeYellow, kBold}, {kText, kChangeYellow, kBold}},
      {{kText, none, kAny}, {kText, kSortCream, kAny}, {kText, kSystem.window, kAny}},
      {{kSubPackageGrey, none, kAny},
       {kSubPackageGrey, kSortCream, kAny},
       {kSubPackageGrey, kSystem.window, kAny}},
      {{kText, none, kAny}, {kText, kSortCream, kAny}, {kSearchRed, kSystem.window, kAny}},
      {{kText, kSystemBlue, kAny}, {kText, kSystemBlue, kAny}, {kText, kSystemBlue, kAny}},
  };
  for (int row = 0; row < kLegendRows; ++row) {
    const String name = legend_text(row, 0, kSearchString);
    for (int column = 0; column < kLegendColumns; ++column) {
      expect_paint(name.c_str(), legend_text(row, column, kSearchString).c_str(), column,
                   cells[row][column]);
    }
  }
}

TEST(Legend, TakesTheBeginningOfANameInAnyCase) {
  expect_paint("NEW thing", "", 1, {kSystem.window_text, kChangeYellow, CellFont::bold});
  expect_paint("newer thing", "", 1, {kSystem.window_text, kSortCream, CellFont::any});
  expect_paint("a new thing", "", 1, {kSystem.window_text, kSortCream, CellFont::any});
}

TEST(Legend, TakesTheSearchedTextOnlyAsAWhole) {
  expect_paint("Application", "Suchtext", 2, {kSearchRed, kSystem.window, CellFont::any});
  for (const char* text : {"Suchtexte", "ein Suchtext", "Such", ""})
    expect_paint("Application", text, 2, {kSystem.window_text, kSystem.window, CellFont::any});
}

TEST(Legend, KeepsTheOrderOfItsRules) {
  expect_paint("new Microsoft Patch", "Suchtext", 0, {kSearchRed, kChangeYellow, CellFont::bold});
  expect_paint("new Patch", "", 1, {kSubPackageGrey, kChangeYellow, CellFont::bold});
  expect_paint("Microsoft Patch", "", 1, {kSubPackageGrey, kSystemBlue, CellFont::any});
  expect_paint("patch by microsoft", "suchtext", 0,
               {kSystem.window_text, std::nullopt, CellFont::any});
}

}  // namespace
