#include "export/json_lines.h"

#include <gtest/gtest.h>

#include "orlo/file_test_support.h"

namespace {

const PassStamp kStamp = {"desk \"7\" \xC3\xA4", {2026, 11, 0, 22, 9, 57, 8, 999}, "5.3"};
const std::string kBeginning =
    "{\"hostName\":\"desk \\\"7\\\" \xC3\xA4\",\"passTime\":\"2026-11-22T09:57:08Z\","
    "\"programVersion\":\"5.3\"";

class JsonLinesTest : public testing::Test {
 protected:
  std::string line(const UninstallEntry& entry) { return lines({entry}); }
  std::string lines(const std::vector<UninstallEntry>& entries) {
    MemoryFile file;
    ORLO::SyncOutFile out(std::make_unique<RawMemoryFile>(file));
    JsonLines json(kStamp, ORLO::system_locale(), out);
    for (const UninstallEntry& entry : entries)
      json.write(entry);
    EXPECT_TRUE(json.finish());
    return file.content;
  }
  /// The part of a line that begins with a key, up to the next one.
  std::string value(const UninstallEntry& entry, const std::string& key) {
    const std::string text = line(entry);
    const size_t start = text.find(",\"" + key + "\":");
    EXPECT_NE(start, std::string::npos);
    const size_t from = start + key.size() + 4;
    return text.substr(from, std::min(text.find(",\"", from), text.find('}', from)) - from);
  }
};

UninstallEntry unknown_entry() {
  UninstallEntry entry = UninstallEntry::fromRow(make_package_row());
  entry.size = -1;
  entry.sizeText = String();
  return entry;
}

TEST_F(JsonLinesTest, HasAllKeysInTheInventorysOrderInEachLine) {
  const std::string line =
      kBeginning +
      R"(,"name":"","source":"","displayName":"","displayVersion":"","parent":"","parentName":"")"
      R"(,"displayIcon":"","installLocation":"","installDate":null,"uninstallDate":null)"
      R"(,"uninstallCmd":"","modifyCmd":"","noRemove":0,"noModify":0,"systemComponent":0)"
      R"(,"comments":"","size":null,"lastUseDate":null,"features":0,"patches":0,"frequency":null)"
      R"(,"installerPath":"","packagePath":"","MSI":0,"OK":0,"64bit":0,"user":"","publisher":"")"
      R"(,"contact":"","helpURL":"","helpPhone":"","aboutURL":"","updateURL":"","keyName":"")"
      R"(,"HKEY_ROOT":0,"changed":null})"
      "\n";
  EXPECT_EQ(lines({unknown_entry(), unknown_entry()}), line + line);
}

TEST_F(JsonLinesTest, OfNoPackagesIsEmpty) {
  EXPECT_EQ(lines({}), "");
}

TEST_F(JsonLinesTest, EachColumnHoldsItsOwnField) {
  Row row = make_package_row();
  for (const auto& [name, column] : packageSchema().columns) {
    const auto index = static_cast<size_t>(column.index);
    row.cells[index].text = "text " + std::string(name.c_str());
    row.cells[index].set_integer(100 + column.index);
  }
  const UninstallEntry entry = UninstallEntry::fromRow(row);
  for (const auto& [name, column] : packageSchema().columns) {
    const std::string key = name.c_str();
    SCOPED_TRACE(key);
    const bool is_number = column.type == ColumnType::integer || key == "64bit";
    const std::string expected = key == "changed" ? "null"
                                 : key == "MSI"   ? "1"
                                 : is_number      ? std::to_string(100 + column.index)
                                                  : "\"text " + key + "\"";
    EXPECT_EQ(value(entry, key), expected);
  }
}

TEST_F(JsonLinesTest, NumbersAreWrittenWhole) {
  UninstallEntry entry = unknown_entry();
  entry.HKEY_ROOT = INT32_MIN;
  entry.features = INT32_MAX;
  entry.OK = -2;
  EXPECT_EQ(value(entry, "HKEY_ROOT"), "-2147483648");
  EXPECT_EQ(value(entry, "features"), "2147483647");
  EXPECT_EQ(value(entry, "OK"), "-2");
}

TEST_F(JsonLinesTest, WhatIsNotKnownIsNull) {
  UninstallEntry entry = unknown_entry();
  entry.frequency = 7;
  entry.changed = -1;
  EXPECT_EQ(value(entry, "frequency"), "null");
  EXPECT_EQ(value(entry, "size"), "null");
  EXPECT_EQ(value(entry, "changed"), "null");
  entry.frequencyText = "0";
  entry.frequency = 0;
  entry.size = 0;
  entry.sizeText = "0.00 MB";
  EXPECT_EQ(value(entry, "frequency"), "0");
  EXPECT_EQ(value(entry, "size"), "0");
}

TEST_F(JsonLinesTest, DatesAreIsoWhereTheyCanBeRead) {
  UninstallEntry entry = unknown_entry();
  entry.installDate = "14/08/2003";
  entry.uninstallDate = "31.12.2099";
  entry.lastUseDate = "08.07.2020 06:05:04";
  EXPECT_EQ(value(entry, "installDate"), "\"2003-08-14\"");
  EXPECT_EQ(value(entry, "uninstallDate"), "\"2099-12-31\"");
  EXPECT_EQ(value(entry, "lastUseDate"), "\"2020-07-08T06:05:04\"");
  entry.installDate = "14/08/2003 17:45";
  EXPECT_EQ(value(entry, "installDate"), "\"2003-08-14T17:45:00\"");
}

TEST_F(JsonLinesTest, OtherDatesStandAsTheyAre) {
  UninstallEntry entry = unknown_entry();
  entry.installDate = "some \"day\"";
  EXPECT_EQ(value(entry, "installDate"), "\"some \\\"day\\\"\"");
  // The columns are written differently, and so are their dates read.
  entry.installDate = "31.12.2099";
  entry.lastUseDate = "14/08/2003";
  EXPECT_EQ(value(entry, "installDate"), "\"31.12.2099\"");
  EXPECT_EQ(value(entry, "lastUseDate"), "\"14/08/2003\"");
}

TEST_F(JsonLinesTest, TextsOfAnyBytesMakeOneLine) {
  UninstallEntry entry = unknown_entry();
  const char bytes[] = "a\r\n\0\"\\\xE4;\x80";
  entry.comments = String(bytes, bytes + sizeof bytes - 1);
  const std::string text = line(entry);
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1);
  EXPECT_NE(text.find("\"comments\":\"a\\r\\n\\u0000\\\"\\\\\xC3\xA4;\xE2\x82\xAC\","),
            std::string::npos);
}

TEST_F(JsonLinesTest, MoreThanTheBuffersHoldIsWrittenWhole) {
  UninstallEntry entry = unknown_entry();
  std::vector<UninstallEntry> entries;
  std::string expected;
  entries.reserve(300);
  for (int i = 0; i < 300; ++i) {
    entry.comments = numbered_text(static_cast<size_t>(i) * 7) + "\"";
    entries.push_back(entry);
    expected += line(entry);
  }
  entry.comments = std::string(300'000, '\x01');
  entries.push_back(entry);
  expected += line(entry);
  EXPECT_EQ(lines(entries), expected);
}

TEST_F(JsonLinesTest, AFailedFileIsTold) {
  MemoryFile file;
  file.disk_size = 100;
  ORLO::SyncOutFile out(std::make_unique<RawMemoryFile>(file));
  JsonLines json(kStamp, ORLO::system_locale(), out);
  json.write(unknown_entry());
  EXPECT_FALSE(json.finish());
}

}  // namespace
