#include "inspect/patch_rows.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "inventory/product_details.h"
#include "orlo/datetime.h"
#include "platform/resource_ids.h"

namespace {

enum Column { kKey, kName, kPackage, kDate, kState, kRemovable };

constexpr PatchColumn kColumns[kPatchColumns] = {
    {IDS_PATCH_ID, 50},    {IDS_PATCH_NAME, 200},  {IDS_PATH, 200},
    {IDS_PATCH_DATE, 114}, {IDS_PATCH_STATE, 100}, {IDS_REMOVABLE, 50},
};

struct StateWord {
  uint32_t state;
  unsigned text;
};

constexpr StateWord kStateWords[] = {
    {0, IDS_PATCH_BROKEN},    {1, IDS_PATCH_APPLIED},    {2, IDS_PATCH_SUPERSEDED},
    {4, IDS_PATCH_OBSOLETED}, {8, IDS_PATCH_REGISTERED},
};

/// As much of a shown date as counts for the order of rows.
constexpr size_t kComparedCharacters = 15;

/// A row with the dates that decide on its place and on that of the rows after it.
struct DatedRow {
  PatchRow texts;
  DateTime date;   ///< what the registry tells
  DateTime shown;  ///< what the beginning of the shown text tells
};

DateTime parsed(const String& text, const ORLO::Clock& clock) {
  DateTime date;
  date.parse(text.c_str(), clock);
  return date;
}

DateTime parsed_beginning(String text, const ORLO::Clock& clock) {
  if (text.length() > kComparedCharacters) text.resize(kComparedCharacters);
  return parsed(text, clock);
}

String state_text(uint32_t state, const PatchServices& services) {
  for (const StateWord& word : kStateWords) {
    if (word.state == state) return services.text_of(word.text);
  }
  return String::formatted("%u", state);
}

DatedRow row_of(const String& key, const PatchMap& details, const PatchServices& services) {
  DatedRow row;
  row.texts[kKey] = key;
  const auto found = details.find(key);
  if (found == details.end()) return row;
  const PatchInfo& info = found->second;
  row.date = parsed(info.installed, services.clock);
  row.texts[kName] = info.displayName;
  row.texts[kPackage] = info.localPackage;
  row.texts[kDate] = row.date.display(services.clock);
  row.texts[kState] = state_text(info.state, services);
  row.texts[kRemovable] = info.uninstallable != 0 ? "yes" : "no";
  row.shown = parsed_beginning(row.texts[kDate], services.clock);
  return row;
}

/// The empty date has no order, so it is told apart first: it is before any date.
bool belongs_before(const DatedRow& row, const DatedRow& other) noexcept {
  if (row.date.empty()) return !other.date.empty();
  return DateTime::less(row.date, other.shown);
}

/// Goes up from the last row. A search by halves won't do: where the shown texts are read in
/// another way than they are meant, the rows are in no order.
void insert_by_date(std::vector<const DatedRow*>& order, const DatedRow& row) {
  auto place = order.end();
  while (place != order.begin() && belongs_before(row, **(place - 1)))
    --place;
  order.insert(place, &row);
}

}  // namespace

const PatchColumn& patch_column(int index) {
  assert(index >= 0 && index < kPatchColumns);
  return kColumns[index];
}

std::vector<PatchRow> read_patch_rows(const PatchServices& services, const String& product_code) {
  PatchMap details;
  ProductPatchMap applied;
  FeatureMap features;
  PatchSet patches;
  LoadInstallerPatches(services.registry, details, applied);
  ReadProductFeaturesAndPatches(services.installer, product_code, applied, features, patches);
  return make_patch_rows(patches, details, services);
}

std::vector<PatchRow> make_patch_rows(const PatchSet& patches, const PatchMap& details,
                                      const PatchServices& services) {
  // The order holds pointers to the rows, so they must stay where they are.
  std::vector<DatedRow> rows;
  rows.reserve(patches.size());
  std::vector<const DatedRow*> order;
  order.reserve(patches.size());
  for (const String& key : patches) {
    rows.push_back(row_of(key, details, services));
    insert_by_date(order, rows.back());
  }
  std::vector<PatchRow> texts;
  texts.reserve(order.size());
  for (const DatedRow* const row : order)
    texts.push_back(row->texts);
  return texts;
}
