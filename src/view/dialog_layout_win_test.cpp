// The dialogs as the system lays them out: what they hold, and that nothing is cut or covered.
#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <vector>

#include "orlo/orlowin.h"
#include "platform/resource_ids.h"
#include "platform/resources.h"

namespace {

constexpr uint16_t kEnglish = 2057;
constexpr uint16_t kGerman = 1031;
constexpr uint16_t kLanguages[] = {kEnglish, kGerman};

/// A dialog of the program without the program behind it, never shown.
class LaidOut {
 public:
  LaidOut(uint16_t language, unsigned id) {
    INITCOMMONCONTROLSEX classes = {};
    classes.dwSize = sizeof classes;
    classes.dwICC = ICC_LISTVIEW_CLASSES | ICC_TREEVIEW_CLASSES | ICC_PROGRESS_CLASS;
    InitCommonControlsEx(&classes);
    const Resources resources(GetModuleHandleA(nullptr), language);
    window_ = CreateDialogIndirectParamA(resources.module(), resources.dialog(id), nullptr,
                                         &LaidOut::ignore, 0);
  }
  ~LaidOut() { DestroyWindow(window_); }
  LaidOut(const LaidOut&) = delete;
  LaidOut& operator=(const LaidOut&) = delete;

  HWND window() const { return window_; }
  HWND control(int id) const { return GetDlgItem(window_, id); }
  std::vector<HWND> controls() const {
    std::vector<HWND> found;
    for (HWND child = GetWindow(window_, GW_CHILD); child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT)) {
      found.push_back(child);
    }
    return found;
  }
  /// In client coordinates.
  RECT place_of(HWND child) const {
    RECT rect = {};
    GetWindowRect(child, &rect);
    MapWindowPoints(nullptr, window_, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
  }

 private:
  static INT_PTR CALLBACK ignore(HWND, UINT, WPARAM, LPARAM) { return 0; }
  HWND window_ = nullptr;
};

std::string text_of(HWND window) {
  char text[300] = {};
  GetWindowTextA(window, text, sizeof text);
  return text;
}

std::string class_of(HWND window) {
  char name[64] = {};
  GetClassNameA(window, name, sizeof name);
  return name;
}

LONG_PTR style_of(HWND window) {
  return GetWindowLongPtrA(window, GWL_STYLE);
}
bool made_visible(HWND window) {
  return (style_of(window) & WS_VISIBLE) != 0;
}

/// Pixels, without the mnemonic's mark.
SIZE extent_of(HWND window, const std::string& text) {
  std::string shown;
  for (const char c : text) {
    if (c != '&') shown += c;
  }
  const HDC context = GetDC(window);
  const HGDIOBJ old =
      SelectObject(context, reinterpret_cast<HFONT>(SendMessageA(window, WM_GETFONT, 0, 0)));
  SIZE extent = {};
  GetTextExtentPoint32A(context, shown.c_str(), static_cast<int>(shown.size()), &extent);
  SelectObject(context, old);
  ReleaseDC(window, context);
  return extent;
}

constexpr int kCheckBoxWidth = 17;
constexpr int kFlatButtonEdges = 4;

int room_for_text(const LaidOut& dialog, HWND control) {
  const int whole = ORLO::width(dialog.place_of(control));
  if (class_of(control) != "Button") return whole;
  const bool is_check_box = (style_of(control) & BS_TYPEMASK) == BS_AUTOCHECKBOX;
  return whole - (is_check_box ? kCheckBoxWidth : kFlatButtonEdges);
}

struct Expected {
  int id;
  const char* window_class;
  LONG_PTR style;
  const char* english;
  const char* german;
};

// In the order of the tabs.
constexpr Expected kMainControls[] = {
    {1014, "Static", SS_LEFT, "Search &Filter:", "Such&filter:"},
    {1026, "Edit", WS_TABSTOP, "", ""},
    {1028, "Button", BS_AUTOCHECKBOX | WS_TABSTOP, "&MS", "&MS"},
    {1015, "Static", SS_LEFT, "&Typ:", "&Typ:"},
    {1016, "ComboBox", CBS_DROPDOWNLIST | WS_TABSTOP, "", ""},
    {1017, "Static", SS_LEFT, "Group by:", "Gruppierung:"},
    {1040, "ComboBox", CBS_DROPDOWNLIST | WS_TABSTOP, "", ""},
    {1001, "SysListView32", LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS | WS_TABSTOP, "", ""},
    {1009, "Static", SS_LEFT, "&Program Name:", "&Programmname:"},
    {1002, "Edit", ES_READONLY, "", ""},
    {1031, "Static", SS_LEFT, "0 / 0 packages", "0 / 0 Pakete"},
    {1007, "Button", BS_OWNERDRAW | WS_TABSTOP, "&Refresh", "&Aktualisieren"},
    {1011, "Static", SS_LEFT, "&Icon:", "&Icon:"},
    {1004, "Edit", ES_READONLY, "", ""},
    {1019, "Static", SS_ICON, "", ""},
    {1010, "Static", SS_LEFT, "&Version:", "&Version:"},
    {1003, "Edit", ES_READONLY, "", ""},
    {1013, "Static", SS_LEFT, "Date:", "Datum:"},
    {1005, "Edit", ES_READONLY, "", ""},
    {1021, "Button", BS_OWNERDRAW | WS_DISABLED, "&Modify...", "&\344ndere..."},
    {2010, "Button", BS_OWNERDRAW | WS_DISABLED, "&repair...", "&repariere..."},
    {1018, "Button", BS_OWNERDRAW | WS_DISABLED, "&Uninstall...", "&deinstalliere..."},
    {1012, "Static", SS_LEFT, "Uninstall-Cmd.:", "Uninstall-Befehl:"},
    {1006, "Edit", ES_READONLY, "", ""},
};

TEST(MainDialogTemplate, HoldsItsControlsInTheOrderOfTheTabs) {
  for (const uint16_t language : kLanguages) {
    const LaidOut dialog(language, IDD_MAIN);
    const std::vector<HWND> controls = dialog.controls();
    ASSERT_EQ(controls.size(), std::size(kMainControls));
    for (size_t i = 0; i < controls.size(); ++i) {
      const Expected& expected = kMainControls[i];
      SCOPED_TRACE(expected.id);
      EXPECT_EQ(GetDlgCtrlID(controls[i]), expected.id);
      EXPECT_EQ(class_of(controls[i]), expected.window_class);
      EXPECT_EQ(style_of(controls[i]) & expected.style, expected.style);
      EXPECT_EQ(text_of(controls[i]), language == kEnglish ? expected.english : expected.german);
      EXPECT_EQ(made_visible(controls[i]), expected.id != 1017 && expected.id != 1040);
    }
  }
}

TEST(MainDialogTemplate, HasItsFrameFontMenuAndSize) {
  for (const uint16_t language : kLanguages) {
    SCOPED_TRACE(language);
    const LaidOut dialog(language, IDD_MAIN);
    const LONG_PTR frame =
        WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX;
    EXPECT_EQ(style_of(dialog.window()) & frame, frame);
    EXPECT_EQ(text_of(dialog.window()), "Zolvane");
    EXPECT_NE(GetMenu(dialog.window()), nullptr);
    LOGFONTA font = {};
    GetObjectA(reinterpret_cast<HFONT>(SendMessageA(dialog.window(), WM_GETFONT, 0, 0)),
               sizeof font, &font);
    EXPECT_STREQ(font.lfFaceName, "MS Sans Serif");
    RECT units = {0, 0, 360, 153};
    MapDialogRect(dialog.window(), &units);
    RECT client = {};
    GetClientRect(dialog.window(), &client);
    EXPECT_EQ(client.right, units.right);
    EXPECT_EQ(client.bottom, units.bottom);
  }
}

std::string short_date_of(uint16_t language) {
  SYSTEMTIME last_day = {};
  last_day.wYear = 2026;
  last_day.wMonth = 12;
  last_day.wDay = 31;
  char text[100] = {};
  GetDateFormatA(language, DATE_SHORTDATE | LOCALE_NOUSEROVERRIDE, &last_day, nullptr, text,
                 sizeof text);
  return text;
}

char widest_digit(HWND window) {
  char widest = '0';
  for (char digit = '1'; digit <= '9'; ++digit) {
    if (extent_of(window, {digit}).cx > extent_of(window, {widest}).cx) widest = digit;
  }
  return widest;
}

/// The widest text of the pattern's form.
std::string with_widest_digits(HWND window, std::string pattern) {
  const char digit = widest_digit(window);
  for (char& c : pattern) {
    if (c >= '0' && c <= '9') c = digit;
  }
  return pattern;
}

/// What is left for an edit control's text between its edges and margins.
int room_in_field(HWND field) {
  RECT room = {};
  SendMessageA(field, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&room));
  return ORLO::width(room);
}

