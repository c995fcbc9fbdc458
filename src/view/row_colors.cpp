#include "view/row_colors.h"

namespace {

using Entry = UninstallEntry;

constexpr int kSourceColumn = 1;
constexpr int32_t kNew = -1;
/// A new package counts as changed in these.
constexpr uint32_t kBitsOfNew = 3;

bool is_grey(const Entry& entry, int column) noexcept {
  return !entry.parent.empty() || (column == kSourceColumn && entry.displayName.empty());
}

uint32_t change_bit(int column) noexcept {
  return column >= 0 && column < kListColumns ? list_column(column).change_bit : 0;
}

CellFont font_of_changed(const Entry& entry, int column) noexcept {
  const uint32_t mask = entry.changed == kNew ? kBitsOfNew : static_cast<uint32_t>(entry.changed);
  return (mask & change_bit(column)) != 0 ? CellFont::bold : CellFont::normal;
}

/// The column behind the sort column must not take over its shade.
std::optional<Color> sort_shade(const SortState& sort, int column, const SystemColors& system) {
  if (!sort.arrowShown) return std::nullopt;
  if (column == sort.column) return kSortCream;
  if (column == sort.column + 1) return system.window;
  return std::nullopt;
}

}  // namespace

bool RowColors::differ_by_cell(uint32_t id) const noexcept {
  if (model_.sort_state().arrowShown || model_.search().active()) return true;
  const Entry* const entry = model_.find(id);
  if (entry == nullptr) return false;
  const bool is_changed = entry->changed != 0 && entry->changed != kNew;
  return is_changed || entry->displayName.empty();
}

CellPaint RowColors::cell(uint32_t id, int column, const SystemColors& system) const {
  const Entry* const entry = model_.find(id);
  const Search& search = model_.search();
  CellPaint paint = {system.window_text, std::nullopt, CellFont::any};
  if (entry != nullptr && is_grey(*entry, column)) paint.text = kSubPackageGrey;
  // The text is composed only where somebody wants it.
  if (search.active() && search.matches(model_.cellText(id, column))) paint.text = kSearchRed;
  if (entry == nullptr) return paint;

  if (entry->changed != 0) {
    paint.background = kChangeYellow;
    paint.font = font_of_changed(*entry, column);
  } else if (is_microsoft(*entry)) {
    paint.background = kSystemBlue;
  } else {
    paint.background = sort_shade(model_.sort_state(), column, system);
  }
  return paint;
}
