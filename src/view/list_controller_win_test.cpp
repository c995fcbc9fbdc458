#include "view/list_controller.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

class ListControllerTest : public testing::Test {
 protected:
  ListControllerTest() {
    INITCOMMONCONTROLSEX classes = {};
    classes.dwSize = sizeof classes;
    classes.dwICC = ICC_LISTVIEW_CLASSES;
    InitCommonControlsEx(&classes);
    list = CreateWindowExA(0, WC_LISTVIEWA, "", WS_POPUP | LVS_REPORT, 0, 0, 300, 80, nullptr,
                           nullptr, GetModuleHandleA(nullptr), nullptr);
  }
  ~ListControllerTest() override { DestroyWindow(list); }

  HWND header() const { return ListView_GetHeader(list); }
  std::unique_ptr<ListController> make() {
    return std::make_unique<ListController>(
        list, [this](POINT point) { asked.push_back(point); }, [this] { ++asked_by_key; });
  }
  void ask_for_menu(HWND clicked, int x, int y) const {
    SendMessageA(list, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(clicked), MAKELPARAM(x, y));
  }

  HWND list = nullptr;
  std::vector<POINT> asked;
  int asked_by_key = 0;
};

TEST_F(ListControllerTest, TellsWhereTheHeaderWasClicked) {
  const auto controller = make();
  ask_for_menu(header(), 40, 50);
  // A second screen may lie to the left of the first.
  ask_for_menu(header(), -40, -50);
  ASSERT_EQ(asked.size(), 2u);
  EXPECT_EQ(asked[0].x, 40);
  EXPECT_EQ(asked[0].y, 50);
  EXPECT_EQ(asked[1].x, -40);
  EXPECT_EQ(asked[1].y, -50);
}

TEST_F(ListControllerTest, ARightClickOnTheLinesIsNoneOnTheHeader) {
  const auto controller = make();
  ask_for_menu(list, 40, 50);
  EXPECT_TRUE(asked.empty());
  EXPECT_EQ(asked_by_key, 0);
}

TEST_F(ListControllerTest, TellsOfTheMenuKey) {
  const auto controller = make();
  ask_for_menu(list, -1, -1);
  EXPECT_EQ(asked_by_key, 1);
  EXPECT_TRUE(asked.empty());
}

TEST_F(ListControllerTest, TheListWorksOnWithoutIt) {
  { const auto controller = make(); }
  ask_for_menu(header(), 40, 50);
  EXPECT_TRUE(asked.empty());
  EXPECT_EQ(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0), 0);
}

}  // namespace