// These two don't grow with the dialog: what doesn't fit here never does.
TEST(MainDialogTemplate, GivesVersionAndDateAFifthMoreThanTheirLongestContents) {
  for (const uint16_t language : kLanguages) {
    const LaidOut dialog(language, IDD_MAIN);
    const std::string date = short_date_of(language);
    EXPECT_EQ(date, language == kEnglish ? "31/12/2026" : "31.12.2026");
    const std::pair<int, std::string> contents[] = {{IDC_VERSION, "99.99.99999.99999"},
                                                    {IDC_DATE, date + " 23:59"}};
    for (const auto& [id, text] : contents) {
      SCOPED_TRACE(text);
      const HWND field = dialog.control(id);
      EXPECT_GE(room_in_field(field) * 10,
                extent_of(field, with_widest_digits(field, text)).cx * 12);
    }
  }
}

class EveryDialog : public testing::TestWithParam<std::pair<uint16_t, unsigned>> {
 protected:
  const LaidOut dialog{GetParam().first, GetParam().second};
};

TEST_P(EveryDialog, GivesEachTextAFifthMoreThanItNeeds) {
  int texts = 0;
  for (const HWND control : dialog.controls()) {
    const std::string text = text_of(control);
    if (text.empty()) continue;
    SCOPED_TRACE(text);
    ++texts;
    const SIZE extent = extent_of(control, text);
    EXPECT_GE(room_for_text(dialog, control) * 10, extent.cx * 12);
    EXPECT_GE(ORLO::height(dialog.place_of(control)), extent.cy);
  }
  const unsigned id = GetParam().second;
  const bool has_texts = id != IDD_FEATURES && id != IDD_MSI_CONTENT && id != IDD_PATCHES;
  EXPECT_EQ(texts > 0, has_texts);
}

