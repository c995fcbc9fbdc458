// Dialog templates made in memory, for tests of windows.
#pragma once

#include <string>
#include <vector>

#include "orlo/orlowin.h"

namespace ORLO {

class TestTemplate {
 public:
  static constexpr WORD kButton = 0x0080;
  static constexpr WORD kEdit = 0x0081;
  static constexpr WORD kStatic = 0x0082;

  /// A size in dialog units; without WS_VISIBLE the dialog stays hidden.
  TestTemplate(short cx, short cy, DWORD style = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME)
      : words_(sizeof(DLGTEMPLATE) / sizeof(WORD)) {
    DLGTEMPLATE header = {};
    header.style = style;
    header.cx = cx;
    header.cy = cy;
    write(0, header);
    // Neither menu, nor class, nor title.
    words_.insert(words_.end(), 3, WORD{0});
  }

  TestTemplate& add(WORD id, WORD window_class, const char* text, RECT place, DWORD style = 0) {
    if (words_.size() % 2 != 0) words_.push_back(0);
    DLGITEMTEMPLATE item = {};
    item.style = style | WS_CHILD | WS_VISIBLE;
    item.x = static_cast<short>(place.left);
    item.y = static_cast<short>(place.top);
    item.cx = static_cast<short>(width(place));
    item.cy = static_cast<short>(height(place));
    item.id = id;
    const size_t start = words_.size();
    words_.resize(start + sizeof item / sizeof(WORD));
    write(start, item);
    words_.push_back(0xFFFF);
    words_.push_back(window_class);
    for (const char* c = text; *c != '\0'; ++c)
      words_.push_back(static_cast<unsigned char>(*c));
    words_.push_back(0);
    // No creation data.
    words_.push_back(0);
    ++header()->cdit;
    return *this;
  }

  const DLGTEMPLATE* get() { return header(); }

 private:
  DLGTEMPLATE* header() { return reinterpret_cast<DLGTEMPLATE*>(words_.data()); }
  template <typename Record>
  void write(size_t start, const Record& record) {
    memcpy(words_.data() + start, &record, sizeof record);
  }

  std::vector<WORD> words_;
};

/// A dialog with nothing behind it, hidden unless its template says otherwise.
class BareDialog {
 public:
  explicit BareDialog(TestTemplate& plan, HWND owner = nullptr)
      : window_(CreateDialogIndirectParamA(GetModuleHandleA(nullptr), plan.get(), owner,
                                           &BareDialog::ignore, 0)) {}
  ~BareDialog() { DestroyWindow(window_); }
  BareDialog(const BareDialog&) = delete;
  BareDialog& operator=(const BareDialog&) = delete;

  HWND window() const { return window_; }
  SIZE client() const {
    RECT rect = {};
    GetClientRect(window_, &rect);
    return {rect.right, rect.bottom};
  }
  /// In client coordinates.
  RECT place_of(int id) const {
    RECT rect = {};
    GetWindowRect(GetDlgItem(window_, id), &rect);
    MapWindowPoints(nullptr, window_, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
  }

 private:
  static INT_PTR CALLBACK ignore(HWND, UINT, WPARAM, LPARAM) { return 0; }

  const HWND window_;
};

inline bool operator==(const RECT& a, const RECT& b) {
  return EqualRect(&a, &b) != FALSE;
}

}  // namespace ORLO
