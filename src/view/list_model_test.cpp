#include "view/list_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using PC = PackageColumn;

/// Keeps the rows that a list control would show, and what it was told.
class RecordingList : public ListControl {
 public:
  void add_column(int, const String&, int, Align) override {}
  void insert_item(int index, const String& text, uint32_t id, int) override {
    const auto place = std::min(static_cast<size_t>(index), ids.size());
    ids.insert(ids.begin() + static_cast<std::ptrdiff_t>(place), id);
    texts.insert(texts.begin() + static_cast<std::ptrdiff_t>(place), text.c_str());
  }
  void delete_item(int index) override {
    ids.erase(ids.begin() + index);
    texts.erase(texts.begin() + index);
  }
  void delete_all() override {
    ids.clear();
    texts.clear();
  }
  int count() const override { return static_cast<int>(ids.size()); }
  int find(uint32_t id) const override {
    const auto found = std::find(ids.begin(), ids.end(), id);
    return found == ids.end() ? -1 : static_cast<int>(found - ids.begin());
  }
  uint32_t id_at(int index) const override { return ids.at(static_cast<size_t>(index)); }
  void redraw_item(int index) override { redrawn.push_back(index); }
  void freeze(bool on) override { frozen += on ? 1 : -1; }

  std::vector<uint32_t> ids;
  std::vector<std::string> texts;
  std::vector<int> redrawn;
  int frozen = 0;
};

UninstallEntry entry(const char* name, const char* date = "", int32_t root = -2147483646) {
  Row row = make_package_row();
  cell(row, PC::name).text = name;
  cell(row, PC::keyName).text = name;
  cell(row, PC::installDate).text = date;
  cell(row, PC::HKEY_ROOT).set_number(root);
  return UninstallEntry::fromRow(row);
}

RowKey key(const char* name, const char* root = "-2147483646") {
  return RowKey{{root, name}};
}

class ListModelTest : public testing::Test {
 protected:
  using Names = std::vector<std::string>;
  RecordingList list_;
  ListModel model_{list_, CellTexts{"changed", "new"}};
};

TEST_F(ListModelTest, NewestInstallationStandsFirst) {
  model_.applyEntry(entry("old", "01.02.2003"));
  model_.applyEntry(entry("newest", "01.02.2013"));
  model_.applyEntry(entry("middle", "01.02.2008"));
  EXPECT_EQ(list_.texts, (Names{"newest", "middle", "old"}));
}

TEST_F(ListModelTest, DatesThatCannotBeConvertedAreGreaterThanAllOthers) {
  model_.applyEntry(entry("dated", "01.02.2013"));
  model_.applyEntry(entry("none"));
  model_.applyEntry(entry("impossible", "31/31/2013"));
  EXPECT_EQ(list_.texts, (Names{"none", "impossible", "dated"}));
}

TEST_F(ListModelTest, EqualRowsStayInTheOrderOfTheirArrival) {
  for (const char* name : {"c", "a", "b"})
    model_.applyEntry(entry(name, "01.02.2013"));
  EXPECT_EQ(list_.texts, (Names{"c", "a", "b"}));
}

TEST_F(ListModelTest, IdsCountFromOne) {
  model_.applyEntry(entry("a", "01.02.2013"));
  model_.applyEntry(entry("b", "01.02.2012"));
  EXPECT_EQ(list_.ids, (std::vector<uint32_t>{1, 2}));
  EXPECT_EQ(model_.find(0), nullptr);
  EXPECT_STREQ(model_.find(2)->name.c_str(), "b");
}

TEST_F(ListModelTest, RowOfAKnownPackageIsMergedAndRedrawn) {
  model_.applyEntry(entry("a", "01.02.2013"));
  model_.applyEntry(entry("b", "01.02.2012"));
  UninstallEntry again = entry("b", "", 0);
  again.publisher = "Maker";
  model_.applyEntry(again);
  EXPECT_EQ(model_.size(), 2u);
  EXPECT_STREQ(model_.find(2)->publisher.c_str(), "Maker");
  EXPECT_EQ(list_.redrawn, std::vector<int>{1});
}

TEST_F(ListModelTest, SameNameUnderBothRootsIsTwoPackages) {
  model_.applyEntry(entry("a"));
  model_.applyEntry(entry("a", "", -2147483647));
  EXPECT_EQ(model_.size(), 2u);
}

TEST_F(ListModelTest, RemovalTakesTheEntryWithThatNameAndRoot) {
  model_.applyEntry(entry("a"));
  model_.applyEntry(entry("a", "", -2147483647));
  model_.removeEntry(key("a", "-2147483647"));
  ASSERT_EQ(model_.size(), 1u);
  EXPECT_EQ(list_.ids, std::vector<uint32_t>{1});
  model_.removeEntry(key("nothing"));
  EXPECT_EQ(model_.size(), 1u);
}

TEST_F(ListModelTest, EntryOfAKeyWithAPrefixIsNotFoundByItsKeyName) {
  UninstallEntry nested = entry("{1}.KB5");
  nested.keyName = "KB5";
  model_.applyEntry(nested);
  model_.removeEntry(key("KB5"));
  EXPECT_EQ(model_.size(), 1u);
}