TEST_P(EveryDialog, KeepsItsControlsInsideAndApart) {
  RECT client = {};
  GetClientRect(dialog.window(), &client);
  std::vector<HWND> shown;
  for (const HWND control : dialog.controls()) {
    if (made_visible(control)) shown.push_back(control);
  }
  for (size_t i = 0; i < shown.size(); ++i) {
    SCOPED_TRACE(GetDlgCtrlID(shown[i]));
    const RECT place = dialog.place_of(shown[i]);
    RECT common = {};
    IntersectRect(&common, &place, &client);
    EXPECT_TRUE(EqualRect(&common, &place));
    for (size_t j = i + 1; j < shown.size(); ++j) {
      const RECT other = dialog.place_of(shown[j]);
      EXPECT_FALSE(IntersectRect(&common, &place, &other)) << GetDlgCtrlID(shown[j]);
    }
  }
}

TEST_P(EveryDialog, GivesNoMnemonicTwice) {
  std::string seen;
  for (const HWND control : dialog.controls()) {
    const std::string text = text_of(control);
    const size_t mark = text.find('&');
    if (mark == std::string::npos || !made_visible(control)) continue;
    const auto key = static_cast<char>(std::tolower(static_cast<unsigned char>(text[mark + 1])));
    // "Modify" shares its key with the check box, and "repair" with "Refresh"; the texts are
    // fixed, and a disabled button leaves the key to the other.
    if (GetDlgCtrlID(control) == 1021 || GetDlgCtrlID(control) == 2010) continue;
    EXPECT_EQ(seen.find(key), std::string::npos) << text;
    seen += key;
  }
}

std::string name_of(const testing::TestParamInfo<std::pair<uint16_t, unsigned>>& info) {
  return (info.param.first == kEnglish ? "English" : "German") + std::to_string(info.param.second);
}

INSTANTIATE_TEST_SUITE_P(Resources, EveryDialog,
                         testing::Values(std::pair{kEnglish, 100u}, std::pair{kGerman, 100u},
                                         std::pair{kEnglish, 102u}, std::pair{kGerman, 102u},
                                         std::pair{kEnglish, 103u}, std::pair{kGerman, 103u},
                                         std::pair{kEnglish, 164u}, std::pair{kGerman, 164u},
                                         std::pair{kEnglish, 165u}, std::pair{kGerman, 165u},
                                         std::pair{kEnglish, 166u}, std::pair{kGerman, 166u},
                                         std::pair{kEnglish, 168u}, std::pair{kGerman, 168u}),
                         name_of);

