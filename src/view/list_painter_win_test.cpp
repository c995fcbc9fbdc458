// The answers to the list's custom drawing, with marks that are set by hand.
#include "view/list_painter.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>

#include "platform/resource_ids.h"
#include "platform/resources.h"
#include "view/entry_test_support.h"
#include "view/recording_list_test_support.h"

namespace {

constexpr uint16_t kEnglish = 2057;
constexpr COLORREF kUntouched = 0x123456;
constexpr DWORD kCellStage = CDDS_SUBITEM | CDDS_ITEMPREPAINT;
constexpr int kVersion = 3;
constexpr int kChangedInVersion = 0x8;

INT_PTR CALLBACK ignore(HWND, UINT, WPARAM, LPARAM) {
  return 0;
}

class ListPainterTest : public testing::Test {
 protected:
  ListPainterTest() {
    INITCOMMONCONTROLSEX classes = {};
    classes.dwSize = sizeof classes;
    classes.dwICC = ICC_LISTVIEW_CLASSES;
    InitCommonControlsEx(&classes);
    const Resources resources(GetModuleHandleA(nullptr), kEnglish);
    dialog_ = CreateDialogIndirectParamA(resources.module(), resources.dialog(IDD_MAIN), nullptr,
                                         &ignore, 0);
    context_ = CreateCompatibleDC(nullptr);
    system_font_ = GetCurrentObject(context_, OBJ_FONT);
    painter_ = std::make_unique<ListPainter>(dialog_, model_);
  }
  ~ListPainterTest() override {
    SelectObject(context_, system_font_);
    painter_.reset();
    DeleteDC(context_);
    DestroyWindow(dialog_);
  }

  uint32_t add(const char* name, int32_t changed = 0) {
    UninstallEntry entry = make_entry(name);
    entry.changed = changed;
    model_.applyEntry(entry);
    return static_cast<uint32_t>(model_.size());
  }

  LRESULT draw(DWORD stage, uint32_t id = 0, int column = 0, bool colored = true) {
    drawn_ = {};
    drawn_.nmcd.dwDrawStage = stage;
    drawn_.nmcd.hdc = context_;
    drawn_.nmcd.lItemlParam = static_cast<LPARAM>(id);
    drawn_.iSubItem = column;
    drawn_.clrText = drawn_.clrTextBk = kUntouched;
    return painter_->draw(drawn_, colored);
  }
  HFONT dialog_font() const {
    return reinterpret_cast<HFONT>(SendMessageA(dialog_, WM_GETFONT, 0, 0));
  }
  HGDIOBJ selected_font() const { return GetCurrentObject(context_, OBJ_FONT); }
  LOGFONTA selected_shape() const {
    LOGFONTA shape = {};
    GetObjectA(selected_font(), sizeof shape, &shape);
    return shape;
  }

