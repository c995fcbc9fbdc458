// One keystroke of search and one sort of the list model over 10,000 entries, without a window.
#include <benchmark/benchmark.h>
#include <fnmatch.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "view/list_model.h"
#include "view/search.h"

namespace {

constexpr int kEntries = 10'000;

/// Does no more than it must for the model to find its lines.
class BareList : public ListControl {
 public:
  void add_column(int, const String&, int, Align) override {}
  int column_width(int) const override { return 0; }
  void set_column_width(int, int) override {}
  void set_sort_arrow(int, SortArrow) override {}
  void insert_item(int index, const Item& item) override {
    const auto place = std::min(static_cast<size_t>(index), ids_.size());
    ids_.insert(ids_.begin() + static_cast<std::ptrdiff_t>(place), item.id);
  }
  void delete_item(int index) override { ids_.erase(ids_.begin() + index); }
  void delete_all() override { ids_.clear(); }
  int count() const override { return static_cast<int>(ids_.size()); }
  uint32_t id_at(int index) const override { return ids_[static_cast<size_t>(index)]; }
  void redraw_item(int) override {}
  void sort(const Order& order) override {
    std::stable_sort(ids_.begin(), ids_.end(),
                     [&](uint32_t a, uint32_t b) { return order(a, b) < 0; });
  }
  int selection_mark() const override { return -1; }
  unsigned state(int) const override { return 0; }
  void select(int, unsigned) override {}
  void ensure_visible(int) override {}
  void enable_groups(bool) override {}
  void add_group(int, const char16_t*, int) override {}
  void freeze(bool) override {}

 private:
  std::vector<uint32_t> ids_;
};

UninstallEntry entry_of(int i) {
  const int mixed = i * 7919 % kEntries;
  const String number = String::formatted("%05d", mixed);
  UninstallEntry entry;
  entry.name = String::formatted("{%s-4A1B-11D2-9C00-00C04F79AA}", number);
  entry.keyName = entry.name;
  entry.source = "HKLM Uninstall";
  entry.displayName = String::formatted("Some Program %s", number);
  entry.displayVersion = String::formatted("%d.%d.%d", mixed % 12, mixed % 100, i);
  entry.displayIcon = String::formatted("C:\\Program Files\\Vendor\\Program %s\\run.exe,0", number);
  entry.installLocation = String::formatted("C:\\Program Files\\Vendor\\Program %s", number);
  entry.installDate = String::formatted("%02d/%02d/20%02d", mixed % 28 + 1, mixed % 12 + 1, i % 25);
  entry.installDateValue.time = {static_cast<uint16_t>(2000 + i % 25),
                                 static_cast<uint16_t>(mixed % 12 + 1),
                                 0,
                                 static_cast<uint16_t>(mixed % 28 + 1),
                                 0,
                                 0,
                                 0,
                                 0};
  entry.uninstallDateValue = entry.lastUseDateValue = entry.installDateValue;
  entry.uninstallCmd = String::formatted("MsiExec.exe /X%s", entry.name);
  entry.modifyCmd = String::formatted("MsiExec.exe /I%s", entry.name);
  entry.systemComponentText = entry.is64BitText = "no";
  entry.size = mixed;
  entry.sizeText = String::formatted("%d.00 MB", mixed);
  entry.features = entry.patches = entry.frequency = mixed % 50;
  entry.installerPath = "C:\\windows\\system32\\msiexec.exe";
  entry.packagePath = String::formatted("C:\\windows\\Installer\\%s.msi", number);
  entry.publisher = String::formatted("Vendor %d Incorporated", mixed % 50);
  entry.contact = "Customer Support";
  entry.helpURL = String::formatted("https://help.example.org/%s", number);
  entry.aboutURL = String::formatted("https://www.example.org/%s", number);
  entry.changed = mixed % 3 - 1;
  return entry;
}

const std::vector<UninstallEntry>& all_entries() {
  static const std::vector<UninstallEntry> entries = [] {
    std::vector<UninstallEntry> made;
    made.reserve(kEntries);
    for (int i = 0; i < kEntries; ++i)
      made.push_back(entry_of(i));
    return made;
  }();
  return entries;
}

struct Filled {
  BareList list;
  ListModel model{list, CellTexts()};

  Filled() {
    model.begin_batch();
    for (const UninstallEntry& entry : all_entries())
      model.applyEntry(entry);
    model.end_batch();
  }
};

Filled& filled() {
  static Filled made;
  return made;
}

struct Keystroke {
  const char* text;
  size_t hits;
};
// Few rows, all of which are found late; none, so that every field is read to its end; all.
constexpr Keystroke kKeystrokes[] = {{"dor 17 inc", 200}, {"nowhere", 0}, {"progr", kEntries}};

void BM_SearchKeystroke(benchmark::State& state) {
  const Keystroke& key = kKeystrokes[state.range(0)];
  const String text(key.text);
  for (auto _ : state) {
    if (filled().model.searchChanged(text) != key.hits) state.SkipWithError("wrong rows");
  }
}
BENCHMARK(BM_SearchKeystroke)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

void BM_SearchKeystrokeFloor(benchmark::State& state) {
  const Keystroke& key = kKeystrokes[state.range(0)];
  const std::string pattern = "*" + std::string(key.text) + "*";
  for (auto _ : state) {
    const auto found =
        std::count_if(all_entries().begin(), all_entries().end(), [&](const UninstallEntry& entry) {
          const auto fields = searched_fields();
          return std::any_of(fields.begin(), fields.end(), [&](String UninstallEntry::*field) {
            return fnmatch(pattern.c_str(), (entry.*field).c_str(), FNM_CASEFOLD | FNM_NOESCAPE) ==
                   0;
          });
        });
    if (static_cast<size_t>(found) != key.hits) state.SkipWithError("wrong rows");
  }
}
BENCHMARK(BM_SearchKeystrokeFloor)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

/// By the tree and back, so that each sort finds the rows in another order than its own.
void BM_SortByColumn(benchmark::State& state) {
  const auto column = static_cast<int>(state.range(0));
  ListModel& model = filled().model;
  model.searchChanged("");
  for (auto _ : state) {
    state.PauseTiming();
    model.sortByColumn(column == 1 ? 0 : 1);
    state.ResumeTiming();
    model.sortByColumn(column);
  }
}
BENCHMARK(BM_SortByColumn)
    ->DenseRange(0, comparatorCount - 1)
    ->MinTime(0.05)
    ->Unit(benchmark::kMillisecond);

void BM_FirstFill(benchmark::State& state) {
  all_entries();
  for (auto _ : state) {
    Filled made;
    if (made.list.count() != kEntries) state.SkipWithError("wrong rows");
  }
}
BENCHMARK(BM_FirstFill)->Unit(benchmark::kMillisecond);

}  // namespace
