#include "inspect/feature_dlg.h"

#include "inspect/dialog_bed_test_support.h"
#include "platform/hooked_installer_test_support.h"

namespace {

constexpr char kName[] = "Meadow";

class FeatureDlgTest : public InspectionDlgTest {
 protected:
  struct Item {
    std::string text;
    int depth;
    int image;
    bool expanded;
    bool operator==(const Item&) const = default;
    friend void PrintTo(const Item& item, std::ostream* out) {
      *out << item.text << ' ' << item.depth << ' ' << item.image << ' ' << item.expanded;
    }
  };

  void show() { open<FeatureDlg>(IDD_FEATURES, installer, registry); }
  HTREEITEM next(WPARAM relation, HTREEITEM item) const {
    return reinterpret_cast<HTREEITEM>(
        send(IDC_FEATURE_TREE, TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(item)));
  }
  Item item_at(HTREEITEM handle, int depth) const {
    char text[256] = "";
    TVITEMA item = {};
    item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_STATE;
    item.hItem = handle;
    item.stateMask = TVIS_EXPANDED;
    item.pszText = text;
    item.cchTextMax = sizeof text;
    send(IDC_FEATURE_TREE, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item));
    EXPECT_EQ(item.iImage, item.iSelectedImage);
    return {text, depth, item.iImage, (item.state & TVIS_EXPANDED) != 0};
  }
  void collect(HTREEITEM first, int depth, std::vector<Item>& items) const {
    for (HTREEITEM item = first; item != nullptr; item = next(TVGN_NEXT, item)) {
      items.push_back(item_at(item, depth));
      collect(next(TVGN_CHILD, item), depth + 1, items);
    }
  }
  std::vector<Item> items() const {
    std::vector<Item> found;
    collect(next(TVGN_ROOT, nullptr), 0, found);
    return found;
  }
};

TEST_P(FeatureDlgTest, IsNamedAfterItsPackage) {
  package.displayName = "100 % Meadow";
  show();
  EXPECT_EQ(title(), is_german() ? "Zolvane - Paket-Features: 100 % Meadow"
                                 : "Zolvane - Package Features: 100 % Meadow");
}

TEST_P(FeatureDlgTest, ProductWithoutFeaturesShowsAnEmptyTree) {
  installer.add(kProduct);
  show();
  EXPECT_TRUE(items().empty());
}

TEST_P(FeatureDlgTest, ShowsChildrenBelowTheirExpandedParents) {
  installer.add(kProduct).features = {
      {"Beta", "Alpha"}, {"Alpha", ""}, {"Gamma", "Beta"}, {"Beta 2", "Alpha"}, {"Zeta", ""}};
  show();
  EXPECT_EQ(items(), (std::vector<Item>{{"Alpha", 0, 1, true},
                                        {"Beta", 1, 1, true},
                                        {"Gamma", 2, 1, false},
                                        {"Beta 2", 1, 1, false},
                                        {"Zeta", 0, 1, false}}));
}

TEST_P(FeatureDlgTest, ChildWhoseParentSortsAfterItStandsAtTheRoot) {
  installer.add(kProduct).features = {{"Zeta", ""}, {"Alpha", "Zeta"}};
  show();
  EXPECT_EQ(items(), (std::vector<Item>{{"Alpha", 0, 1, false}, {"Zeta", 0, 1, false}}));
}

TEST_P(FeatureDlgTest, AdvertisedFeatureHasTheMissingMark) {
  auto& product = installer.add(kProduct);
  product.features = {{"Advertised", ""}, {"Local", ""}};
  product.states = {{"Advertised", kFeatureAdvertised}};
  show();
  EXPECT_EQ(items(), (std::vector<Item>{{"Advertised", 0, 2, false}, {"Local", 0, 1, false}}));
}

