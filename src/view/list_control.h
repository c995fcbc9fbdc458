// The seam between the list model and the list control that it drives.
#pragma once

#include <cstdint>
#include <functional>

#include "orlo/rstring.h"

/// A report-mode list whose rows hold a text, a number of the model's, an image index and a group;
/// every other cell is asked for when it is drawn. Indices are positions on the screen, from 0.
class ListControl {
 public:
  enum class Align { left, right };
  enum class SortArrow { none, down, up };
  struct Item {
    const char* text = "";  ///< read during the call only
    uint32_t id = 0;
    int image = 0;
    int group = kNoGroup;
  };
  /// Negative, 0 or positive for two ids. Of rows that compare equal the control decides.
  using Order = std::function<int(uint32_t, uint32_t)>;
  static constexpr int kEnd = 0x7fffffff;
  static constexpr int kNoGroup = 0;
  /// Bits of a row's state.
  static constexpr unsigned kFocused = 1;
  static constexpr unsigned kSelected = 2;

  virtual ~ListControl() = default;

  // Widths are pixels of a screen of 96 dots per inch, whatever the screen is.
  virtual void add_column(int index, const String& title, int width, Align align) = 0;
  virtual int column_width(int index) const = 0;
  virtual void set_column_width(int index, int width) = 0;
  /// Takes the column's arrow away or gives it one; no other column is touched. A column that
  /// doesn't exist is passed over.
  virtual void set_sort_arrow(int column, SortArrow arrow) = 0;

  /// Inserts in front of `index`; kEnd or anything beyond the end appends.
  virtual void insert_item(int index, const Item& item) = 0;
  virtual void delete_item(int index) = 0;
  virtual void delete_all() = 0;
  virtual int count() const = 0;
  /// The id of the row at a position; 0 if there is none.
  virtual uint32_t id_at(int index) const = 0;
  virtual void redraw_item(int index) = 0;
  virtual void sort(const Order& order) = 0;

  /// The row that the user chose last, -1 if there is none.
  virtual int selection_mark() const = 0;
  /// kFocused and kSelected of a row.
  virtual unsigned state(int index) const = 0;
  /// Gives a row these states and the selection mark.
  virtual void select(int index, unsigned state) = 0;
  virtual void ensure_visible(int index) = 0;

  virtual void enable_groups(bool on) = 0;
  /// A group behind the others. `title_length` is told to the control beside the title, which ends
  /// with a NUL.
  virtual void add_group(int id, const char16_t* title, int title_length) = 0;

  /// Nestable: drawing stops with the first true and resumes, with one redraw, at the matching
  /// false.
  virtual void freeze(bool on) = 0;
};

/// Freezes a list's drawing for its scope: what is changed inside is one batch for the eye.
class FrozenRedraw {
 public:
  explicit FrozenRedraw(ListControl& list) : list_(list) { list_.freeze(true); }
  ~FrozenRedraw() { list_.freeze(false); }
  FrozenRedraw(const FrozenRedraw&) = delete;
  FrozenRedraw& operator=(const FrozenRedraw&) = delete;

 private:
  ListControl& list_;
};
