#include "orlo/list_view.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "orlo/assertion.h"
#include "orlo/dialog_mixins.h"
#include "orlo/dialog_test_support.h"
#include "orlo/list_sort.h"
#include "orlo/module_functions.h"
#include "orlo/report.h"
#include "orlo/virtual_list.h"

namespace ORLO {
namespace {

constexpr int kListId = 40;

/// A list view in a dialog that hands its notifications to whoever wants them.
class ListViewTest : public testing::Test {
 protected:
  struct Owner : DlgController {
    using DlgController::DlgController;
    LRESULT Notify(unsigned, NMHDR* header) override {
      return data != nullptr && data->Notify(header) ? 1 : 0;
    }
    VirtualListData* data = nullptr;
  };

  ListViewTest() {
    using Init = void(WINAPI*)();
    system_functions().require<Init>("COMCTL32", "InitCommonControls")();
    dialog = Dialog::DoModeless(GetModuleHandleA(nullptr), plan.get(), nullptr, [&](HWND window) {
      auto made = std::make_unique<Owner>(window);
      owner = made.get();
      return made;
    });
    control = CreateWindowExA(0, "SysListView32", "", WS_CHILD | WS_VISIBLE | LVS_REPORT, 0, 0, 300,
                              200, dialog, reinterpret_cast<HMENU>(kListId),
                              GetModuleHandleA(nullptr), nullptr);
  }
  ~ListViewTest() override { DestroyWindow(dialog); }

  static std::vector<std::string> column_of(const ListView& list, int column) {
    std::vector<std::string> texts;
    texts.reserve(static_cast<size_t>(list.count()));
    for (int row = 0; row < list.count(); ++row)
      texts.emplace_back(list.text(row, column).c_str());
    return texts;
  }

