#include "inventory/reader_rows.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace {

using Field = PackageColumn;

Row make_row(const char* name, const char* root = "", const char* key_name = "") {
  Row row = make_package_row();
  cell(row, Field::name).text = name;
  cell(row, Field::HKEY_ROOT).text = root;
  cell(row, Field::keyName).text = key_name;
  return row;
}

std::string comments(const std::optional<Row>& row) {
  return row ? cell(*row, Field::comments).text.c_str() : "-";
}

Row with_comments(Row row, const char* text) {
  cell(row, Field::comments).text = text;
  return row;
}

TEST(ReaderRows, FindsARowByItsNameInAnyAsciiCase) {
  ReaderRows rows;
  rows.add(with_comments(make_row("{ABC}", "1", "k"), "this"));
  EXPECT_EQ(comments(rows.find("{abc}")), "this");
  EXPECT_EQ(comments(rows.find("{Abc}")), "this");
  EXPECT_EQ(comments(rows.find("{Abd}")), "-");
  EXPECT_EQ(comments(rows.find("{Ab")), "-");
  EXPECT_EQ(comments(rows.find("")), "-");
  rows.add(make_row("\xC4", "1", "umlaut"));
  EXPECT_TRUE(rows.has("\xC4"));
  EXPECT_FALSE(rows.has("\xE4")) << "only the case of ASCII letters is ignored";
  rows.add(make_row("{AZ}", "1", "upper"));
  EXPECT_TRUE(rows.has("{az}"));
  rows.add(make_row("{az} of another", "1", "lower"));
  EXPECT_TRUE(rows.has("{AZ} OF ANOTHER"));
}

TEST(ReaderRows, FindsTheFirstRowOfANameInTheOrderOfKeys) {
  ReaderRows rows;
  rows.add(with_comments(make_row("same", "2", "a"), "third"));
  rows.add(with_comments(make_row("SAME", "1", "b"), "second"));
  rows.add(with_comments(make_row("Same", "1", "a"), "first"));
  EXPECT_EQ(comments(rows.find("same")), "first");
  rows.add(with_comments(make_row("same"), "without a key"));
  EXPECT_EQ(comments(rows.find("same")), "without a key");
  rows.erase({RowKey{{"", ""}}, RowKey{{"1", "a"}}});
  EXPECT_EQ(comments(rows.find("same")), "second");
}

TEST(ReaderRows, ForgetsTheNameOfARowThatWasReplaced) {
  ReaderRows rows;
  rows.add(make_row("old"));
  rows.add(make_row("new"));
  EXPECT_FALSE(rows.has("old"));
  EXPECT_TRUE(rows.has("new"));
  rows.add(with_comments(make_row("NEW"), "other case"));
  EXPECT_EQ(comments(rows.find("new")), "other case");
  rows.add(make_row("other"));
  EXPECT_FALSE(rows.has("new"));
}

TEST(ReaderRows, FindsARowWithoutAName) {
  ReaderRows rows;
  EXPECT_FALSE(rows.has(""));
  rows.add(make_row("a", "1", "a"));
  EXPECT_FALSE(rows.has(""));
  rows.add(make_row("", "1", "b"));
  EXPECT_TRUE(rows.has(""));
}

TEST(ReaderRows, FindsNothingOnceCleared) {
  ReaderRows rows;
  rows.add(make_row("a"));
  rows.clear();
  EXPECT_FALSE(rows.has("a"));
  EXPECT_TRUE(rows.keys().empty());
}

TEST(ReaderRows, FindsNoNameOfBeforeItWasCleared) {
  ReaderRows rows;
  rows.add(make_row("a"));
  rows.clear();
  rows.add(make_row("b"));
  EXPECT_FALSE(rows.has("a"));
  EXPECT_TRUE(rows.has("b"));
}

TEST(ReaderRows, PutsBackARowThatIsStillThere) {
  ReaderRows rows;
  rows.add(make_row("a", "1", "a"));
  Table current(packageSchema());
  EXPECT_NE(rows.hand_over(current), nullptr);
  EXPECT_FALSE(rows.changed());
  EXPECT_TRUE(rows.put_back(with_comments(*rows.find("a"), "changed")));
  EXPECT_TRUE(rows.changed());
  EXPECT_EQ(comments(rows.find("a")), "changed");
  EXPECT_EQ(rows.keys().size(), 1u);
}

TEST(ReaderRows, PutsNothingBackInTheStead) {
  ReaderRows rows;
  const Row row = make_row("a");
  rows.add(row);
  rows.clear();
  EXPECT_FALSE(rows.put_back(row)) << "the row has gone";
  EXPECT_TRUE(rows.keys().empty());
  rows.add(make_row("b"));
  EXPECT_FALSE(rows.put_back(row)) << "another row has its key";
  EXPECT_TRUE(rows.has("b"));
}

TEST(ReaderRows, HandsOverWhatDiffersOnce) {
  ReaderRows rows;
  Table current(packageSchema());
  EXPECT_EQ(rows.hand_over(current), nullptr) << "nothing was written";
  rows.add(make_row("a", "1", "a"));
  const auto difference = rows.hand_over(current);
  ASSERT_NE(difference, nullptr);
  EXPECT_EQ(difference->size(), 1u);
  EXPECT_EQ(current.size(), 1u);
  EXPECT_EQ(rows.hand_over(current), nullptr);
  rows.erase({RowKey{{"1", "a"}}});
  const auto removal = rows.hand_over(current);
  ASSERT_NE(removal, nullptr);
  ASSERT_EQ(removal->size(), 1u);
  EXPECT_EQ(removal->rows.begin()->second.marker, Row::kRemoved);
  EXPECT_EQ(current.size(), 0u);
}

TEST(ReaderRows, ErasingNothingIsNoChange) {
  ReaderRows rows;
  rows.erase({});
  EXPECT_FALSE(rows.changed());
  rows.erase({RowKey{{"1", "a"}}});
  EXPECT_TRUE(rows.changed());
}

TEST(ReaderRows, OneThreadWritesWhileAnotherForgets) {
  ReaderRows rows;
  std::thread writer([&] {
    for (int i = 0; i < 2000; ++i) {
      const std::string name = std::to_string(i % 50);
      rows.add(make_row(name.c_str(), "1", name.c_str()));
      if (const auto row = rows.find(name.c_str())) rows.put_back(with_comments(*row, "read"));
    }
  });
  Table current(packageSchema());
  for (int i = 0; i < 200; ++i) {
    rows.hand_over(current);
    rows.clear();
  }
  writer.join();
  rows.clear();
  rows.add(make_row("last"));
  EXPECT_TRUE(rows.has("LAST"));
  EXPECT_EQ(rows.keys().size(), 1u);
}

}  // namespace
