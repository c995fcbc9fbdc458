#include "orlo/system_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ORLO {
namespace {

std::string_view view(const String& text) {
  return {text.c_str(), text.length()};
}

/// A string table's block of sixteen counted texts.
std::vector<wchar_t> block_of(const std::vector<std::wstring>& texts) {
  std::vector<wchar_t> block;
  for (size_t i = 0; i < 16; ++i) {
    const std::wstring text = i < texts.size() ? texts[i] : std::wstring();
    block.push_back(static_cast<wchar_t>(text.size()));
    block.insert(block.end(), text.begin(), text.end());
  }
  return block;
}

/// A module with the strings 16 to 31, made of a small library of the system.
class StringTableTest : public testing::Test {
 protected:
  void SetUp() override {
    char folder[MAX_PATH];
    char source[MAX_PATH];
    GetTempPathA(MAX_PATH, folder);
    GetTempFileNameA(folder, "str", 0, path_);
    GetSystemDirectoryA(source, MAX_PATH);
    ASSERT_TRUE(CopyFileA((std::string(source) + "\\version.dll").c_str(), path_, FALSE));
    std::vector<wchar_t> block =
        block_of({L"plain", L"Gr\x00fc\x00df\x20ac", L"%d of %s", std::wstring(1023, L'a'),
                  std::wstring(1024, L'b'), std::wstring(3000, L'c')});
    const HANDLE update = BeginUpdateResourceA(path_, FALSE);
    ASSERT_NE(update, nullptr);
    // Block 2 begins with string 16.
    ASSERT_TRUE(UpdateResourceA(update, MAKEINTRESOURCEA(6), MAKEINTRESOURCEA(2), LANG_NEUTRAL,
                                block.data(), static_cast<DWORD>(block.size() * sizeof(wchar_t))));
    ASSERT_TRUE(EndUpdateResourceA(update, FALSE));
    module_ = LoadLibraryExA(path_, nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_NE(module_, nullptr);
  }

  void TearDown() override {
    if (module_ != nullptr) FreeLibrary(module_);
    DeleteFileA(path_);
  }

  char path_[MAX_PATH] = "";
  HMODULE module_ = nullptr;
};

TEST_F(StringTableTest, GivesTheStringInTheCodePage) {
  String text("old");
  EXPECT_EQ(load_string(text, module_, 16), 5U);
  EXPECT_EQ(view(text), "plain");
  EXPECT_EQ(load_string(text, module_, 17), 5U);
  EXPECT_EQ(view(text), "Gr\xfc\xdf\x80");
}

TEST_F(StringTableTest, IsEmptyWhereTheModuleHasNoSuchString) {
  String text("old");
  EXPECT_EQ(load_string(text, module_, 31), 0U);
  EXPECT_EQ(view(text), "");
  text = "old";
  EXPECT_EQ(load_string(text, module_, 60000), 0U);
  EXPECT_EQ(view(text), "");
}

TEST_F(StringTableTest, CutsStringsAt1023Characters) {
  String text;
  EXPECT_EQ(load_string(text, module_, 19), 1023U);
  EXPECT_EQ(view(text), std::string(1023, 'a'));
  EXPECT_EQ(load_string(text, module_, 20), 1023U);
  EXPECT_EQ(view(text), std::string(1023, 'b'));
  EXPECT_EQ(load_string(text, module_, 21), 1023U);
  EXPECT_EQ(view(text), std::string(1023, 'c'));
}

TEST_F(StringTableTest, HoldsFormatTexts) {
  EXPECT_EQ(view(formatted_string(module_, 18, 3, "five")), "3 of five");
  EXPECT_EQ(view(formatted_string(module_, 31, 3, "five")), "");
}

/// A window that answers for its text as a test wants.
class WindowTextTest : public testing::Test {
 protected:
  void SetUp() override {
    window_ = CreateWindowA("STATIC", "text", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr,
                            GetModuleHandleA(nullptr), nullptr);
    ASSERT_NE(window_, nullptr);
  }
  void TearDown() override { DestroyWindow(window_); }

  /// The first question for the text goes unanswered, the one for its length doesn't.
  void be_silent_once(size_t length) {
    told_length_ = length;
    silent_ = true;
    SetWindowLongPtrA(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&procedure));
  }

  HWND window_ = nullptr;

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_GETTEXTLENGTH) return static_cast<LRESULT>(told_length_);
    if (message != WM_GETTEXT) return DefWindowProcA(window, message, wparam, lparam);
    if (std::exchange(silent_, false)) return 0;
    const size_t length = std::min<size_t>(told_length_, wparam - 1);
    char* const text = reinterpret_cast<char*>(lparam);
    std::memset(text, 'x', length);
    text[length] = '\0';
    return static_cast<LRESULT>(length);
  }

  static inline size_t told_length_ = 0;
  static inline bool silent_ = false;
};

