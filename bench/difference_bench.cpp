// The difference of two inventories beside std::set_difference over the same rows.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "bench/inventory_rows.h"

namespace {

using PlainTable = std::map<Texts, Texts>;

constexpr int kRows = 100'000;

using AllTexts = std::vector<Texts>;

/// Made once and kept, so that filling either table allocates nothing but the table.
const AllTexts& all_texts(bool second) {
  const auto make = [](bool changed) {
    AllTexts all;
    for (int i = 0; i < kRows; ++i)
      all.push_back(texts_of(i, changed && i % 100 == 0));
    return all;
  };
  static const AllTexts first_texts = make(false);
  static const AllTexts second_texts = make(true);
  return second ? second_texts : first_texts;
}

void fill(Table& table, bool second) {
  fill(table, all_texts(second));
}

PlainTable plain(bool second) {
  PlainTable table;
  for (const Texts& texts : all_texts(second)) {
    table.emplace(Texts{texts[34], texts[33]}, texts);
  }
  return table;
}

/// As a refresh finds them: the second table is the copy that the last cycle left, the first has
/// been read anew, each row into new texts.
void BM_Difference(benchmark::State& state) {
  Table first(packageSchema());
  Table second(packageSchema());
  fill(first, true);
  second.assign(first);
  fill(first, false);
  for (auto _ : state) {
    const Table difference(first, second);
    if (difference.size() != kRows / 100) state.SkipWithError("wrong difference");
  }
}
BENCHMARK(BM_Difference)->Unit(benchmark::kMillisecond);

/// Two tables that have nothing to do with each other, as after the history file was read.
void BM_DifferenceUnrelated(benchmark::State& state) {
  Table first(packageSchema());
  Table second(packageSchema());
  fill(first, false);
  fill(second, true);
  for (auto _ : state) {
    const Table difference(first, second);
    if (difference.size() != kRows / 100) state.SkipWithError("wrong difference");
  }
}
BENCHMARK(BM_DifferenceUnrelated)->Unit(benchmark::kMillisecond);

/// Reading all rows anew into a table that has them: what the sharing costs the reader.
void BM_AddKnownRows(benchmark::State& state) {
  Table table(packageSchema());
  fill(table, true);
  for (auto _ : state)
    fill(table, false);
}
BENCHMARK(BM_AddKnownRows)->Unit(benchmark::kMillisecond);

void BM_DifferenceFloor(benchmark::State& state) {
  const PlainTable first = plain(false);
  const PlainTable second = plain(true);
  for (auto _ : state) {
    PlainTable difference;
    std::set_difference(first.begin(), first.end(), second.begin(), second.end(),
                        std::inserter(difference, difference.end()));
    if (difference.size() != kRows / 100) state.SkipWithError("wrong difference");
  }
}
BENCHMARK(BM_DifferenceFloor)->Unit(benchmark::kMillisecond);

}  // namespace
