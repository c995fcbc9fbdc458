// The addresses where the user meets them: in the about box.
#include <gtest/gtest.h>

#include <string>

#include "orlo/orlowin.h"
#include "platform/resource_ids.h"
#include "platform/resources.h"
#include "view/addresses.h"

namespace {

INT_PTR CALLBACK ignore(HWND, UINT, WPARAM, LPARAM) {
  return 0;
}

std::string text_of(HWND dialog, int id) {
  char text[200] = {};
  GetDlgItemTextA(dialog, id, text, sizeof text);
  return text;
}

TEST(AboutBox, ShowsTheAddressesInBothLanguages) {
  for (const uint16_t language : {uint16_t{2057}, uint16_t{1031}}) {
    SCOPED_TRACE(language);
    const Resources resources(GetModuleHandleA(nullptr), language);
    const HWND dialog = CreateDialogIndirectParamA(resources.module(), resources.dialog(IDD_ABOUT),
                                                   nullptr, &ignore, 0);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(text_of(dialog, IDC_ABOUT_HOME_PAGE), ZOLVANE_HOME_PAGE);
    EXPECT_EQ(text_of(dialog, IDC_ABOUT_MAIL), ZOLVANE_MAIL);
    DestroyWindow(dialog);
    EXPECT_STREQ(resources.text(IDS_ABOUT_MAIL_TARGET).c_str(), ZOLVANE_MAIL_LINK);
    // The home page's own text is its target.
    EXPECT_TRUE(resources.text(IDC_ABOUT_HOME_PAGE).empty());
  }
}

}  // namespace
