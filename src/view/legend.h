// The colour legend: the rules of the main list's colours, on five sample rows.
#pragma once

#include "view/list_control.h"
#include "view/row_colors.h"

inline constexpr int kLegendRows = 5;
inline constexpr int kLegendColumns = 3;

struct LegendColumn {
  unsigned title;  ///< id in the string table
  int width;       ///< pixels of a screen of 96 dots per inch
  ListControl::Align align;
};

/// `column` from 0 to kLegendColumns - 1.
const LegendColumn& legend_column(int column);

/// Text of a cell; empty for one that doesn't exist. The samples are the same in all languages but
/// for the search string, which is handed in.
String legend_text(int row, int column, const String& search_string);

/// How a cell is drawn in a row with this name; `text` is the cell's own.
CellPaint legend_paint(const String& name, const String& text, int column,
                       const String& search_string, const SystemColors& system);
