#include "inspect/feature_tree.h"

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "inventory/installer_bed_test_support.h"

namespace {

using Features = std::vector<std::pair<std::string, std::string>>;

class FeatureTree : public InstallerBedTest {
 protected:
  /// The only product has these features from now on.
  MemoryInstaller::Product& install(const Features& features) {
    installer_ = MemoryInstaller();
    MemoryInstaller::Product& product = installer_.add(kProduct);
    product.features = features;
    return product;
  }
  std::vector<FeatureNode> read(const char* code = kProduct) {
    return read_feature_tree(installer_, registry_, code);
  }
  /// Each node as "name" or "name<parent", with "+" in front if it has the mark of an installed
  /// one.
  std::vector<std::string> shown(const char* code = kProduct) {
    const std::vector<FeatureNode> nodes = read(code);
    std::vector<std::string> texts;
    texts.reserve(nodes.size());
    for (const FeatureNode& node : nodes)
      texts.push_back(text_of(node, nodes));
    return texts;
  }
  int mark_in_state(int32_t state) {
    install({{"F", ""}}).states["F"] = state;
    return read().at(0).mark;
  }

 private:
  static std::string text_of(const FeatureNode& node, const std::vector<FeatureNode>& nodes) {
    std::string text = node.mark == kInstalledMark ? "+" : "-";
    text += node.name.c_str();
    if (node.parent < 0) return text;
    text += "<";
    return text + nodes.at(static_cast<size_t>(node.parent)).name.c_str();
  }
};

using Texts = std::vector<std::string>;

TEST_F(FeatureTree, OfAProductWithoutFeaturesIsEmpty) {
  install({});
  EXPECT_EQ(shown(), Texts());
}

TEST_F(FeatureTree, OfAnUnknownProductIsEmpty) {
  install({{"F", ""}});
  EXPECT_EQ(shown("{00000000-0000-0000-0000-000000000000}"), Texts());
}

TEST_F(FeatureTree, ShowsAChildAtTheRootWhoseParentSortsAfterIt) {
  install({{"Zeta", ""}, {"Alpha", "Zeta"}});
  EXPECT_EQ(shown(), (Texts{"+Alpha", "+Zeta"}));
}

TEST_F(FeatureTree, ShowsAChildUnderItsParentThatSortsBeforeIt) {
  install({{"Beta", "Alpha"}, {"Alpha", ""}});
  EXPECT_EQ(shown(), (Texts{"+Alpha", "+Beta<Alpha"}));
}

TEST_F(FeatureTree, ShowsAnAdvertisedFeatureAsMissing) {
  EXPECT_EQ(mark_in_state(kFeatureAdvertised), kMissingMark);
}

TEST_F(FeatureTree, MarksAsInstalledWhatIsLocalOrMore) {
  for (int32_t state = -7; state < kFeatureLocal; ++state)
    EXPECT_EQ(mark_in_state(state), kMissingMark) << state;
  for (int32_t state = kFeatureLocal; state <= 6; ++state)
    EXPECT_EQ(mark_in_state(state), kInstalledMark) << state;
  EXPECT_EQ(mark_in_state(INT32_MIN), kMissingMark);
  EXPECT_EQ(mark_in_state(INT32_MAX), kInstalledMark);
}

TEST_F(FeatureTree, HasTheImagesOfTheMarksInTheirOrder) {
  EXPECT_EQ(kInstalledMark, 1);
  EXPECT_EQ(kMissingMark, 2);
}

TEST_F(FeatureTree, AsksForTheStateOfEachFeatureOnceInTheOrderOfNames) {
  install({{"b", ""}, {"B", ""}, {"a", "B"}});
  read();
  const std::string code = kProduct;
  EXPECT_EQ(
      installer_.calls(),
      (Texts{"feature_at " + code + " 0", "feature_at " + code + " 1", "feature_at " + code + " 2",
             "feature_at " + code + " 3", "feature_state " + code + " B",
             "feature_state " + code + " a", "feature_state " + code + " b"}));
}

TEST_F(FeatureTree, MarksEachFeatureByItsOwnState) {
  install({{"A", ""}, {"B", "A"}, {"C", "B"}}).states = {{"A", kFeatureAbsent},
                                                         {"C", kFeatureUnknown}};
  EXPECT_EQ(shown(), (Texts{"-A", "+B<A", "-C<B"}));
}

TEST_F(FeatureTree, SortsNamesByBytes) {
  install({{"b", ""}, {"\xE4", ""}, {"a", ""}, {"B", ""}, {"a10", ""}, {"a2", ""}, {"_", ""}});
  EXPECT_EQ(shown(), (Texts{"+B", "+_", "+a", "+a10", "+a2", "+b", "+\xE4"}));
}

TEST_F(FeatureTree, FindsParentsByTheExactName) {
  install({{"Alpha", ""}, {"Beta", "alpha"}, {"Gamma", "Alph"}, {"Delta", "Alpha "}});
  EXPECT_EQ(shown(), (Texts{"+Alpha", "+Beta", "+Delta", "+Gamma"}));
}

TEST_F(FeatureTree, ShowsAFeatureAtTheRootWhoseParentIsNoFeature) {
  install({{"Beta", "gone"}, {"Zeta", "zzz"}});
  EXPECT_EQ(shown(), (Texts{"+Beta", "+Zeta"}));
}

TEST_F(FeatureTree, ShowsAFeatureAtTheRootThatIsItsOwnParent) {
  install({{"Alpha", "Alpha"}, {"Beta", "Alpha"}});
  EXPECT_EQ(shown(), (Texts{"+Alpha", "+Beta<Alpha"}));
}

TEST_F(FeatureTree, OpensARingWhereItsFirstNameStands) {
  install({{"A", "C"}, {"B", "A"}, {"C", "B"}});
  EXPECT_EQ(shown(), (Texts{"+A", "+B<A", "+C<B"}));
  install({{"A", "B"}, {"B", "C"}, {"C", "A"}});
  EXPECT_EQ(shown(), (Texts{"+A", "+B", "+C<A"}));
}

TEST_F(FeatureTree, TakesAnEmptyParentForNone) {
  install({{"", ""}, {"Alpha", ""}});
  EXPECT_EQ(shown(), (Texts{"+", "+Alpha"})) << "though a feature has the empty name";
}

TEST_F(FeatureTree, MayBeSixteenLevelsDeep) {
  Features features;
  for (char level = 'A'; level < 'A' + 16; ++level)
    features.emplace_back(std::string(1, level),
                          level == 'A' ? "" : std::string(1, static_cast<char>(level - 1)));
  std::reverse(features.begin(), features.end());
  install(features);
  const std::vector<FeatureNode> nodes = read();
  ASSERT_EQ(nodes.size(), 16u);
  for (int i = 0; i < 16; ++i)
    EXPECT_EQ(nodes[static_cast<size_t>(i)].parent, i - 1);
}

TEST_F(FeatureTree, ShowsNamesOfThirtyEightCharactersWhole) {
  const std::string parent(38, 'p');
  const std::string child = parent.substr(0, 37) + "q";
  install({{child, parent}, {parent, ""}});
  EXPECT_EQ(shown(), (Texts{"+" + parent, "+" + child + "<" + parent}));
}

TEST_F(FeatureTree, ShowsTheFeaturesBeforeOneThatCannotBeRead) {
  install({{"C", ""}, {"A", ""}, {std::string(39, 'x'), ""}, {"B", ""}});
  EXPECT_EQ(shown(), (Texts{"+A", "+C"}));
}

TEST_F(FeatureTree, ShowsAFeatureOnceThatIsToldTwice) {
  install({{"A", ""}, {"B", "A"}, {"B", ""}});
  EXPECT_EQ(shown(), (Texts{"+A", "+B<A"}));
}

TEST_F(FeatureTree, HandsTheProductCodeOnAsItStands) {
  install({{"A", ""}});
  EXPECT_EQ(shown("{12345678-abcd-ef01-2345-6789abcdef01}"), Texts{"+A"});
  for (const char* code : {"", "{", "no code", "{12345678-ABCD-EF01-2345-6789ABCDEF0}",
                           "{12345678-ABCD-EF01-2345-6789ABCDEF012}"}) {
    EXPECT_EQ(shown(code), Texts()) << code;
  }
}

TEST_F(FeatureTree, ReadsThePatchesToo) {
  install({{"A", ""}});
  registry_.create(product_patch_key("P1"));
  EXPECT_EQ(shown(), Texts{"+A"});
  const Texts calls = registry_.calls();
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "subkey_at P1"), 1);
  EXPECT_EQ(registry_.open_keys(), 0u);
}

