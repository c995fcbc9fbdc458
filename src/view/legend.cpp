#include "view/legend.h"

#include <cstring>
#include <iterator>

#include "inventory/table.h"
#include "orlo/wildcard.h"
#include "platform/resource_ids.h"

namespace {

constexpr int kSortColumn = 1;
constexpr int kSearchedRow = 3;
constexpr int kSearchedColumn = 2;

constexpr LegendColumn kColumns[] = {
    {IDS_NAME, 120, ListControl::Align::left},
    {IDS_SORT_COLUMN, 80, ListControl::Align::right},
    {IDS_SIZE, 100, ListControl::Align::right},
};
static_assert(std::size(kColumns) == kLegendColumns);

constexpr const char* kSamples[][kLegendColumns] = {
    {"new Application", "0", ""}, {"Background Service", "1", "2.43 MB"}, {"Hotfix Patch", "2", ""},
    {"Application", "3", ""},     {"Microsoft Windows", "4", "13.75 MB"},
};
static_assert(std::size(kSamples) == kLegendRows);

bool contains(const String& text, const char* part) {
  return std::strstr(text.c_str(), part) != nullptr;
}

}  // namespace

const LegendColumn& legend_column(int column) {
  return kColumns[column];
}

String legend_text(int row, int column, const String& search_string) {
  if (row < 0 || row >= kLegendRows || column < 0 || column >= kLegendColumns) return String();
  if (row == kSearchedRow && column == kSearchedColumn) return search_string;
  return kSamples[row][column];
}

CellPaint legend_paint(const String& name, const String& text, int column,
                       const String& search_string, const SystemColors& system) {
  CellPaint paint = {system.window_text, std::nullopt, CellFont::any};
  if (contains(name, "Patch")) paint.text = kSubPackageGrey;
  if (compare_bytes(text, search_string) == 0) paint.text = kSearchRed;

  if (ORLO::match_wildcard_nocase(name, "new *")) {
    paint.background = kChangeYellow;
    paint.font = CellFont::bold;
  } else if (contains(name, "Microsoft")) {
    paint.background = kSystemBlue;
  } else if (column == kSortColumn) {
    paint.background = kSortCream;
  } else if (column == kSortColumn + 1) {
    paint.background = system.window;
  }
  return paint;
}