TEST_F(WindowTextTest, IsReadUpTo1023Characters) {
  String text("old");
  EXPECT_EQ(get_window_text(text, window_), 4U);
  EXPECT_EQ(view(text), "text");
  for (const size_t length : {1022U, 1023U, 1024U, 5000U}) {
    SCOPED_TRACE(length);
    SetWindowTextA(window_, std::string(length, 'a').c_str());
    const size_t expected = std::min<size_t>(length, 1023);
    EXPECT_EQ(get_window_text(text, window_), expected);
    EXPECT_EQ(view(text), std::string(expected, 'a'));
  }
}

TEST_F(WindowTextTest, IsEmptyForAnEmptyWindow) {
  String text("old");
  SetWindowTextA(window_, "");
  EXPECT_EQ(get_window_text(text, window_), 0U);
  EXPECT_EQ(view(text), "");
}

TEST_F(WindowTextTest, IsAsManyNulsAsAWindowTellsThatGivesNoText) {
  be_silent_once(5);
  String text;
  EXPECT_EQ(get_window_text(text, window_), 5U);
  EXPECT_EQ(view(text), std::string(5, '\0'));
}

TEST_F(WindowTextTest, IsAskedForAgainWhereItsLengthIsBeyondTheBuffer) {
  for (const size_t length : {1024U, 5000U}) {
    SCOPED_TRACE(length);
    be_silent_once(length);
    String text;
    EXPECT_EQ(get_window_text(text, window_), length);
    EXPECT_EQ(view(text), std::string(length, 'x'));
  }
}

TEST(Bstr, HoldsEveryCharacterOfAString) {
  const int before = OwnedBstr::live();
  const std::string long_text(1000, '\xe4');
  for (const std::string& text : {std::string(), std::string("a\0\x80", 3), long_text}) {
    const OwnedBstr wide = to_bstr(text);
    ASSERT_TRUE(wide);
    EXPECT_EQ(SysStringLen(wide.get()), text.size());
    EXPECT_EQ(wide.get()[text.size()], L'\0');
  }
  EXPECT_EQ(to_bstr("\x80").get()[0], L'\x20ac');
  EXPECT_EQ(OwnedBstr::live(), before);
}

TEST(Bstr, BecomesAStringOfAsManyBytes) {
  EXPECT_EQ(view(from_bstr(nullptr)), "");
  const OwnedBstr empty(SysAllocString(L""));
  EXPECT_EQ(view(from_bstr(empty.get())), "");
  const OwnedBstr text(SysAllocString(L"\x00e4 \x20ac \x4e2d"));
  EXPECT_EQ(view(from_bstr(text.get())), "\xe4 \x80 ?");
  const OwnedBstr with_nul(SysAllocStringLen(L"ab\0cd", 5));
  EXPECT_EQ(view(from_bstr(with_nul.get())), std::string_view("ab\0\0\0", 5));
}

/// What the clipboard holds as text, up to its terminator.
std::string clipboard_text() {
  if (!OpenClipboard(nullptr)) return "not opened";
  const HANDLE memory = GetClipboardData(CF_TEXT);
  const char* const bytes = memory != nullptr ? static_cast<char*>(GlobalLock(memory)) : nullptr;
  std::string text = bytes != nullptr ? bytes : "nothing";
  if (bytes != nullptr) GlobalUnlock(memory);
  CloseClipboard();
  return text;
}

TEST(Clipboard, TakesTheTextAndLosesWhatWasThere) {
  const HWND window = CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr,
                                    GetModuleHandleA(nullptr), nullptr);
  for (const char* text : {"first", "Gr\xfc\xdf", "line\r\nline", ""}) {
    SCOPED_TRACE(text);
    EXPECT_TRUE(copy_to_clipboard(text, window));
    EXPECT_EQ(clipboard_text(), text);
    EXPECT_EQ(GetClipboardOwner(), window);
  }
  DestroyWindow(window);
}

TEST(Clipboard, RefusesAWindowThatIsNone) {
  ASSERT_TRUE(copy_to_clipboard("before", nullptr));
  // NOLINTNEXTLINE(performance-no-int-to-ptr): no window has this handle.
  EXPECT_FALSE(copy_to_clipboard("after", reinterpret_cast<HWND>(0x7ff0)));
  EXPECT_EQ(clipboard_text(), "before");
}

}  // namespace
}  // namespace ORLO
