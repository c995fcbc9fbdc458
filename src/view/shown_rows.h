// The lines of the list control, in its order.
#pragma once

#include <functional>
#include <optional>

#include "platform/image_list.h"
#include "view/list_control.h"
#include "view/row_order.h"

/// Knows each line's position without asking the control, which could only answer by walking.
class ShownRows {
 public:
  /// The line that the user chose last.
  struct Mark {
    uint32_t id;
    unsigned state;
  };

  ShownRows(ListControl& list, const SortState& sort) noexcept : list_(list), sort_(sort) {}
  ShownRows(const ShownRows&) = delete;
  ShownRows& operator=(const ShownRows&) = delete;

  /// Every line that is inserted from now on belongs to this group.
  void set_group(int group) noexcept { group_ = group; }
  /// What the lines' images are drawn from, null if that isn't known. An image that isn't there is
  /// drawn as the default one.
  void use_images(const ImageList* images) noexcept { images_ = images; }

  /// Inside a batch new lines go to the control all at once, at its end, with drawing frozen.
  void begin_batch();
  void end_batch() noexcept;

  /// In front of the first row that is greater.
  void insert(ListRow& row);
  void erase(const ListRow& row);
  void redraw(const ListRow& row);
  /// Instead of all lines: those rows of `ordered` that the filter accepts. Returns their number.
  size_t refill(const ListRows& ordered);
  /// Lets the control sort the lines by rank. `row_of` gives the row of an id, null if it is gone.
  void sort(const std::function<ListRow*(uint32_t)>& row_of);
  void clear();
  /// Tells each shown row its line.
  void number_lines();

  std::optional<Mark> mark() const;
  /// The marked row's line, if it has one, is chosen again and scrolled to.
  void restore(const std::optional<Mark>& mark);

 private:
  ListRows::iterator place_of(const ListRow& row);
  int position_of(const ListRow& row) const;
  void insert_line(int position, ListRow& row);
  void give_to_control();
  int drawn_image(const ListRow& row) const;

  ListControl& list_;
  const SortState& sort_;
  ListRows rows_;
  const ImageList* images_ = nullptr;
  int group_ = ListControl::kNoGroup;
  bool in_batch_ = false;
};
