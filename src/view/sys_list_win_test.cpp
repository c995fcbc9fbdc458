#include "view/sys_list.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "orlo/window.h"
#include "view/entry_test_support.h"
#include "view/list_model.h"

namespace {

class SysListControlTest : public testing::Test {
 protected:
  SysListControlTest() {
    INITCOMMONCONTROLSEX classes = {};
    classes.dwSize = sizeof classes;
    classes.dwICC = ICC_LISTVIEW_CLASSES;
    InitCommonControlsEx(&classes);
    window =
        CreateWindowExA(0, WC_LISTVIEWA, "", WS_POPUP | WS_VISIBLE | LVS_REPORT | LVS_SINGLESEL, 0,
                        0, 300, 80, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
    list = std::make_unique<SysListControl>(window, 96);
  }
  ~SysListControlTest() override { DestroyWindow(window); }

  void fill(int count) const {
    for (int i = 0; i < count; ++i) {
      list->insert_item(ListControl::kEnd,
                        {String::formatted("row %d", i).c_str(), static_cast<uint32_t>(i + 1)});
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

TEST_F(SysListControlTest, WidthsAreScaledToTheResolution) {
  SysListControl fine(window, 144);
  fine.add_column(0, "Name", 90, ListControl::Align::left);
  fine.add_column(1, "Hidden", 0, ListControl::Align::left);
  const auto pixels = [this](WPARAM column) {
    return SendMessageA(window, LVM_GETCOLUMNWIDTH, column, 0);
  };
  EXPECT_EQ(pixels(0), 135);
  EXPECT_EQ(pixels(1), 0);
  EXPECT_EQ(fine.column_width(0), 90);
  EXPECT_EQ(fine.column_width(1), 0);
  fine.set_column_width(1, 100);
  EXPECT_EQ(pixels(1), 150);
  EXPECT_EQ(fine.column_width(1), 100);
}

TEST_F(SysListControlTest, AColumnThatIsHardlySeenIsNotAHiddenOne) {
  SysListControl finest(window, 480);
  finest.add_column(0, "Name", 90, ListControl::Align::left);
  SendMessageA(window, LVM_SETCOLUMNWIDTH, 0, 1);
  EXPECT_EQ(finest.column_width(0), 1);
}

TEST_F(SysListControlTest, InsertsInFrontOfAnIndexOrAtTheEnd) {
  list->add_column(0, "Name", 120, ListControl::Align::left);
  list->insert_item(ListControl::kEnd, {"b", 1});
  list->insert_item(0, {"a", 2});
  list->insert_item(ListControl::kEnd, {"d", 3});
  list->insert_item(2, {"c", 4});
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
  list->insert_item(0, {"last", 0xFFFFFFFF});
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
      counted.insert_item(0, {"row", 1});
    }
    InvalidateRect(child, nullptr, TRUE);
    UpdateWindow(child);
    EXPECT_EQ(drawings, 0);
  }
  UpdateWindow(child);
  EXPECT_GE(drawings, 1);
  DestroyWindow(parent);
}

TEST_F(SysListControlTest, ThawingInvalidatesAControlThatDoesNotDoSoItself) {
  ORLO::Window::Setup setup;
  setup.style = WS_POPUP | WS_VISIBLE;
  setup.place = {0, 0, 100, 100};
  const HWND stand_in = ORLO::Window::create(
      setup, [](HWND made) { return std::make_unique<ORLO::Controller>(made); });
  SysListControl control(stand_in);
  ValidateRect(stand_in, nullptr);
  ASSERT_FALSE(GetUpdateRect(stand_in, nullptr, FALSE));
  { const FrozenRedraw frozen(control); }
  EXPECT_TRUE(GetUpdateRect(stand_in, nullptr, FALSE));
  DestroyWindow(stand_in);
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

TEST_F(SysListControlTest, ColumnWidthsCanBeChanged) {
  list->add_column(0, "Name", 120, ListControl::Align::left);
  list->add_column(1, "Hidden", 0, ListControl::Align::left);
  EXPECT_EQ(list->column_width(0), 120);
  EXPECT_EQ(list->column_width(1), 0);
  list->set_column_width(1, 100);
  EXPECT_EQ(list->column_width(1), 100);
}

TEST_F(SysListControlTest, ArrowsComeAndGoAndLeaveTheTitleAlone) {
  list->add_column(0, "Name", 120, ListControl::Align::left);
  list->add_column(1, "Size", 70, ListControl::Align::right);
  const auto format = [&](int column) {
    HDITEMA title = {};
    title.mask = HDI_FORMAT;
    const auto header = reinterpret_cast<HWND>(SendMessageA(window, LVM_GETHEADER, 0, 0));
    SendMessageA(header, HDM_GETITEMA, static_cast<WPARAM>(column),
                 reinterpret_cast<LPARAM>(&title));
    return title.fmt;
  };
  const int plain[] = {format(0), format(1)};
  using Arrow = ListControl::SortArrow;
  list->set_sort_arrow(1, Arrow::down);
  EXPECT_EQ(format(1), plain[1] | HDF_SORTDOWN);
  list->set_sort_arrow(1, Arrow::up);
  EXPECT_EQ(format(1), plain[1] | HDF_SORTUP);
  EXPECT_EQ(format(0), plain[0]);
  list->set_sort_arrow(1, Arrow::none);
  EXPECT_EQ(format(1), plain[1]);
  list->set_sort_arrow(31, Arrow::down);
  list->set_sort_arrow(-1, Arrow::down);
  EXPECT_EQ(format(0), plain[0]);
  EXPECT_EQ(format(1), plain[1]);
}

TEST_F(SysListControlTest, SortsByTheOrderOfTheIds) {
  list->add_column(0, "Name", 120, ListControl::Align::left);
  fill(20);
  list->sort([](uint32_t a, uint32_t b) { return static_cast<int>(b) - static_cast<int>(a); });
  for (int i = 0; i < 20; ++i)
    EXPECT_EQ(list->id_at(i), static_cast<uint32_t>(20 - i));
  EXPECT_EQ(text_at(0), "row 19");
}

TEST_F(SysListControlTest, FailureInAComparisonReachesTheCallerOfTheSort) {
  list->add_column(0, "Name", 120, ListControl::Align::left);
  fill(5);
  int asked = 0;
  EXPECT_THROW(list->sort([&](uint32_t, uint32_t) -> int {
    ++asked;
    throw std::bad_alloc();
  }),
               std::bad_alloc);
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(list->count(), 5);
}

TEST_F(SysListControlTest, ChosenLineHasItsStateAndTheMark) {
  list->add_column(0, "Name", 120, ListControl::Align::left);
  fill(5);
  EXPECT_EQ(list->selection_mark(), -1);
  constexpr unsigned kBoth = ListControl::kFocused | ListControl::kSelected;
  list->select(2, kBoth);
  EXPECT_EQ(list->selection_mark(), 2);
  EXPECT_EQ(list->state(2), kBoth);
  EXPECT_EQ(list->state(1), 0u);
  list->select(2, 0);
  EXPECT_EQ(list->state(2), 0u);
  // The mark is apart from the state.
  list->select(3, 0);
  EXPECT_EQ(list->selection_mark(), 3);
}

TEST_F(SysListControlTest, LineOfAGroupIsALineLikeOthersWhileGroupsAreOff) {
  list->add_column(0, "Name", 120, ListControl::Align::left);
  list->enable_groups(false);
  list->add_group(101, u"Gruppen-Titel", 10);
  ListControl::Item line{"a", 7, 0, 101};
  list->insert_item(0, line);
  EXPECT_EQ(list->id_at(0), 7u);
  EXPECT_EQ(text_at(0), "a");
}

/// Stands where a list view would stand and keeps what it is sent about groups and lines.
struct GroupMessages : public ORLO::Controller {
  struct Kept {
    std::vector<std::pair<UINT, WPARAM>> messages;
    std::wstring title;
    UINT mask = 0;
    int length = 0;
    int id = 0;
    UINT item_mask = 0;
    int item_group = 0;
    int item_image = -1;
  };
  GroupMessages(HWND window, Kept& kept) : Controller(window), kept_(kept) {}
  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override {
    if (message == LVM_ENABLEGROUPVIEW || message == LVM_INSERTGROUP) {
      kept_.messages.emplace_back(message, wparam);
    }
    if (message == LVM_INSERTGROUP) {
      const auto& group = *reinterpret_cast<const LVGROUP*>(lparam);
      kept_.title = group.pszHeader;
      kept_.mask = group.mask;
      kept_.length = group.cchHeader;
      kept_.id = group.iGroupId;
    }
    if (message == LVM_INSERTITEMA) {
      const auto& row = *reinterpret_cast<const LVITEMA*>(lparam);
      kept_.item_mask = row.mask;
      kept_.item_group = row.iGroupId;
      kept_.item_image = row.iImage;
    }
    return Controller::WndProc(message, wparam, lparam);
  }

 private:
  Kept& kept_;
};

TEST_F(SysListControlTest, TellsTheControlOfItsGroups) {
  GroupMessages::Kept kept;
  ORLO::Window::Setup setup;
  setup.style = WS_POPUP;
  setup.place = {0, 0, 10, 10};
  const HWND stand_in = ORLO::Window::create(
      setup, [&](HWND made) { return std::make_unique<GroupMessages>(made, kept); });
  SysListControl control(stand_in);
  control.enable_groups(true);
  control.add_group(101, u"Gruppen-Titel", 10);
  control.enable_groups(false);
  const std::vector<std::pair<UINT, WPARAM>> expected = {{LVM_ENABLEGROUPVIEW, TRUE},
                                                         {LVM_INSERTGROUP, static_cast<WPARAM>(-1)},
                                                         {LVM_ENABLEGROUPVIEW, FALSE}};
  EXPECT_EQ(kept.messages, expected);
  EXPECT_EQ(kept.title, L"Gruppen-Titel");
  EXPECT_EQ(kept.mask, static_cast<UINT>(LVGF_HEADER | LVGF_GROUPID));
  EXPECT_EQ(kept.length, 10);
  EXPECT_EQ(kept.id, 101);
  control.insert_item(0, {"a", 1, 0, 101});
  EXPECT_TRUE(kept.item_mask & LVIF_GROUPID);
  EXPECT_EQ(kept.item_group, 101);
  control.insert_item(0, {"a", 1, 7});
  EXPECT_TRUE(kept.item_mask & LVIF_IMAGE);
  EXPECT_EQ(kept.item_image, 7);
  EXPECT_FALSE(kept.item_mask & LVIF_GROUPID);
  DestroyWindow(stand_in);
}

/// The model and the real control together.
class SysListWithModel : public SysListControlTest {
 protected:
  SysListWithModel() {
    for (int i = 0; i < kListColumns; ++i)
      list->add_column(i, "Column", list_column(i).width, list_column(i).align);
    model = std::make_unique<ListModel>(*list, CellTexts());
    for (int i = 0; i < kRows; ++i) {
      UninstallEntry entry = make_entry(String::formatted("row %02d", i).c_str());
      entry.publisher = String::formatted("%d", i % 3);
      entry.size = (i * 7) % kRows;
      model->applyEntry(entry);
    }
  }
  /// With the keyboard, as a user does.
  void choose(uint32_t id) const {
    SetFocus(window);
    SendMessageA(window, WM_KEYDOWN, VK_HOME, 0);
    for (int position = list->find(id); position > 0; --position)
      SendMessageA(window, WM_KEYDOWN, VK_DOWN, 0);
    expect_chosen(id);
  }
  void expect_chosen(uint32_t id) const {
    const int position = list->find(id);
    ASSERT_GE(position, 0);
    EXPECT_EQ(SendMessageA(window, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED),
              position);
    EXPECT_EQ(SendMessageA(window, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED),
              position);
    EXPECT_EQ(SendMessageA(window, LVM_GETSELECTEDCOUNT, 0, 0), 1);
    EXPECT_EQ(list->selection_mark(), position);
    RECT line = {};
    line.left = LVIR_BOUNDS;
    SendMessageA(window, LVM_GETITEMRECT, static_cast<WPARAM>(position),
                 reinterpret_cast<LPARAM>(&line));
    RECT client = {};
    GetClientRect(window, &client);
    EXPECT_LE(line.bottom, client.bottom);
  }

  static constexpr int kRows = 40;
  std::unique_ptr<ListModel> model;
};

TEST_F(SysListWithModel, SelectionSurvivesSortsAndRebuildsOneAfterTheOther) {
  choose(33);
  for (const int column : {8, 24, 24, 0, 0, 31}) {
    SCOPED_TRACE(column);
    model->sortByColumn(column);
    expect_chosen(33);
    model->searchChanged("row");
    expect_chosen(33);
    model->searchChanged("2");
    expect_chosen(33);
    model->searchChanged("");
    expect_chosen(33);
  }
}

TEST_F(SysListWithModel, SelectionGoesWithTheRowThatTheFilterHides) {
  choose(33);
  model->searchChanged("row 01");
  EXPECT_EQ(SendMessageA(window, LVM_GETSELECTEDCOUNT, 0, 0), 0);
  EXPECT_EQ(list->count(), 1);
}

TEST_F(SysListWithModel, LinesAreFoundAfterTheControlHasOrderedEqualRows) {
  for (int turn = 0; turn < 4; ++turn)
    model->sortByColumn(24);
  ASSERT_EQ(model->sort_state().descending, 1);
  UninstallEntry entry = make_entry("late");
  entry.publisher = "1";
  model->applyEntry(entry);
  model->removeEntry(make_key("row 07"));
  std::string last;
  for (int i = 0; i < list->count(); ++i) {
    const std::string publisher = model->find(list->id_at(i))->publisher.c_str();
    if (i != 0) {
      EXPECT_GE(last, publisher);
    }
    EXPECT_STRNE(text_at(i).c_str(), "row 07");
    last = publisher;
  }
  EXPECT_EQ(list->count(), kRows);
}

TEST_F(SysListControlTest, ExtendedStylesAreAdded) {
  list->set_extended_style(LVS_EX_GRIDLINES);
  list->set_extended_style(LVS_EX_FULLROWSELECT);
  EXPECT_EQ(SendMessageA(window, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0) &
                (LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT),
            LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT);
}

}  // namespace
