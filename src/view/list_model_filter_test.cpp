#include "view/list_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "view/entry_test_support.h"
#include "view/recording_list_test_support.h"

namespace {

using Entry = UninstallEntry;

struct Sample {
  const char* name;
  const char* display_name;
  const char* publisher;
  const char* source;
  const char* parent;
  int32_t system_component;
  const char* comment;
  // What is expected, put down by hand.
  int first_type;    ///< the first type selection that shows it
  bool microsoft;    ///< gone without &MS
  const char* hits;  ///< letters of the searches below that find it
};

struct SearchCase {
  char letter;  ///< 0: finds all
  const char* text;
};
constexpr SearchCase kSearches[] = {
    {'\0', ""},     {'\0', "*"},   {'\0', "NO"},   {'a', "alpha"},         {'a', "ALPHA"},
    {'a', "AlP?a"}, {'b', "beta"}, {'b', "b*ta"},  {'m', "MICRO"},         {'k', "kb1"},
    {'[', "[1]"},   {'x', "x??z"}, {'q', "q*r*s"}, {'!', "in no package"},
};

constexpr Sample kSamples[] = {
    // Ordinary programs.
    {"p01", "Alpha", "Maker", "HKLM", "", 0, "", 0, false, "a"},
    {"p02", "Beta", "Maker", "HKLM", "", 0, "", 0, false, "b"},
    {"p03", "Gamma", "Alphabet", "HKLM", "", 0, "", 0, false, "a"},
    {"p04", "Delta", "Maker", "HKCU", "", 0, "written in alpha and beta", 0, false, "ab"},
    {"p05", "Tool [1]", "Maker", "HKLM", "", 0, "", 0, false, "["},
    {"p06", "x12z", "Maker", "HKLM", "", 0, "", 0, false, "x"},
    {"p07", "x123z", "Maker", "HKLM", "", 0, "", 0, false, ""},
    {"p08", "Epsilon", "QuaRterS", "HKLM", "", 0, "", 0, false, "q"},
    {"{P09}", "Zeta", "", "HKLM", "", 0, "", 0, false, ""},
    {"alpha10", "Eta", "", "HKLM", "", 0, "", 0, false, "a"},
    {"p11", "kb123 in front of the display name", "", "HKLM", "", 0, "", 0, false, "k"},
    {"kb112", "Theta", "", "HKLM", "", 0, "", 0, false, "k"},
    {"p13", "My Windows Tool", "", "HKLM", "", 0, "", 0, false, ""},
    {"p14", "WindowsTool", "", "HKLM", "", 0, "", 0, false, ""},
    {"p15", "Iota", "microsoft", "HKLM", "", 0, "", 0, false, "m"},
    {"p16", "Kappa", "", "My Windows Update", "", 0, "", 0, false, ""},
    {"p17", "A Package_for_KB1", "", "HKLM", "", 0, "", 0, false, "k"},
    {"Windows p18", "Lambda", "", "HKLM", "", 0, "", 0, false, ""},
    {"p19", "Mu", "", "HKLM, WMI QFE", "", 0, "", 0, false, ""},
    // By Microsoft.
    {"m20", "Office", "Microsoft Corporation", "HKLM", "", 0, "", 0, true, "m"},
    {"m21", "Microsoft Alpha", "", "HKLM", "", 0, "", 0, true, "am"},
    {"Microsoft m22", "Beta2", "", "HKLM", "", 0, "", 0, true, "bm"},
    {"m23", "Windows Driver Package", "", "HKLM", "", 0, "", 0, true, ""},
    {"m24", "Viewer for Microsoft", "Other", "HKLM", "", 0, "", 0, true, "m"},
    // Sub packages.
    {"s25", "Part", "Maker", "HKLM", "p01", 0, "", 1, false, ""},
    {"s26", "Alpha Part", "Maker", "HKLM", "p01", 0, "", 1, false, "a"},
    {"s27", "Part", "Microsoft", "HKLM", "m20", 0, "", 1, true, "m"},
    {"s28", "Part", "Maker", "HKLM", "alpha10", 0, "", 1, false, "a"},
    {"s29", "Part", "Maker", "HKLM", "operatingsystem", 0, "", 1, false, ""},
    {"s30", "Windows Part", "Maker", "HKLM", "OperatingSystem2", 0, "", 1, true, ""},
    {"s31", "x==z", "Maker", "HKLM", " ", 0, "", 1, false, "x"},
    // System components.
    {"c32", "Runtime", "Maker", "HKLM", "", 1, "", 2, false, ""},
    {"c33", "Alpha Runtime", "Maker", "HKLM", "", 1, "", 2, false, "a"},
    {"c34", "Runtime", "Microsoft", "HKLM", "", 1, "", 2, true, "m"},
    {"c35", "Beta Runtime", "Maker", "HKLM", "p01", 1, "", 2, false, "b"},
    {"c36", "Runtime", "Maker", "HKLM", "", -1, "", 2, false, ""},
    {"c37", "Windows Runtime", "Maker", "HKLM", "p02", 2, "quarters", 2, true, "q"},
    // Updates of the operating system.
    {"u38", "Update", "Maker", "HKLM", "OperatingSystem", 0, "", 3, true, ""},
    {"u39", "Update", "Maker", "WMI QFE", "", 0, "", 3, true, ""},
    {"u40", "Update", "Maker", "WindowsUpdateAgent", "", 0, "", 3, true, ""},
    {"u41", "Alpha Update", "Maker", "DISM Package Manager Provider", "", 0, "", 3, true, "a"},
    {"u42", "Update", "Maker", "Windows Update", "", 0, "", 3, true, ""},
    {"u43", "Update", "Maker", "Windows Update Log, WMI QFE", "", 0, "", 3, true, ""},
    {"u44", "Update", "Maker", "MS Updates", "", 0, "", 3, true, ""},
    {"u45", "Beta Update", "Maker", "MS Updates (1)", "", 0, "", 3, true, "b"},
    {"KB146", "Update", "Maker", "HKLM", "", 0, "", 3, true, "k"},
    {"KBark47", "Dog", "Maker", "HKLM", "", 0, "", 3, true, ""},
    {"{U48}.KB148", "Update", "Maker", "HKLM", "{U48}", 0, "", 3, true, "k"},
    {"u49", "Package_for_KB149", "Microsoft", "HKLM", "", 0, "", 3, true, "mk"},
    {"KB150", "Update", "Maker", "HKLM", "p01", 1, "", 3, true, "k"},
    {"u51", "Microsoft Update", "Maker", "WMI QFE", "OperatingSystem", 1, "", 3, true, "m"},
    // Without a display name.
    {"n52", "", "Maker", "HKLM", "", 0, "", 4, false, ""},
    {"n53 alpha", "", "Maker", "HKLM", "", 0, "", 4, false, "a"},
    {"n54", "", "Microsoft", "HKLM", "", 0, "", 4, true, "m"},
    {"n55", "", "Maker", "HKLM", "p01", 0, "", 4, false, ""},
    {"n56", "", "Maker", "HKLM", "", 1, "beta", 4, false, "b"},
    {"n57", "", "Maker", "WMI QFE", "", 0, "", 4, true, ""},
    {"KB158", "", "Maker", "HKLM", "", 0, "", 4, true, "k"},
    {"n59.}.KB1", "", "Maker", "HKLM", "", 0, "", 4, true, "k"},
    {"n60", "", "", "", "OperatingSystem", 1, "[1] qrs", 4, true, "[q"},
};
static_assert(std::size(kSamples) == 60);

std::string date_of(size_t index) {
  return String::formatted("20%02d%02d%02d", static_cast<int>(index % 7) + 10,
                           static_cast<int>(index % 5) + 1, static_cast<int>(index % 3) + 1)
      .c_str();
}

Entry entry_of(size_t index) {
  const Sample& sample = kSamples[index];
  Row row = make_package_row();
  cell(row, PackageColumn::name).text = sample.name;
  cell(row, PackageColumn::displayName).text = sample.display_name;
  cell(row, PackageColumn::publisher).text = sample.publisher;
  cell(row, PackageColumn::source).text = sample.source;
  cell(row, PackageColumn::parent).text = sample.parent;
  cell(row, PackageColumn::comments).text = sample.comment;
  cell(row, PackageColumn::installDate).text = date_of(index);
  cell(row, PackageColumn::systemComponent).set_number(sample.system_component);
  return Entry::fromRow(row);
}

/// Ids in the order of the list: the newest first, those of one day as they came.
std::vector<uint32_t> expected_ids(int type, bool microsoft, char letter) {
  std::vector<uint32_t> ids;
  for (size_t i = 0; i < std::size(kSamples); ++i) {
    const Sample& sample = kSamples[i];
    if (sample.first_type > type || (sample.microsoft && !microsoft)) continue;
    if (letter != '\0' && std::strchr(sample.hits, letter) == nullptr) continue;
    ids.push_back(static_cast<uint32_t>(i + 1));
  }
  std::stable_sort(ids.begin(), ids.end(),
                   [](uint32_t a, uint32_t b) { return date_of(a - 1) > date_of(b - 1); });
  return ids;
}

class ListModelFilterTest : public testing::Test {
 protected:
  void apply_all() {
    for (size_t i = 0; i < std::size(kSamples); ++i)
      model_.applyEntry(entry_of(i));
  }
  RecordingList list_;
  ListModel model_{list_, CellTexts{"changed", "new"}};
};

TEST_F(ListModelFilterTest, StartsWithNormalPackagesMicrosoftsIncluded) {
  apply_all();
  EXPECT_EQ(model_.type(), kTypeNormal);
  EXPECT_EQ(list_.ids(), expected_ids(kTypeNormal, true, '\0'));
  EXPECT_EQ(model_.size(), 60u);
}

TEST_F(ListModelFilterTest, EveryTypeWithAndWithoutMicrosoftUnderEverySearch) {
  apply_all();
  for (const SearchCase& search : kSearches) {
    model_.searchChanged(search.text);
    for (int type = kTypeNormal; type <= kTypeAll; ++type) {
      for (const bool microsoft : {false, true}) {
        SCOPED_TRACE(String::formatted("\"%s\", type %d, microsoft %d", search.text, type,
                                       static_cast<int>(microsoft))
                         .c_str());
        model_.toggleMicrosoft(microsoft);
        const size_t shown = model_.selectType(type);
        const std::vector<uint32_t> expected = expected_ids(type, microsoft, search.letter);
        EXPECT_EQ(list_.ids(), expected);
        EXPECT_EQ(shown, expected.size());
        EXPECT_EQ(model_.size(), 60u);
      }
    }
  }
}

TEST_F(ListModelFilterTest, EveryCommandRebuildsByItself) {
  apply_all();
  EXPECT_EQ(model_.selectType(kTypeAll), 60u);
  EXPECT_EQ(model_.toggleMicrosoft(false), expected_ids(kTypeAll, false, '\0').size());
  EXPECT_EQ(list_.ids(), expected_ids(kTypeAll, false, '\0'));
  EXPECT_EQ(model_.searchChanged("alpha"), expected_ids(kTypeAll, false, 'a').size());
  EXPECT_EQ(list_.ids(), expected_ids(kTypeAll, false, 'a'));
}

TEST_F(ListModelFilterTest, RowsThatArriveLaterPassThePresentFilter) {
  for (const SearchCase& search : kSearches) {
    SCOPED_TRACE(search.text);
    RecordingList list;
    ListModel model(list, CellTexts());
    model.searchChanged(search.text);
    model.toggleMicrosoft(false);
    model.selectType(kTypeSystemComponents);
    model.begin_batch();
    for (size_t i = 0; i < std::size(kSamples); ++i)
      model.applyEntry(entry_of(i));
    model.end_batch();
    EXPECT_EQ(list.ids(), expected_ids(kTypeSystemComponents, false, search.letter));
  }
}

TEST_F(ListModelFilterTest, FilterOutlastsClearing) {
  model_.searchChanged("beta");
  model_.selectType(kTypeOsUpdates);
  apply_all();
  const auto shown = list_.ids();
  model_.clear();
  apply_all();
  EXPECT_EQ(list_.count(), static_cast<int>(shown.size()));
  EXPECT_EQ(model_.size(), 60u);
}

TEST_F(ListModelFilterTest, UnnamedPackageShowsItsEntryAmongAllPackagesOnly) {
  apply_all();
  model_.searchChanged("n52");
  EXPECT_EQ(model_.selectType(kTypeOsUpdates), 0u);
  EXPECT_EQ(model_.selectType(kTypeAll), 1u);
  EXPECT_STREQ(model_.cellText(list_.id_at(0), 2).c_str(), "n52");
}

}  // namespace
