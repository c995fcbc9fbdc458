#include "view/legend_dlg.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/resource_ids.h"

namespace {

constexpr uint16_t kEnglish = 2057;
constexpr uint16_t kGerman = 1031;
constexpr COLORREF kUntouched = 0x123456;
constexpr DWORD kCellStage = CDDS_SUBITEM | CDDS_ITEMPREPAINT;

class LegendDlgTest : public testing::TestWithParam<uint16_t> {
 protected:
  explicit LegendDlgTest(int dpi = 96) {
    INITCOMMONCONTROLSEX classes = {};
    classes.dwSize = sizeof classes;
    classes.dwICC = ICC_LISTVIEW_CLASSES;
    InitCommonControlsEx(&classes);
    window = ORLO::Dialog::DoModeless(
        resources.module(), resources.dialog(IDD_LEGEND), nullptr,
        [this, dpi](HWND made) { return std::make_unique<LegendDlg>(made, resources, dpi); });
    list = GetDlgItem(window, IDC_LEGEND_LIST);
    context = CreateCompatibleDC(nullptr);
    system_font = GetCurrentObject(context, OBJ_FONT);
  }
  ~LegendDlgTest() override {
    SelectObject(context, system_font);
    DeleteDC(context);
    if (IsWindow(window)) DestroyWindow(window);
  }

  /// What the list gets as an answer.
  LRESULT draw(DWORD stage, int row = 0, int column = 0) {
    return draw_for(list, stage, row, column);
  }
  LRESULT draw_for(HWND from, DWORD stage, int row, int column) {
    drawn = {};
    drawn.nmcd.hdr = {from, IDC_LEGEND_LIST, static_cast<UINT>(NM_CUSTOMDRAW)};
    drawn.nmcd.dwDrawStage = stage;
    drawn.nmcd.hdc = context;
    drawn.nmcd.lItemlParam = row;
    drawn.iSubItem = column;
    drawn.clrText = drawn.clrTextBk = kUntouched;
    return SendMessageA(window, WM_NOTIFY, IDC_LEGEND_LIST, reinterpret_cast<LPARAM>(&drawn));
  }
  LONG weight() const {
    LOGFONTA shape = {};
    GetObjectA(GetCurrentObject(context, OBJ_FONT), sizeof shape, &shape);
    return shape.lfWeight;
  }
  RECT place_of(int id) const {
    RECT rect = {};
    GetWindowRect(GetDlgItem(window, id), &rect);
    MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
  }
  SIZE frame() const {
    RECT rect = {};
    GetWindowRect(window, &rect);
    return {ORLO::width(rect), ORLO::height(rect)};
  }

  std::vector<int> widths() const {
    std::vector<int> found;
    found.reserve(3);
    for (WPARAM column = 0; column < 3; ++column)
      found.push_back(static_cast<int>(SendMessageA(list, LVM_GETCOLUMNWIDTH, column, 0)));
    return found;
  }

