// The seam between the list model and the list control that it drives.
#pragma once

#include <cstdint>

#include "orlo/rstring.h"

/// A report-mode list whose rows hold a text, a number of the model's and an image index; every
/// other cell is asked for when it is drawn. Indices are positions on the screen, from 0.
class ListControl {
 public:
  enum class Align { left, right };
  static constexpr int kEnd = 0x7fffffff;

  virtual ~ListControl() = default;

  virtual void add_column(int index, const String& title, int width, Align align) = 0;
  /// Inserts in front of `index`; kEnd or anything beyond the end appends.
  virtual void insert_item(int index, const String& text, uint32_t id, int image) = 0;
  virtual void delete_item(int index) = 0;
  virtual void delete_all() = 0;
  virtual int count() const = 0;
  /// Position of the row with this id, -1 if it isn't shown.
  virtual int find(uint32_t id) const = 0;
  /// The id of the row at a position; 0 if there is none.
  virtual uint32_t id_at(int index) const = 0;
  virtual void redraw_item(int index) = 0;
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
