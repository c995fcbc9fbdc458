// Where the controls of a resizable window go, as data.
#pragma once

#include <vector>

#include "orlo/orlowin.h"

namespace ORLO {

/// The edges of a control that move with the right or lower edge of the client area.
enum ResizeFlag : unsigned {
  kMoveLeft = 1,
  kMoveRight = 2,
  kMoveTop = 4,
  kMoveBottom = 8,
};

struct ResizeRule {
  int control_id;
  /// Any of ResizeFlag.
  unsigned flags;
};

class Resizer {
 public:
  void add(const ResizeRule* first, size_t count) {
    rules.insert(rules.end(), first, first + count);
  }

  /// Starts from the window as it is now; the size given is the smallest one of its frame.
  void init(HWND for_window, int minimum_width, int minimum_height);
  /// The same with the window's present size as its smallest.
  void init(HWND for_window);
  /// Moves the controls for a new size of the client area. A rule for a control that isn't there
  /// is skipped.
  void resize(int width, int height);
  /// Gives the window its smallest size plus this, and lays its controls out.
  void set_size(int extra_width, int extra_height);
  /// Puts the smallest size into a size request.
  void limit(MINMAXINFO& info) const noexcept;

 private:
  std::vector<ResizeRule> rules;
  int min_width = 0;
  int min_height = 0;
  HWND window = nullptr;
  int last_width = 0;
  int last_height = 0;
};

/// The client rectangle that a window has, or would have if it weren't minimised.
RECT client_space(HWND window) noexcept;

}  // namespace ORLO
