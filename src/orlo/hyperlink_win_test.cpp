#include "orlo/hyperlink.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "orlo/dialog_mixins.h"
#include "orlo/dialog_test_support.h"
#include "orlo/wait_cursor.h"

namespace ORLO {
namespace {

constexpr WORD kLink = 100;
constexpr WORD kEmptyLink = 101;

struct Opened {
  HWND owner;
  std::string target;
};
std::vector<Opened> opened;

bool note_opening(HWND owner, const String& target) {
  opened.push_back({owner, target.c_str()});
  return true;
}

bool refuse_opening(HWND owner, const String& target) {
  note_opening(owner, target);
  return false;
}

class HyperlinkTest : public testing::Test {
 protected:
  HyperlinkTest() {
    opened.clear();
    plan.add(kLink, TestTemplate::kStatic, "http://example.test/", {10, 10, 110, 22});
    plan.add(kEmptyLink, TestTemplate::kStatic, "", {10, 30, 110, 42});
    dialog = Dialog::DoModeless(GetModuleHandleA(nullptr), plan.get(), nullptr, [](HWND window) {
      return std::make_unique<CtlColorController<DlgController>>(window);
    });
  }
  ~HyperlinkTest() override { DestroyWindow(dialog); }

  HWND control(int id) const { return GetDlgItem(dialog, id); }
  static void click(HWND link) { SendMessageA(link, WM_LBUTTONDOWN, MK_LBUTTON, 0); }

  /// What the dialog answers when the link asks for its colours, and what it has set.
  struct Look {
    LRESULT brush;
    COLORREF color;
    int mode;
    LOGFONTA font;
  };
  Look look_of(HWND link) const {
    const HDC context = GetDC(link);
    Look look = {};
    look.brush = SendMessageA(dialog, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(context),
                              reinterpret_cast<LPARAM>(link));
    look.color = GetTextColor(context);
    look.mode = GetBkMode(context);
    GetObjectA(GetCurrentObject(context, OBJ_FONT), sizeof look.font, &look.font);
    ReleaseDC(link, context);
    return look;
  }

