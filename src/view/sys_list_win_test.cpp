#include "view/sys_list.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "orlo/window.h"

namespace {

class SysListControlTest : public testing::Test {
 protected:
  SysListControlTest() {
    INITCOMMONCONTROLSEX classes = {};
    classes.dwSize = sizeof classes;
    classes.dwICC = ICC_LISTVIEW_CLASSES;
    InitCommonControlsEx(&classes);
    window = CreateWindowExA(0, WC_LISTVIEWA, "", WS_POPUP | WS_VISIBLE | LVS_REPORT, 0, 0, 300, 80,
                             nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
    list = std::make_unique<SysListControl>(window);
  }
  ~SysListControlTest() override { DestroyWindow(window); }

  void fill(int count) const {
    for (int i = 0; i < count; ++i) {
      list->insert_item(ListControl::kEnd, String::formatted("row %d", i),
                        static_cast<uint32_t>(i + 1), 0);
    }
  }
  std::string text_at(int index) const {
    char text[100] = {};
    LVITEMA row = {};
    row.pszText = text;
    row.cchTextMax = sizeof text;
    SendMessageA(window, LVM_GETITEMTEXTA, static_cast<WPARAM>(index),
                 reinterpret_cast<LPARAM>(&row));
    return text;
  }

  HWND window = nullptr;
  std::unique_ptr<SysListControl> list;
};

TEST_F(SysListControlTest, ColumnsHaveTitleWidthAndAlignment) {
  list->add_column(0, "Name", 120, ListControl::Align::left);
  list->add_column(1, "Size", 70, ListControl::Align::right);
  list->add_column(2, "Hidden", 0, ListControl::Align::left);
  char title[50] = {};
  LVCOLUMNA column = {};
  column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT | LVCF_SUBITEM;
  column.pszText = title;
  column.cchTextMax = sizeof title;
  ASSERT_TRUE(SendMessageA(window, LVM_GETCOLUMNA, 1, reinterpret_cast<LPARAM>(&column)));
  EXPECT_STREQ(title, "Size");
  EXPECT_EQ(column.cx, 70);
  EXPECT_EQ(column.fmt & LVCFMT_JUSTIFYMASK, LVCFMT_RIGHT);
  EXPECT_EQ(column.iSubItem, 1);
  EXPECT_EQ(SendMessageA(window, LVM_GETCOLUMNWIDTH, 2, 0), 0);
}

TEST_F(SysListControlTest, InsertsInFrontOfAnIndexOrAtTheEnd) {
  list->add_column(0, "Name", 120, ListControl::Align::left);
  list->insert_item(ListControl::kEnd, "b", 1, 0);
  list->insert_item(0, "a", 2, 0);
  list->insert_item(ListControl::kEnd, "d", 3, 0);
  list->insert_item(2, "c", 4, 0);
  ASSERT_EQ(list->count(), 4);
  const char* const texts[] = {"a", "b", "c", "d"};
  const uint32_t ids[] = {2, 1, 4, 3};
  for (int i = 0; i < 4; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(text_at(i), texts[i]);
    EXPECT_EQ(list->id_at(i), ids[i]);
    EXPECT_EQ(list->find(ids[i]), i);
  }
}

TEST_F(SysListControlTest, AnIdThatIsNotShownIsNotFound) {
  list->add_column(0, "Name", 120, ListControl::Align::left);
  fill(3);
  EXPECT_EQ(list->find(4), -1);
  EXPECT_EQ(list->id_at(3), 0u);
  EXPECT_EQ(list->id_at(-1), 0u);
}

TEST_F(SysListControlTest, IdsUseTheirWholeRange) {
  list->add_column(0, "Name", 120, ListControl::Align::left);
  list->insert_item(0, "last", 0xFFFFFFFF, 0);
  EXPECT_EQ(list->id_at(0), 0xFFFFFFFFu);
  EXPECT_EQ(list->find(0xFFFFFFFF), 0);
}

TEST_F(SysListControlTest, DeletesOneOrAll) {
  list->add_column(0, "Name", 120, ListControl::Align::left);
  fill(5);
  list->delete_item(1);
  EXPECT_EQ(list->count(), 4);
  EXPECT_EQ(list->find(2), -1);
  EXPECT_EQ(list->find(3), 1);
  list->delete_all();
  EXPECT_EQ(list->count(), 0);
}

/// Counts how often its list starts to draw.
class DrawCounter : public ORLO::Controller {
 public:
  DrawCounter(HWND window, int& drawings) : Controller(window), drawings_(drawings) {}
  LRESULT Notify(unsigned, NMHDR* header) override {
    if (header->code == NM_CUSTOMDRAW) ++drawings_;
    return CDRF_DODEFAULT;
  }

 private:
  int& drawings_;
};

TEST_F(SysListControlTest, FreezingNestsAndEndsWithOneRedraw) {
  int drawings = 0;
  ORLO::Window::Setup setup;
  setup.style = WS_POPUP | WS_VISIBLE;
  setup.place = {0, 0, 300, 100};
  const HWND parent = ORLO::Window::create(
      setup, [&](HWND made) { return std::make_unique<DrawCounter>(made, drawings); });
  const HWND child = CreateWindowExA(0, WC_LISTVIEWA, "", WS_CHILD | WS_VISIBLE | LVS_REPORT, 0, 0,
                                     300, 80, parent, nullptr, GetModuleHandleA(nullptr), nullptr);
  SysListControl counted(child);
  counted.add_column(0, "Name", 120, ListControl::Align::left);
  UpdateWindow(child);
  drawings = 0;
  {
    const FrozenRedraw outer(counted);
    {
      const FrozenRedraw inner(counted);
      counted.insert_item(0, "row", 1, 0);
    }
    InvalidateRect(child, nullptr, TRUE);
    UpdateWindow(child);
    EXPECT_EQ(drawings, 0);
  }
  UpdateWindow(child);
  EXPECT_GE(drawings, 1);
  DestroyWindow(parent);
}

TEST_F(SysListControlTest, RedrawOfOneRowInvalidatesIt) {
  list->add_column(0, "Name", 120, ListControl::Align::left);
  fill(2);
  UpdateWindow(window);
  ASSERT_FALSE(GetUpdateRect(window, nullptr, FALSE));
  list->redraw_item(1);
  EXPECT_TRUE(GetUpdateRect(window, nullptr, FALSE));
}

TEST_F(SysListControlTest, EnsureVisibleScrolls) {
  list->add_column(0, "Name", 120, ListControl::Align::left);
  fill(50);
  list->ensure_visible(49);
  EXPECT_GT(SendMessageA(window, LVM_GETTOPINDEX, 0, 0), 30);
}

TEST_F(SysListControlTest, ExtendedStylesAreAdded) {
  list->set_extended_style(LVS_EX_GRIDLINES);
  list->set_extended_style(LVS_EX_FULLROWSELECT);
  EXPECT_EQ(SendMessageA(window, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0) &
                (LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT),
            LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT);
}

TEST_F(SysListControlTest, HeaderWithoutButtonsTakesNoClicks) {
  const auto header = reinterpret_cast<HWND>(SendMessageA(window, LVM_GETHEADER, 0, 0));
  ASSERT_TRUE(GetWindowLongPtrA(header, GWL_STYLE) & HDS_BUTTONS);
  list->disable_header_clicks();
  EXPECT_FALSE(GetWindowLongPtrA(header, GWL_STYLE) & HDS_BUTTONS);
}

}  // namespace