  RecordingList list_;
  ListModel model_{list_, CellTexts{"changed", "new"}};
  HWND dialog_ = nullptr;
  HDC context_ = nullptr;
  HGDIOBJ system_font_ = nullptr;
  std::unique_ptr<ListPainter> painter_;
  NMLVCUSTOMDRAW drawn_ = {};
};

TEST_F(ListPainterTest, AsksForRowsOnlyWhereTheListIsColoured) {
  EXPECT_EQ(draw(CDDS_PREPAINT, 0, 0, true), CDRF_NOTIFYITEMDRAW);
  EXPECT_EQ(draw(CDDS_PREPAINT, 0, 0, false), CDRF_DODEFAULT);
}

TEST_F(ListPainterTest, LeavesAllOtherStagesAlone) {
  const uint32_t id = add("new", -1);
  for (const unsigned stage : std::initializer_list<unsigned>{
           CDDS_POSTPAINT, CDDS_PREERASE, CDDS_POSTERASE, CDDS_ITEMPOSTPAINT, CDDS_ITEMPREERASE,
           CDDS_ITEMPOSTERASE, CDDS_SUBITEM | CDDS_ITEMPOSTPAINT}) {
    EXPECT_EQ(draw(stage, id), CDRF_DODEFAULT) << stage;
    EXPECT_EQ(drawn_.clrText, kUntouched);
    EXPECT_EQ(drawn_.clrTextBk, kUntouched);
    EXPECT_EQ(selected_font(), system_font_);
  }
}

TEST_F(ListPainterTest, PaintsARowThatIsAlikeAtOnce) {
  EXPECT_EQ(draw(CDDS_ITEMPREPAINT, add("plain")), CDRF_DODEFAULT);
  EXPECT_EQ(drawn_.clrText, GetSysColor(COLOR_WINDOWTEXT));
  EXPECT_EQ(drawn_.clrTextBk, kUntouched);
  EXPECT_EQ(selected_font(), system_font_);
  EXPECT_EQ(draw(CDDS_ITEMPREPAINT, add("Windows Kit")), CDRF_DODEFAULT);
  EXPECT_EQ(drawn_.clrTextBk, kSystemBlue);
}

TEST_F(ListPainterTest, NewRowIsBoldAsAWholeWhateverTheNotificationsColumn) {
  const uint32_t id = add("new", -1);
  for (const int column : {0, kVersion}) {
    EXPECT_EQ(draw(CDDS_ITEMPREPAINT, id, column), CDRF_NEWFONT);
    EXPECT_EQ(drawn_.clrTextBk, kChangeYellow);
    EXPECT_EQ(selected_shape().lfWeight, FW_BOLD);
  }
}

TEST_F(ListPainterTest, BoldFontIsTheDialogsOwnButForItsWeight) {
  draw(CDDS_ITEMPREPAINT, add("new", -1));
  LOGFONTA own = {};
  GetObjectA(dialog_font(), sizeof own, &own);
  EXPECT_NE(own.lfWeight, FW_BOLD);
  own.lfWeight = FW_BOLD;
  const LOGFONTA bold = selected_shape();
  EXPECT_EQ(bold.lfHeight, own.lfHeight);
  EXPECT_EQ(bold.lfWeight, own.lfWeight);
  EXPECT_EQ(bold.lfCharSet, own.lfCharSet);
  EXPECT_EQ(bold.lfItalic, own.lfItalic);
  EXPECT_STREQ(bold.lfFaceName, own.lfFaceName);
}

TEST_F(ListPainterTest, ChangedRowIsAskedForCellByCell) {
  const uint32_t id = add("changed", kChangedInVersion);
  EXPECT_EQ(draw(CDDS_ITEMPREPAINT, id), CDRF_NOTIFYSUBITEMDRAW);
  EXPECT_EQ(drawn_.clrText, kUntouched);
  EXPECT_EQ(draw(kCellStage, id, kVersion), CDRF_NEWFONT);
  EXPECT_EQ(drawn_.clrTextBk, kChangeYellow);
  EXPECT_EQ(selected_shape().lfWeight, FW_BOLD);
  EXPECT_EQ(draw(kCellStage, id, kVersion + 1), CDRF_NEWFONT);
  EXPECT_EQ(drawn_.clrTextBk, kChangeYellow);
  EXPECT_EQ(selected_font(), dialog_font());
}

TEST_F(ListPainterTest, SearchAndSortColumnAreAskedForCellByCell) {
  const uint32_t id = add("plain");
  model_.searchChanged("lain");
  EXPECT_EQ(draw(CDDS_ITEMPREPAINT, id), CDRF_NOTIFYSUBITEMDRAW);
  EXPECT_EQ(draw(kCellStage, id, 0), CDRF_DODEFAULT);
  EXPECT_EQ(drawn_.clrText, kSearchRed);
  EXPECT_EQ(drawn_.clrTextBk, kUntouched);
  EXPECT_EQ(draw(kCellStage, id, kVersion), CDRF_DODEFAULT);
  EXPECT_EQ(drawn_.clrText, GetSysColor(COLOR_WINDOWTEXT));
  model_.searchChanged("");
  model_.sortByColumn(kVersion);
  EXPECT_EQ(draw(CDDS_ITEMPREPAINT, id), CDRF_NOTIFYSUBITEMDRAW);
  EXPECT_EQ(draw(kCellStage, id, kVersion), CDRF_DODEFAULT);
  EXPECT_EQ(drawn_.clrTextBk, kSortCream);
  EXPECT_EQ(draw(kCellStage, id, kVersion + 1), CDRF_DODEFAULT);
  EXPECT_EQ(drawn_.clrTextBk, GetSysColor(COLOR_WINDOW));
}

TEST_F(ListPainterTest, RowThatIsGoneIsPlain) {
  EXPECT_EQ(draw(CDDS_ITEMPREPAINT, 99), CDRF_DODEFAULT);
  EXPECT_EQ(drawn_.clrText, GetSysColor(COLOR_WINDOWTEXT));
  EXPECT_EQ(drawn_.clrTextBk, kUntouched);
  EXPECT_EQ(draw(kCellStage, 99, kVersion), CDRF_DODEFAULT);
}

TEST_F(ListPainterTest, GivesItsFontBack) {
  const int with_one = ORLO::OwnedFont::live();
  auto second = std::make_unique<ListPainter>(dialog_, model_);
  EXPECT_EQ(ORLO::OwnedFont::live(), with_one + 1);
  second.reset();
  EXPECT_EQ(ORLO::OwnedFont::live(), with_one);
}

}  // namespace
