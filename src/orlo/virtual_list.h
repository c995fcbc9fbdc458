// A list view whose cells are asked for when they are drawn.
#pragma once

#include "orlo/list_view.h"
#include "orlo/virtual_rows.h"

namespace ORLO {

/// Each row carries an id as its parameter, by which its texts are found. The dialog hands its
/// notifications to Notify.
class VirtualListData : public ListView {
 public:
  using Texts = VirtualRows::Texts;

  explicit VirtualListData(HWND list) noexcept : ListView(list) {}
  virtual ~VirtualListData() = default;
  VirtualListData(const VirtualListData&) = delete;
  VirtualListData& operator=(const VirtualListData&) = delete;

  /// Returns the new row's id. Without texts it is filled when it is first displayed.
  uint32_t insert_row(int index);
  uint32_t insert_row(int index, Texts texts);
  void remove_row(uint32_t id);
  void remove_all();
  size_t rows() const noexcept { return rows_.count(); }

  /// Answers a request for a cell; false for all other notifications, and for those of others.
  bool Notify(NMHDR* header);

 protected:
  /// Gives the texts of a row's columns.
  virtual void fill(uint32_t id, Texts& texts) = 0;

 private:
  void give_text(LVITEMA& item);

  VirtualRows rows_;
};

}  // namespace ORLO