// What every template tells of its window, in dialog units and points.
struct Heading {
  unsigned id;
  int width;
  int height;
  const char* english;
  const char* german;
};

constexpr Heading kHeadings[] = {
    {IDD_ABOUT, 211, 66, "Info about Zolvane", "Info \374ber Zolvane"},
    {IDD_MAIN, 360, 153, "Zolvane", "Zolvane"},
    {IDD_FEATURES, 318, 134, "Zolvane - Package Features", "Zolvane - Paket-Features"},
    {IDD_LEGEND, 180, 87, "Color Legend", "Farblegende"},
    {IDD_MSI_CONTENT, 318, 134, "Zolvane - MSI Content", "Zolvane - MSI-Inhalt"},
    {IDD_PATCHES, 231, 122, "Zolvane - Patches", "Zolvane - Patches"},
    {IDD_DOWNLOAD, 244, 53, "Update Download", "Update-Download"},
};

/// Reads an extended dialog template from its start.
class TemplateReader {
 public:
  explicit TemplateReader(const void* data) : at_(static_cast<const uint16_t*>(data)) {}

  void skip(int units) { at_ += units; }
  int unit() { return *at_++; }
  /// A text, or the number behind 0xffff as an empty one.
  std::wstring text() {
    if (*at_ == 0xffff) {
      skip(2);
      return {};
    }
    std::wstring read;
    while (const int next = unit())
      read += static_cast<wchar_t>(next);
    return read;
  }

 private:
  const uint16_t* at_;
};

TEST(EveryTemplate, HasItsSizeAndTheOneFont) {
  for (const Heading& heading : kHeadings) {
    for (const uint16_t language : kLanguages) {
      SCOPED_TRACE(std::to_string(heading.id) + " in " + std::to_string(language));
      TemplateReader reader(Resources(GetModuleHandleA(nullptr), language).dialog(heading.id));
      EXPECT_EQ(reader.unit(), 1);
      EXPECT_EQ(reader.unit(), 0xffff);
      // Help id, both styles, the number of controls, left and top.
      reader.skip(9);
      EXPECT_EQ(reader.unit(), heading.width);
      EXPECT_EQ(reader.unit(), heading.height);
      // Menu, class and title.
      for (int i = 0; i < 3; ++i)
        reader.text();
      EXPECT_EQ(reader.unit(), 8);
      // Weight and slant.
      reader.skip(2);
      EXPECT_EQ(reader.text(), L"MS Sans Serif");
      const LaidOut dialog(language, heading.id);
      EXPECT_EQ(text_of(dialog.window()), language == kEnglish ? heading.english : heading.german);
    }
  }
}

TEST(AboutTemplate, HasItsTitleAndLinks) {
  const LaidOut english(kEnglish, IDD_ABOUT);
  const LaidOut german(kGerman, IDD_ABOUT);
  EXPECT_EQ(text_of(english.window()), "Info about Zolvane");
  EXPECT_EQ(text_of(german.window()), "Info \374ber Zolvane");
  for (const LaidOut* dialog : {&english, &german}) {
    // A link has to get its clicks.
    EXPECT_TRUE(style_of(dialog->control(IDC_ABOUT_HOME_PAGE)) & SS_NOTIFY);
    EXPECT_TRUE(style_of(dialog->control(IDC_ABOUT_MAIL)) & SS_NOTIFY);
    EXPECT_EQ(style_of(dialog->control(IDOK)) & BS_TYPEMASK, BS_OWNERDRAW);
  }
}

TEST(LegendTemplate, HasItsTitleAndTheSameButtonTextInBothLanguages) {
  const LaidOut english(kEnglish, IDD_LEGEND);
  const LaidOut german(kGerman, IDD_LEGEND);
  EXPECT_EQ(text_of(english.window()), "Color Legend");
  EXPECT_EQ(text_of(german.window()), "Farblegende");
  for (const LaidOut* dialog : {&english, &german}) {
    EXPECT_EQ(text_of(dialog->control(IDOK)), "Schlie\337en");
    EXPECT_EQ(style_of(dialog->control(IDOK)) & BS_TYPEMASK, BS_OWNERDRAW);
    EXPECT_EQ(class_of(dialog->control(IDC_LEGEND_LIST)), "SysListView32");
    EXPECT_TRUE(style_of(dialog->window()) & WS_THICKFRAME);
  }
}

