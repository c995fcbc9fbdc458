// What the list model does to the real list view over 10,000 entries: the first fill, a keystroke
// of search and a sort, beside a bare list view that is filled with its drawing frozen.
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "bench/bare_list_win.h"
#include "bench/interleaved.h"
#include "orlo/orlowin.h"
#include "view/list_model.h"
#include "view/sys_list.h"

namespace {

constexpr int kEntries = 10'000;

std::vector<UninstallEntry> make_entries() {
  std::vector<UninstallEntry> entries;
  entries.reserve(kEntries);
  for (int i = 0; i < kEntries; ++i) {
    const int mixed = i * 7919 % kEntries;
    UninstallEntry entry;
    entry.name = entry.keyName = String::formatted("{%05d-BENCH}", i);
    entry.displayName = String::formatted("Some Program %05d", mixed);
    entry.publisher = String::formatted("Vendor %d Incorporated", mixed % 50);
    entry.displayIcon = String::formatted("C:\\Program Files\\Program %05d\\run.exe,0", mixed);
    entry.installDateValue.time.wYear = static_cast<uint16_t>(2000 + mixed % 25);
    entry.installDateValue.time.wMonth = static_cast<uint16_t>(mixed % 12 + 1);
    entry.installDateValue.time.wDay = static_cast<uint16_t>(mixed % 28 + 1);
    entries.push_back(entry);
  }
  return entries;
}

}  // namespace

int main() {
  InitCommonControls();
  const HWND parent =
      CreateWindowExA(0, "STATIC", "bench", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 640, 480,
                      nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
  const HWND product_list = make_list(parent);
  const HWND bare_list = make_list(parent);
  SysListControl control(product_list);
  const std::vector<UninstallEntry> entries = make_entries();
  // A first fill finds a model without entries, and none is destroyed while the time is taken.
  std::vector<std::unique_ptr<ListModel>> models;
  models.reserve(kRuns);
  for (int run = 0; run < kRuns; ++run)
    models.push_back(std::make_unique<ListModel>(control, CellTexts()));
  auto fresh = models.begin();

  const auto first_fill = [&] {
    ListModel& model = **fresh++;
    model.begin_batch();
    model.clear();
    for (const UninstallEntry& entry : entries)
      model.applyEntry(entry);
    model.end_batch();
    UpdateWindow(product_list);
  };
  // Named for each of its uses, since the figures are looked up by name.
  const auto floor = [&](const char* name) {
    return Candidate{name, [&] { fill_bare(bare_list, kEntries); }};
  };

  print_ratios("First fill of 10,000 rows",
               {{"first fill", first_fill}, floor("floor: bare list for first fill")});
  ListModel& model = *models.back();
  const auto keystroke = [&](const char* text) {
    model.searchChanged(text);
    UpdateWindow(product_list);
  };
  const auto sort = [&](int column) {
    model.sortByColumn(column);
    UpdateWindow(product_list);
  };
  print_ratios("A keystroke that all of 10,000 rows match",
               {{"keystroke, all match", [&] { keystroke("program"); }},
                floor("floor: bare list for all match")});
  print_ratios("A keystroke that 200 of 10,000 rows match",
               {{"keystroke, 200 match", [&] { keystroke("vendor 17 "); }},
                floor("floor: bare list for 200 match")});
  keystroke("");
  print_ratios("A sort of 10,000 rows, twice",
               {{"sort by size", [&] { sort(8); }}, {"sort by program name", [&] { sort(2); }}});
  return 0;
}
