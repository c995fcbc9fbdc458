// A dialog about a package, hidden, on what a test has put into memory.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "inspect/inspection_dlg.h"
#include "orlo/dpi.h"
#include "orlo/list_view.h"
#include "orlo/thread_record.h"
#include "orlo/window_helpers.h"
#include "platform/memory_installer.h"
#include "platform/memory_registry.h"
#include "platform/resource_ids.h"

inline constexpr uint16_t kEnglish = 2057;
inline constexpr uint16_t kGerman = 1031;
inline constexpr char kProduct[] = "{12345678-ABCD-EF01-2345-6789ABCDEF01}";

class InspectionDlgTest : public testing::TestWithParam<uint16_t> {
 protected:
  InspectionDlgTest() {
    INITCOMMONCONTROLSEX classes = {};
    classes.dwSize = sizeof classes;
    classes.dwICC = ICC_LISTVIEW_CLASSES | ICC_TREEVIEW_CLASSES;
    InitCommonControlsEx(&classes);
    package.name = kProduct;
    package.displayName = "Meadow";
    package.packagePath = "C:\\meadow.msi";
    package.MSI = true;
  }
  ~InspectionDlgTest() override {
    if (IsWindow(window)) DestroyWindow(window);
  }

  template <typename Dlg, typename... Arguments>
  void open(unsigned id, Arguments&&... arguments) {
    window =
        ORLO::Dialog::DoModeless(resources.module(), resources.dialog(id), nullptr, [&](HWND made) {
          template_size = frame_of(made);
          return std::make_unique<Dlg>(made, resources, package, arguments...);
        });
    ASSERT_NE(window, nullptr);
  }

  /// The cursor that stands over all windows of the thread; null if none does.
  static HCURSOR cursor() { return ORLO::current_thread_record().cursor; }
  static HCURSOR wait_cursor() { return LoadCursorA(nullptr, IDC_WAIT); }

  bool is_german() const { return GetParam() == kGerman; }
  HWND control(int id) const { return GetDlgItem(window, id); }
  std::string title() const { return ORLO::window_text(window).c_str(); }
  LRESULT send(int id, UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const {
    return SendMessageA(control(id), message, wparam, lparam);
  }
  /// Of the whole window.
  static SIZE frame_of(HWND of) {
    RECT rect = {};
    GetWindowRect(of, &rect);
    return {ORLO::width(rect), ORLO::height(rect)};
  }
  /// How much larger the window is than its template.
  std::pair<LONG, LONG> growth() const {
    const SIZE now = frame_of(window);
    return {now.cx - template_size.cx, now.cy - template_size.cy};
  }
  static std::pair<LONG, LONG> scaled(int width, int height) {
    const int dpi = ORLO::screen_dpi();
    return {ORLO::scale_up(width, dpi), ORLO::scale_up(height, dpi)};
  }
  RECT place_of(int id) const {
    RECT rect = {};
    GetWindowRect(control(id), &rect);
    MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
  }
  void resize(LONG width, LONG height) const {
    SetWindowPos(window, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
  }

  struct Heading {
    std::string text;
    int width;
    int format;
    bool operator==(const Heading&) const = default;
    friend void PrintTo(const Heading& heading, std::ostream* out) {
      *out << heading.text << ' ' << heading.width << ' ' << heading.format;
    }
  };
  std::vector<Heading> headings(int list) const {
    std::vector<Heading> found;
    char text[1024];
    LVCOLUMNA column = {};
    column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
    column.pszText = text;
    column.cchTextMax = sizeof text;
    while (send(list, LVM_GETCOLUMNA, found.size(), reinterpret_cast<LPARAM>(&column)) != 0) {
      found.push_back({text, column.cx, column.fmt & LVCFMT_JUSTIFYMASK});
      column.cchTextMax = sizeof text;
    }
    return found;
  }
  std::vector<std::vector<std::string>> rows(int list) const {
    const ORLO::ListView view(control(list));
    const size_t columns = headings(list).size();
    std::vector<std::vector<std::string>> found;
    for (int row = 0; row < view.count(); ++row) {
      auto& cells = found.emplace_back();
      for (size_t column = 0; column < columns; ++column)
        cells.emplace_back(view.text(row, static_cast<int>(column)).c_str());
    }
    return found;
  }

  const Resources resources{GetModuleHandleA(nullptr), GetParam()};
  UninstallEntry package;
  MemoryInstaller installer;
  MemoryRegistry registry;
  HWND window = nullptr;
  SIZE template_size = {};
};

inline std::string name_of_language(const testing::TestParamInfo<uint16_t>& info) {
  return info.param == kGerman ? "German" : "English";
}