  const Resources resources{GetModuleHandleA(nullptr), GetParam()};
  HWND window = nullptr;
  HWND list = nullptr;
  HDC context = nullptr;
  HGDIOBJ system_font = nullptr;
  NMLVCUSTOMDRAW drawn = {};
};

/// On a screen of higher resolution, which this one only pretends to be.
class FineLegendDlgTest : public LegendDlgTest {
 protected:
  FineLegendDlgTest() : LegendDlgTest(144) {}
};

TEST_P(LegendDlgTest, ListHasItsRowsColumnsAndStyles) {
  const bool english = GetParam() == kEnglish;
  const ORLO::ListView view(list);
  const char* const texts[][3] = {
      {"new Application", "0", ""},
      {"Background Service", "1", "2.43 MB"},
      {"Hotfix Patch", "2", ""},
      {"Application", "3", english ? "Search string" : "Suchtext"},
      {"Microsoft Windows", "4", "13.75 MB"},
  };
  ASSERT_EQ(view.count(), 5);
  for (int row = 0; row < 5; ++row) {
    for (int column = 0; column < 3; ++column)
      EXPECT_STREQ(view.text(row, column).c_str(), texts[row][column]);
  }
  constexpr LRESULT kStyles = LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT;
  EXPECT_EQ(SendMessageA(list, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0), kStyles);
}

TEST_P(LegendDlgTest, AsksForEachCell) {
  EXPECT_EQ(draw(CDDS_PREPAINT), CDRF_NOTIFYSUBITEMDRAW);
  EXPECT_EQ(draw(CDDS_ITEMPREPAINT), CDRF_NOTIFYSUBITEMDRAW);
  EXPECT_EQ(draw(CDDS_ITEMPOSTPAINT), CDRF_DODEFAULT);
  EXPECT_EQ(draw(CDDS_POSTPAINT), CDRF_DODEFAULT);
  EXPECT_EQ(drawn.clrText, kUntouched);
}

TEST_P(LegendDlgTest, PaintsItsCells) {
  EXPECT_EQ(draw(kCellStage, 0, 1), CDRF_NEWFONT);
  EXPECT_EQ(drawn.clrTextBk, kChangeYellow);
  EXPECT_EQ(weight(), FW_BOLD);
  EXPECT_EQ(draw(kCellStage, 3, 2), CDRF_DODEFAULT);
  EXPECT_EQ(drawn.clrText, kSearchRed);
  EXPECT_EQ(drawn.clrTextBk, GetSysColor(COLOR_WINDOW));
  EXPECT_EQ(draw(kCellStage, 2, 1), CDRF_DODEFAULT);
  EXPECT_EQ(drawn.clrText, kSubPackageGrey);
  EXPECT_EQ(drawn.clrTextBk, kSortCream);
}

TEST_P(LegendDlgTest, LeavesTheDrawingOfOthersAlone) {
  EXPECT_EQ(draw_for(GetDlgItem(window, IDOK), kCellStage, 0, 0), 0);
  EXPECT_EQ(drawn.clrText, kUntouched);
}

TEST_P(LegendDlgTest, OpensLargerThanItsTemplateAndNoSmallerThanThat) {
  RECT units = {0, 0, 180, 87};
  MapDialogRect(window, &units);
  RECT client = {};
  GetClientRect(window, &client);
  EXPECT_EQ(client.right, units.right + 100);
  EXPECT_EQ(client.bottom, units.bottom + 50);
  MINMAXINFO limits = {};
  SendMessageA(window, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
  EXPECT_EQ(limits.ptMinTrackSize.x, frame().cx - 100);
  EXPECT_EQ(limits.ptMinTrackSize.y, frame().cy - 50);
}

TEST_P(LegendDlgTest, ColumnsHaveTheirWidths) {
  EXPECT_EQ(widths(), (std::vector<int>{120, 80, 100}));
}

TEST_P(FineLegendDlgTest, OpensLargerThanItsTemplateByTheScaledLengths) {
  RECT units = {0, 0, 180, 87};
  MapDialogRect(window, &units);
  RECT client = {};
  GetClientRect(window, &client);
  EXPECT_EQ(client.right, units.right + 150);
  EXPECT_EQ(client.bottom, units.bottom + 75);
}

TEST_P(FineLegendDlgTest, ColumnsHaveScaledWidths) {
  EXPECT_EQ(widths(), (std::vector<int>{180, 120, 150}));
}

TEST_P(LegendDlgTest, ListStretchesAndTheButtonKeepsToItsCorner) {
  const RECT list_before = place_of(IDC_LEGEND_LIST);
  const RECT button_before = place_of(IDOK);
  SetWindowPos(window, nullptr, 0, 0, frame().cx + 60, frame().cy + 30, SWP_NOMOVE | SWP_NOZORDER);
  const RECT list_after = place_of(IDC_LEGEND_LIST);
  const RECT button_after = place_of(IDOK);
  EXPECT_EQ(list_after.left, list_before.left);
  EXPECT_EQ(list_after.top, list_before.top);
  EXPECT_EQ(list_after.right, list_before.right + 60);
  EXPECT_EQ(list_after.bottom, list_before.bottom + 30);
  EXPECT_EQ(button_after.left, button_before.left + 60);
  EXPECT_EQ(button_after.top, button_before.top + 30);
  EXPECT_EQ(button_after.right, button_before.right + 60);
  EXPECT_EQ(button_after.bottom, button_before.bottom + 30);
}

TEST_P(LegendDlgTest, CloseEndsItAndItsFontGoesWithIt) {
  const int fonts = ORLO::OwnedFont::live();
  SendMessageA(window, WM_COMMAND, IDOK, 0);
  EXPECT_FALSE(IsWindow(window));
  EXPECT_EQ(ORLO::OwnedFont::live(), fonts - 1);
}

INSTANTIATE_TEST_SUITE_P(BothLanguages, LegendDlgTest, testing::Values(kEnglish, kGerman));
INSTANTIATE_TEST_SUITE_P(BothLanguages, FineLegendDlgTest, testing::Values(kEnglish, kGerman));

}  // namespace
