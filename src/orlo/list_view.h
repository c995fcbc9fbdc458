// A report-mode list view, seen as rows of cells.
#pragma once

#include "orlo/orlowin.h"
#include "orlo/rstring.h"

namespace ORLO {

/// Wraps a control that somebody else owns; it may be null if nothing is asked of it.
class ListView {
 public:
  explicit ListView(HWND list) noexcept : _hwnd(list) {}

  void add_column(int index, const char* title, int width, int format = LVCFMT_LEFT) const;
  /// Inserts in front of `index`, at most behind the last row, and returns where. A null text has
  /// each cell asked for when it is drawn.
  int insert(int index, const char* text, LPARAM param) const;
  void set_text(int row, int column, const char* text) const;
  /// Of any length.
  String text(int row, int column) const;
  LPARAM param(int row) const;
  void set_param(int row, LPARAM param) const;
  /// The row with this parameter, -1 if there is none.
  int find(LPARAM param) const;
  int count() const { return static_cast<int>(send(LVM_GETITEMCOUNT)); }
  void remove(int row) const { send(LVM_DELETEITEM, static_cast<WPARAM>(row)); }
  void clear() const { send(LVM_DELETEALLITEMS); }
  void remove_columns() const {
    while (send(LVM_DELETECOLUMN, 0) != 0) {
    }
  }
  /// Switches the styles of `mask` on or off as `styles` says.
  void set_extended_style(DWORD mask, DWORD styles) const {
    send(LVM_SETEXTENDEDLISTVIEWSTYLE, mask, static_cast<LPARAM>(styles));
  }

  HWND window() const noexcept { return _hwnd; }

 protected:
  LRESULT send(UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const {
    return SendMessageA(_hwnd, message, wparam, lparam);
  }

  const HWND _hwnd;
};

}  // namespace ORLO
