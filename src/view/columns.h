// The columns of the main list.
#pragma once

#include <cstdint>

#include "inventory/entry.h"
#include "view/list_control.h"

inline constexpr int kListColumns = 31;
/// The column of the name, the one that the list is sorted by at start, and the one that tells
/// changes.
inline constexpr int kProgramNameColumn = 2;
inline constexpr int kInstallDateColumn = 6;
inline constexpr int kChangesColumn = 30;

struct ListColumn {
  unsigned title;  ///< id in the string table
  int width;       ///< as ListControl counts them; 0 hides the column
  ListControl::Align align;
  /// The cell's text, for columns that show a field as it is; else null.
  String UninstallEntry::*text;
  /// The bit of `changed` that tells of this column, 0 if none does. Fixed, also where it isn't
  /// that of the column's own field.
  uint32_t change_bit;
};

/// `index` from 0 to kListColumns - 1.
const ListColumn& list_column(int index);

/// Texts that cells take from the string table.
struct CellTexts {
  String changed;
  String is_new;
};

/// Text of a cell; empty for a column that doesn't exist.
String cell_text(const UninstallEntry& entry, int column, const CellTexts& texts);
