#include "export/export_sheet.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>

namespace {

using Entry = UninstallEntry;

String text_of(unsigned id) {
  return String::formatted("#%u", id);
}

UninstallEntry named(const char* name) {
  UninstallEntry entry;
  entry.displayName = name;
  return entry;
}

std::vector<String> only_row(const UninstallEntry& entry) {
  ExportSheetBuilder builder(&text_of, {true, true});
  builder.add(entry);
  ExportSheet sheet = builder.take();
  EXPECT_EQ(sheet.rows.size(), 1u);
  return sheet.rows.at(0);
}

TEST(ExportSheet, HasTwentyNineColumnsWithTitleFormatAndAlignment) {
  const struct {
    unsigned title;
    const char16_t* format;
    unsigned align;
  } expected[] = {
      {104, u"General", 0},     {105, u"General", 0},     {152, u"General", 0},
      {106, u"@", 0},           {131, u"General", 0},     {171, u"General", 0},
      {107, u"M/D/YY h:mm", 0}, {137, u"M/D/YY h:mm", 0}, {108, u"@", 3},
      {109, u"General", 0},     {110, u"General", 0},     {111, u"General", 0},
      {120, u"General", 0},     {112, u"M/D/YY h:mm", 0}, {144, u"General", 0},
      {113, u"0", 3},           {130, u"0", 3},           {150, u"General", 0},
      {114, u"General", 0},     {115, u"0", 3},           {116, u"General", 0},
      {172, u"General", 0},     {136, u"General", 0},     {138, u"General", 0},
      {139, u"General", 0},     {140, u"General", 0},     {141, u"General", 0},
      {142, u"General", 0},     {132, u"General", 0},
  };
  const ExportSheet sheet = ExportSheetBuilder(&text_of, {}).take();
  ASSERT_EQ(sheet.columns.size(), std::size(expected));
  ASSERT_EQ(sheet.columns.size(), 29u);
  for (size_t i = 0; i < sheet.columns.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_STREQ(sheet.columns[i].title.c_str(), text_of(expected[i].title).c_str());
    EXPECT_EQ(sheet.columns[i].format, expected[i].format);
    EXPECT_EQ(sheet.columns[i].align, expected[i].align);
  }
  EXPECT_TRUE(sheet.rows.empty());
}

TEST(ExportSheet, EachCellShowsItsColumnsField) {
  String Entry::*const fields[] = {
      &Entry::displayName,
      &Entry::name,
      &Entry::source,
      &Entry::displayVersion,
      &Entry::parent,
      &Entry::parentName,
      &Entry::installDate,
      &Entry::uninstallDate,
      &Entry::sizeText,
      &Entry::uninstallCmd,
      &Entry::modifyCmd,
      &Entry::displayIcon,
      &Entry::installLocation,
      &Entry::lastUseDate,
      &Entry::packagePath,
      nullptr,
      nullptr,
      &Entry::is64BitText,
      &Entry::systemComponentText,
      &Entry::frequencyText,
      &Entry::comments,
      &Entry::user,
      &Entry::publisher,
      &Entry::contact,
      &Entry::helpURL,
      &Entry::helpPhone,
      &Entry::aboutURL,
      &Entry::updateURL,
      nullptr,
  };
  ASSERT_EQ(std::size(fields), 29u);
  UninstallEntry entry;
  for (size_t i = 0; i < std::size(fields); ++i) {
    if (fields[i] != nullptr)
      entry.*fields[i] = String::formatted("text %u", static_cast<unsigned>(i));
  }
  entry.features = 17;
  entry.patches = -18;
  entry.installerPath = "not exported";
  const std::vector<String> row = only_row(entry);
  ASSERT_EQ(row.size(), 29u);
  for (size_t i = 0; i < row.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_TRUE(fields[i] == nullptr || row[i].shares_block_with(entry.*fields[i]));
  }
  EXPECT_STREQ(row[15].c_str(), "17");
  EXPECT_STREQ(row[16].c_str(), "-18");
  EXPECT_STREQ(row[28].c_str(), "");
}

TEST(ExportSheet, LastColumnTellsNewAndChangedInTheCurrentLanguage) {
  UninstallEntry entry = named("Birch");
  entry.changed = -1;
  EXPECT_STREQ(only_row(entry)[28].c_str(), "#134");
  for (const int32_t changed : {4, 1, -2}) {
    entry.changed = changed;
    EXPECT_STREQ(only_row(entry)[28].c_str(), "#133") << changed;
  }
  entry.changed = 0;
  EXPECT_STREQ(only_row(entry)[28].c_str(), "");
}

TEST(ExportSheet, UnnamedPackagesAreLeftOutUnlessTheyAreShown) {
  const UninstallEntry unnamed;
  EXPECT_FALSE(ExportFilter({false, true}).accepts(unnamed));
  EXPECT_TRUE(ExportFilter({true, false}).accepts(unnamed));
  EXPECT_TRUE(ExportFilter({false, false}).accepts(named("Birch")));
}

TEST(ExportSheet, SystemComponentsAreLeftOutUnlessTheyAreShown) {
  UninstallEntry component = named("Birch");
  component.systemComponent = 1;
  EXPECT_FALSE(ExportFilter({true, false}).accepts(component));
  EXPECT_TRUE(ExportFilter({false, true}).accepts(component));
  component.systemComponent = -1;
  EXPECT_FALSE(ExportFilter({true, false}).accepts(component));
}

TEST(ExportSheet, UpdatesSubPackagesAndMicrosoftsAreInItWhateverTheListShows) {
  UninstallEntry update = named("Update");
  update.parent = "OperatingSystem";
  update.publisher = "Microsoft";
  EXPECT_TRUE(ExportFilter().accepts(update));
}

TEST(ExportSheet, RowsStandInTheOrderInWhichTheyCame) {
  ExportSheetBuilder builder(&text_of, {});
  for (const char* name : {"c", "", "a", "b"})
    builder.add(named(name));
  const ExportSheet sheet = builder.take();
  ASSERT_EQ(sheet.rows.size(), 3u);
  EXPECT_STREQ(sheet.rows[0][0].c_str(), "c");
  EXPECT_STREQ(sheet.rows[1][0].c_str(), "a");
  EXPECT_STREQ(sheet.rows[2][0].c_str(), "b");
}

}  // namespace
