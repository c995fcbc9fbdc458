// The system's list view as the list that the model drives.
#pragma once

#include "orlo/orlowin.h"
#include "view/list_control.h"

/// Wraps a report-mode list view that a dialog owns. Cells beyond the first are asked for by the
/// control when it draws (LVN_GETDISPINFOA).
class SysListControl : public ListControl {
 public:
  explicit SysListControl(HWND list) noexcept : list_(list) {}
  SysListControl(const SysListControl&) = delete;
  SysListControl& operator=(const SysListControl&) = delete;

  void add_column(int index, const String& title, int width, Align align) override;
  void insert_item(int index, const String& text, uint32_t id, int image) override;
  void delete_item(int index) override;
  void delete_all() override;
  int count() const override;
  int find(uint32_t id) const override;
  uint32_t id_at(int index) const override;
  void redraw_item(int index) override;
  void freeze(bool on) override;

  void ensure_visible(int index);
  /// Adds styles such as LVS_EX_GRIDLINES; the others stay as they are.
  void set_extended_style(DWORD styles);
  /// Takes the header's buttons away, for a list without sorting.
  void disable_header_clicks();
  HWND window() const noexcept { return list_; }

 private:
  LRESULT send(UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const {
    return SendMessageA(list_, message, wparam, lparam);
  }

  const HWND list_;
  int frozen_ = 0;
};