  TestTemplate plan{120, 60, WS_POPUP | WS_VISIBLE};
  HWND dialog = nullptr;
};

TEST_F(HyperlinkTest, ClickOpensItsTextOnBehalfOfTheDialog) {
  const HyperlinkController link(control(kLink), 0, 1, &note_opening);
  EXPECT_STREQ(link.target().c_str(), "http://example.test/");
  EXPECT_FALSE(link.visited());
  click(control(kLink));
  ASSERT_EQ(opened.size(), 1u);
  EXPECT_EQ(opened[0].owner, dialog);
  EXPECT_EQ(opened[0].target, "http://example.test/");
  EXPECT_TRUE(link.visited());
}

TEST_F(HyperlinkTest, LinkThatCannotBeOpenedIsVisitedAllTheSame) {
  const HyperlinkController link(control(kLink), 0, 1, &refuse_opening);
  click(control(kLink));
  EXPECT_EQ(opened.size(), 1u);
  EXPECT_TRUE(link.visited());
}

/// Dies while it opens its target, as it does with its dialog.
std::unique_ptr<HyperlinkController> doomed_link;

bool end_dialog_while_opening(HWND owner, const String& target) {
  doomed_link.reset();
  // What was freed is used again.
  std::vector<std::vector<char>> blocks;
  for (size_t size = 8; size < 512; size += 4)
    blocks.emplace_back(size, '!');
  return note_opening(owner, target);
}

TEST_F(HyperlinkTest, EndOfItsDialogWhileItOpensLeavesTheTargetWhole) {
  doomed_link =
      std::make_unique<HyperlinkController>(control(kLink), 0, 1, &end_dialog_while_opening);
  click(control(kLink));
  ASSERT_EQ(opened.size(), 1u);
  EXPECT_EQ(opened[0].target, "http://example.test/");
  EXPECT_EQ(SendMessageA(control(kLink), kMsgIdentity, 0, 0), 0);
}

TEST_F(HyperlinkTest, LinkWithoutATargetOpensNothing) {
  const HyperlinkController link(control(kEmptyLink), 0, 1, &note_opening);
  click(control(kEmptyLink));
  EXPECT_TRUE(opened.empty());
  EXPECT_TRUE(link.visited());
}

TEST_F(HyperlinkTest, HasItsColourAndAnUnderlinedFontOnNoGround) {
  const HyperlinkController link(control(kLink), HyperlinkController::kColor,
                                 HyperlinkController::kVisitedColor, &note_opening);
  LOGFONTA plain = {};
  plain.lfHeight = -15;
  plain.lfWeight = FW_BOLD;
  const OwnedFont font(CreateFontIndirectA(&plain));
  SendMessageA(control(kLink), WM_SETFONT, reinterpret_cast<WPARAM>(font.get()), FALSE);
  const Look look = look_of(control(kLink));
  EXPECT_EQ(look.brush, reinterpret_cast<LRESULT>(GetStockObject(NULL_BRUSH)));
  EXPECT_EQ(look.color, 0xff0000u);
  EXPECT_EQ(look.mode, TRANSPARENT);
  EXPECT_TRUE(look.font.lfUnderline);
  EXPECT_EQ(look.font.lfHeight, plain.lfHeight);
  EXPECT_EQ(look.font.lfWeight, plain.lfWeight);
  click(control(kLink));
  EXPECT_EQ(look_of(control(kLink)).color, 0x800080u);
}

TEST_F(HyperlinkTest, FollowsAChangeOfItsFont) {
  const HyperlinkController link(control(kLink), 0, 1, &note_opening);
  look_of(control(kLink));
  LOGFONTA shape = {};
  shape.lfHeight = -40;
  const OwnedFont large(CreateFontIndirectA(&shape));
  SendMessageA(control(kLink), WM_SETFONT, reinterpret_cast<WPARAM>(large.get()), FALSE);
  EXPECT_EQ(look_of(control(kLink)).font.lfHeight, -40);
}

TEST_F(HyperlinkTest, GivesTheControlItsFontBack) {
  const auto font = [this] { return SendMessageA(control(kLink), WM_GETFONT, 0, 0); };
  const LRESULT before = font();
  {
    const HyperlinkController link(control(kLink), 0, 1, &note_opening);
    look_of(control(kLink));
    EXPECT_NE(font(), before);
  }
  EXPECT_EQ(font(), before);
}

TEST_F(HyperlinkTest, IsRedrawnByTheClickThatVisitsIt) {
  const HyperlinkController link(control(kLink), 0, 1, &note_opening);
  UpdateWindow(control(kLink));
  ValidateRect(control(kLink), nullptr);
  ASSERT_FALSE(GetUpdateRect(control(kLink), nullptr, FALSE));
  click(control(kLink));
  EXPECT_TRUE(GetUpdateRect(control(kLink), nullptr, FALSE));
}

TEST_F(HyperlinkTest, TakesTheMouseAndShowsTheHand) {
  const HWND window = control(kLink);
  EXPECT_EQ(SendMessageA(window, WM_NCHITTEST, 0, 0), HTTRANSPARENT);
  const HyperlinkController link(window, 0, 1, &note_opening);
  EXPECT_EQ(SendMessageA(window, WM_NCHITTEST, 0, 0), HTCLIENT);
  const auto set_cursor = [window] {
    SendMessageA(window, WM_SETCURSOR, reinterpret_cast<WPARAM>(window),
                 MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
    return GetCursor();
  };
  EXPECT_EQ(set_cursor(), LoadCursorA(nullptr, MAKEINTRESOURCEA(32649)));
  const WaitCursor wait;
  EXPECT_EQ(set_cursor(), LoadCursorA(nullptr, IDC_WAIT));
}

std::unique_ptr<HyperlinkController> ending_link;

TEST_F(HyperlinkTest, MayEndWhileItsTargetOpens) {
  ending_link = std::make_unique<HyperlinkController>(control(kLink), 0, 1,
                                                      [](HWND owner, const String& target) {
                                                        ending_link.reset();
                                                        return note_opening(owner, target);
                                                      });
  click(control(kLink));
  EXPECT_EQ(opened.size(), 1u);
  EXPECT_EQ(ending_link, nullptr);
}

}  // namespace
}  // namespace ORLO