  TestTemplate plan{200, 120, WS_POPUP | WS_VISIBLE};
  HWND dialog = nullptr;
  HWND control = nullptr;
  Owner* owner = nullptr;
};

using Column = std::vector<std::string>;

TEST_F(ListViewTest, InsertsFindsAndRemovesRows) {
  const ListView list(control);
  list.add_column(0, "Name", 100);
  list.add_column(1, "Size", 80, LVCFMT_RIGHT);
  EXPECT_EQ(list.insert(0, "b", 7), 0);
  EXPECT_EQ(list.insert(0, "a", 8), 0);
  EXPECT_EQ(list.insert(99, "c", 9), 2);
  list.set_text(1, 1, "12");
  EXPECT_EQ(column_of(list, 0), (Column{"a", "b", "c"}));
  EXPECT_EQ(column_of(list, 1), (Column{"", "12", ""}));
  EXPECT_EQ(list.param(1), 7);
  EXPECT_EQ(list.find(9), 2);
  EXPECT_EQ(list.find(10), -1);
  list.remove(0);
  EXPECT_EQ(list.count(), 2);
  list.clear();
  EXPECT_EQ(list.count(), 0);
}

TEST_F(ListViewTest, ReadsTextsOfAnyLength) {
  const ListView list(control);
  list.add_column(0, "Name", 100);
  for (const size_t length : {0u, 254u, 255u, 256u, 257u}) {
    SCOPED_TRACE(length);
    const std::string text(length, 'x');
    list.insert(0, text.c_str(), 0);
    EXPECT_EQ(list.text(0, 0).length(), length);
  }
}

TEST_F(ListViewTest, SortsByTheCellsOfOneColumnWithoutRegardToCase) {
  const ListView list(control);
  list.add_column(0, "Name", 100);
  list.add_column(1, "Size", 80);
  // All with the same parameter: the texts alone tell the rows apart.
  const std::pair<const char*, const char*> rows[] = {
      {"beta", "30"}, {"Gamma", "9"}, {"ALPHA", "200"}, {"delta_", "1"}, {"Delta", ""}};
  for (const auto& [name, size] : rows) {
    list.set_text(list.insert(99, name, 5), 1, size);
  }
  list.set_param(list.find(5), 6);
  ListSort(list, 0).run();
  EXPECT_EQ(column_of(list, 0), (Column{"ALPHA", "beta", "Delta", "delta_", "Gamma"}));
  EXPECT_EQ(column_of(list, 1), (Column{"200", "30", "", "1", "9"}));
  ListSort(list, 0, true).run();
  EXPECT_EQ(column_of(list, 0), (Column{"Gamma", "delta_", "Delta", "beta", "ALPHA"}));
  ListSort(list, 1).run();
  EXPECT_EQ(column_of(list, 1), (Column{"", "1", "200", "30", "9"}));
  // The first row inserted has kept the parameter of its own.
  EXPECT_STREQ(list.text(list.find(6), 0).c_str(), "beta");
  EXPECT_EQ(list.param(0), 5);
}

TEST_F(ListViewTest, SortsManyRows) {
  const ListView list(control);
  list.add_column(0, "Name", 100);
  SendMessageA(control, WM_SETREDRAW, FALSE, 0);
  for (int i = 0; i < 500; ++i)
    list.insert(i, String::formatted("%03d", i * 7919 % 500).c_str(), 0);
  ListSort(list, 0).run();
  for (int i = 0; i < 500; ++i)
    ASSERT_STREQ(list.text(i, 0).c_str(), String::formatted("%03d", i).c_str());
}

struct Squares : VirtualListData {
  using VirtualListData::VirtualListData;
  void fill(uint32_t id, Texts& texts) override {
    ++fills;
    if (id == fails_for) throw std::runtime_error("no data");
    texts = {String::formatted("%d", id), String::formatted("%d", id * id)};
  }
  int fills = 0;
  uint32_t fails_for = 0;
};

class VirtualListTest : public ListViewTest {
 protected:
  VirtualListTest() {
    list.add_column(0, "n", 50);
    list.add_column(1, "n*n", 50);
    owner->data = &list;
  }
  Squares list{control};
};

TEST_F(VirtualListTest, RowsCarryGrowingIdsAndAreFilledWhenTheyAreShown) {
  EXPECT_EQ(list.insert_row(0), 1u);
  EXPECT_EQ(list.insert_row(0), 2u);
  EXPECT_EQ(list.insert_row(1), 3u);
  EXPECT_EQ(list.fills, 0);
  EXPECT_EQ(list.param(0), 2);
  EXPECT_EQ(list.param(1), 3);
  EXPECT_EQ(list.param(2), 1);
  EXPECT_EQ(column_of(list, 1), (Column{"4", "9", "1"}));
  EXPECT_EQ(column_of(list, 0), (Column{"2", "3", "1"}));
  EXPECT_EQ(list.fills, 3);
}

TEST_F(VirtualListTest, RowsMayComeWithTheirTexts) {
  list.insert_row(0, {"x", "y"});
  EXPECT_EQ(column_of(list, 1), (Column{"y"}));
  EXPECT_EQ(list.fills, 0);
}

TEST_F(VirtualListTest, RemovedRowsGoFromListAndData) {
  const uint32_t first = list.insert_row(0);
  list.insert_row(1);
  list.remove_row(first);
  EXPECT_EQ(column_of(list, 0), (Column{"2"}));
  EXPECT_EQ(list.rows(), 1u);
  list.remove_row(99);
  list.remove_all();
  EXPECT_EQ(list.count(), 0);
  EXPECT_EQ(list.rows(), 0u);
  EXPECT_EQ(list.insert_row(0), 3u);
}

TEST_F(VirtualListTest, CanBeSorted) {
  for (const char* text : {"b", "A", "c"})
    list.insert_row(99, {text});
  ListSort(list, 0).run();
  EXPECT_EQ(column_of(list, 0), (Column{"A", "b", "c"}));
  EXPECT_EQ(list.param(0), 2);
}

TEST_F(VirtualListTest, FailureWhileFillingIsReportedOnceAndTheCellsStayEmpty) {
  int reports = 0;
  set_report_sink([&](const String&, const String&) { ++reports; });
  list.fails_for = list.insert_row(0);
  EXPECT_EQ(column_of(list, 0), (Column{""}));
  EXPECT_EQ(column_of(list, 1), (Column{""}));
  EXPECT_EQ(reports, 1);
  set_report_sink({});
}

TEST_F(VirtualListTest, RequestOfAnotherControlFailsAnAssertion) {
  std::vector<std::string> reports;
  set_report_sink([&](const String&, const String& text) { reports.push_back(text.c_str()); });
  list.insert_row(0);
  NMLVDISPINFOA request = {};
  request.hdr.code = LVN_GETDISPINFOA;
  request.hdr.idFrom = kListId + 1;
  request.item.mask = LVIF_TEXT;
  request.item.lParam = 1;
  EXPECT_FALSE(list.Notify(&request.hdr));
  EXPECT_EQ(request.item.pszText, nullptr);
  set_report_sink({});
  forget_failed_assertions();
  ASSERT_EQ(reports.size(), 1u);
  EXPECT_NE(reports[0].find("pDispInfo->hdr.idFrom==GetDlgCtrlID(_hwnd)"), std::string::npos);
}

TEST_F(VirtualListTest, LeavesOtherNotificationsAlone) {
  NMHDR header = {control, kListId, LVN_COLUMNCLICK};
  EXPECT_FALSE(list.Notify(&header));
}

}  // namespace
}  // namespace ORLO