// The dialogs that only show: title, size in dialog units, what they hold, and each control's left
// and upper edge, width and height.
struct ShowingDialog {
  unsigned id;
  const char* english;
  const char* german;
  SIZE units;
  std::vector<std::pair<Expected, RECT>> controls;
};

const ShowingDialog kShowingDialogs[] = {
    {IDD_FEATURES,
     "Zolvane - Package Features",
     "Zolvane - Paket-Features",
     {318, 134},
     {{{1022, "SysTreeView32", TVS_HASLINES | TVS_HASBUTTONS | TVS_LINESATROOT | WS_TABSTOP, "",
        ""},
       {7, 7, 304, 120}}}},
    {IDD_MSI_CONTENT,
     "Zolvane - MSI Content",
     "Zolvane - MSI-Inhalt",
     {318, 134},
     {{{1029, "ListBox", LBS_NOTIFY | LBS_SORT | WS_TABSTOP, "", ""}, {7, 7, 86, 120}},
      {{1030, "SysListView32", LVS_REPORT | LVS_SINGLESEL | WS_TABSTOP, "", ""},
       {94, 7, 217, 120}}}},
    {IDD_PATCHES,
     "Zolvane - Patches",
     "Zolvane - Patches",
     {231, 122},
     {{{1033, "SysListView32", LVS_REPORT | WS_TABSTOP, "", ""}, {7, 7, 217, 108}}}},
    {IDD_DOWNLOAD,
     "Update Download",
     "Update-Download",
     {244, 53},
     {{{0xffff, "Static", SS_LEFT, "Downloading:", "Lade:"}, {7, 10, 54, 10}},
      {{1038, "Edit", ES_READONLY, "", ""}, {63, 8, 174, 12}},
      {{1039, "msctls_progress32", 0, "", ""}, {7, 30, 230, 14}}}},
};

void expect_dialog(const ShowingDialog& expected, uint16_t language) {
  const LaidOut dialog(language, expected.id);
  EXPECT_EQ(text_of(dialog.window()), language == kEnglish ? expected.english : expected.german);
  RECT units = {0, 0, expected.units.cx, expected.units.cy};
  MapDialogRect(dialog.window(), &units);
  RECT client = {};
  GetClientRect(dialog.window(), &client);
  EXPECT_TRUE(EqualRect(&client, &units));
  const std::vector<HWND> controls = dialog.controls();
  ASSERT_EQ(controls.size(), expected.controls.size());
  for (size_t i = 0; i < controls.size(); ++i) {
    const auto& [control, place] = expected.controls[i];
    SCOPED_TRACE(control.id);
    EXPECT_EQ(GetDlgCtrlID(controls[i]) & 0xffff, control.id);
    EXPECT_EQ(class_of(controls[i]), control.window_class);
    EXPECT_EQ(style_of(controls[i]) & control.style, control.style);
    EXPECT_EQ(text_of(controls[i]), language == kEnglish ? control.english : control.german);
    RECT wanted = place;
    MapDialogRect(dialog.window(), &wanted);
    RECT found = dialog.place_of(controls[i]);
    found.right -= found.left;
    found.bottom -= found.top;
    EXPECT_TRUE(EqualRect(&found, &wanted)) << found.right << " by " << found.bottom << ", not "
                                            << wanted.right << " by " << wanted.bottom;
  }
}

TEST(ShowingTemplates, HoldWhatTheirDialogsShow) {
  for (const ShowingDialog& expected : kShowingDialogs) {
    for (const uint16_t language : kLanguages) {
      SCOPED_TRACE(std::to_string(expected.id) + " in " + std::to_string(language));
      expect_dialog(expected, language);
    }
  }
}

TEST(ShowingTemplates, OnlyTheDownloadHasNoButtonsInItsFrame) {
  for (const ShowingDialog& expected : kShowingDialogs) {
    SCOPED_TRACE(expected.id);
    const LaidOut dialog(kEnglish, expected.id);
    EXPECT_EQ((style_of(dialog.window()) & WS_SYSMENU) == 0, expected.id == IDD_DOWNLOAD);
    EXPECT_EQ((style_of(dialog.window()) & WS_THICKFRAME) == 0, expected.id == IDD_DOWNLOAD);
  }
}

}  // namespace