TEST_P(FeatureDlgTest, ShowsFiveThousandFeaturesFromTheFirstAndScrollsToTheLast) {
  auto& product = installer.add(kProduct);
  const auto name = [](int number) { return "F" + std::to_string(10000 + number); };
  for (int i = 0; i < 5000; ++i)
    product.features.emplace_back(name(i), i % 16 == 0 ? "" : name(i - 1));
  show();
  EXPECT_EQ(items().size(), 5000u);
  EXPECT_EQ(next(TVGN_FIRSTVISIBLE, nullptr), next(TVGN_ROOT, nullptr));
  EXPECT_NE(GetWindowLongA(control(IDC_FEATURE_TREE), GWL_STYLE) & WS_VSCROLL, 0);
  send(IDC_FEATURE_TREE, WM_VSCROLL, SB_BOTTOM);
  EXPECT_EQ(item_at(next(TVGN_LASTVISIBLE, nullptr), 0).text, name(4999));
  EXPECT_NE(next(TVGN_FIRSTVISIBLE, nullptr), next(TVGN_ROOT, nullptr));
}

TEST_P(FeatureDlgTest, ShowsTheWaitCursorWhileItReads) {
  installer.add(kProduct).features = {{"Alpha", ""}};
  int calls = 0;
  HookedInstaller asked(installer, [&calls] {
    EXPECT_EQ(cursor(), wait_cursor());
    ++calls;
  });
  open<FeatureDlg>(IDD_FEATURES, static_cast<Installer&>(asked), registry);
  EXPECT_EQ(calls, 3) << "two for the names, one for a state";
  EXPECT_EQ(cursor(), nullptr);
}

TEST_P(FeatureDlgTest, HasThreePicturesForItsMarks) {
  show();
  const auto images =
      reinterpret_cast<HIMAGELIST>(send(IDC_FEATURE_TREE, TVM_GETIMAGELIST, TVSIL_NORMAL));
  ASSERT_NE(images, nullptr);
  EXPECT_EQ(ImageList_GetImageCount(images), 3);
  EXPECT_EQ(ImageList_GetBkColor(images), CLR_NONE);
}

TEST_P(FeatureDlgTest, TakesItsPicturesAlongWhenItGoes) {
  show();
  const auto images =
      reinterpret_cast<HIMAGELIST>(send(IDC_FEATURE_TREE, TVM_GETIMAGELIST, TVSIL_NORMAL));
  DestroyWindow(window);
  EXPECT_EQ(ImageList_GetImageCount(images), 0);
}

TEST_P(FeatureDlgTest, IsTwoHundredPixelsHigherThanItsTemplateAndNeverSmallerThanThat) {
  show();
  EXPECT_EQ(growth(), scaled(0, 200));
  resize(10, 10);
  EXPECT_EQ(growth(), scaled(0, 0));
}

TEST_P(FeatureDlgTest, TreeTakesWhatTheWindowGains) {
  show();
  const RECT before = place_of(IDC_FEATURE_TREE);
  const SIZE frame = frame_of(window);
  resize(frame.cx + 50, frame.cy + 30);
  const RECT after = place_of(IDC_FEATURE_TREE);
  EXPECT_EQ(after.left, before.left);
  EXPECT_EQ(after.top, before.top);
  EXPECT_EQ(after.right, before.right + 50);
  EXPECT_EQ(after.bottom, before.bottom + 30);
}

TEST_P(FeatureDlgTest, HasTheIconsOfTheProgram) {
  show();
  EXPECT_NE(SendMessageA(window, WM_GETICON, ICON_BIG, 0), 0);
  EXPECT_NE(SendMessageA(window, WM_GETICON, ICON_SMALL, 0), 0);
}

TEST_P(FeatureDlgTest, WorksOnACopyOfThePackage) {
  installer.add(kProduct).features = {{"Alpha", ""}};
  show();
  package = UninstallEntry();
  resize(2000, 900);
  EXPECT_EQ(title().substr(title().find(": ") + 2), kName);
  EXPECT_EQ(items().size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(Languages, FeatureDlgTest, testing::Values(kEnglish, kGerman),
                         name_of_language);

}  // namespace
