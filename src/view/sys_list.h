// The system's list view as the list that the model drives.
#pragma once

#include "orlo/dpi.h"
#include "orlo/orlowin.h"
#include "view/list_control.h"

/// Wraps a report-mode list view that a dialog owns. Cells beyond the first are asked for by the
/// control when it draws (LVN_GETDISPINFOA).
class SysListControl : public ListControl {
 public:
  /// `dpi`: the resolution that the widths of columns are scaled to.
  explicit SysListControl(HWND list, int dpi = ORLO::screen_dpi()) noexcept
      : list_(list), dpi_(dpi) {}
  SysListControl(const SysListControl&) = delete;
  SysListControl& operator=(const SysListControl&) = delete;

  void add_column(int index, const String& title, int width, Align align) override;
  int column_width(int index) const override;
  void set_column_width(int index, int width) override;
  void set_sort_arrow(int column, SortArrow arrow) override;

  void insert_item(int index, const Item& item) override;
  void delete_item(int index) override;
  void delete_all() override;
  int count() const override;
  uint32_t id_at(int index) const override;
  void redraw_item(int index) override;
  void sort(const Order& order) override;

  int selection_mark() const override;
  unsigned state(int index) const override;
  void select(int index, unsigned state) override;
  void ensure_visible(int index) override;

  void enable_groups(bool on) override;
  void add_group(int id, const char16_t* title, int title_length) override;

  void freeze(bool on) override;

  /// Position of the row with this id, -1 if it isn't shown. The control looks at line by line.
  int find(uint32_t id) const;
  /// A place on the screen just below a row's icon, not outside the control.
  POINT below_row(int index) const;
  /// Adds styles such as LVS_EX_GRIDLINES; the others stay as they are.
  void set_extended_style(DWORD styles);
  HWND window() const noexcept { return list_; }
  HWND header() const { return reinterpret_cast<HWND>(send(LVM_GETHEADER)); }

 private:
  LRESULT send(UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const {
    return SendMessageA(list_, message, wparam, lparam);
  }

  const HWND list_;
  const int dpi_;
  int frozen_ = 0;
};
