// What a row's meaning looks like: the colours and the font of the main list's cells.
#pragma once

#include <cstdint>
#include <optional>

#include "view/list_model.h"

/// As the system has it: 0x00BBGGRR.
using Color = uint32_t;

inline constexpr Color kSubPackageGrey = 0x808080;
inline constexpr Color kSearchRed = 0x0000ff;
inline constexpr Color kSystemBlue = 0xffe4e4;
inline constexpr Color kChangeYellow = 0x00ffff;
inline constexpr Color kSortCream = 0xe4ffff;

/// The user's own colours.
struct SystemColors {
  Color window_text;
  Color window;
};

enum class CellFont { any, normal, bold };

/// How a cell is drawn. A list carries a background on to the row's next cell, so one that is
/// missing here is that of the cell before, or the list's own in the row's first cell.
struct CellPaint {
  Color text;
  std::optional<Color> background;
  CellFont font = CellFont::any;  ///< `any` is the one that the list draws in by itself

  bool operator==(const CellPaint&) const = default;
};

/// Looks at the model anew each time: nothing about colours is stored with a row. Ids of rows that
/// are gone are fine.
class RowColors {
 public:
  /// The model must outlive this.
  explicit RowColors(ListModel& model) noexcept : model_(model) {}

  /// Whether a row's cells have to be painted one by one; if not, the paint of its cell 0 is that
  /// of the whole row. So a new package is bold as a whole as long as nothing else is marked.
  bool differ_by_cell(uint32_t id) const noexcept;
  CellPaint cell(uint32_t id, int column, const SystemColors& system) const;

 private:
  ListModel& model_;
};