TEST_F(ListModelTest, RowsStillFindTheirPlaceAfterARemoval) {
  model_.applyEntry(entry("a", "01.02.2013"));
  model_.applyEntry(entry("b", "01.02.2012"));
  model_.removeEntry(key("a"));
  model_.applyEntry(entry("c", "01.02.2014"));
  EXPECT_EQ(list_.texts, (Names{"c", "b"}));
}

TEST_F(ListModelTest, ClearingForgetsEverything) {
  model_.applyEntry(entry("a"));
  model_.clear();
  EXPECT_EQ(model_.size(), 0u);
  EXPECT_EQ(list_.count(), 0);
  EXPECT_TRUE(model_.cellText(1, 0).empty());
  model_.applyEntry(entry("b"));
  EXPECT_EQ(list_.ids, std::vector<uint32_t>{2});
}

TEST_F(ListModelTest, BatchIsOneForTheEye) {
  model_.begin_batch();
  EXPECT_EQ(list_.frozen, 1);
  model_.end_batch();
  EXPECT_EQ(list_.frozen, 0);
}

TEST_F(ListModelTest, MarksAreClearedBeforeACycle) {
  UninstallEntry marked = entry("a");
  marked.changed = -1;
  model_.applyEntry(marked);
  EXPECT_STREQ(model_.cellText(1, 30).c_str(), "new");
  model_.clear_marks();
  EXPECT_STREQ(model_.cellText(1, 30).c_str(), "");
}

TEST(Columns, ThereAreThirtyOneWithTheirWidths) {
  const int widths[] = {20,  0,  220, 90, 0,  120, 114, 0,   70,  200, 200, 0,   30,  200, 200, 120,
                        200, 50, 50,  50, 50, 50,  200, 150, 150, 120, 150, 100, 150, 150, 50};
  ASSERT_EQ(std::size(widths), static_cast<size_t>(kListColumns));
  for (int i = 0; i < kListColumns; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(list_column(i).width, widths[i]);
    const bool right = i == 3 || i == 8 || i == 17 || i == 18;
    EXPECT_EQ(list_column(i).align == ListControl::Align::right, right);
  }
}

TEST(CellText, ShowsEachColumnsField) {
  UninstallEntry e;
  String UninstallEntry::*const fields[] = {
      &UninstallEntry::name,
      &UninstallEntry::source,
      &UninstallEntry::displayName,
      &UninstallEntry::displayVersion,
      &UninstallEntry::parent,
      &UninstallEntry::parentName,
      &UninstallEntry::installDate,
      &UninstallEntry::uninstallDate,
      &UninstallEntry::sizeText,
      &UninstallEntry::uninstallCmd,
      &UninstallEntry::modifyCmd,
      &UninstallEntry::installerPath,
      &UninstallEntry::okText,
      &UninstallEntry::displayIcon,
      &UninstallEntry::installLocation,
      &UninstallEntry::lastUseDate,
      &UninstallEntry::packagePath,
      nullptr,
      nullptr,
      &UninstallEntry::is64BitText,
      &UninstallEntry::systemComponentText,
      &UninstallEntry::frequencyText,
      &UninstallEntry::comments,
      &UninstallEntry::user,
      &UninstallEntry::publisher,
      &UninstallEntry::contact,
      &UninstallEntry::helpURL,
      &UninstallEntry::helpPhone,
      &UninstallEntry::aboutURL,
      &UninstallEntry::updateURL,
  };
  for (size_t i = 0; i < std::size(fields); ++i) {
    if (fields[i] != nullptr) e.*fields[i] = String::formatted("text %d", static_cast<int>(i));
  }
  e.features = 17;
  e.patches = -3;
  const CellTexts texts{"changed", "new"};
  for (int i = 0; i < 30; ++i) {
    SCOPED_TRACE(i);
    const String expected = i == 2    ? String("   text 2")
                            : i == 17 ? String("17")
                            : i == 18 ? String("-3")
                                      : String::formatted("text %d", i);
    EXPECT_STREQ(cell_text(e, i, texts).c_str(), expected.c_str());
  }
  EXPECT_STREQ(cell_text(e, 31, texts).c_str(), "");
  EXPECT_STREQ(cell_text(e, -1, texts).c_str(), "");
}

TEST(CellText, ProgramNameFallsBackToTheEntrysName) {
  UninstallEntry e;
  e.name = "key";
  EXPECT_STREQ(cell_text(e, 2, {}).c_str(), "key");
  e.displayName = "shown";
  EXPECT_STREQ(cell_text(e, 2, {}).c_str(), "shown");
  e.parent = "p";
  EXPECT_STREQ(cell_text(e, 2, {}).c_str(), "   shown");
  EXPECT_STREQ(cell_text(e, 5, {}).c_str(), "p");
}

TEST(CellText, ChangesAreNewOrChanged) {
  UninstallEntry e;
  const CellTexts texts{"changed", "new"};
  EXPECT_STREQ(cell_text(e, 30, texts).c_str(), "");
  e.changed = -1;
  EXPECT_STREQ(cell_text(e, 30, texts).c_str(), "new");
  e.changed = 4;
  EXPECT_STREQ(cell_text(e, 30, texts).c_str(), "changed");
}

}  // namespace
