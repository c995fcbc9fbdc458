#include "export/csv.h"

#include <gtest/gtest.h>

#include "orlo/file_test_support.h"
#include "platform/resource_ids.h"

namespace {

ExportSheet sheet_of(const std::vector<std::vector<String>>& rows) {
  ExportSheet sheet;
  sheet.columns = {{"One", u"General", 0}, {"Two", u"General", 0}};
  sheet.rows = rows;
  return sheet;
}

std::string written(const ExportSheet& sheet) {
  MemoryFile file;
  ORLO::SyncOutFile out(std::make_unique<RawMemoryFile>(file));
  write_csv(sheet, out);
  EXPECT_TRUE(out.flush());
  return file.content;
}

TEST(Csv, EachFieldIsFollowedByASemicolonAndEachLineByALineFeed) {
  EXPECT_EQ(written(sheet_of({{"a", "b"}, {"", "c"}})), "One;Two;\na;b;\n;c;\n");
}

TEST(Csv, WithoutRowsHasOnlyTheTitleLine) {
  EXPECT_EQ(written(sheet_of({})), "One;Two;\n");
  EXPECT_EQ(written(ExportSheet()), "\n");
}

TEST(Csv, ACommentWithASemicolonIsQuoted) {
  EXPECT_EQ(written(sheet_of({{"a;b", ";"}})), "One;Two;\n\"a;b\";\";\";\n");
}

TEST(Csv, ACommentWithAQuoteButNoSemicolonIsNot) {
  EXPECT_EQ(written(sheet_of({{"a \"b\"", "\""}})), "One;Two;\na \"b\";\";\n");
}

TEST(Csv, QuotesInsideAQuotedFieldAreNotDoubled) {
  EXPECT_EQ(written(sheet_of({{"\"a\";b", "x"}})), "One;Two;\n\"\"a\";b\";x;\n");
}

TEST(Csv, LineEndsAndOtherBytesAreWrittenAsTheyAre) {
  const char bytes[] = "a\r\nb\0c\xE4\x80";
  const String field(bytes, bytes + sizeof bytes - 1);
  EXPECT_EQ(written(sheet_of({{field, ""}})),
            "One;Two;\n" + std::string(bytes, sizeof bytes - 1) + ";;\n");
}

TEST(Csv, ASemicolonAfterANulIsFound) {
  const char bytes[] = "a\0;b";
  EXPECT_EQ(written(sheet_of({{String(bytes, bytes + 4), ""}})),
            "One;Two;\n\"" + std::string(bytes, 4) + "\";;\n");
}

TEST(Csv, ASemicolonIsFoundAtEachPlaceOfALongField) {
  for (size_t length = 8; length <= 25; ++length) {
    for (size_t place = 0; place < length; ++place) {
      std::string text(length, 'o');
      text[place] = ';';
      EXPECT_EQ(written(sheet_of({{text.c_str(), "x"}})), "One;Two;\n\"" + text + "\";x;\n");
    }
  }
  EXPECT_EQ(written(sheet_of({{"Semi;colon", ""}})), "One;Two;\n\"Semi;colon\";;\n");
}

TEST(Csv, TitlesWithASemicolonAreQuotedToo) {
  ExportSheet sheet;
  sheet.columns = {{"a;b", u"", 0}};
  EXPECT_EQ(written(sheet), "\"a;b\";\n");
}

TEST(Csv, ANewEntryShowsNewInTheLastColumn) {
  ExportSheetBuilder builder([](unsigned id) { return String::formatted("text %u", id); },
                             ExportFilter());
  UninstallEntry entry;
  entry.displayName = "App";
  entry.changed = -1;
  builder.add(entry);
  const std::string text = written(builder.take());
  const std::string last = std::string(";") + String::formatted("text %u", IDS_NEW).c_str();
  EXPECT_TRUE(text.ends_with(last + ";\n")) << text;
}

TEST(Csv, AFileIsCreatedAnew) {
  const TempFolder folder;
  const std::string path = folder.make("list.csv", std::string(1000, 'x'));
  writeCsv(sheet_of({{"a", "b"}}), path);
  EXPECT_EQ(folder.content("list.csv"), "One;Two;\na;b;\n");
}

TEST(Csv, MoreThanTheBuffersHoldIsWrittenWhole) {
  const TempFolder folder;
  const std::string field = numbered_text(100'000);
  writeCsv(sheet_of({{field, "b"}, {"c", field}}), folder.path("list.csv"));
  EXPECT_EQ(folder.content("list.csv"), "One;Two;\n" + field + ";b;\nc;" + field + ";\n");
}

TEST(Csv, AFileThatCannotBeOpenedThrows) {
  const TempFolder folder;
  EXPECT_THROW(writeCsv(sheet_of({}), folder.path("no/such/folder.csv")), ORLO::LWE);
  EXPECT_THROW(writeCsv(sheet_of({}), folder.path("")), ORLO::LWE);
}

TEST(Csv, AFullDiskShowsInTheFile) {
  MemoryFile file;
  file.disk_size = 12;
  ORLO::SyncOutFile out(std::make_unique<RawMemoryFile>(file));
  write_csv(sheet_of({{"a", "b"}}), out);
  EXPECT_FALSE(out.flush());
  EXPECT_EQ(out.error(), 112u);
}

}  // namespace
