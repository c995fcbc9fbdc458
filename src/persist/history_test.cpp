#include "persist/history.h"

#include <random>

#include "inventory/history_merge.h"
#include "inventory/package_schema.h"
#include "orlo/exception.h"
#include "persist/own_document_test_support.h"

namespace {

using Column = PackageColumn;

Row package(const char* key, const char* name) {
  Row row = make_package_row();
  cell(row, Column::keyName).text = key;
  cell(row, Column::HKEY_ROOT).set_number(-2147483646);
  cell(row, Column::displayName).text = name;
  return row;
}

/// As a source fills it.
Row whole_package() {
  Row row = package("Foo", "Foo");
  cell(row, Column::name).text = "Foo";
  cell(row, Column::source).text = "HKLM Uninstall";
  cell(row, Column::uninstallDate).text = "31.12.2099";
  for (const Column number : {Column::noRemove, Column::noModify, Column::systemComponent})
    cell(row, number).set_number(0);
  cell(row, Column::size).set_number(-1);
  cell(row, Column::MSI).set_number(0);
  cell(row, Column::OK).set_number(1);
  cell(row, Column::is64Bit).set_number(0);
  return row;
}

std::string rows_document(const std::string& rows) {
  return own_document("<last-entries>" + rows + "</last-entries>");
}

/// One line for each row: its cells that aren't empty, as "NAME=TEXT/NUMBER".
std::string dump(const Table& table) {
  std::string text;
  for (const auto& [key, row] : table.rows) {
    for (const auto& [name, column] : table.columns) {
      const Cell& cell = row.cells[static_cast<size_t>(column.index)];
      if (cell.text.empty()) continue;
      text += std::string(name.c_str()) + '=' + cell.text.c_str() + '/' +
              std::to_string(cell.integer()) + ' ';
    }
    text += '\n';
  }
  return text;
}

class HistoryTest : public OwnDocumentTest {
 protected:
  bool read(const std::string& file) {
    put(file);
    table_.clear_rows();
    return read_history(path_, table_);
  }
  /// Writes the table and reads it again.
  std::string round_trip() {
    write_history(table_, path_);
    Table read_again(packageSchema());
    EXPECT_TRUE(read_history(path_, read_again));
    return dump(read_again);
  }
  Table table_{packageSchema()};
};

TEST_F(HistoryTest, IsWrittenByteForByte) {
  table_.addRow(whole_package());
  write_history(table_, path_);
  EXPECT_EQ(content(),
            rows_document("<row 64bit=\"0\" HKEY_ROOT=\"-2147483646\" MSI=\"0\" OK=\"1\" "
                          "displayName=\"Foo\" keyName=\"Foo\" name=\"Foo\" noModify=\"0\" "
                          "noRemove=\"0\" size=\"-1\" source=\"HKLM Uninstall\" "
                          "systemComponent=\"0\" uninstallDate=\"31.12.2099\"/>"));
}

TEST_F(HistoryTest, EmptyTableIsAnEmptyElement) {
  write_history(table_, path_);
  EXPECT_EQ(content(), own_document("<last-entries/>"));
  EXPECT_TRUE(read_history(path_, table_));
  EXPECT_EQ(table_.size(), 0u);
}

TEST_F(HistoryTest, RowsStandInTheOrderOfTheirKeys) {
  for (const char* key : {"b", "B", "a"})
    table_.addRow(package(key, ""));
  write_history(table_, path_);
  EXPECT_EQ(content(), rows_document("<row HKEY_ROOT=\"-2147483646\" keyName=\"B\"/>"
                                     "<row HKEY_ROOT=\"-2147483646\" keyName=\"a\"/>"
                                     "<row HKEY_ROOT=\"-2147483646\" keyName=\"b\"/>"));
}

TEST_F(HistoryTest, ChangeMarksAreNotWritten) {
  Row row = package("a", "");
  cell(row, Column::changed).set_number(-1);
  table_.addRow(row);
  write_history(table_, path_);
  EXPECT_EQ(content().find("changed"), std::string::npos);
}

TEST_F(HistoryTest, ReadRowComparesEqualToTheOneThatWasWritten) {
  table_.addRow(whole_package());
  HistoryMerge history;
  write_history(table_, path_);
  EXPECT_TRUE(read_history(path_, history.lastEntries));
  history.loaded();
  history.begin_cycle();
  Row row = whole_package();
  history.mark(row);
  EXPECT_STREQ(cell(row, Column::changed).text.c_str(), "");
  EXPECT_EQ(table_.size(), history.lastEntries.size());
  EXPECT_EQ(Table(table_, history.lastEntries).size(), 0u);
}

TEST_F(HistoryTest, EachColumnIsReadByItsType) {
  EXPECT_TRUE(
      read(rows_document("<row 64bit=\"1\" size=\" 12x\" noRemove=\"yes\" "
                         "installDate=\"32.13.x\" frequency=\"4294967297\" OK=\"\" "
                         "HKEY_ROOT=\"2\" changed=\"5\"/>")));
  EXPECT_EQ(dump(table_),
            "64bit=1/0 HKEY_ROOT=2/2 OK=0/0 changed=5/5 frequency=1/1 installDate=32.13.x/0 "
            "noRemove=0/0 size=12/12 \n");
}

TEST_F(HistoryTest, NumbersBeyondTheirRangeWrapAround) {
  EXPECT_TRUE(
      read(rows_document("<row size=\"99999999999999999999999\" OK=\"2147483648\" "
                         "patches=\"-4294967295\" features=\"1e9\"/>")));
  EXPECT_EQ(dump(table_),
            "OK=-2147483648/-2147483648 features=1/1 patches=1/1 size=-159383553/-159383553 \n");
}

TEST_F(HistoryTest, AttributeThatComesTwiceHasItsLastValue) {
  EXPECT_TRUE(read(rows_document("<row displayName=\"a\" keyName=\"k\" displayName=\"b\"/>")));
  EXPECT_EQ(dump(table_), "displayName=b/0 keyName=k/0 \n");
}

TEST_F(HistoryTest, TextEndsAtANul) {
  const std::string nul(1, '\0');
  EXPECT_TRUE(read(rows_document("<row displayName=\"a" + nul + "b\" keyName=\"" + nul + "\"/>")));
  EXPECT_EQ(dump(table_), "displayName=a/0 \n");
}

TEST_F(HistoryTest, KeysThatAreAlikeInTheCodePageAreOneRowTheLast) {
  EXPECT_TRUE(
      read(rows_document("<row displayName=\"1\" keyName=\"\xd0\x96\"/>"
                         "<row displayName=\"2\" keyName=\"\xd0\x94\"/>")));
  EXPECT_EQ(dump(table_), "displayName=2/0 keyName=?/0 \n");
}

TEST_F(HistoryTest, RowWithoutKeyHasTheEmptyKeyAndTheLastOfThemStays) {
  EXPECT_TRUE(read(rows_document("<row displayName=\"a\"/><row displayName=\"b\"/>")));
  ASSERT_EQ(table_.size(), 1u);
  EXPECT_EQ(table_.rows.begin()->first, (RowKey{{"", ""}}));
  EXPECT_EQ(dump(table_), "displayName=b/0 \n");
}

TEST_F(HistoryTest, MarkupAndEveryByteOfTheCodePageComeBack) {
  std::string every;
  for (int byte = 0x20; byte < 0x100; ++byte) {
    // The code page leaves these without a character.
    if (byte != 0x81 && byte != 0x8d && byte != 0x8f && byte != 0x90 && byte != 0x9d)
      every += static_cast<char>(byte);
  }
  table_.addRow(package("a & <b> \"c\" 'd'", every.c_str()));
  EXPECT_EQ(round_trip(), dump(table_));
}

TEST_F(HistoryTest, LineEndsAndTabsComeBackAndOtherControlsAreNumbers) {
  table_.addRow(package("a", "1\t2\n3\r4\a5"));
  EXPECT_EQ(round_trip(),
            "HKEY_ROOT=-2147483646/-2147483646 displayName=1\t2\n3\r4&#7;5/0 keyName=a/0 \n");
}

TEST_F(HistoryTest, NulIsWrittenAsANumberLikeOtherControls) {
  Row row = make_package_row();
  cell(row, Column::displayName).text = String(std::string("a\0b", 3));
  table_.addRow(row);
  write_history(table_, path_);
  EXPECT_EQ(content(), rows_document("<row displayName=\"a&#0;b\"/>"));
}

TEST_F(HistoryTest, RandomTablesComeBack) {
  std::mt19937 random(20091124);
  const std::string alphabet = "ab<>&\"'; \t\n#xA\xe4\xf6\xfc\xdf\x80\xff";
  const auto pick = [&](size_t below) {
    return std::uniform_int_distribution<size_t>(0, below - 1)(random);
  };
  for (int round = 0; round < 200; ++round) {
    table_.clear_rows();
    for (size_t count = pick(6); count > 0; --count) {
      Row row = make_package_row();
      for (const auto& [name, column] : table_.columns) {
        if (!column.isTracked || pick(3) == 0) continue;
        Cell& cell = row.cells[static_cast<size_t>(column.index)];
        if (column.type == ColumnType::integer) {
          cell.set_number(static_cast<int32_t>(random()));
        } else {
          std::string text;
          for (size_t length = pick(12); length > 0; --length)
            text += alphabet[pick(alphabet.size())];
          cell.text = String(text);
        }
      }
      table_.addRow(row);
    }
    ASSERT_EQ(round_trip(), dump(table_)) << "round " << round;
  }
}

TEST_F(HistoryTest, MissingFileIsNoHistory) {
  EXPECT_FALSE(read_history(path_, table_));
}

TEST_F(HistoryTest, MalformedFileIsNoHistory) {
  EXPECT_FALSE(read(rows_document("<row keyName=a/>")));
  EXPECT_EQ(table_.size(), 0u);
}

TEST_F(HistoryTest, FileWithoutItsElementsIsReadWithoutRows) {
  for (const std::string& file :
       {std::string(), kDeclaration + "<other/>", own_document(""), own_document("<row/>")}) {
    EXPECT_TRUE(read(file)) << file;
    EXPECT_EQ(table_.size(), 0u) << file;
  }
}

TEST_F(HistoryTest, OnlyThePresentVersionIsRead) {
  for (const char* version : {" version=\"5.2\"", " version=\"5.4\"", " version=\"5.3.1\"", ""}) {
    EXPECT_FALSE(read(kDeclaration + "<zolvane" + version +
                      "><last-entries><row keyName=\"a\"/></last-entries></zolvane>"))
        << version;
    EXPECT_EQ(table_.size(), 0u) << version;
  }
  EXPECT_TRUE(read(rows_document("<row keyName=\"a\"/>")));
  EXPECT_EQ(table_.size(), 1u);
}

TEST_F(HistoryTest, OtherElementsThanRowsArePassedOver) {
  EXPECT_TRUE(
      read(rows_document("<rows keyName=\"a\"/><row keyName=\"b\"><row keyName=\"c\"/>"
                         "</row><ROW/>")));
  EXPECT_EQ(dump(table_), "keyName=b/0 \n");
}

TEST_F(HistoryTest, UnknownAttributeEndsTheReadingAndTheRowsBeforeItStay) {
  put(rows_document("<row keyName=\"a\"/><row keyName=\"b\" nonsense=\"1\"/><row keyName=\"c\"/>"));
  try {
    read_history(path_, table_);
    ADD_FAILURE() << "an unknown attribute was taken";
  } catch (const ORLO::UserException& exception) {
    EXPECT_STREQ(exception.what(), "column not found");
  }
  EXPECT_EQ(dump(table_), "keyName=a/0 \n");
}

TEST_F(HistoryTest, FileThatCannotBeWrittenIsNoTrouble) {
  put("");
  write_history(table_, String(std::string(path_.c_str()) + "/file.xml"));
  write_history(table_, "");
}

TEST_F(HistoryTest, EveryCutOfTheFileGivesWholeTextsOrNone) {
  for (const char* key : {"a", "b", "c"})
    table_.addRow(package(key, "<&\xe4>"));
  write_history(table_, path_);
  const std::string whole = content();
  const NoReports quiet;
  size_t readable = 0;
  for (size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    if (!read(whole.substr(0, length))) {
      EXPECT_EQ(table_.size(), 0u);
      continue;
    }
    ++readable;
    for (const auto& [key, row] : table_.rows) {
      const String& name = cell(row, Column::displayName).text;
      EXPECT_TRUE(name.empty() || std::string(name.c_str()) == "<&\xe4>") << name.c_str();
      const String& root = cell(row, Column::HKEY_ROOT).text;
      EXPECT_TRUE(root.empty() || std::string(root.c_str()) == "-2147483646") << root.c_str();
    }
  }
  // Behind an element or one of its attributes.
  EXPECT_GT(readable, 5u);
  write_history(table_, path_);
  EXPECT_TRUE(read_history(path_, table_));
}

TEST_F(HistoryTest, DamagedFileGivesRowsThatAreWholeOrNone) {
  table_.addRow(whole_package());
  table_.addRow(package("\xc4", "<&\xe4>"));
  write_history(table_, path_);
  const std::string whole = content();
  const NoReports quiet;
  std::mt19937 random(20091124);
  size_t readable = 0;
  for (int round = 0; round < 1000; ++round) {
    const std::string file = damaged(whole, random);
    SCOPED_TRACE(file);
    try {
      if (!read(file)) {
        ASSERT_EQ(table_.size(), 0u);
      }
    } catch (const ORLO::UserException& exception) {
      ASSERT_STREQ(exception.what(), "column not found");
    }
    readable += table_.size();
    for (const auto& [key, row] : table_.rows) {
      ASSERT_EQ(row.cells.size(), kPackageColumns);
      ASSERT_TRUE(table_.key_of(row) == key);
    }
    // Whatever it was, the next history is a good one.
    write_history(table_, path_);
    table_.clear_rows();
    ASSERT_TRUE(read_history(path_, table_));
    ASSERT_EQ(round_trip(), dump(table_));
  }
  EXPECT_GT(readable, 100u);
}

TEST_F(HistoryTest, LongTextsAndManyRowsComeBack) {
  const std::string text(1000000, 'x');
  table_.addRow(package("long", text.c_str()));
  for (int number = 0; number < 2000; ++number)
    table_.addRow(package(std::to_string(number).c_str(), "x"));
  EXPECT_EQ(round_trip(), dump(table_));
}

}  // namespace