TEST_F(FeatureTree, NeedsNoRegistry) {
  install({{"A", ""}});
  registry_.create(user_data());
  registry_.fail("open", "", kRegAccessDenied);
  EXPECT_EQ(shown(), Texts{"+A"});
  EXPECT_EQ(registry_.open_keys(), 0u);
}

TEST_F(FeatureTree, OfFiveThousandFeaturesHasThemAll) {
  Features features;
  for (int i = 5000; i > 0; --i)
    features.emplace_back("F" + std::to_string(10000 + i),
                          i % 100 == 1 ? "" : "F" + std::to_string(10000 + i - 1));
  install(features);
  const std::vector<FeatureNode> nodes = read();
  ASSERT_EQ(nodes.size(), 5000u);
  for (int i = 0; i < 5000; ++i)
    ASSERT_EQ(nodes[static_cast<size_t>(i)].parent, i % 100 == 0 ? -1 : i - 1);
}

/// The walk as a tree control would see it: each name with the names above it.
std::map<std::string, Texts> modelled_paths(const Features& features) {
  std::map<std::string, std::string> parents;
  for (const auto& [name, parent] : features)
    parents.emplace(name, parent);
  std::map<std::string, Texts> paths;
  for (const auto& [name, parent] : parents) {
    Texts path;
    if (!parent.empty() && parent < name && parents.count(parent) != 0) path = paths[parent];
    path.push_back(name);
    paths[name] = path;
  }
  return paths;
}

TEST_F(FeatureTree, AgreesWithAPlainModelOnRandomFeatures) {
  std::mt19937 random(14);
  const auto name = [&random] { return std::string(1, static_cast<char>('A' + random() % 12)); };
  for (int round = 0; round < 2000; ++round) {
    Features features;
    const size_t count = random() % 14;
    for (size_t i = 0; i < count; ++i)
      features.emplace_back(name(), random() % 4 == 0 ? "" : name());
    install(features);
    const std::vector<FeatureNode> nodes = read();
    const std::map<std::string, Texts> expected = modelled_paths(features);
    ASSERT_EQ(nodes.size(), expected.size());
    auto model = expected.begin();
    std::vector<Texts> paths;
    for (const FeatureNode& node : nodes) {
      ASSERT_LT(node.parent, static_cast<int>(paths.size()));
      Texts path;
      if (node.parent >= 0) path = paths[static_cast<size_t>(node.parent)];
      path.emplace_back(node.name.c_str());
      paths.push_back(path);
      ASSERT_EQ(path, model->second) << round;
      ++model;
    }
  }
}

}  // namespace
