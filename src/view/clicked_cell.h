// The cell of the list that the user opened a menu for.
#pragma once

#include "view/list_model.h"

/// Kept as the package's id and the column: lines may move or go while a menu is open.
class ClickedCell {
 public:
  /// The model must outlive this.
  explicit ClickedCell(ListModel& model) noexcept : model_(model) {}

  /// Id 0: beside the lines.
  void click(uint32_t id, int column);
  /// What the cell shows now, of a longer text the first 259 characters; empty if there is none.
  String text() const;
  /// Where the cell led when it was clicked; empty if nowhere.
  const String& url() const noexcept { return url_; }

 private:
  ListModel& model_;
  uint32_t id_ = 0;
  int column_ = 0;
  String url_;
};
